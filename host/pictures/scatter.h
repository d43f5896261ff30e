// The samples on two axes of an ordination, both axes in one scale.
#pragma once

#include "host/pictures/drawing.h"
#include "host/statistics/band_matrix.h"
#include "host/statistics/ordination.h"

namespace banddesk::host::pictures {

// Axes count from 0; raises an Error where the ordination has no such axis. Samples and groups are those of
// the table that the ordination was made of.
Drawing scatterOf(const statistics::Ordination& ordination, const statistics::BandMatrix& bands,
                  std::size_t horizontal = 0, std::size_t vertical = 1);

}  // namespace banddesk::host::pictures
