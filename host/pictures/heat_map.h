// The table of bands as an image, its samples in the order of a tree that stands beside them.
#pragma once

#include <span>

#include "host/pictures/drawing.h"
#include "host/statistics/band_matrix.h"
#include "host/statistics/tree.h"

namespace banddesk::host::pictures {

// Tree and heights are those of the table. With heights (RFU, for each cell) a band is the darker the higher
// it is, fully from kFullHeight of all bands on; without any all bands are alike.
constexpr double kFullHeight = 0.95;
Drawing heatMapOf(const statistics::Tree& tree, const statistics::BandMatrix& bands,
                  std::span<const float> heights = {});

// The height from which that share of them is not higher; 0 for none.
double heightAtShare(std::vector<float> heights, double share);

}  // namespace banddesk::host::pictures
