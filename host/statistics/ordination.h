// Principal coordinates of a table of distances: Gower 1966, Biometrika 53: 325.
#pragma once

#include <cstddef>
#include <vector>

#include "host/statistics/distance.h"
#include "host/statistics/progress.h"

namespace banddesk::host::statistics {

// Jaccard's and Dice's distances lie in no Euclidean space and give negative eigenvalues; their square roots
// do and give none.
enum class Scale { AsIs, SquareRoot };

struct Ordination {
  std::vector<double> eigenvalues;  // all, descending
  std::size_t positive = 0;         // how many are above 0, rounding aside
  std::size_t negative = 0;         // and how many below
  double positiveSum = 0;
  std::vector<std::vector<double>> axes;  // of each axis the coordinates of all samples

  // Of an axis: its share of the sum of the positive eigenvalues, in percent.
  double percent(std::size_t axis) const { return 100 * eigenvalues[axis] / positiveSum; }
};

// At most so many axes, and no more than there are positive eigenvalues. The coordinate that is largest
// without its sign is positive on each axis, so that pictures repeat. Raises an Error below two samples or
// where all distances are 0.
Ordination principalCoordinates(const DistanceTable& distances, Scale scale, std::size_t axes,
                                const Progress& progress = {});

}  // namespace banddesk::host::statistics
