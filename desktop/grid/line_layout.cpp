#include "desktop/grid/line_layout.h"

#include <algorithm>

namespace banddesk::desktop {
namespace {

// Of the room, so much at most is taken by header and frozen lines.
constexpr int kFrozenShare = 3;
constexpr int kWholeShare = 4;

}  // namespace

int LineLayout::extentOf(const host::LineAxis& axis, Position position) const {
  if (wanted_.fixedExtent == 0) return axis.width(position);
  return position == 0 ? wanted_.headerExtent : wanted_.fixedExtent;
}

void LineLayout::add(const host::LineAxis& axis, Position position) {
  lines_.push_back({position, end(), extentOf(axis, position)});
}

void LineLayout::addFrozen(const host::LineAxis& axis) {
  frozen_ = 0;
  for (Position position = 1; position <= std::min(axis.frozen, axis.count); ++position) {
    if (axis.visibility.isHidden(position)) {
      frozen_ = position;
      continue;
    }
    if (end() + extentOf(axis, position) > room_ / kWholeShare * kFrozenShare) break;
    add(axis, position);
    frozen_ = position;
  }
}

Position LineLayout::firstOfPage(const host::LineAxis& axis, Position last) const {
  const auto& visibility = axis.visibility;
  const int before = visibility.visibleUpTo(frozen_);
  int nth = visibility.visibleUpTo(last);
  for (int left = room_ - scrollStart_ - extentOf(axis, last); nth - 1 > before; --nth) {
    left -= extentOf(axis, visibility.nthVisible(nth - 1));
    if (left < 0) break;
  }
  return visibility.nthVisible(nth);
}

void LineLayout::arrange(const host::LineAxis& axis, const Wanted& wanted) {
  wanted_ = wanted;
  room_ = std::max(wanted.room, 0);
  lines_.clear();
  if (wanted.showsHeader && !axis.visibility.isHidden(0)) add(axis, 0);
  addFrozen(axis);
  scrollStart_ = end();
  scrollValue_ = scrollMaximum_ = 0;
  scrolledWhole_ = 1;
  const auto& visibility = axis.visibility;
  const int before = visibility.visibleUpTo(frozen_);
  const int all = visibility.visibleUpTo(axis.count);
  if (all <= before) return;
  const Position lastFirst = firstOfPage(axis, visibility.nthVisible(all));
  scrollMaximum_ = visibility.visibleUpTo(lastFirst) - before - 1;
  const int asked = visibility.visibleUpTo(std::max(wanted.first, frozen_ + 1) - 1) - before;
  scrollValue_ = std::clamp(asked, 0, scrollMaximum_);
  int whole = 0;
  Position position = visibility.nthVisible(before + scrollValue_ + 1);
  for (int nth = before + scrollValue_ + 1; nth <= all && end() < room_; ++nth) {
    add(axis, position);
    if (end() <= room_) ++whole;
    ++position;
    if (visibility.isHidden(position)) position = visibility.nthVisible(nth + 1);
  }
  scrolledWhole_ = std::max(whole, 1);
}

const ShownLine* LineLayout::at(int pixel) const {
  const auto found = std::ranges::upper_bound(lines_, pixel, {}, &ShownLine::end);
  return pixel < 0 || found == lines_.end() ? nullptr : &*found;
}

const ShownLine* LineLayout::nearest(int pixel) const {
  if (lines_.empty()) return nullptr;
  const ShownLine* const found = at(std::clamp(pixel, 0, std::max(room_ - 1, 0)));
  return found == nullptr ? &lines_.back() : found;
}

const ShownLine* LineLayout::find(Position position) const {
  const auto found = std::ranges::lower_bound(lines_, position, {}, &ShownLine::position);
  return found == lines_.end() || found->position != position ? nullptr : &*found;
}

ShownLine LineLayout::span(Position first, Position last) const {
  const auto low = std::ranges::lower_bound(lines_, first, {}, &ShownLine::position);
  const auto high = std::ranges::upper_bound(lines_, last, {}, &ShownLine::position);
  if (low >= high) return {first, 0, 0};
  return {low->position, low->start, std::prev(high)->end() - low->start};
}

Position LineLayout::atScrollValue(const host::LineAxis& axis, int value) const {
  return axis.visibility.nthVisible(axis.visibility.visibleUpTo(frozen_) + std::max(value, 0) + 1);
}

Position LineLayout::firstToShow(const host::LineAxis& axis, Position line) const {
  const Position present = atScrollValue(axis, scrollValue_);
  if (line <= frozen_ || axis.visibility.isHidden(line)) return present;
  if (line < present) return line;
  const ShownLine* const shown = find(line);
  return shown != nullptr && isInSight(*shown) ? present : firstOfPage(axis, line);
}

}  // namespace banddesk::desktop
