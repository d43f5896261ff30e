// The cells of a grid by the slots of their lines. It knows no order, no counts and nothing hidden: the axes
// lead a row or column number to a slot. Rows and columns change places at no cost.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "host/grid/style_sets.h"
#include "host/grid/text_pool.h"

namespace banddesk::host {

using Slot = std::uint32_t;
inline constexpr Slot kNoSlot = ~Slot{0};

enum class CellKind : std::uint8_t { Empty, Number, Text };

// Eight bytes: the style's number, and the value as a whole number or as the number of a text.
class Cell {
 public:
  StyleId style() const { return head_ & kStyleBits; }
  CellKind kind() const { return static_cast<CellKind>(head_ >> 24U); }
  std::int32_t number() const { return static_cast<std::int32_t>(payload_); }
  TextPool::Id text() const { return payload_; }
  bool isBlank() const { return head_ == 0; }

  void setStyle(StyleId style) { head_ = (head_ & ~kStyleBits) | style; }
  void setValue(CellKind kind, std::uint32_t payload) {
    head_ = style() | (static_cast<std::uint32_t>(kind) << 24U);
    payload_ = payload;
  }

 private:
  static constexpr std::uint32_t kStyleBits = 0xFFFFFF;
  std::uint32_t head_ = 0;
  std::uint32_t payload_ = 0;
};
static_assert(sizeof(Cell) == 8);

using NumberText = std::array<char, 12>;  // room for the decimal text of a whole number

// The number whose decimal text is exactly this one.
std::optional<std::int32_t> wholeNumber(std::string_view text);
std::string_view numberText(std::int32_t number, NumberText& buffer);

class CellStore {
 public:
  // Null where nothing was ever written.
  const Cell* find(Slot row, Slot col) const {
    const Slot outer = isFlipped_ ? col : row;
    const Slot inner = isFlipped_ ? row : col;
    if (outer >= lines_.size() || inner >= lines_[outer].cells.size()) return nullptr;
    return &lines_[outer].cells[inner];
  }
  // Makes room where there is none; the reference holds until the next call of it.
  Cell& at(Slot row, Slot col) { return isFlipped_ ? grown(col, row) : grown(row, col); }

  void setText(Cell& cell, std::string_view text);
  void setNumber(Cell& cell, std::int32_t number) {
    if (cell.kind() == CellKind::Text) texts_.release(cell.text());
    cell.setValue(CellKind::Number, static_cast<std::uint32_t>(number));
  }
  void clearValue(Cell& cell) {
    if (cell.kind() == CellKind::Text) texts_.release(cell.text());
    cell.setValue(CellKind::Empty, 0);
  }
  // The text of a cell, in the buffer if it is a number. Null has none.
  std::string_view text(const Cell* cell, NumberText& buffer) const;

  std::string_view userAttribute(Slot row, Slot col) const;
  std::string_view toolTip(Slot row, Slot col) const;
  void setUserAttribute(Slot row, Slot col, std::string_view text);
  void setToolTip(Slot row, Slot col, std::string_view text);

  // Empties whole lines: their cells with all that belongs to them.
  void clear(Axis axis, std::span<const Slot> slots);
  void exchangeAxes() { isFlipped_ = !isFlipped_; }
  bool isFlipped() const { return isFlipped_; }

  // Calls action(cell) for every cell of the given lines, making room for all of them.
  template <class Action>
  void forAll(std::span<const Slot> rows, std::span<const Slot> cols, Action action) {
    const auto outers = isFlipped_ ? cols : rows;
    const auto inners = isFlipped_ ? rows : cols;
    if (inners.empty()) return;
    const Slot last = *std::max_element(inners.begin(), inners.end());
    for (const Slot outer : outers) {
      grown(outer, last);
      Cell* const cells = lines_[outer].cells.data();
      for (const Slot inner : inners) action(cells[inner]);
    }
  }

  // Calls action(r, c, cell) for the cells that exist, r and c counting within the given lines. Lines without
  // a slot are passed over.
  template <class Action>
  void forExisting(std::span<const Slot> rows, std::span<const Slot> cols, Action action) {
    visit(*this, rows, cols, action);
  }
  template <class Action>
  void forExisting(std::span<const Slot> rows, std::span<const Slot> cols, Action action) const {
    visit(*this, rows, cols, action);
  }

  TextPool& texts() { return texts_; }
  const TextPool& texts() const { return texts_; }
  std::size_t bytesOfCells() const;

 private:
  // User attribute and tool tip of one cell, for the few cells that have any.
  struct Aside {
    Slot inner;
    TextPool::Id userAttribute = 0;
    TextPool::Id toolTip = 0;
  };
  struct Line {
    std::vector<Cell> cells;
    std::vector<Aside> asides;  // by ascending inner slot
  };

  template <class Self, class Action>
  static void visit(Self& self, std::span<const Slot> rows, std::span<const Slot> cols, Action& action) {
    const auto outers = self.isFlipped_ ? cols : rows;
    const auto inners = self.isFlipped_ ? rows : cols;
    for (std::size_t outer = 0; outer < outers.size(); ++outer) {
      if (outers[outer] >= self.lines_.size()) continue;
      auto& cells = self.lines_[outers[outer]].cells;
      const std::size_t size = cells.size();
      for (std::size_t inner = 0; inner < inners.size(); ++inner) {
        if (inners[inner] >= size) continue;
        auto& cell = cells[inners[inner]];
        if (self.isFlipped_) {
          action(inner, outer, cell);
        } else {
          action(outer, inner, cell);
        }
      }
    }
  }

  Cell& grown(Slot outer, Slot inner) {
    if (outer >= lines_.size() || inner >= lines_[outer].cells.size()) grow(outer, inner);
    return lines_[outer].cells[inner];
  }
  void grow(Slot outer, Slot inner);
  const Aside* findAside(Slot row, Slot col) const;
  void setAside(Slot row, Slot col, TextPool::Id Aside::*field, std::string_view text);
  void emptyLine(Slot outer);
  void emptyAcross(std::span<const Slot> inners);

  std::vector<Line> lines_;
  std::size_t widestLine_ = 0;
  bool isFlipped_ = false;  // lines are columns
  TextPool texts_;
};

}  // namespace banddesk::host
