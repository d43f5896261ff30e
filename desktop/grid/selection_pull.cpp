#include "desktop/grid/selection_pull.h"

namespace banddesk::desktop {

void SelectionPull::follow() {
  const CellPlace now{grid_.currentRow(), grid_.currentCol()};
  const bool isLost = hasBlock_ && grid_.selection().GetCount() == 0;
  if (now == current_ && !isLost) return;
  current_ = anchor_ = far_ = now;
  kind_ = Kind::Cells;
  hasBlock_ = false;
}

void SelectionPull::click(CellPlace cell) {
  grid_.user().clickCell(cell.row, cell.col);
  current_ = anchor_ = far_ = cell;
  kind_ = Kind::Cells;
  hasBlock_ = false;
}

void SelectionPull::addCell(CellPlace cell) {
  grid_.SetCurrentCell(cell.row, cell.col);
  grid_.user().selectCells(cell.row, cell.col, cell.row, cell.col, true);
  current_ = anchor_ = far_ = cell;
  kind_ = Kind::Cells;
  hasBlock_ = true;
}

void SelectionPull::selectLines(Axis axis, Position line, bool addToSelection) {
  if (axis == Axis::Rows) {
    grid_.user().selectRows(line, line, addToSelection);
  } else {
    grid_.user().selectCols(line, line, addToSelection);
  }
  follow();
  anchor_ = far_ = {line, line};
  kind_ = kindOf(axis);
  hasBlock_ = true;
}

void SelectionPull::selectAll() {
  grid_.user().selectCells(1, 1, grid_.RowCount(), grid_.ColCount());
  follow();
  kind_ = Kind::Cells;
  hasBlock_ = true;
}

void SelectionPull::select(CellPlace from, CellPlace to) {
  far_ = to;
  if (hasBlock_) {
    grid_.user().reselectCells(from.row, from.col, to.row, to.col);
  } else {
    grid_.user().selectCells(from.row, from.col, to.row, to.col);
  }
  hasBlock_ = true;
}

void SelectionPull::pullTo(CellPlace cell) {
  follow();
  if (kind_ != Kind::Cells) anchor_ = current_;
  kind_ = Kind::Cells;
  select(anchor_, cell);
}

void SelectionPull::pullLinesTo(Axis axis, Position line) {
  follow();
  if (kind_ != kindOf(axis)) anchor_ = current_;
  kind_ = kindOf(axis);
  if (axis == Axis::Rows) {
    select({anchor_.row, 1}, {line, grid_.ColCount()});
  } else {
    select({1, anchor_.col}, {grid_.RowCount(), line});
  }
  far_ = {line, line};
}

CellPlace SelectionPull::farEnd() {
  follow();
  return kind_ == Kind::Cells ? far_ : current_;
}

}  // namespace banddesk::desktop
