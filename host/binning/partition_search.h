// The cheapest partition of a row of size groups into bins: the exact least of the sum of the bins' costs. It
// takes the costs' parts as given; where they come from stands with the calculator.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/binning/size_groups.h"

namespace banddesk::host {

/// Of a bin: `bin`, and what its first group's opening costs, and half the sum of the squared deviations of
/// its fragments' positions from their mean, and `repeat` for every fragment whose sample has an earlier one
/// in the bin. A bin must not be wider than `maxWidth`.
struct PartitionCosts {
  double bin = 0;
  double repeat = 0;
  double maxWidth = 0;
};

/// Squares and repeats of a bin that takes in two others and what lies between exceed theirs by more than
/// those of the overlap (the quadrangle inequality), so the last bin of a longer row never begins before that
/// of a shorter one. Each group therefore looks back no further than to the beginning of the last bin.
class PartitionSearch {
 public:
  explicit PartitionSearch(const PartitionCosts& costs) : costs_(costs) {}

  /// The next group in ascending size. `position` is its size in standard deviations, `opening` the cost of
  /// beginning a bin here. `earlier` names for each of its fragments whose sample has an earlier one that
  /// group, or this one.
  void add(const SizeGroup& group, double position, double opening, std::span<const std::uint32_t> earlier);

  /// The groups with which the bins of the cheapest partition of all groups begin, ascending.
  std::vector<std::uint32_t> binBegins() const;
  double cost() const { return reached_.empty() ? 0 : reached_.back().cost; }

 private:
  struct Row {
    double least, position, count;
    double before;  // the cheapest cost of what stands before this group, and of opening a bin with it
    double repeats = 0;
    double newRepeats = 0;  // of the group at hand with this one, until they are counted in
  };
  struct Reached {
    double cost;  // of the groups up to this one
    std::uint32_t begin;
  };

  PartitionCosts costs_;
  std::vector<Row> rows_;
  std::vector<Reached> reached_;
  std::size_t earliest_ = 0;
};

}  // namespace banddesk::host
