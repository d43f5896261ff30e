// The grid control's cells: texts, asides and styles, singly and in whole lines.
#include <array>
#include <cstring>

#include "host/grid/grid_control.h"

namespace banddesk::host {
namespace {

// The value that a style puts into many cells: its text is looked up once.
class ValueChange {
 public:
  ValueChange(CellStore& store, const GridStyle& style, StyleMode mode)
      : store_(store), acts_(mode == StyleMode::Copy || style.attributes().value.has_value()) {
    if (acts_ && mode != StyleMode::Remove) {
      store_.setText(model_, style.attributes().value.value_or(std::string()));
    }
  }
  ValueChange(const ValueChange&) = delete;
  ValueChange& operator=(const ValueChange&) = delete;
  ~ValueChange() { store_.clearValue(model_); }

  bool acts() const { return acts_; }
  void operator()(Cell& cell) {
    if (!acts_) return;
    if (model_.kind() == CellKind::Text) store_.texts().retain(model_.text(), 1);
    if (cell.kind() == CellKind::Text) store_.texts().release(cell.text());
    cell.setValue(model_.kind(), static_cast<std::uint32_t>(model_.number()));
  }

 private:
  CellStore& store_;
  bool acts_;
  Cell model_;
};

// Appends what most cells of a table are, single digits between two short texts, many at once.
class DigitTexts {
 public:
  DigitTexts(std::string_view before, std::string_view after, std::string& out)
      : out_(out), length_(before.size() + 1 + after.size()) {
    for (std::size_t digit = 0; digit < texts_.size() && length_ <= kLongest; ++digit) {
      const std::string text = std::string(before).append(1, static_cast<char>('0' + digit)).append(after);
      std::ranges::copy(text, texts_[digit].begin());
    }
    whole_ = std::string(before).append("0").append(after);
    place_ = before.size();
  }
  void append(std::int32_t digit) {
    if (length_ > kLongest) {
      whole_[place_] = static_cast<char>('0' + digit);
      out_.append(whole_);
      return;
    }
    if (used_ + kLongest > waiting_.size()) finish();
    std::memcpy(waiting_.data() + used_, texts_[static_cast<std::size_t>(digit)].data(), kLongest);
    used_ += length_;
  }
  void finish() {
    out_.append(waiting_.data(), used_);
    used_ = 0;
  }

 private:
  static constexpr std::size_t kLongest = 8;

  std::string& out_;
  std::size_t length_;
  std::array<std::array<char, kLongest>, 10> texts_{};
  std::string whole_;
  std::size_t place_ = 0;
  std::array<char, 2048> waiting_;
  std::size_t used_ = 0;
};

std::optional<std::string> textOrNothing(std::string_view text) {
  if (text.empty()) return {};
  return std::string(text);
}

}  // namespace

Layer GridControl::layerOf(std::int32_t row, std::int32_t col) {
  if (row == 0) return Layer::ColHeader;
  return col == 0 ? Layer::RowHeader : Layer::Body;
}

Cell& GridControl::cellAt(std::int32_t row, std::int32_t col) {
  return store_.at(rows_.order.ensure(row), cols_.order.ensure(col));
}

Block GridControl::blockOf(const GridRange& range) const {
  if (range.isTable()) return {0, 0, rows_.count, cols_.count};
  return {std::max(range.Top, 0), std::max(range.Left, 0), range.Bottom, range.Right};
}

std::string_view GridControl::textAt(std::int32_t row, std::int32_t col, NumberText& buffer) const {
  return store_.text(cell(row, col), buffer);
}

const StyleAttributes& GridControl::look(std::int32_t row, std::int32_t col) const {
  const Cell* found = cell(row, col);
  return looks_.look(found == nullptr ? 0 : found->style(), layerOf(row, col));
}

std::string GridControl::GetValue(std::int32_t row, std::int32_t col) const {
  NumberText buffer;
  return std::string(textAt(row, col, buffer));
}

bool GridControl::SetValueRange(std::int32_t row, std::int32_t col, std::string_view text, std::int32_t) {
  if (row < 0 || col < 0 || refuses(row, col)) return false;
  store_.setText(cellAt(row, col), text);
  return true;
}

std::string GridControl::GetUserAttribute(std::int32_t row, std::int32_t col) const {
  return std::string(store_.userAttribute(rows_.order.at(row), cols_.order.at(col)));
}

void GridControl::SetUserAttribute(std::int32_t row, std::int32_t col, std::string_view text) {
  if (row < 0 || col < 0) return;
  store_.setUserAttribute(rows_.order.ensure(row), cols_.order.ensure(col), text);
}

std::string GridControl::GetToolTip(std::int32_t row, std::int32_t col) const {
  return std::string(store_.toolTip(rows_.order.at(row), cols_.order.at(col)));
}

void GridControl::SetToolTip(std::int32_t row, std::int32_t col, std::string_view text) {
  if (row < 0 || col < 0) return;
  store_.setToolTip(rows_.order.ensure(row), cols_.order.ensure(col), text);
}

bool GridControl::SetStyleRange(const GridRange& range, const GridStyle& style, StyleMode mode) {
  const Block block = blockOf(range);
  if (block.isEmpty()) return true;
  if (lockReadOnly_) return changeCells(block, style, mode);
  changeBlock(block, style, mode);
  return true;
}

bool GridControl::changeCells(const Block& block, const GridStyle& style, StyleMode mode) {
  bool areAllTaken = true;
  for (std::int32_t row = block.top; row <= block.bottom; ++row) {
    for (std::int32_t col = block.left; col <= block.right; ++col) {
      areAllTaken &= StoreStyleRowCol(row, col, style, mode, 1);
    }
  }
  return areAllTaken;
}

// Taking off acts only where there is something, so it makes room for nothing.
void GridControl::changeBlock(const Block& block, const GridStyle& style, StyleMode mode) {
  StyleChange& look = sets_.change(lookPart(style.attributes()), mode);
  ValueChange value(store_, style, mode);
  const auto change = [&](Cell& cell) {
    cell.setStyle(look(cell.style()));
    value(cell);
  };
  if (mode == StyleMode::Remove) {
    const auto mayPass = [&](const Digest& digest) { return !value.acts() && look.keeps(digest.styles); };
    store_.forExisting(rows_.order.list(block.top, std::min(block.bottom, rows_.order.extent() - 1)),
                       cols_.order.list(block.left, std::min(block.right, cols_.order.extent() - 1)), mayPass,
                       change);
  } else {
    store_.forAll(rows_.order.ensureAll(block.top, block.bottom),
                  cols_.order.ensureAll(block.left, block.right), change);
  }
  const StyleAttributes& attributes = style.attributes();
  if (mode != StyleMode::Copy && !attributes.userAttribute && !attributes.toolTip) return;
  for (std::int32_t row = block.top; row <= block.bottom; ++row) {
    for (std::int32_t col = block.left; col <= block.right; ++col) changeAsides(row, col, style, mode);
  }
}

void GridControl::changeAsides(std::int32_t row, std::int32_t col, const GridStyle& style, StyleMode mode) {
  const StyleAttributes& attributes = style.attributes();
  const auto wanted = [mode](const std::optional<std::string>& text) {
    return mode == StyleMode::Remove ? std::string_view{} : text ? std::string_view(*text) : "";
  };
  const bool isCopy = mode == StyleMode::Copy;
  const Slot rowSlot = rows_.order.at(row);
  const Slot colSlot = cols_.order.at(col);
  if (rowSlot == kNoSlot || colSlot == kNoSlot) return;  // nothing there to take off
  if (isCopy || attributes.userAttribute) {
    store_.setUserAttribute(rowSlot, colSlot, wanted(attributes.userAttribute));
  }
  if (isCopy || attributes.toolTip) store_.setToolTip(rowSlot, colSlot, wanted(attributes.toolTip));
}

bool GridControl::StoreStyleRowCol(std::int32_t row, std::int32_t col, const GridStyle& style, StyleMode mode,
                                   std::int32_t) {
  if (row < 0 || col < 0 || refuses(row, col)) return false;
  Cell& cell = cellAt(row, col);
  cell.setStyle(sets_.change(lookPart(style.attributes()), mode)(cell.style()));
  ValueChange(store_, style, mode)(cell);
  changeAsides(row, col, style, mode);
  return true;
}

bool GridControl::GetStyleRowCol(std::int32_t row, std::int32_t col, GridStyle& style, StyleMode mode,
                                 std::int32_t) {
  GridStyle own;
  if (const Cell* found = cell(row, col)) own.attributes() = sets_.at(found->style());
  NumberText buffer;
  own.attributes().value = textOrNothing(textAt(row, col, buffer));
  own.attributes().userAttribute = textOrNothing(GetUserAttribute(row, col));
  own.attributes().toolTip = textOrNothing(GetToolTip(row, col));
  if (mode == StyleMode::Copy || mode == StyleMode::Override) style.ChangeStyle(own, mode);
  return row >= 0 && col >= 0;
}

void GridControl::SetCoveredCells(std::int32_t top, std::int32_t left, std::int32_t bottom,
                                  std::int32_t right) {
  coverings_.cover({std::max(top, 0), std::max(left, 0), bottom, right});
}

void GridControl::SetCurrentCell(std::int32_t row, std::int32_t col) {
  if (row < 0 || col < 0) return;
  user_.leaveFor(row, col);
  currentRow_ = row;
  currentCol_ = col;
  scrollTo(row, col);
}

std::string GridControl::GetCurrentCellText(std::int32_t row, std::int32_t col) const {
  const std::string* typed = user_.typedAt(row, col);
  return typed != nullptr ? *typed : GetValue(row, col);
}

void GridControl::StoreLine(Axis which, std::int32_t index, std::span<const LineCell> cells, LineStep&) {
  if (index < 0 || cells.empty()) return;
  const bool isRow = which == Axis::Rows;
  LineOrder& along = isRow ? cols_.order : rows_.order;
  const Slot line = axis(which).order.ensure(index);
  std::int32_t lastBase = -1;
  StyleChange* rebase = nullptr;
  for (const LineCell& given : cells) {
    if (given.position < 0) continue;
    if (isRow ? refuses(index, given.position) : refuses(given.position, index)) continue;
    const Slot other = along.ensure(given.position);
    if (given.baseStyle >= 0 && given.baseStyle != lastBase) {
      lastBase = given.baseStyle;
      rebase = &sets_.rebase(lastBase);
    }
    StyleChange* const restyle = given.baseStyle < 0 ? nullptr : rebase;
    if (isRow != store_.isFlipped()) {
      // NOLINTNEXTLINE(readability-suspicious-call-argument): the store is flipped, and so are its axes
      store_.putNumber(line, other, given.value, restyle);
    } else {
      store_.putNumber(other, line, given.value, restyle);
    }
  }
}

// Calls visitor(position, cell) along a line; the cell may be null. All that leads to the cells is looked up
// before: a visitor that writes text could otherwise have changed it, as far as the compiler sees.
template <class Visitor>
void GridControl::visitLine(Axis which, std::int32_t index, std::int32_t from, std::int32_t to,
                            bool visibleOnly, Visitor visitor) const {
  const bool isRow = which == Axis::Rows;
  const LineAxis& along = axis(isRow ? Axis::Columns : Axis::Rows);
  const Slot line = axis(which).order.at(index);
  const bool isWhole = isRow != store_.isFlipped();
  const std::span<const Cell> cells = isWhole ? store_.line(line) : std::span<const Cell>();
  const std::span<const Slot> slots = along.order.slots();
  const std::span<const std::uint8_t> hidden =
      visibleOnly ? along.visibility.hidden() : std::span<const std::uint8_t>();
  for (std::int64_t next = std::max(from, 0); next <= to; ++next) {
    const auto place = static_cast<std::size_t>(next);
    if (place < hidden.size() && hidden[place] != 0) continue;
    const Slot other = place < slots.size() ? slots[place] : kNoSlot;
    const Cell* found = nullptr;
    if (!isWhole) {
      found = isRow ? store_.find(line, other) : store_.find(other, line);
    } else if (other < cells.size()) {
      found = &cells[other];
    }
    visitor(static_cast<std::int32_t>(next), found);
  }
}

std::int32_t GridControl::AppendTexts(Axis which, std::int32_t index, std::int32_t from, std::int32_t to,
                                      bool visibleOnly, std::string_view before, std::string_view after,
                                      std::string& out) {
  const std::int32_t typed = user_.typedIn(which, index);
  DigitTexts digits(before, after, out);
  std::int32_t last = -1;
  NumberText buffer;
  visitLine(which, index, from, to, visibleOnly, [&](std::int32_t position, const Cell* found) {
    last = position;
    if (found != nullptr && found->isDigit() && position != typed) {
      digits.append(found->number());
      return;
    }
    digits.finish();
    out.append(before);
    out.append(position == typed ? user_.typedText() : store_.text(found, buffer));
    out.append(after);
  });
  digits.finish();
  return last;
}

void GridControl::VisitUserAttributes(Axis which, std::int32_t index, std::int32_t from, std::int32_t to,
                                      const TextVisitor& visitor) const {
  const LineAxis& along = axis(which == Axis::Rows ? Axis::Columns : Axis::Rows);
  const Slot line = axis(which).order.at(index);
  for (std::int64_t next = std::max(from, 0); next <= to; ++next) {
    const auto position = static_cast<std::int32_t>(next);
    const Slot other = along.order.at(position);
    visitor(position,
            which == Axis::Rows ? store_.userAttribute(line, other) : store_.userAttribute(other, line));
  }
}

}  // namespace banddesk::host
