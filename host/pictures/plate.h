// The samples of a table by the wells of their plates, with a figure in each well.
#pragma once

#include <optional>

#include "host/pictures/drawing.h"
#include "host/statistics/band_matrix.h"

namespace banddesk::host::pictures {

struct Well {
  std::size_t row = 0, column = 0;  // from 0: A01
  std::string plate;                // what tells plates apart; empty where the name does not say
};

// The well that a sample's name tells: "Oak7.A01_12345678AB", where the last two letters tell the plate, or
// a well between marks as in "Oak7_H12" or "B3-Oak7".
std::optional<Well> wellOf(const std::string& name);

// A plate of 96 wells, or 384 where a well stands outside, one below the other. `figures` has one for each
// sample; between the least and the largest a well is the darker the more it is. A second sample of one well stands on a plate of
// its own. Samples whose names tell no well are counted below. Raises an Error where no name does.
Drawing platesOf(const statistics::BandMatrix& bands, const std::vector<double>& figures,
                 const std::string& what);

}  // namespace banddesk::host::pictures
