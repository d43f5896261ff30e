// How the user's clicks, drags and keys become a selection: an anchor, and a far end that is pulled about.
// The mouse and the keyboard share one.
#pragma once

#include "desktop/grid/grid_layout.h"

namespace banddesk::desktop {

class SelectionPull {
 public:
  explicit SelectionPull(host::GridControl& grid) : grid_(grid) {}

  // A plain click: the cell becomes the current one, nothing is selected.
  void click(CellPlace cell);
  // A new block beside those that are selected.
  void addCell(CellPlace cell);
  void selectLines(Axis axis, Position line, bool addToSelection);
  void selectAll();
  // Pulls the far end of the block that was begun last.
  void pullTo(CellPlace cell);
  void pullLinesTo(Axis axis, Position line);

  // Where the far end stands; the current cell if code has set that meanwhile.
  CellPlace farEnd();

 private:
  enum class Kind { Cells, Rows, Columns };
  static Kind kindOf(Axis axis) { return axis == Axis::Rows ? Kind::Rows : Kind::Columns; }
  void follow();
  void select(CellPlace from, CellPlace to);

  host::GridControl& grid_;
  CellPlace anchor_;
  CellPlace far_;
  CellPlace current_;  // as this object left it
  Kind kind_ = Kind::Cells;
  bool hasBlock_ = false;  // the last block of the selection is the one being pulled
};

}  // namespace banddesk::desktop
