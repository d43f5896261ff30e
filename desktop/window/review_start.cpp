#include "desktop/window/review_start.h"

#include <optional>
#include <set>

#include "host/grid/grid_control.h"
#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {
namespace {

struct Lines {
  std::int32_t first;
  std::int32_t last;
};

// The selected lines of an axis, block by block, without the blocks that go over all of its lines.
std::vector<Lines> selectedLines(const host::GridControl& grid, Axis axis) {
  const std::int32_t count = axis == Axis::Rows ? grid.RowCount() : grid.ColCount();
  std::vector<Lines> selected;
  for (host::Block block : grid.selection().blocks()) {
    if (block.first(axis) > 1 || block.last(axis) < count)
      selected.push_back({block.first(axis), block.last(axis)});
  }
  return selected;
}

std::int32_t firstVisible(IAFLPResultsPage& table, Lines rows) {
  for (std::int32_t row = rows.first; row <= rows.last; ++row) {
    if (!table.IsRowHidden(row)) return row;
  }
  return 0;
}

std::int32_t chosenRow(const host::GridControl& grid, IAFLPResultsPage& table) {
  const bool isTransposed = table.Transpose();
  for (const Lines& rows : selectedLines(grid, isTransposed ? Axis::Columns : Axis::Rows)) {
    if (const std::int32_t row = firstVisible(table, rows); row > 0) return row;
  }
  const std::int32_t current = std::max(isTransposed ? grid.currentCol() : grid.currentRow(), 1);
  return firstVisible(table, {current, table.NumRows()});
}

// The result of a sample column, 0 for any other.
std::int32_t resultOf(IAFLPResultsPage& table, std::int32_t col) {
  return std::max(static_cast<std::int32_t>(-leadingNumber(table.Key(col))), 0);
}

std::set<std::int32_t> chosenResults(const host::GridControl& grid, IAFLPResultsPage& table) {
  std::set<std::int32_t> chosen;
  for (const Lines& cols : selectedLines(grid, table.Transpose() ? Axis::Rows : Axis::Columns)) {
    for (std::int32_t col = cols.first; col <= cols.last; ++col) {
      if (!table.IsColHidden(col)) chosen.insert(resultOf(table, col));
    }
  }
  chosen.erase(0);
  return chosen;
}

}  // namespace

ReviewStart reviewStart(const AFLP& analysis, IAFLPResultsPage& table) {
  const auto& grid = required(table.Controls().find<host::GridControl>(names::kGrid), "Grid");
  ReviewStart start;
  start.results = std::make_shared<Collection<std::shared_ptr<Result>>>();
  if (table.NumRows() > 0) start.row = chosenRow(grid, table);
  const std::set<std::int32_t> chosen = chosenResults(grid, table);
  for (std::int32_t col = 1; col <= table.NumCols(); ++col) {
    const std::int32_t result = resultOf(table, col);
    const bool isChosen = result > 0 && (chosen.empty() || chosen.contains(result));
    if (!isChosen || table.IsColHidden(col)) continue;
    const std::string key = integerText(result);
    start.results->Add(analysis.Results.Item(key), key);
  }
  return start;
}

}  // namespace banddesk::desktop
