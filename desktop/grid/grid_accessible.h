// What a screen reader is told of a grid: that it is a table, its name, and the current cell.
#pragma once

namespace banddesk::desktop {

class GridView;

// May be called again and again.
void installGridAccessibility();
void announceCurrentCell(GridView& view);

}  // namespace banddesk::desktop
