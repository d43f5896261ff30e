#include "host/grid/grid_user.h"

#include <algorithm>
#include <utility>

#include "host/grid/grid_control.h"

namespace banddesk::host {

void GridUser::select(const Block& block, bool addToSelection) {
  if (!addToSelection) grid_.selection_.clear();
  grid_.selection_.add(block);
  grid_.selection_.cutTo(grid_.RowCount(), grid_.ColCount());
  grid_.Redraw(2.0);
}

void GridUser::selectCells(std::int32_t row, std::int32_t col, std::int32_t toRow, std::int32_t toCol,
                           bool addToSelection) {
  select({std::min(row, toRow), std::min(col, toCol), std::max(row, toRow), std::max(col, toCol)},
         addToSelection);
}

void GridUser::selectRows(std::int32_t first, std::int32_t last, bool addToSelection) {
  selectCells(first, 1, last, grid_.ColCount(), addToSelection);
}

void GridUser::selectCols(std::int32_t first, std::int32_t last, bool addToSelection) {
  selectCells(1, first, grid_.RowCount(), last, addToSelection);
}

void GridUser::reselectCells(std::int32_t row, std::int32_t col, std::int32_t toRow, std::int32_t toCol) {
  grid_.selection_.dropLast();
  selectCells(row, col, toRow, toCol, true);
}

void GridUser::clickCell(std::int32_t row, std::int32_t col) {
  grid_.selection_.clear();
  grid_.SetCurrentCell(row, col);
  grid_.Redraw(2.0);
}

void GridUser::rightClick(std::int32_t row, std::int32_t col) {
  grid_.OnRButtonClickedRowCol.raise(row, col);
}

void GridUser::doubleClick(std::int32_t row, std::int32_t col) {
  grid_.OnLButtonDblClkRowCol.raise(row, col);
}

void GridUser::pressLeft() { grid_.OnLButtonDown.raise(); }

void GridUser::releaseLeft() { grid_.OnLButtonUp.raise(); }

bool GridUser::startColumnTrack(std::int32_t col) {
  double allowed = 1;
  grid_.OnTrackColWidth.raise(col, allowed);
  return allowed != 0;
}

void GridUser::endColumnTrack(std::int32_t col, std::int32_t width) {
  grid_.SetColWidth(col, col, width);
  grid_.OnTrackColWidthEnd.raise(col, width);
  grid_.Redraw(2.0);
}

bool GridUser::trackColumnWidth(std::int32_t col, std::int32_t width) {
  pressLeft();
  const bool isAllowed = startColumnTrack(col);
  if (isAllowed) endColumnTrack(col, width);
  releaseLeft();
  return isAllowed;
}

bool GridUser::mayDrag(Axis which, std::int32_t first, std::int32_t last) const {
  const bool isRows = which == Axis::Rows;
  return (isRows ? grid_.AllowDragRows() : grid_.AllowDragCols()) && first <= last &&
         grid_.selection_.holdsLines(which, first, last, isRows ? grid_.ColCount() : grid_.RowCount());
}

bool GridUser::isTarget(Axis which, std::int32_t target) const {
  return target >= 1 && target <= grid_.axis(which).count + 1;
}

bool GridUser::startDrag(Axis which, std::int32_t first, std::int32_t last) {
  if (!mayDrag(which, first, last)) return false;
  double allowed = 1;
  (which == Axis::Rows ? grid_.OnSelDragRowsStart : grid_.OnSelDragColsStart).raise(first, last, allowed);
  return allowed != 0;
}

bool GridUser::moveDrag(Axis which, std::int32_t first, std::int32_t last, std::int32_t target) {
  if (!isTarget(which, target)) return false;
  double allowed = 1;
  (which == Axis::Rows ? grid_.OnSelDragRowsMove : grid_.OnSelDragColsMove)
      .raise(first, last, target, allowed);
  return allowed != 0;
}

void GridUser::dropDrag(Axis which, std::int32_t first, std::int32_t last, std::int32_t target) {
  // A listener of an earlier step may have changed the table meanwhile.
  if (!mayDrag(which, first, last) || !isTarget(which, target)) return;
  grid_.moveLines(which, first, last, target);
  (which == Axis::Rows ? grid_.OnSelDragRowsDrop : grid_.OnSelDragColsDrop).raise(first, last, target);
  grid_.Redraw(2.0);
}

bool GridUser::dragLines(Axis which, std::int32_t first, std::int32_t last, std::int32_t target) {
  if (!isTarget(which, target)) return false;
  if (!startDrag(which, first, last) || !moveDrag(which, first, last, target)) return false;
  dropDrag(which, first, last, target);
  return true;
}

bool GridUser::dragColumns(std::int32_t first, std::int32_t last, std::int32_t target) {
  return dragLines(Axis::Columns, first, last, target);
}

bool GridUser::dragRows(std::int32_t first, std::int32_t last, std::int32_t target) {
  return dragLines(Axis::Rows, first, last, target);
}

bool GridUser::beginEdit(std::int32_t row, std::int32_t col) {
  if (row < 1 || col < 1 || grid_.isReadOnly(row, col)) return false;
  grid_.SetCurrentCell(row, col);
  if (!edit_) edit_ = Edit{row, col, grid_.GetValue(row, col)};
  return true;
}

void GridUser::type(std::string text) {
  if (edit_) edit_->text = std::move(text);
}

bool GridUser::endEdit(bool keep) {
  if (!edit_) return false;
  const Edit done = *std::exchange(edit_, std::nullopt);
  return keep && grid_.SetValueRange(done.row, done.col, done.text, 0);
}

std::int32_t GridUser::typedIn(Axis which, std::int32_t index) const {
  if (!edit_) return -1;
  if (which == Axis::Rows) return edit_->row == index ? edit_->col : -1;
  return edit_->col == index ? edit_->row : -1;
}

void GridUser::leaveFor(std::int32_t row, std::int32_t col) {
  if (edit_ && typedAt(row, col) == nullptr) endEdit(true);
}

}  // namespace banddesk::host
