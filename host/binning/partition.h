// The bins that a row of fragments is parted into, as cheaply as can be, by a cost that weighs how far the
// sizes of a bin spread, how many fragments of one sample share it, how crowded the place of each cut is and
// whether samples have fragments on both of its sides. docs/binning.md tells the rule and why.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "host/binning/fragment_sort.h"

namespace banddesk::host {

/// Of fragments sorted by size, up to and without `end`.
struct Slice {
  std::size_t begin, end;
};

/// In nt and RFU; fragments below the threshold lie in slices, but no bin is made by them.
struct PartitionLimits {
  double maxBinWidth = 1;
  double threshold = 0;
};

/// Ascending, without fragments between them but before the first. The results of the fragments are below
/// `results`.
std::vector<Slice> partitionOf(std::span<const Fragment> fragments, std::size_t results,
                               const PartitionLimits& limits);

}  // namespace banddesk::host
