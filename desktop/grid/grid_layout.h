// Where the cells of a grid stand in a view: its two axes together, and what lies under a pixel. Pure
// reckoning over a grid's present state.
#pragma once

#include <QPoint>
#include <QRect>

#include "desktop/grid/line_layout.h"
#include "host/grid/block.h"
#include "host/grid/grid_control.h"

namespace banddesk::desktop {

struct CellPlace {
  Position row = 0;
  Position col = 0;
  friend bool operator==(const CellPlace&, const CellPlace&) = default;
};

struct Hit {
  enum class On { Nothing, Cell, ColumnHeader, RowHeader, Corner, ColumnBorder };
  On on = On::Nothing;
  CellPlace cell;  // for a border the column that it closes
};

struct GridLayout {
  LineLayout rows;
  LineLayout cols;

  void arrange(const host::GridControl& grid, QSize room, int rowHeight);

  // The part of cells that is in sight.
  QRect rectOf(const host::Block& cells) const;
  // A cell's own rectangle, its closing lines included; empty if it is not in sight.
  QRect rectOf(CellPlace cell) const { return rectOf(host::Block{cell.row, cell.col, cell.row, cell.col}); }
  // What scrolls along an axis: everything behind its frozen lines.
  QRect scrolled(Axis axis) const;
  // All that is in sight, from the first scrolled line on.
  host::Block scrolledCells() const;

  // A column's border is taken by the grip in the topmost line, the header if there is one.
  Hit hit(QPoint pixel, int grip) const;
  // In front of which line of an axis something dropped at this pixel lands.
  Position insertionAt(Axis axis, int pixel) const;
  int pixelBefore(Axis axis, Position position) const;
};

// The cell that stands for a whole merged block.
CellPlace leadingCell(const host::GridControl& grid, CellPlace cell);
host::Block wholeCell(const host::GridControl& grid, CellPlace cell);

}  // namespace banddesk::desktop
