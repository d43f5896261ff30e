// Where the user stands in the grid of a page, as a value to be taken and put back.
#pragma once

#include <cstdint>
#include <vector>

#include "host/grid/grid_control.h"

namespace banddesk::host {

// Where the user stands in a table, by physical rows and columns.
struct TablePlace {
  std::int32_t topRow = 1, leftCol = 1;
  std::int32_t currentRow = 1, currentCol = 1;
  std::vector<Block> selection;
};

TablePlace placeIn(const GridControl& grid);
void show(const TablePlace& place, GridControl& grid);

}  // namespace banddesk::host
