// What the mouse does to a grid, from press to release: selecting, sizing a column, dragging selected lines.
#pragma once

#include <QMouseEvent>

#include "desktop/grid/grid_painter.h"

namespace banddesk::desktop {

class GridView;

class GridMouse {
 public:
  explicit GridMouse(GridView& view) : view_(view) {}

  void press(const QMouseEvent& event);
  void doubleClick(const QMouseEvent& event);
  void move(const QMouseEvent& event);
  void release(const QMouseEvent& event);
  // The act under way is given up; nothing of it happens.
  void cancel();
  // The pointer rests beyond the edge: the table goes on scrolling under it.
  void scrollOn();

  bool isActive() const { return act_ != Act::None; }
  const GridMarks& marks() const { return marks_; }

 private:
  enum class Act { None, SelectCells, SelectLines, SizeColumn, MayDrag, Drag, Refused };

  void pressLeft(QPoint pixel, Qt::KeyboardModifiers modifiers);
  void pressHeader(Axis axis, Position line, Qt::KeyboardModifiers modifiers);
  void pressCell(CellPlace cell, Qt::KeyboardModifiers modifiers);
  bool startSizing(Position col, QPoint pixel);
  void moveSizing(QPoint pixel);
  void startDrag();
  void moveDrag(QPoint pixel);
  void pull(QPoint pixel);
  void finish(Act act);
  void scrollBeyond(QPoint pixel);
  void setMarks(const GridMarks& marks);
  void showPointer(QPoint pixel);
  int along(QPoint pixel) const { return axis_ == Axis::Rows ? pixel.y() : pixel.x(); }

  GridView& view_;
  Act act_ = Act::None;
  bool isPressed_ = false;
  QPoint pressedAt_;
  QPoint last_;
  Axis axis_ = Axis::Columns;  // of the lines that are selected or dragged
  Position first_ = 0;         // the lines that are dragged, the column that is sized
  Position final_ = 0;
  Position target_ = 0;  // where they would land; 0 if they may not
  Position asked_ = 0;   // the target asked for last
  std::int32_t width_ = 0;
  GridMarks marks_;
};

}  // namespace banddesk::desktop
