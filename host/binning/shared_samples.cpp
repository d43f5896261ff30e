#include "host/binning/shared_samples.h"

#include <algorithm>

namespace banddesk::host {
namespace {

// A sample on both sides speaks against one fragment, but not always: peaks split, and false ones occur.
constexpr double kFoundCounts = 3;

}  // namespace

SharedSamples::SharedSamples(std::span<const SizeGroup> groups, double reach)
    : groups_(groups),
      reach_(reach),
      firstPlace_(groups.size(), 0),
      endPlace_(groups.size(), 0),
      sharedSteps_(groups.size() + 1, 0) {
  std::size_t first = 1, end = 1;
  for (std::size_t group = 0; group < groups.size(); ++group) {
    while (first < group && groups[group].least - place(first) >= reach) ++first;
    end = std::max(end, group + 1);
    while (end < groups.size() && place(end) - groups[group].least < reach) ++end;
    firstPlace_[group] = static_cast<std::uint32_t>(first);
    endPlace_[group] = static_cast<std::uint32_t>(end);
  }
}

void SharedSamples::add(std::uint32_t earlier, std::uint32_t group) {
  const std::uint32_t first = std::max(earlier + 1, firstPlace_[group]);
  const std::uint32_t end = std::min(group + 1, endPlace_[earlier]);
  if (first >= end) return;
  ++sharedSteps_[first];
  --sharedSteps_[end];
}

std::vector<double> SharedSamples::missing(double samples) const {
  std::vector<double> missing(groups_.size(), 0);
  double left = 0, right = 0, shared = 0;  // fragments within reach, and samples of them on both sides
  std::size_t leftmost = 0, rightEnd = 0;
  for (std::size_t group = 1; group < groups_.size(); ++group) {
    left += groups_[group - 1].count;
    right -= rightEnd >= group ? groups_[group - 1].count : 0;
    for (; leftmost < group && place(group) - groups_[leftmost].least >= reach_; ++leftmost)
      left -= groups_[leftmost].count;
    for (rightEnd = std::max(rightEnd, group);
         rightEnd < groups_.size() && groups_[rightEnd].least - place(group) < reach_; ++rightEnd)
      right += groups_[rightEnd].count;
    shared += sharedSteps_[group];
    missing[group] = left * right / samples - kFoundCounts * shared;
  }
  return missing;
}

}  // namespace banddesk::host
