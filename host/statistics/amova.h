// Analysis of molecular variance with one level of groups: how much of the variance of squared distances lies
// among the groups and how much within them. Excoffier, Smouse & Quattro 1992, Genetics 131: 479; for bands
// of dominant markers Huff, Peakall & Smouse 1993, Theor. Appl. Genet. 86: 927.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "host/statistics/distance.h"
#include "host/statistics/progress.h"

namespace banddesk::host::statistics {

struct VarianceSource {
  std::size_t degrees = 0;  // of freedom
  double squares = 0;       // sum of squared deviations
  double mean = 0;          // squares by degrees
  double variance = 0;      // the component; among groups it may be below 0
  double percent = 0;       // of the sum of both components
};

struct Amova {
  VarianceSource among, within;
  double phi = 0;  // the share of the variance that lies among the groups
  std::size_t permutations = 0;
  std::optional<double> probability;  // of a phi as large when samples are put into groups by chance
};

struct PermutationRequest {
  std::size_t permutations = 999;
  std::uint64_t seed = 1;
};

// `groupOf` holds a group's index for each sample. The distances are squared here: with Euclidean ones the
// squares are numbers of differing bands. Raises an Error below two groups, and where every group has but one
// sample.
Amova amova(const DistanceTable& distances, std::span<const std::size_t> groupOf,
            const PermutationRequest& request = {}, const Progress& progress = {});

}  // namespace banddesk::host::statistics
