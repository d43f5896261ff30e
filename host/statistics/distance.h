// Distances of samples by their bands. Where a band is missing in one of two samples, that locus does not
// count for the two.
//
// With a bands in both, b and c in one alone, d in none, n = a + b + c + d:
//   Jaccard          (b + c) / (a + b + c)      Jaccard 1901, Bull. Soc. Vaudoise Sci. Nat. 37: 547
//   Dice             (b + c) / (2a + b + c)     Dice 1945, Ecology 26: 297; Sorensen 1948
//   simple matching  (b + c) / n                Sokal & Michener 1958, Univ. Kansas Sci. Bull. 38: 1409
//   Euclidean        sqrt(b + c), with missing bands scaled up to all L loci: sqrt((b + c) L / n)
// Two samples without a band have the Jaccard and Dice distance 0.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "host/statistics/band_matrix.h"
#include "host/statistics/progress.h"

namespace banddesk::host::statistics {

enum class Measure { Jaccard, Dice, SimpleMatching, Euclidean };
std::string_view nameOf(Measure measure);

// Symmetric, zeros in the diagonal.
class DistanceTable {
 public:
  explicit DistanceTable(std::size_t samples)
      : samples_(samples), values_(samples < 2 ? 0 : samples * (samples - 1) / 2) {}

  std::size_t samples() const { return samples_; }
  double at(std::size_t i, std::size_t j) const {
    return i == j ? 0 : values_[i < j ? place(i, j) : place(j, i)];
  }
  double& upper(std::size_t i, std::size_t j) { return values_[place(i, j)]; }  // i < j
  // The pairs (0, 1), (0, 2) ... (1, 2) ...
  std::span<const double> values() const { return values_; }

 private:
  std::size_t place(std::size_t i, std::size_t j) const { return i * (2 * samples_ - i - 1) / 2 + j - i - 1; }

  std::size_t samples_;
  std::vector<double> values_;
};

// Raises an Error that names two samples without a locus that is known in both.
DistanceTable distances(const BandMatrix& matrix, Measure measure, const Progress& progress = {});

// The same for bands that are packed; `matrix` gives the names.
class PackedBands;
DistanceTable distances(const BandMatrix& matrix, const PackedBands& bands, Measure measure,
                        const Progress& progress = {});

}  // namespace banddesk::host::statistics
