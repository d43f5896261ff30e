// One axis of the table: how many rows (columns) it shows, which of them are hidden, how wide they are, and
// at which slot of the store each finds its cells. Positions count from 0, the header. What lies beyond the
// count is kept as well.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/grid/cell_store.h"

namespace banddesk::host {

using Position = std::int32_t;

// Far beyond any table; a line out there would cost more memory than it is worth.
inline constexpr Position kFarthest = (1 << 27) - 1;
// Raises an error for a line that lies farther out.
void checkReach(Position last);

// The order of the lines. A line gets its slot when something is first written to it.
class LineOrder {
 public:
  Slot at(Position position) const {
    return position >= 0 && static_cast<std::size_t>(position) < slots_.size()
               ? slots_[static_cast<std::size_t>(position)]
               : kNoSlot;
  }
  Slot ensure(Position position) {
    const Slot slot = at(position);
    return slot != kNoSlot ? slot : make(position);
  }
  // The slots of first..last, kNoSlot where nothing was written, or all of them made.
  std::vector<Slot> list(Position first, Position last) const;
  std::vector<Slot> ensureAll(Position first, Position last);

  void insert(Position before, Position count);
  // Takes lines out and gives their slots, which the caller empties and then hands back.
  std::vector<Slot> remove(Position first, Position last);
  void handBack(std::span<const Slot> emptied);
  // Position first + i gets what stood at order[i].
  void permute(Position first, std::span<const Position> order);
  void move(Position first, Position last, Position target);
  // By position, kNoSlot where nothing was written; holds until the order changes.
  std::span<const Slot> slots() const { return slots_; }
  // One past the last position that has a slot, or more.
  Position extent() const { return static_cast<Position>(slots_.size()); }

 private:
  Slot make(Position position);

  std::vector<Slot> slots_;
  std::vector<Slot> free_;
  Slot next_ = 0;
};

// Which lines are hidden, and the n-th visible one, found without walking over all of them.
class Visibility {
 public:
  bool isHidden(Position position) const {
    return position >= 0 && static_cast<std::size_t>(position) < hidden_.size() &&
           hidden_[static_cast<std::size_t>(position)] != 0;
  }
  // By position, 0 where it is visible, as all are beyond the end.
  std::span<const std::uint8_t> hidden() const { return hidden_; }
  void hide(Position first, Position last, bool hidden);
  void insert(Position before, Position count);
  void remove(Position first, Position last);
  void move(Position first, Position last, Position target);

  // How many of 1..last are visible.
  Position visibleUpTo(Position last) const;
  // The n-th visible position from 1 on, n counting from 1.
  Position nthVisible(Position n) const;

  friend bool operator==(const Visibility& a, const Visibility& b) { return a.hidden_ == b.hidden_; }

 private:
  void countBlocks() const;

  std::vector<std::uint8_t> hidden_;
  mutable std::vector<Position> hiddenBefore_;  // hidden ones from 1 up to each block's start
  mutable bool isCounted_ = false;
};

class LineAxis {
 public:
  static constexpr std::int32_t kDefaultWidth = 64;

  Position count = 0;
  std::int32_t frozen = 0;
  LineOrder order;
  Visibility visibility;
  Visibility seen;  // the visibility when the table was shown last; where lines come, go or move it follows

  // Hidden since then.
  bool isNewlyHidden(Position position) const {
    return visibility.isHidden(position) && !seen.isHidden(position);
  }
  // The visible line here, or next behind this one, or else in front of it; itself if none is visible.
  Position nearestVisible(Position position) const;

  std::int32_t width(Position position) const;
  void setWidth(Position first, Position last, std::int32_t width);

  void insert(Position before, Position added);
  std::vector<Slot> remove(Position first, Position last);
  // As the user's drag does it: hidden states and widths go along.
  void move(Position first, Position last, Position target);
  // What the exchange of the axes exchanges.
  void exchangeWith(LineAxis& other);

 private:
  std::vector<std::int32_t> widths_;  // below 0: the default
};

}  // namespace banddesk::host
