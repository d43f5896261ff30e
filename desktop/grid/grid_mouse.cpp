#include "desktop/grid/grid_mouse.h"

#include <QApplication>
#include <QScrollBar>
#include <algorithm>

#include "desktop/grid/grid_view.h"

namespace banddesk::desktop {
namespace {

constexpr int kNarrowest = 4;  // a column is not dragged out of reach

// The selected block of whole lines that a line belongs to.
std::optional<host::Block> selectedLines(const host::GridControl& grid, Axis axis, Position line) {
  for (host::Block block : grid.selection().blocks()) {
    const Axis along = axis == Axis::Rows ? Axis::Columns : Axis::Rows;
    const Position all = along == Axis::Rows ? grid.RowCount() : grid.ColCount();
    const bool isWhole = block.first(along) <= 1 && block.last(along) >= all;
    if (isWhole && block.first(axis) <= line && line <= block.last(axis)) return block;
  }
  return {};
}

}  // namespace

void GridMouse::press(const QMouseEvent& event) {
  const QPoint pixel = event.position().toPoint();
  if (event.button() == Qt::LeftButton) pressLeft(pixel, event.modifiers());
  if (event.button() == Qt::RightButton && act_ == Act::None) pressedAt_ = pixel;
}

void GridMouse::pressLeft(QPoint pixel, Qt::KeyboardModifiers modifiers) {
  cancel();
  view_.endEdit(true);
  isPressed_ = true;
  pressedAt_ = last_ = pixel;
  view_.grid().user().pressLeft();
  const Hit hit = view_.hit(pixel);
  switch (hit.on) {
    case Hit::On::Nothing:
      return;
    case Hit::On::ColumnBorder:
      startSizing(hit.cell.col, pixel);
      return;
    case Hit::On::Corner:
      view_.pull().selectAll();
      return;
    case Hit::On::ColumnHeader:
      return pressHeader(Axis::Columns, hit.cell.col, modifiers);
    case Hit::On::RowHeader:
      return pressHeader(Axis::Rows, hit.cell.row, modifiers);
    case Hit::On::Cell:
      return pressCell(leadingCell(view_.grid(), hit.cell), modifiers);
  }
}

void GridMouse::pressHeader(Axis axis, Position line, Qt::KeyboardModifiers modifiers) {
  axis_ = axis;
  const host::GridControl& grid = view_.grid();
  const bool mayDrag = axis == Axis::Rows ? grid.AllowDragRows() : grid.AllowDragCols();
  const auto selected = selectedLines(grid, axis, line);
  const bool isPlain = !(modifiers & (Qt::ControlModifier | Qt::ShiftModifier));
  if (mayDrag && selected && isPlain) {
    act_ = Act::MayDrag;
    host::Block block = *selected;
    first_ = block.first(axis);
    final_ = block.last(axis);
    return;
  }
  act_ = Act::SelectLines;
  if (modifiers & Qt::ShiftModifier) {
    view_.pull().pullLinesTo(axis, line);
  } else {
    view_.pull().selectLines(axis, line, bool(modifiers & Qt::ControlModifier));
  }
}

void GridMouse::pressCell(CellPlace cell, Qt::KeyboardModifiers modifiers) {
  act_ = Act::SelectCells;
  const GridView::KeepScroll keep(view_);  // what is in sight under the pointer stays there
  if (modifiers & Qt::ShiftModifier) {
    view_.pull().pullTo(cell);
  } else if (modifiers & Qt::ControlModifier) {
    view_.pull().addCell(cell);
  } else {
    view_.pull().click(cell);
  }
  view_.tellCurrent();
}

void GridMouse::doubleClick(const QMouseEvent& event) {
  if (event.button() != Qt::LeftButton) return press(event);
  const QPoint pixel = event.position().toPoint();
  cancel();
  view_.endEdit(true);
  isPressed_ = true;
  pressedAt_ = last_ = pixel;
  view_.grid().user().pressLeft();
  const Hit hit = view_.hit(pixel);
  if (hit.on == Hit::On::Nothing) return;
  if (hit.on != Hit::On::ColumnBorder) {
    const CellPlace cell = leadingCell(view_.grid(), hit.cell);
    view_.perform([&grid = view_.grid(), cell] { grid.user().doubleClick(cell.row, cell.col); });
    return;
  }
  // On a border it is a drag that ends where it starts; whoever listens may then fit the column.
  if (!startSizing(hit.cell.col, pixel)) return;
  act_ = Act::None;
  setMarks({});
  view_.perform(
      [&grid = view_.grid(), col = first_, width = width_] { grid.user().endColumnTrack(col, width); });
}

bool GridMouse::startSizing(Position col, QPoint pixel) {
  if (!view_.grid().user().startColumnTrack(col)) return false;
  act_ = Act::SizeColumn;
  first_ = col;
  width_ = view_.grid().colWidth(col);
  moveSizing(pixel);
  return true;
}

void GridMouse::moveSizing(QPoint pixel) {
  const ShownLine* const column = view_.geometry().cols.find(first_);
  if (column == nullptr) return;
  width_ = column->extent;
  if (pixel.x() != pressedAt_.x()) width_ = std::max(column->extent + pixel.x() - pressedAt_.x(), kNarrowest);
  setMarks({.widthGuide = column->start + width_ - 1, .columnInsertion = {}, .rowInsertion = {}});
}

void GridMouse::move(const QMouseEvent& event) {
  last_ = event.position().toPoint();
  switch (act_) {
    case Act::None:
      return showPointer(last_);
    case Act::SelectCells:
    case Act::SelectLines:
      pull(last_);
      return scrollBeyond(last_);
    case Act::SizeColumn:
      return moveSizing(last_);
    case Act::MayDrag:
      if ((last_ - pressedAt_).manhattanLength() < QApplication::startDragDistance()) return;
      startDrag();
      if (act_ != Act::Drag) return;
      [[fallthrough]];
    case Act::Drag:
      moveDrag(last_);
      return scrollBeyond(last_);
    case Act::Refused:
      return;
  }
}

void GridMouse::startDrag() {
  asked_ = target_ = 0;
  const bool isAllowed = view_.grid().user().startDrag(axis_, first_, final_);
  act_ = isAllowed ? Act::Drag : Act::Refused;
  view_.viewport()->setCursor(isAllowed ? Qt::ClosedHandCursor : Qt::ForbiddenCursor);
}

void GridMouse::moveDrag(QPoint pixel) {
  const Position target = view_.geometry().insertionAt(axis_, along(pixel));
  if (target == asked_) return;
  asked_ = target;
  const bool isAllowed = view_.grid().user().moveDrag(axis_, first_, final_, target);
  target_ = isAllowed ? target : 0;
  view_.viewport()->setCursor(isAllowed ? Qt::ClosedHandCursor : Qt::ForbiddenCursor);
  GridMarks marks;
  if (isAllowed) {
    const int at = view_.geometry().pixelBefore(axis_, target);
    (axis_ == Axis::Rows ? marks.rowInsertion : marks.columnInsertion) = std::max(at - 1, 1);
  }
  setMarks(marks);
}

void GridMouse::pull(QPoint pixel) {
  const ShownLine* const row = view_.geometry().rows.nearest(pixel.y());
  const ShownLine* const col = view_.geometry().cols.nearest(pixel.x());
  if (row == nullptr || col == nullptr) return;
  CellPlace cell{std::max(row->position, 1), std::max(col->position, 1)};
  if (act_ == Act::SelectLines) {
    view_.pull().pullLinesTo(axis_, axis_ == Axis::Rows ? cell.row : cell.col);
    return;
  }
  cell = leadingCell(view_.grid(), cell);
  // A hand that trembles within the pressed cell selects nothing.
  if (view_.pull().farEnd() != cell) view_.pull().pullTo(cell);
}

void GridMouse::release(const QMouseEvent& event) {
  last_ = event.position().toPoint();
  if (event.button() == Qt::RightButton && act_ == Act::None && !isPressed_) {
    const Hit hit = view_.hit(last_);
    if (hit.on != Hit::On::Nothing && view_.viewport()->rect().contains(last_)) {
      view_.openMenu(leadingCell(view_.grid(), hit.cell), last_);
    }
    return;
  }
  if (event.button() != Qt::LeftButton || !isPressed_) return;
  const Act act = std::exchange(act_, Act::None);
  setMarks({});
  view_.stopScrolling();
  finish(act);
  showPointer(last_);
}

void GridMouse::finish(Act act) {
  host::GridControl& grid = view_.grid();
  isPressed_ = false;
  const bool isSized = act == Act::SizeColumn && width_ != grid.colWidth(first_);
  if (act == Act::MayDrag) {
    const bool isRow = axis_ == Axis::Rows;
    const Hit hit = view_.hit(pressedAt_);
    view_.pull().selectLines(axis_, isRow ? hit.cell.row : hit.cell.col, false);
  }
  if (isSized) {
    // The release is what settles the width.
    view_.perform([&grid, col = first_, width = width_] {
      grid.user().endColumnTrack(col, width);
      grid.user().releaseLeft();
    });
    return;
  }
  if (act == Act::Drag && target_ > 0) {
    view_.perform([&grid, axis = axis_, first = first_, last = final_, target = target_] {
      grid.user().dropDrag(axis, first, last, target);
      grid.user().releaseLeft();
    });
    return;
  }
  grid.user().releaseLeft();
}

void GridMouse::cancel() {
  act_ = Act::None;
  view_.stopScrolling();
  setMarks({});
  view_.viewport()->unsetCursor();
  if (std::exchange(isPressed_, false)) view_.grid().user().releaseLeft();
}

void GridMouse::scrollBeyond(QPoint pixel) {
  const GridLayout& layout = view_.geometry();
  const bool isBeside = pixel.x() < layout.cols.scrollStart() || pixel.x() >= layout.cols.room();
  const bool isAbove = pixel.y() < layout.rows.scrollStart() || pixel.y() >= layout.rows.room();
  const bool takesColumns = act_ == Act::SelectCells || axis_ == Axis::Columns;
  const bool takesRows = act_ == Act::SelectCells || axis_ == Axis::Rows;
  if ((isBeside && takesColumns) || (isAbove && takesRows)) {
    view_.startScrolling();
  } else {
    view_.stopScrolling();
  }
}

void GridMouse::scrollOn() {
  const auto step = [](QScrollBar* bar, int pixel, const LineLayout& lines, int pressed) {
    // From the frozen lines the pointer pulls backwards only if it came from behind them.
    if (pixel < 0 || (pixel < lines.scrollStart() && pressed >= lines.scrollStart()))
      bar->setValue(bar->value() - 1);
    if (pixel >= lines.room()) bar->setValue(bar->value() + 1);
  };
  const GridLayout& layout = view_.geometry();
  const bool isCells = act_ == Act::SelectCells;
  if (isCells || axis_ == Axis::Columns)
    step(view_.horizontalScrollBar(), last_.x(), layout.cols, pressedAt_.x());
  if (isCells || axis_ == Axis::Rows) step(view_.verticalScrollBar(), last_.y(), layout.rows, pressedAt_.y());
  if (act_ == Act::Drag) moveDrag(last_);
  if (act_ == Act::SelectCells || act_ == Act::SelectLines) pull(last_);
}

void GridMouse::setMarks(const GridMarks& marks) {
  if (marks.isEmpty() && marks_.isEmpty()) return;
  marks_ = marks;
  view_.viewport()->update();
}

void GridMouse::showPointer(QPoint pixel) {
  if (view_.hit(pixel).on == Hit::On::ColumnBorder) {
    view_.viewport()->setCursor(Qt::SplitHCursor);
  } else {
    view_.viewport()->unsetCursor();
  }
}

}  // namespace banddesk::desktop
