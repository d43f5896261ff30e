#include "plugin/analysis/sort_and_move.h"

#include <vector>

#include "plugin/base/numbers.h"
#include "plugin/table/page_guards.h"

namespace banddesk {
namespace {

constexpr std::int16_t kSortType = 3;
constexpr double kSortArgument = 2.0;
constexpr std::int32_t kUnsorted = 2;
constexpr std::int32_t kSpareNone = -1;
constexpr std::int32_t kAllDyes = -1;

}  // namespace

void SortAndMove::SortRow(std::int32_t row) {
  page_.frame.procedure("SortRow", [&] {
    UpdateLock lock(table_.grid());
    const std::int32_t bin = table_.Bin(row);
    if (bin != m_lSortedRow) m_lSortedRowOrder = 0;
    m_lSortedRow = bin;
    m_lSortedRowOrder = 1 - m_lSortedRowOrder;
    sortSampleBlock(row);
    storeSampleOrder();
    sizing_.ResizeCols();
    lock.restore();
  });
}

// Sorting by a bin's row moves whole sample columns.
void SortAndMove::sortSampleBlock(std::int32_t row) {
  Grid& grid = table_.grid();
  std::vector<SortInfo> keys{grid.NewSortInfo()};
  keys[0].nRC = row;
  keys[0].SortType = kSortType;
  keys[0].SortOrder = m_lSortedRowOrder;
  keys[0].bCase = false;
  table_.InitRange(table_.range(), table_.m_lFirstSampleCol, 1, table_.NumCols(), table_.NumRows());
  if (table_.m_bTransposed) {
    grid.SortRows(table_.range(), 1, keys, kSortArgument);
  } else {
    grid.SortColumns(table_.range(), 1, keys, kSortArgument);
  }
}

// The hidden state follows the columns to their new places, and the new order is what gets saved.
void SortAndMove::storeSampleOrder() {
  const bool showExcluded = controls_.chkShowExcluded.Value != ui::kUnchecked;
  const std::int32_t last = table_.NumCols();
  table_.HideCols(table_.m_lFirstSampleCol, last, false);
  for (std::int32_t col = table_.m_lFirstSampleCol; col <= last; ++col) {
    const auto column = page_.analysis().SampleGrid->Columns.Item(table_.Key(col));
    column->ColumnOrder = col;
    if (!showExcluded && (column->IsExcluded || column->IsAutoExcluded)) table_.HideCols(col, col, true);
  }
}

void SortAndMove::SortCol(std::int32_t col) {
  page_.frame.procedure("SortCol", [&] {
    ClearSortOrder(page_.analysis().BinGrid, kSpareNone);
    ClearSortOrder(page_.analysis().SampleGrid, kSpareNone);
    const auto column = table_.columnAt(col);
    column->SortPriority = 1;
    column->SortOrder = column->SortOrder == kUnsorted ? 0 : 1 - column->SortOrder;
    SortCols();
  });
}

void SortAndMove::ClearSortOrder(const std::shared_ptr<GridLayout>& layout, std::int32_t except) {
  page_.frame.procedure("ClearSortOrder", [&] {
    for (const auto& column : required(layout, "ColumnSet").Columns) {
      if (column->ColumnOrder != except) column->SortPriority = 0;
    }
  });
}

void SortAndMove::SortCols() {
  page_.frame.procedure("SortCols", [&] {
    Grid& grid = table_.grid();
    UpdateLock lock(grid);
    table_.range().InitRange(1, 1, grid.ColCount(), grid.RowCount());
    GridUtilities& utilities = page_.services.GridUtilities();
    std::vector<SortInfo> keys;
    std::int32_t count = utilities.BuildSortInfo(grid, *page_.analysis().BinGrid, keys);
    if (count == 0) count = utilities.BuildSortInfo(grid, *page_.analysis().SampleGrid, keys);
    if (count > 0) {
      if (table_.m_bTransposed) {
        grid.SortColumns(table_.range(), count, keys, kSortArgument);
      } else {
        grid.SortRows(table_.range(), count, keys, kSortArgument);
      }
      exclusion_.HideDyes(kAllDyes);
    }
    lock.restore();
  });
}

void SortAndMove::MoveCols(std::int32_t first, std::int32_t last, std::int32_t target) {
  page_.frame.procedure("MoveCols", [&] {
    if (target >= first && target <= last + 1) return;
    const AFLP& analysis = page_.analysis();
    const auto& layout = first < table_.m_lFirstSampleCol ? analysis.BinGrid : analysis.SampleGrid;
    const auto low = static_cast<std::int32_t>(page_.framework().Min(first, target));
    const auto high = static_cast<std::int32_t>(page_.framework().Max(last, target - 1));
    const std::int32_t moved = target - (target < first ? first : last + 1);
    for (const auto& column : layout->Columns) {
      const std::int32_t place = column->ColumnOrder;
      if (place < low || place > high) continue;
      if (place >= first && place <= last) {
        column->ColumnOrder = place + moved;
      } else {
        column->ColumnOrder = place + (place < target ? first - last - 1 : last - first + 1);
      }
    }
  });
}

// A block may not straddle the boundary between bin information and sample columns.
bool SortAndMove::mayDrag(double first, double last) const {
  return first >= table_.m_lFirstSampleCol || last < table_.m_lFirstSampleCol;
}

// Nor leave its side of it; the boundary itself is open to blocks from either side.
bool SortAndMove::mayDrop(double first, double target) const {
  const bool leavesBins = first < table_.m_lFirstSampleCol && target > table_.m_lFirstSampleCol;
  const bool leavesSamples = first >= table_.m_lFirstSampleCol && target < table_.m_lFirstSampleCol;
  return !leavesBins && !leavesSamples;
}

void SortAndMove::drop(double first, double last, double target) {
  MoveCols(roundToLong(first), roundToLong(last), roundToLong(target));
}

void SortAndMove::grdAFLP_OnSelDragColsStart(double first, double last, double& value) {
  page_.frame.handler("grdAFLP_OnSelDragColsStart", [&] {
    if (table_.m_bTransposed || !mayDrag(first, last)) value = 0;
  });
}

void SortAndMove::grdAFLP_OnSelDragRowsStart(double first, double last, double& value) {
  page_.frame.handler("grdAFLP_OnSelDragRowsStart", [&] {
    if (!table_.m_bTransposed || !mayDrag(first, last)) value = 0;
  });
}

void SortAndMove::grdAFLP_OnSelDragColsMove(double first, double, double target, double& value) {
  page_.frame.handler("grdAFLP_OnSelDragColsMove", [&] {
    if (!mayDrop(first, target)) value = 0;
  });
}

void SortAndMove::grdAFLP_OnSelDragRowsMove(double first, double, double target, double& value) {
  page_.frame.handler("grdAFLP_OnSelDragRowsMove", [&] {
    if (!mayDrop(first, target)) value = 0;
  });
}

void SortAndMove::grdAFLP_OnSelDragColsDrop(double first, double last, double target) {
  page_.frame.handler("grdAFLP_OnSelDragColsDrop", [&] { drop(first, last, target); });
}

void SortAndMove::grdAFLP_OnSelDragRowsDrop(double first, double last, double target) {
  page_.frame.handler("grdAFLP_OnSelDragRowsDrop", [&] { drop(first, last, target); });
}

}  // namespace banddesk
