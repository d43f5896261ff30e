// Histograms of a table's fragments: by size, and how many each sample has.
#pragma once

#include "host/pictures/drawing.h"
#include "host/statistics/band_matrix.h"

namespace banddesk::host::pictures {

// Sizes in nt in classes of `width` nt.
Drawing sizeHistogramOf(const std::vector<double>& sizes, double width);

// Each sample is a box of its own in its class, in its group's colour. `counts` has one for each sample.
Drawing countHistogramOf(const statistics::BandMatrix& bands, const std::vector<std::size_t>& counts);

}  // namespace banddesk::host::pictures
