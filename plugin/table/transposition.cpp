#include "plugin/table/transposition.h"

#include "plugin/base/numbers.h"
#include "plugin/table/page_guards.h"

namespace banddesk {
namespace {

// Moves the indicator on as the cells of a table are exchanged.
class ExchangeIndicator {
 public:
  ExchangeIndicator(Progress& progress, Framework& framework, double rows, double cols)
      : progress_(progress), total_((rows + 1) * (cols + 1)) {
    progress_.Start(100.0, 0);
    scale_ = static_cast<float>(progress_.Maximum() / framework.Max(1, total_));
    every_ = roundToLong(framework.Max(1, total_ / framework.Max(1, progress_.Steps())));
  }
  std::int64_t every() const { return every_; }
  void show(std::int64_t cells) const {
    progress_.SetPosition(static_cast<double>(scale_ * static_cast<float>(cells)));
  }

 private:
  Progress& progress_;
  double total_;
  float scale_ = 0;
  std::int32_t every_ = 1;
};

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
  const ExchangeIndicator indicator(page_.progress(), page_.framework(), rows, cols);
  const bool rowHeaders = grid.RowHeadersVisible();
  const bool colHeaders = grid.ColHeadersVisible();
  swapDragAndFrozen();
  grid.ExchangeAxes(indicator.every(), [&](std::int64_t cells) { indicator.show(cells); });
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
