#include "desktop/grid/grid_layout.h"

#include <algorithm>

namespace banddesk::desktop {

void GridLayout::arrange(const host::GridControl& grid, QSize room, int rowHeight) {
  rows.arrange(grid.rowAxis(), {.showsHeader = grid.ColHeadersVisible(),
                                .first = grid.TopRow(),
                                .room = room.height(),
                                .fixedExtent = rowHeight,
                                .headerExtent = rowHeight});
  cols.arrange(grid.colAxis(),
               {.showsHeader = grid.RowHeadersVisible(), .first = grid.LeftCol(), .room = room.width()});
}

QRect GridLayout::rectOf(const host::Block& cells) const {
  const ShownLine across = cols.span(cells.left, cells.right);
  const ShownLine down = rows.span(cells.top, cells.bottom);
  return {across.start, down.start, across.extent, down.extent};
}

QRect GridLayout::scrolled(Axis axis) const {
  const int left = axis == Axis::Columns ? cols.scrollStart() : 0;
  const int top = axis == Axis::Rows ? rows.scrollStart() : 0;
  return {left, top, cols.room() - left, rows.room() - top};
}

host::Block GridLayout::scrolledCells() const {
  if (rows.lines().empty() || cols.lines().empty()) return {};
  return {rows.frozen() + 1, cols.frozen() + 1, rows.lines().back().position, cols.lines().back().position};
}

Hit GridLayout::hit(QPoint pixel, int grip) const {
  const ShownLine* const row = rows.at(pixel.y());
  if (row == nullptr || pixel.x() < 0) return {};
  if (row == &rows.lines().front()) {
    // From the right, so that of columns without width the last can be opened again.
    for (auto col = cols.lines().rbegin(); col != cols.lines().rend(); ++col) {
      const bool isBehind = pixel.x() >= col->end();
      if (isBehind ? pixel.x() - col->end() < grip
                   : col->end() - pixel.x() <= std::min(grip, col->extent / 3)) {
        return {Hit::On::ColumnBorder, {row->position, col->position}};
      }
      if (isBehind) break;
    }
  }
  const ShownLine* const col = cols.at(pixel.x());
  if (col == nullptr) return {};
  const CellPlace cell{row->position, col->position};
  if (cell.row == 0) return {cell.col == 0 ? Hit::On::Corner : Hit::On::ColumnHeader, cell};
  if (cell.col == 0) return {Hit::On::RowHeader, cell};
  // Without headers the first line stands for them.
  if (cell.col == 1 && !cols.showsHeader()) return {Hit::On::RowHeader, cell};
  if (cell.row == 1 && !rows.showsHeader()) return {Hit::On::ColumnHeader, cell};
  return {Hit::On::Cell, cell};
}

Position GridLayout::insertionAt(Axis axis, int pixel) const {
  const LineLayout& along = axis == Axis::Rows ? rows : cols;
  const ShownLine* const line = along.nearest(pixel);
  if (line == nullptr) return 1;
  return std::max(pixel < line->start + line->extent / 2 ? line->position : line->position + 1, 1);
}

int GridLayout::pixelBefore(Axis axis, Position position) const {
  const LineLayout& along = axis == Axis::Rows ? rows : cols;
  const auto& lines = along.lines();
  const auto behind = std::ranges::lower_bound(lines, position, {}, &ShownLine::position);
  return behind == lines.end() ? along.end() : behind->start;
}

CellPlace leadingCell(const host::GridControl& grid, CellPlace cell) {
  const host::Block block = wholeCell(grid, cell);
  return {block.top, block.left};
}

host::Block wholeCell(const host::GridControl& grid, CellPlace cell) {
  const host::Block* const block = grid.coverings().at(cell.row, cell.col);
  return block == nullptr ? host::Block{cell.row, cell.col, cell.row, cell.col} : *block;
}

}  // namespace banddesk::desktop
