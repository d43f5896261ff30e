#include "plugin/results/transposition.h"

#include "plugin/base/numbers.h"
#include "plugin/results/page_guards.h"

namespace banddesk {
namespace {

// Steps the indicator through the cells of a table as they are exchanged.
void showExchange(Progress& progress, Framework& framework, double rows, double cols) {
  const double total = (rows + 1) * (cols + 1);
  progress.Start(100.0, 0);
  const auto scale = static_cast<float>(progress.Maximum() / framework.Max(1, total));
  const double wanted = framework.Max(1, total / framework.Max(1, progress.Steps()));
  const std::int32_t every = roundToLong(wanted);
  for (double cell = every; cell <= total; cell += every) {
    progress.SetPosition(static_cast<double>(scale) * cell);
  }
}

}  // namespace

void Transposition::SetTranspose(bool value) {
  page_.frame.procedure("Transpose (Let)", [&] {
    if (value == table_.m_bTransposed) return;
    Hourglass hourglass(page_.platform());
    UpdateLock lock(table_.grid());
    WriteAccess access(table_.grid());
    exchange();
    TransposeRowColStyles();
    table_.m_bTransposed = value;
    sizing_.ResizeCols();
    access.restore();
    lock.restore();
    page_.progress().Finish();
    hourglass.restore();
  });
}

void Transposition::exchange() {
  Grid& grid = table_.grid();
  const std::int32_t rows = grid.RowCount();
  const std::int32_t cols = grid.ColCount();
  const bool rowHeaders = grid.RowHeadersVisible();
  const bool colHeaders = grid.ColHeadersVisible();
  swapDragAndFrozen();
  grid.ExchangeAxes();
  showExchange(page_.progress(), page_.framework(), rows, cols);
  grid.SetRowHeadersVisible(colHeaders);
  grid.SetColHeadersVisible(rowHeaders);
  // Putting the counts also lets go of what was written beyond the table.
  grid.SetRowCount(cols);
  grid.SetColCount(rows);
}

void Transposition::swapDragAndFrozen() {
  Grid& grid = table_.grid();
  const bool dragRows = grid.AllowDragRows();
  grid.SetAllowDragRows(grid.AllowDragCols());
  grid.SetAllowDragCols(dragRows);
  const std::int32_t frozenRows = grid.FrozenRows();
  const std::int32_t frozenCols = grid.FrozenCols();
  grid.SetFrozenRows(frozenCols, frozenCols);
  grid.SetFrozenCols(frozenRows, frozenRows);
}

void Transposition::TransposeRowColStyles() {
  page_.frame.procedure("TransposeRowColStyles", [&] {
    GridStyle& row = table_.grid().RowHeaderStyle();
    GridStyle& col = table_.grid().ColHeaderStyle();
    table_.style().ChangeStyle(col, StyleMode::Copy);
    col.ChangeStyle(row, StyleMode::Copy);
    row.ChangeStyle(table_.style(), StyleMode::Copy);
  });
}

void Transposition::cbxSampleAxis_Click() {
  page_.frame.handler("cbxSampleAxis_Click", [&] {
    Hourglass hourglass(page_.platform());
    UpdateLock lock(table_.grid());
    const bool rows = controls_.cbxSampleAxis.ListIndex != 0;
    labels_.SetSampleAbbreviations(rows, true);
    SetTranspose(rows);
    lock.restore();
    hourglass.restore();
  });
}

void Transposition::flipSampleAxis() {
  controls_.cbxSampleAxis.ListIndex = 1 - controls_.cbxSampleAxis.ListIndex;
}

}  // namespace banddesk
