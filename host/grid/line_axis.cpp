#include "host/grid/line_axis.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "plugin/base/error.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

constexpr std::size_t kBlock = 256;

template <class T>
auto placeOf(std::vector<T>& lines, Position position) {
  return lines.begin() +
         static_cast<std::ptrdiff_t>(std::min(static_cast<std::size_t>(std::max(position, 0)), lines.size()));
}

template <class T>
void reach(std::vector<T>& lines, Position last, T filler) {
  if (last >= 0 && lines.size() <= static_cast<std::size_t>(last)) {
    checkReach(last);
    lines.resize(static_cast<std::size_t>(last) + 1, filler);
  }
}

// Lines beyond the vector's end are as the filler says anyway.
template <class T>
void insertLines(std::vector<T>& lines, Position before, Position count, T filler) {
  if (static_cast<std::size_t>(before) < lines.size()) {
    lines.insert(placeOf(lines, before), static_cast<std::size_t>(count), filler);
  }
}

template <class T>
void removeLines(std::vector<T>& lines, Position first, Position last) {
  lines.erase(placeOf(lines, first),
              last >= static_cast<Position>(lines.size()) ? lines.end() : placeOf(lines, last + 1));
}

template <class T>
void moveLines(std::vector<T>& lines, Position first, Position last, Position target, T filler) {
  if (target >= first && target <= last + 1) return;
  if (static_cast<std::size_t>(std::min(first, target)) >= lines.size()) return;
  reach(lines, std::max(last, target - 1), filler);
  const auto block = placeOf(lines, first);
  const auto behind = placeOf(lines, last + 1);
  if (target < first) {
    std::rotate(placeOf(lines, target), block, behind);
  } else {
    std::rotate(block, behind, placeOf(lines, target));
  }
}

}  // namespace

void checkReach(Position last) {
  if (last <= kFarthest) return;
  raise(ErrorNumber::OutOfMemory, "Grid",
        "Row or column " + integerText(last) + " lies beyond what the grid can hold.");
}

Slot LineOrder::make(Position position) {
  reach(slots_, position, kNoSlot);
  Slot& slot = slots_[static_cast<std::size_t>(position)];
  if (free_.empty()) return slot = next_++;
  slot = free_.back();
  free_.pop_back();
  return slot;
}

std::vector<Slot> LineOrder::list(Position first, Position last) const {
  std::vector<Slot> slots;
  if (last < first) return slots;
  checkReach(last);
  slots.reserve(static_cast<std::size_t>(last - first) + 1);
  for (Position position = first; position <= last; ++position) slots.push_back(at(position));
  return slots;
}

std::vector<Slot> LineOrder::ensureAll(Position first, Position last) {
  reach(slots_, last, kNoSlot);
  std::vector<Slot> slots;
  for (Position position = first; position <= last; ++position) slots.push_back(ensure(position));
  return slots;
}

void LineOrder::insert(Position before, Position count) { insertLines(slots_, before, count, kNoSlot); }

std::vector<Slot> LineOrder::remove(Position first, Position last) {
  std::vector<Slot> removed;
  const Position end = std::min(last, extent() - 1);
  for (Position position = first; position <= end; ++position) {
    if (at(position) != kNoSlot) removed.push_back(at(position));
  }
  if (first <= end) removeLines(slots_, first, end);
  return removed;
}

void LineOrder::handBack(std::span<const Slot> emptied) {
  // The lowest is given out first, so that slots follow the order of lines as far as they can.
  const auto before = static_cast<std::ptrdiff_t>(free_.size());
  free_.insert(free_.end(), emptied.begin(), emptied.end());
  std::sort(free_.begin() + before, free_.end(), std::greater());
  std::inplace_merge(free_.begin(), free_.begin() + before, free_.end(), std::greater());
}

void LineOrder::permute(Position first, std::span<const Position> order) {
  if (order.empty()) return;
  reach(slots_, first + static_cast<Position>(order.size()) - 1, kNoSlot);
  std::vector<Slot> sorted;
  sorted.reserve(order.size());
  for (const Position position : order) sorted.push_back(at(position));
  std::ranges::copy(sorted, placeOf(slots_, first));
}

void LineOrder::move(Position first, Position last, Position target) {
  moveLines(slots_, first, last, target, kNoSlot);
}

void Visibility::hide(Position first, Position last, bool hidden) {
  first = std::max(first, 0);
  if (hidden) {
    if (last >= first) reach(hidden_, last, std::uint8_t{0});
  } else {
    last = std::min(last, static_cast<Position>(hidden_.size()) - 1);
  }
  if (last < first) return;
  std::fill(placeOf(hidden_, first), placeOf(hidden_, last) + 1, static_cast<std::uint8_t>(hidden));
  isCounted_ = false;
}

void Visibility::insert(Position before, Position count) {
  insertLines(hidden_, before, count, std::uint8_t{0});
  isCounted_ = false;
}

void Visibility::remove(Position first, Position last) {
  removeLines(hidden_, first, last);
  isCounted_ = false;
}

void Visibility::move(Position first, Position last, Position target) {
  moveLines(hidden_, first, last, target, std::uint8_t{0});
  isCounted_ = false;
}

void Visibility::countBlocks() const {
  if (isCounted_) return;
  hiddenBefore_.clear();
  Position total = 0;
  for (std::size_t index = 0; index < hidden_.size(); ++index) {
    if (index % kBlock == 0) hiddenBefore_.push_back(total);
    if (index > 0) total += hidden_[index];
  }
  hiddenBefore_.push_back(total);
  isCounted_ = true;
}

Position Visibility::visibleUpTo(Position last) const {
  countBlocks();
  if (last < 1) return 0;
  const std::size_t end = static_cast<std::size_t>(last) + 1;
  if (end >= hidden_.size()) return last - hiddenBefore_.back();
  const std::size_t block = end / kBlock;
  Position hidden = hiddenBefore_[block];
  for (std::size_t index = std::max<std::size_t>(block * kBlock, 1); index < end; ++index) {
    hidden += hidden_[index];
  }
  return last - hidden;
}

Position Visibility::nthVisible(Position n) const {
  countBlocks();
  // Visible ones before each block never become fewer: the last block with fewer than n before it holds n.
  std::size_t low = 0;
  std::size_t high = hiddenBefore_.size();
  const auto visibleBefore = [this](std::size_t block) {
    const Position start = static_cast<Position>(std::min(block * kBlock, hidden_.size()));
    return start == 0 ? 0 : start - 1 - hiddenBefore_[block];
  };
  while (high - low > 1) {
    const std::size_t middle = (low + high) / 2;
    (visibleBefore(middle) < n ? low : high) = middle;
  }
  Position missing = n - visibleBefore(low);
  std::size_t index = std::max<std::size_t>(std::min(low * kBlock, hidden_.size()), 1);
  for (; index < hidden_.size(); ++index) {
    if (hidden_[index] == 0 && --missing == 0) return static_cast<Position>(index);
  }
  return static_cast<Position>(index) + missing - 1;
}

Position LineAxis::nearestVisible(Position position) const {
  const Position all = visibility.visibleUpTo(count);
  if (all == 0 || !visibility.isHidden(position)) return position;
  return visibility.nthVisible(std::min(visibility.visibleUpTo(position) + 1, all));
}

std::int32_t LineAxis::width(Position position) const {
  if (position < 0 || static_cast<std::size_t>(position) >= widths_.size()) return kDefaultWidth;
  const std::int32_t width = widths_[static_cast<std::size_t>(position)];
  return width < 0 ? kDefaultWidth : width;
}

void LineAxis::setWidth(Position first, Position last, std::int32_t width) {
  first = std::max(first, 0);
  if (last < first) return;
  reach(widths_, last, -1);
  std::fill(placeOf(widths_, first), placeOf(widths_, last) + 1, width);
}

void LineAxis::insert(Position before, Position added) {
  order.insert(before, added);
  visibility.insert(before, added);
  seen.insert(before, added);
  insertLines(widths_, before, added, -1);
}

std::vector<Slot> LineAxis::remove(Position first, Position last) {
  visibility.remove(first, last);
  seen.remove(first, last);
  removeLines(widths_, first, last);
  return order.remove(first, last);
}

void LineAxis::move(Position first, Position last, Position target) {
  order.move(first, last, target);
  visibility.move(first, last, target);
  seen.move(first, last, target);
  moveLines(widths_, first, last, target, -1);
}

void LineAxis::exchangeWith(LineAxis& other) {
  std::swap(count, other.count);
  std::swap(order, other.order);
  std::swap(visibility, other.visibility);
  std::swap(seen, other.seen);
}

}  // namespace banddesk::host
