// The cells of a grid by the slots of their lines. It knows no order, no counts and nothing hidden: the axes
// lead a row or column number to a slot. Rows and columns change places at no cost. Of each piece of a line
// it remembers what is in it, so that passes over the whole table need not look where there is nothing for
// them.
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
  bool isDigit() const { return kind() == CellKind::Number && payload_ <= 9; }

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

// What is known of a piece of a line without looking at its cells. All are bounds: an exact digest says no
// more than there is, any other may.
struct Digest {
  std::uint64_t styles =
      0;  // bit i: there may be a cell of style i; the last bit: of any style from there on
  std::int32_t greatest = 0;  // no number is greater
  bool isPlain = true;        // nothing but whole numbers from 0 on, and empty cells
  bool isKnown = false;
  bool isExact = false;

  static constexpr StyleId kLastStyle = 63;
  static std::uint64_t styleBit(StyleId style) { return std::uint64_t{1} << std::min(style, kLastStyle); }
};

class CellStore {
 public:
  static constexpr std::size_t kPiece = 64;  // cells

  // Null where nothing was ever written.
  const Cell* find(Slot row, Slot col) const {
    const Slot outer = isFlipped_ ? col : row;
    const Slot inner = isFlipped_ ? row : col;
    if (outer >= lines_.size() || inner >= lines_[outer].cells.size()) return nullptr;
    return &lines_[outer].cells[inner];
  }
  // Makes room where there is none; the reference holds until the next call of it.
  Cell& at(Slot row, Slot col) {
    const Slot outer = isFlipped_ ? col : row;
    const Slot inner = isFlipped_ ? row : col;
    Cell& cell = grown(outer, inner);
    forget(lines_[outer], inner / kPiece);
    return cell;
  }
  // Makes a cell of a line, as it lies in memory, a number, and with `rebase` changes its style.
  void putNumber(Slot outer, Slot inner, std::int32_t number, StyleChange* rebase);

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
      lines_[outer].digests.clear();
      Cell* const cells = lines_[outer].cells.data();
      for (const Slot inner : inners) action(cells[inner]);
    }
  }

  // Calls action(cell) for the cells that exist, but not in pieces of which mayPass(digest) says that it
  // would change nothing there. Lines without a slot are passed over.
  template <class MayPass, class Action>
  void forExisting(std::span<const Slot> rows, std::span<const Slot> cols, MayPass mayPass, Action action) {
    std::vector<Slot> inners(isFlipped_ ? rows.begin() : cols.begin(), isFlipped_ ? rows.end() : cols.end());
    std::ranges::sort(inners);
    const std::vector<std::span<const Slot>> pieces = piecesOf(inners);
    for (const Slot outer : isFlipped_ ? cols : rows) {
      if (outer >= lines_.size()) continue;
      auto& cells = lines_[outer].cells;
      for (const auto& piece : pieces) {
        if (piece.front() >= cells.size()) break;
        const std::size_t number = piece.front() / kPiece;
        if (mayPass(digest(outer, number))) continue;
        for (const Slot inner : piece) {
          if (inner < cells.size()) action(cells[inner]);
        }
        forget(lines_[outer], number);
      }
    }
  }

  // The lines as they lie in memory, rows or, after an exchange, columns; for passes over many cells.
  std::span<const Cell> line(Slot outer) const {
    return outer < lines_.size() ? std::span<const Cell>(lines_[outer].cells) : std::span<const Cell>();
  }
  // Of the cells from piece * kPiece on, some of which must exist.
  const Digest& digest(Slot outer, std::size_t piece) const {
    const auto& digests = lines_[outer].digests;
    return piece < digests.size() && digests[piece].isKnown ? digests[piece] : exactDigest(outer, piece);
  }
  const Digest& exactDigest(Slot outer, std::size_t piece) const;

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
    mutable std::vector<Digest> digests;
  };

  // Ascending slots, parted where a piece of a line ends.
  static std::vector<std::span<const Slot>> piecesOf(std::span<const Slot> inners);
  static void forget(const Line& line, std::size_t piece) {
    if (piece < line.digests.size()) line.digests[piece].isKnown = false;
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

inline void CellStore::putNumber(Slot outer, Slot inner, std::int32_t number, StyleChange* rebase) {
  Cell& cell = grown(outer, inner);
  const StyleId style = rebase != nullptr ? (*rebase)(cell.style()) : cell.style();
  // A cell that stays as it is need not go back to memory.
  if (cell.kind() == CellKind::Number && cell.number() == number && cell.style() == style) return;
  setNumber(cell, number);
  cell.setStyle(style);
  auto& digests = lines_[outer].digests;
  const std::size_t piece = inner / kPiece;
  if (piece >= digests.size()) return;
  Digest& digest = digests[piece];
  digest.styles |= Digest::styleBit(cell.style());
  digest.greatest = std::max(digest.greatest, number);
  digest.isPlain = digest.isPlain && number >= 0;
  digest.isExact = false;
}

}  // namespace banddesk::host
