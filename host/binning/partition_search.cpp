#include "host/binning/partition_search.h"

#include <algorithm>
#include <utility>

namespace banddesk::host {

void PartitionSearch::add(const SizeGroup& group, double position, double opening,
                          std::span<const std::uint32_t> earlier) {
  rows_.push_back({group.least, position, group.count, cost() + opening});
  const std::size_t self = rows_.size() - 1;
  while (earliest_ < self && isWider(rows_[earliest_].least, group.largest, costs_.maxWidth)) ++earliest_;
  for (const std::uint32_t begin : earlier) {
    if (begin >= earliest_) ++rows_[begin].newRepeats;
  }
  Reached best{};
  double count = 0, sum = 0, squares = 0, newRepeats = 0;
  for (std::size_t begin = rows_.size(); begin-- > earliest_;) {
    Row& row = rows_[begin];
    const double distance = position - row.position;
    count += row.count;
    sum += row.count * distance;
    squares += row.count * distance * distance;
    newRepeats += std::exchange(row.newRepeats, 0.0);
    row.repeats += newRepeats;
    const double spread = std::max(0.0, squares - sum * sum / count) / 2;
    const double cost = row.before + costs_.bin + spread + costs_.repeat * row.repeats;
    if (begin == self || cost < best.cost) best = {cost, static_cast<std::uint32_t>(begin)};
  }
  reached_.push_back(best);
  earliest_ = best.begin;
}

std::vector<std::uint32_t> PartitionSearch::binBegins() const {
  std::vector<std::uint32_t> begins;
  for (std::size_t end = reached_.size(); end > 0; end = begins.back())
    begins.push_back(reached_[end - 1].begin);
  std::ranges::reverse(begins);
  return begins;
}

}  // namespace banddesk::host
