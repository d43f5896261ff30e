// How exclusion shows: grey cells, hidden rows and columns.
#include "plugin/analysis/exclusion.h"

namespace banddesk {

bool Exclusion::hidesDye(std::int32_t bin) const {
  return controls_.dyeValue(bins_.m_aiBinDye[bins_.at(bin)]) != ui::kChecked;
}

void Exclusion::CalcSuppressed(SuppressMode mode) {
  page_.frame.procedure("CalcSuppressed", [&] {
    if (mode != SuppressMode::Show) {
      table_.style().Free();
      table_.style().SetInterior(kExcludedGrey);
    }
    if (mode == SuppressMode::Clear) {
      clearMarks();
      return;
    }
    const bool hideExcluded = controls_.chkShowExcluded.Value != ui::kChecked;
    suppressRows(mode, hideExcluded);
    suppressColumns(mode, hideExcluded);
  });
}

// Row 0 and column 0 keep their grey until a manual action takes it.
void Exclusion::clearMarks() {
  for (const std::int32_t bin : table_.binsOfRows()) bins_.m_abAutoExcluded[bins_.at(bin)] = 0;
  for (const auto& column : page_.analysis().SampleGrid->Columns) column->IsAutoExcluded = false;
  Grid& grid = table_.grid();
  table_.range().InitRange(1, 1, grid.ColCount(), grid.RowCount());
  table_.SetStyleRange(table_.range(), table_.style(), StyleMode::Remove);
  table_.HideCols(table_.m_lFirstSampleCol, table_.NumCols(), false);
  table_.HideRows(1, table_.NumRows(), false);
}

void Exclusion::suppressRows(SuppressMode mode, bool hideExcluded) {
  const auto bins = table_.binsOfRows();
  const std::int32_t columns = table_.NumCols();
  std::int32_t row = 0;
  for (const std::int32_t bin : bins) {
    ++row;
    bool hideRow = hidesDye(bin);
    if (bins_.isSuppressed(bin)) {
      if (mode == SuppressMode::Apply) {
        table_.InitRange(table_.range(), 0, row, columns, row);
        table_.SetStyleRange(table_.range(), table_.style(), StyleMode::Override);
        hideRow = hideRow || hideExcluded;
      } else if (!hideRow) {
        table_.HideRows(row, row, hideExcluded);
      }
    }
    // Rows that are to be seen get no call: the clearing has shown everything.
    if (mode == SuppressMode::Apply && hideRow) table_.HideRows(row, row, true);
  }
}

void Exclusion::suppressColumns(SuppressMode mode, bool hideExcluded) {
  const std::int32_t rows = table_.NumRows();
  for (const auto& column : page_.analysis().SampleGrid->Columns) {
    if (!column->IsExcluded && !column->IsAutoExcluded) continue;
    const std::int32_t col = column->ColumnOrder;
    if (mode == SuppressMode::Show) {
      table_.HideCols(col, col, hideExcluded);
      continue;
    }
    table_.InitRange(table_.range(), col, 1, col, rows);
    table_.SetStyleRange(table_.range(), table_.style(), StyleMode::Override);
    if (hideExcluded) table_.HideCols(col, col, true);
  }
}

void Exclusion::ShowExcluded() {
  page_.frame.procedure("ShowExcluded", [&] {
    CalcSuppressed(SuppressMode::Show);
    sizing_.ResizeCols();
    pending_.clear(kPendingShowExcluded);
  });
}

}  // namespace banddesk
