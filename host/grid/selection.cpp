#include "host/grid/selection.h"

#include "plugin/base/error.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

// Adds the parts of the block whose lines are visible.
void addVisibleParts(Axis which, const LineAxis& lines, Block block, std::vector<Block>& parts) {
  const Position last = block.last(which);
  for (Position line = block.first(which); line <= last; ++line) {
    if (lines.visibility.isHidden(line)) continue;
    Block part = block;
    part.first(which) = line;
    while (line < last && !lines.visibility.isHidden(line + 1)) ++line;
    part.last(which) = line;
    parts.push_back(part);
  }
}

bool hasNewlyHidden(const LineAxis& lines, Position first, Position last) {
  for (Position line = first; line <= last; ++line) {
    if (lines.isNewlyHidden(line)) return true;
  }
  return false;
}

}  // namespace

GridRange Selection::Item(std::int32_t index) const {
  if (index < 0 || index >= GetCount()) {
    raise(ErrorNumber::SubscriptOutOfRange, "Grid", "The selection has no range " + integerText(index) + ".");
  }
  const Block& block = blocks_[static_cast<std::size_t>(index)];
  GridRange range;
  range.InitRange(block.left, block.top, block.right, block.bottom);
  return range;
}

void Selection::add(const Block& block) {
  if (!block.isEmpty()) blocks_.push_back(block);
}

void Selection::cutTo(std::int32_t rows, std::int32_t cols) {
  for (Block& block : blocks_) {
    block = {std::max(block.top, 1), std::max(block.left, 1), std::min(block.bottom, rows),
             std::min(block.right, cols)};
  }
  std::erase_if(blocks_, [](const Block& block) { return block.isEmpty(); });
}

bool Selection::holdsLines(Axis axis, std::int32_t first, std::int32_t last, std::int32_t length) const {
  const Axis along = axis == Axis::Rows ? Axis::Columns : Axis::Rows;
  return length > 0 && std::ranges::any_of(blocks_, [&](Block block) {
           return block.first(axis) <= first && block.last(axis) >= last && block.first(along) <= 1 &&
                  block.last(along) >= length;
         });
}

bool Selection::contains(std::int32_t row, std::int32_t col) const {
  return std::ranges::any_of(blocks_, [&](const Block& block) { return block.contains(row, col); });
}

void Selection::insertLines(Axis axis, std::int32_t before, std::int32_t count) {
  for (Block& block : blocks_) block.insertLines(axis, before, count);
}

void Selection::removeLines(Axis axis, std::int32_t from, std::int32_t to) {
  for (Block& block : blocks_) block.removeLines(axis, from, to);
  std::erase_if(blocks_, [](const Block& block) { return block.isEmpty(); });
}

void Selection::dropNewlyHidden(Axis which, const LineAxis& lines) {
  std::vector<Block> kept;
  for (Block block : blocks_) {
    const Position first = block.first(which);
    const Position last = block.last(which);
    const bool holdsAll = first <= 1 && last >= lines.count && lines.visibility.visibleUpTo(lines.count) > 0;
    if (holdsAll || !hasNewlyHidden(lines, first, last))
      kept.push_back(block);
    else
      addVisibleParts(which, lines, block, kept);
  }
  blocks_ = std::move(kept);
}

void Selection::exchangeAxes() {
  for (Block& block : blocks_) block.exchangeAxes();
}

}  // namespace banddesk::host
