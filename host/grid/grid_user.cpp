#include "host/grid/grid_control.h"

namespace banddesk::host {

void GridControl::select(const Block& block, bool addToSelection) {
  if (!addToSelection) selection_.clear();
  selection_.add(block);
  selection_.cutTo(rows_.count, cols_.count);
  Redraw(2.0);
}

void GridControl::selectCells(std::int32_t row, std::int32_t col, std::int32_t toRow, std::int32_t toCol,
                              bool addToSelection) {
  select({std::min(row, toRow), std::min(col, toCol), std::max(row, toRow), std::max(col, toCol)},
         addToSelection);
}

void GridControl::selectRows(std::int32_t first, std::int32_t last, bool addToSelection) {
  selectCells(first, 1, last, cols_.count, addToSelection);
}

void GridControl::selectCols(std::int32_t first, std::int32_t last, bool addToSelection) {
  selectCells(1, first, rows_.count, last, addToSelection);
}

void GridControl::reselectCells(std::int32_t row, std::int32_t col, std::int32_t toRow, std::int32_t toCol) {
  selection_.dropLast();
  selectCells(row, col, toRow, toCol, true);
}

void GridControl::clickCell(std::int32_t row, std::int32_t col) {
  selection_.clear();
  SetCurrentCell(row, col);
  Redraw(2.0);
}

// Neither the selection nor the current cell follows it.
void GridControl::rightClick(std::int32_t row, std::int32_t col) { OnRButtonClickedRowCol.raise(row, col); }

void GridControl::doubleClick(std::int32_t row, std::int32_t col) { OnLButtonDblClkRowCol.raise(row, col); }

bool GridControl::startColumnTrack(std::int32_t col) {
  double allowed = 1;
  OnTrackColWidth.raise(col, allowed);
  return allowed != 0;
}

void GridControl::endColumnTrack(std::int32_t col, std::int32_t width) {
  SetColWidth(col, col, width);
  OnTrackColWidthEnd.raise(col, width);
  Redraw(2.0);
}

bool GridControl::trackColumnWidth(std::int32_t col, std::int32_t width) {
  pressLeft();
  const bool isAllowed = startColumnTrack(col);
  if (isAllowed) endColumnTrack(col, width);
  releaseLeft();
  return isAllowed;
}

bool GridControl::mayDrag(Axis which, std::int32_t first, std::int32_t last) const {
  const bool isRows = which == Axis::Rows;
  return (isRows ? allowDragRows_ : allowDragCols_) && first <= last &&
         selection_.holdsLines(which, first, last, isRows ? cols_.count : rows_.count);
}

bool GridControl::startDrag(Axis which, std::int32_t first, std::int32_t last) {
  if (!mayDrag(which, first, last)) return false;
  double allowed = 1;
  (which == Axis::Rows ? OnSelDragRowsStart : OnSelDragColsStart).raise(first, last, allowed);
  return allowed != 0;
}

bool GridControl::moveDrag(Axis which, std::int32_t first, std::int32_t last, std::int32_t target) {
  if (target < 1 || target > axis(which).count + 1) return false;
  double allowed = 1;
  (which == Axis::Rows ? OnSelDragRowsMove : OnSelDragColsMove).raise(first, last, target, allowed);
  return allowed != 0;
}

void GridControl::dropDrag(Axis which, std::int32_t first, std::int32_t last, std::int32_t target) {
  // A listener of an earlier step may have changed the table meanwhile.
  if (!mayDrag(which, first, last) || target < 1 || target > axis(which).count + 1) return;
  moveSelected(which, first, last, target);
  (which == Axis::Rows ? OnSelDragRowsDrop : OnSelDragColsDrop).raise(first, last, target);
  Redraw(2.0);
}

bool GridControl::dragLines(Axis which, std::int32_t first, std::int32_t last, std::int32_t target) {
  if (target < 1 || target > axis(which).count + 1) return false;
  if (!startDrag(which, first, last) || !moveDrag(which, first, last, target)) return false;
  dropDrag(which, first, last, target);
  return true;
}

bool GridControl::dragColumns(std::int32_t first, std::int32_t last, std::int32_t target) {
  return dragLines(Axis::Columns, first, last, target);
}

bool GridControl::dragRows(std::int32_t first, std::int32_t last, std::int32_t target) {
  return dragLines(Axis::Rows, first, last, target);
}

void GridControl::moveSelected(Axis which, std::int32_t first, std::int32_t last, std::int32_t target) {
  if (target >= first && target <= last + 1) return;
  endEdit(false);
  axis(which).move(first, last, target);
  const std::int32_t start = target < first ? target : target - (last - first + 1);
  Block moved{1, 1, rows_.count, cols_.count};
  moved.first(which) = start;
  moved.last(which) = start + last - first;
  selection_.clear();
  selection_.add(moved);
}

bool GridControl::beginEdit(std::int32_t row, std::int32_t col) {
  if (row < 1 || col < 1 || isReadOnly(row, col)) return false;
  SetCurrentCell(row, col);
  if (!edit_) edit_ = Edit{row, col, GetValue(row, col)};
  return true;
}

void GridControl::type(std::string text) {
  if (edit_) edit_->text = std::move(text);
}

bool GridControl::endEdit(bool keep) {
  if (!edit_) return false;
  const Edit done = *std::exchange(edit_, std::nullopt);
  return keep && SetValueRange(done.row, done.col, done.text, 0);
}

}  // namespace banddesk::host
