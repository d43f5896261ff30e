// Rectangles of cells, both bounds included, and what inserting and removing lines makes of them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

#include "plugin/results/grid_addressing.h"

namespace banddesk::host {

struct Block {
  std::int32_t top = 0;
  std::int32_t left = 0;
  std::int32_t bottom = -1;
  std::int32_t right = -1;

  bool isEmpty() const { return bottom < top || right < left; }
  bool isSingleCell() const { return top == bottom && left == right; }
  bool contains(std::int32_t row, std::int32_t col) const {
    return row >= top && row <= bottom && col >= left && col <= right;
  }
  bool meets(const Block& other) const {
    return top <= other.bottom && other.top <= bottom && left <= other.right && other.left <= right;
  }

  std::int32_t& first(Axis axis) { return axis == Axis::Rows ? top : left; }
  std::int32_t& last(Axis axis) { return axis == Axis::Rows ? bottom : right; }

  void exchangeAxes() {
    std::swap(top, left);
    std::swap(bottom, right);
  }
  void insertLines(Axis axis, std::int32_t before, std::int32_t count) {
    if (first(axis) >= before) first(axis) += count;
    if (last(axis) >= before) last(axis) += count;
  }
  // May leave the block empty.
  void removeLines(Axis axis, std::int32_t from, std::int32_t to) {
    const std::int32_t removed = to - from + 1;
    std::int32_t& low = first(axis);
    std::int32_t& high = last(axis);
    low = low > to ? low - removed : std::min(low, from);
    high = high > to ? high - removed : std::min(high, from - 1);
  }

  friend bool operator==(const Block&, const Block&) = default;
};

}  // namespace banddesk::host
