#include "host/framework/table_place.h"

#include <utility>

namespace banddesk::host {

TablePlace placeIn(const GridControl& grid) {
  return {grid.TopRow(), grid.LeftCol(), grid.currentRow(), grid.currentCol(), grid.selection().blocks()};
}

void show(const TablePlace& place, GridControl& grid) {
  grid.Redraw(2.0);  // what the new table hides was hidden before, too, and stays in the selection
  grid.SetCurrentCell(place.currentRow, place.currentCol);
  bool adds = false;
  for (const Block& block : place.selection)
    grid.user().selectCells(block.top, block.left, block.bottom, block.right, std::exchange(adds, true));
  grid.SetTopRow(place.topRow);
  grid.SetLeftCol(place.leftCol);
  grid.Redraw(2.0);
}

}  // namespace banddesk::host
