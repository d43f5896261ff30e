// The tables of several primer pairs as one table of individuals.
#pragma once

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "host/statistics/band_matrix.h"

namespace banddesk::host::scoring {

struct PairBands {
  std::string primerPair;
  statistics::BandMatrix bands;  // a line for each individual, by its name
};

struct JoinedBands {
  statistics::BandMatrix bands;
  /// Individuals and the primer pairs of which nothing is known of them.
  std::vector<std::pair<std::string, std::string>> missing;
};

/// Individuals in the order in which the pairs name them first, the bins pair by pair with the pair before
/// their dye ("E32/M47_D1"); what a pair does not know of an individual is missing. An individual is in the
/// group that the first pair with groups has it in; groups are left out where one has none. Throws
/// std::invalid_argument where a pair has two lines of one name.
JoinedBands joinBands(std::span<const PairBands> pairs);

}  // namespace banddesk::host::scoring
