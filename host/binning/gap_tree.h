// The order in which gaps part a row of sizes: for every stretch of the row its largest gap, the first of
// equal ones. Built once in linear time, it answers all splits of the row.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace banddesk::host {

// A binary tree over the gaps: each gap is larger than those of its left branch, and at least as large as
// those of its right branch. Gap i lies between the sizes i and i + 1.
class GapTree {
 public:
  static constexpr std::uint32_t kNone = UINT32_MAX;

  // `gapAt(i)` for i below `gapCount`.
  template <class GapAt>
  GapTree(std::size_t gapCount, GapAt gapAt) : nodes_(gapCount) {
    std::vector<std::uint32_t> path;  // the right edge of the tree so far, from the root down
    for (std::uint32_t gap = 0; gap < gapCount; ++gap) {
      std::uint32_t overtaken = kNone;
      while (!path.empty() && gapAt(path.back()) < gapAt(gap)) {
        overtaken = path.back();
        path.pop_back();
      }
      nodes_[gap].left = overtaken;
      if (!path.empty()) nodes_[path.back()].right = gap;
      path.push_back(gap);
    }
    if (!path.empty()) root_ = path.front();
  }

  // Walks the stretches of the sizes 0..gapCount from left to right, parting each that `isTooWide(first,
  // last)`, and hands those that are left to `take(first, last)`.
  template <class IsTooWide, class Take>
  void part(IsTooWide isTooWide, Take take) const {
    struct Stretch {
      std::size_t first, last;
      std::uint32_t gap;
    };
    std::vector<Stretch> waiting = {{0, nodes_.size(), root_}};
    while (!waiting.empty()) {
      const Stretch stretch = waiting.back();
      waiting.pop_back();
      if (stretch.gap == kNone || !isTooWide(stretch.first, stretch.last)) {
        take(stretch.first, stretch.last);
        continue;
      }
      waiting.push_back({stretch.gap + std::size_t{1}, stretch.last, nodes_[stretch.gap].right});
      waiting.push_back({stretch.first, stretch.gap, nodes_[stretch.gap].left});
    }
  }

 private:
  struct Node {
    std::uint32_t left = kNone;
    std::uint32_t right = kNone;
  };
  std::vector<Node> nodes_;
  std::uint32_t root_ = kNone;
};

}  // namespace banddesk::host
