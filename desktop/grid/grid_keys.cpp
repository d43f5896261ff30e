#include "desktop/grid/grid_keys.h"

#include <algorithm>

#include "desktop/grid/grid_view.h"
#include "desktop/grid/table_copy.h"

namespace banddesk::desktop {
namespace {

// The visible line so many steps away, or the outermost one; `from` itself if no line is visible.
Position stepped(const host::LineAxis& axis, Position from, int steps) {
  const auto& visibility = axis.visibility;
  const int all = visibility.visibleUpTo(axis.count);
  if (all == 0) return from;
  // Backwards from a hidden line the first step leads to the visible one before it.
  const int here = visibility.visibleUpTo(std::min(from, axis.count));
  const bool isBetween = steps < 0 && (visibility.isHidden(from) || from > axis.count);
  return visibility.nthVisible(std::clamp(here + steps + (isBetween ? 1 : 0), 1, all));
}

Position outermost(const host::LineAxis& axis, bool isLast) {
  const int all = axis.visibility.visibleUpTo(axis.count);
  return all == 0 ? 1 : axis.visibility.nthVisible(isLast ? all : 1);
}

}  // namespace

bool GridKeys::press(const QKeyEvent& event) {
  if (event.key() == Qt::Key_Escape) return view_.cancelMouse();
  return command(event) || move(event) || type(event);
}

bool GridKeys::wants(const QKeyEvent& event) const {
  return event.matches(QKeySequence::Copy) || event.matches(QKeySequence::SelectAll);
}

bool GridKeys::command(const QKeyEvent& event) {
  host::GridControl& grid = view_.grid();
  const bool isShift = event.modifiers() == Qt::ShiftModifier;
  const bool isControl = event.modifiers() == Qt::ControlModifier;
  if (event.matches(QKeySequence::Copy)) {
    grid.ports().clipboard->setText(selectedText(grid));
  } else if (event.matches(QKeySequence::SelectAll)) {
    view_.pull().selectAll();
  } else if (event.key() == Qt::Key_Space && isControl) {
    view_.pull().selectLines(Axis::Columns, grid.currentCol(), false);
  } else if (event.key() == Qt::Key_Space && isShift) {
    view_.pull().selectLines(Axis::Rows, grid.currentRow(), false);
  } else if (event.key() == Qt::Key_Menu || (event.key() == Qt::Key_F10 && isShift)) {
    view_.openMenuOfSelected();
  } else if (event.key() == Qt::Key_F2 && event.modifiers() == Qt::NoModifier) {
    view_.beginEdit({});
  } else {
    return false;
  }
  return true;
}

std::optional<CellPlace> GridKeys::goal(int key, bool isFar, const host::Block& from) {
  const host::LineAxis& rows = view_.grid().rowAxis();
  const host::LineAxis& cols = view_.grid().colAxis();
  const int page = view_.geometry().rows.scrolledWhole();
  switch (key) {
    case Qt::Key_Up:
      return CellPlace{isFar ? outermost(rows, false) : stepped(rows, from.top, -1), from.left};
    case Qt::Key_Down:
      return CellPlace{isFar ? outermost(rows, true) : stepped(rows, from.bottom, 1), from.left};
    case Qt::Key_Left:
      return CellPlace{from.top, isFar ? outermost(cols, false) : stepped(cols, from.left, -1)};
    case Qt::Key_Right:
      return CellPlace{from.top, isFar ? outermost(cols, true) : stepped(cols, from.right, 1)};
    case Qt::Key_PageUp:
      return CellPlace{stepped(rows, from.top, -page), from.left};
    case Qt::Key_PageDown:
      return CellPlace{stepped(rows, from.bottom, page), from.left};
    case Qt::Key_Home:
      return CellPlace{isFar ? outermost(rows, false) : from.top, outermost(cols, false)};
    case Qt::Key_End:
      return CellPlace{isFar ? outermost(rows, true) : from.top, outermost(cols, true)};
    default:
      return {};
  }
}

bool GridKeys::move(const QKeyEvent& event) {
  const Qt::KeyboardModifiers others = event.modifiers() & (Qt::AltModifier | Qt::MetaModifier);
  if (others != Qt::NoModifier) return false;
  const bool extends = event.modifiers() & Qt::ShiftModifier;
  const CellPlace at =
      extends ? view_.pull().farEnd() : CellPlace{view_.grid().currentRow(), view_.grid().currentCol()};
  const auto cell = goal(event.key(), event.modifiers() & Qt::ControlModifier, wholeCell(view_.grid(), at));
  if (!cell) return false;
  goTo(leadingCell(view_.grid(), *cell), extends);
  return true;
}

void GridKeys::goTo(CellPlace cell, bool extends) {
  {
    const GridView::KeepScroll keep(view_);
    if (extends) {
      view_.pull().pullTo(cell);
    } else {
      view_.pull().click(cell);
    }
  }
  view_.showCell(cell);
  if (!extends) view_.tellCurrent();
}

bool GridKeys::type(const QKeyEvent& event) {
  const QString text = event.text();
  const bool isCommand = event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  return !isCommand && !text.isEmpty() && text.at(0).isPrint() && view_.beginEdit(text);
}

}  // namespace banddesk::desktop
