// What the samples tell about a place between two size groups: whether too few of them have fragments on both
// sides for the two sides to be different fragments. It knows no bins and no costs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/binning/size_groups.h"

namespace banddesk::host {

/// Looks `reach` nt to either side of each place. The groups ascend and outlive it.
class SharedSamples {
 public:
  SharedSamples(std::span<const SizeGroup> groups, double reach);

  /// A sample has a fragment in `group`, and the one before that in the group `earlier`. Such pairs matter
  /// only within twice the reach.
  void add(std::uint32_t earlier, std::uint32_t group);

  /// By group, for the place before it: how many of all `samples` would have fragments on both sides if the
  /// sides had nothing to do with each other, less three times those that have. Below 0 the sides are two
  /// fragments for all that is known here; above, they may be one that was sized in two ways.
  std::vector<double> missing(double samples) const;

 private:
  double place(std::size_t group) const { return (groups_[group - 1].largest + groups_[group].least) / 2; }

  std::span<const SizeGroup> groups_;
  double reach_;
  std::vector<std::uint32_t> firstPlace_;  // by group: the first place to its left within reach
  std::vector<std::uint32_t> endPlace_;    // by group: behind the last place to its right within reach
  std::vector<double>
      sharedSteps_;  // by place: how many more samples are on both sides than one place before
};

}  // namespace banddesk::host
