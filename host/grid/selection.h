// The blocks that the user has selected, in the order of their selection.
#pragma once

#include <vector>

#include "host/grid/block.h"
#include "host/grid/line_axis.h"

namespace banddesk::host {

class Selection final : public RangeList {
 public:
  std::int32_t GetCount() const override { return static_cast<std::int32_t>(blocks_.size()); }
  GridRange Item(std::int32_t index) const override;

  const std::vector<Block>& blocks() const { return blocks_; }
  void clear() { blocks_.clear(); }
  void add(const Block& block);
  void dropLast() {
    if (!blocks_.empty()) blocks_.pop_back();
  }
  // Keeps what lies within 1..rows, 1..cols.
  void cutTo(std::int32_t rows, std::int32_t cols);
  // Whether one block holds the lines first..last from 1 to `length`.
  bool holdsLines(Axis axis, std::int32_t first, std::int32_t last, std::int32_t length) const;
  bool contains(std::int32_t row, std::int32_t col) const;

  void insertLines(Axis axis, std::int32_t before, std::int32_t count);
  void removeLines(Axis axis, std::int32_t from, std::int32_t to);
  void exchangeAxes();
  // What was hidden since the table was shown last is taken out: a block that holds such lines keeps those
  // that are visible. One of all lines stays one of all lines while any of them is visible.
  void dropNewlyHidden(Axis which, const LineAxis& lines);

 private:
  std::vector<Block> blocks_;
};

}  // namespace banddesk::host
