// The grid control: sizes, painting, what scrolls into view, and the exchange of rows and columns.
#include "host/grid/grid_control.h"

#include <limits>

namespace banddesk::host {

double FixedAdvances::width(std::string_view text, const GridFont& font) const {
  const auto isNoContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  return 0.75 * font.size * static_cast<double>(std::ranges::count_if(text, isNoContinuation));
}

GridControl::GridControl(std::string name, GridPorts ports)
    : Grid(std::move(name)), ports_(std::move(ports)) {}

GridControl::~GridControl() = default;

void GridControl::setCount(Axis which, std::int32_t count) {
  count = std::max(count, 0);
  LineAxis& lines = axis(which);
  // Growing shows what was written ahead; shrinking takes that away too.
  if (count <= lines.count) discard(which, count + 1, std::numeric_limits<std::int32_t>::max());
  lines.count = count;
  keepViewInside();
}

void GridControl::keepViewInside() {
  selection_.cutTo(rows_.count, cols_.count);
  topRow_ = std::clamp(topRow_, 1, std::max(rows_.count, 1));
  leftCol_ = std::clamp(leftCol_, 1, std::max(cols_.count, 1));
}

void GridControl::discard(Axis which, std::int32_t from, std::int32_t to) {
  user_.endEdit(false);
  const std::vector<Slot> slots = axis(which).remove(from, to);
  store_.clear(which, slots);
  axis(which).order.handBack(slots);
  coverings_.removeLines(which, from, to);
  selection_.removeLines(which, from, to);
}

// Nobody sees the steps of a piece of work, only what it leaves: a sort shows all lines and hides some again.
void GridControl::Redraw(double) {
  if (isLocked_ || !enabledRedraw_) return;
  dropNewlyHidden(Axis::Rows, currentRow_);
  dropNewlyHidden(Axis::Columns, currentCol_);
  Repaint.raise();
}

// What the user sees no more is neither selected nor the current cell: the next command must not act on it.
void GridControl::dropNewlyHidden(Axis which, std::int32_t& current) {
  LineAxis& lines = axis(which);
  if (lines.seen == lines.visibility) return;
  selection_.dropNewlyHidden(which, lines);
  if (lines.isNewlyHidden(current)) current = lines.nearestVisible(current);
  lines.seen = lines.visibility;
}

void GridControl::setViewSize(std::int32_t rows, std::int32_t cols) {
  viewRows_ = std::max(rows, 1);
  viewCols_ = std::max(cols, 1);
}

// Hidden lines only make the view show more than it must, so plain distances do.
void GridControl::scrollTo(std::int32_t row, std::int32_t col) {
  if (row > rows_.frozen) {
    if (row < topRow_) topRow_ = std::max(row, 1);
    if (row - topRow_ >= viewRows_) topRow_ = row - viewRows_ + 1;
  }
  if (col > cols_.frozen) {
    if (col < leftCol_) leftCol_ = std::max(col, 1);
    if (col - leftCol_ >= viewCols_) leftCol_ = col - viewCols_ + 1;
  }
}

// At one stroke, whatever the size.
void GridControl::ExchangeAxes(std::int64_t every, const CellsExchanged& done) {
  const std::int64_t cells = (std::int64_t{rows_.count} + 1) * (std::int64_t{cols_.count} + 1);
  exchangeAxes();
  for (std::int64_t cell = every; cell <= cells; cell += every) done(cell);
}

void GridControl::exchangeAxes() {
  user_.endEdit(false);
  store_.exchangeAxes();
  rows_.exchangeWith(cols_);
  coverings_.exchangeAxes();
  selection_.exchangeAxes();
  std::swap(currentRow_, currentCol_);
  keepViewInside();
}

}  // namespace banddesk::host
