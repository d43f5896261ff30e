#include "plugin/analysis/manual_exclusion.h"

#include <algorithm>

#include "plugin/base/numbers.h"
#include "plugin/table/page_guards.h"

namespace banddesk {

void ManualExclusion::mnuExcludeBin_Click() {
  page_.frame.handler("mnuExcludeBin_Click", [&] {
    const auto selected = table_.GetSelected(0, 1);
    if (selected->Count() == 0) return;
    Hourglass hourglass(page_.platform());
    UpdateLock lock(table_.grid());
    table_.style().Free();
    table_.style().SetInterior(kExcludedGrey);
    const bool itemChecked = controls_.menus.mnuExcludeBin.Checked;
    for (const std::int32_t row : *selected) {
      const std::int32_t bin = table_.Bin(row);
      if (controls_.chkShowExcluded.Value == ui::kUnchecked) table_.HideRows(row, row, true);
      // With the header cell of column 0, which the clearing of the filters' marks does not reach.
      table_.InitRange(table_.range(), 0, row, table_.NumCols(), row);
      table_.SetStyleRange(table_.range(), table_.style(),
                           itemChecked ? StyleMode::Remove : StyleMode::Override);
      toggleBin(bin, itemChecked);
    }
    exclusion_.CalcExcluded();
    lock.restore();
    hourglass.restore();
  });
}

// The one menu item toggles whichever of the two flags decides the bin.
void ManualExclusion::toggleBin(std::int32_t bin, bool itemChecked) {
  const std::size_t i = bins_.at(bin);
  if (bins_.m_abAutoExcluded[i] != 0) {
    bins_.m_abManualIncluded[i] = itemChecked ? 1 : 0;
  } else {
    bins_.m_abManualExcluded[i] = itemChecked ? 0 : 1;
  }
}

void ManualExclusion::mnuExcludeColumn_Click() {
  page_.frame.handler("mnuExcludeColumn_Click", [&] {
    const auto selected = table_.GetSelected(1, 1);
    if (selected->Count() == 0) return;
    Hourglass hourglass(page_.platform());
    UpdateLock lock(table_.grid());
    table_.style().Free();
    table_.style().SetInterior(kExcludedGrey);
    const bool itemChecked = controls_.menus.mnuExcludeColumn.Checked;
    for (const std::int32_t col : *selected) {
      const std::string key = ExcludeColumn(col, !itemChecked);
      if (leadingNumber(key) >= 0) continue;  // bin information columns are never grey
      table_.InitRange(table_.range(), col, 0, col, table_.NumRows());
      table_.SetStyleRange(table_.range(), table_.style(),
                           itemChecked ? StyleMode::Remove : StyleMode::Override);
    }
    exclusion_.CalcExcluded();
    lock.restore();
    hourglass.restore();
  });
}

std::string ManualExclusion::ExcludeColumn(std::int32_t col, bool exclude) {
  return page_.frame.procedure("ExcludeColumn", [&] {
    const std::string key = table_.Key(col);
    const auto column = table_.ColumnSet(key)->Columns.Item(key);
    column->IsVisible = !exclude;
    const double number = leadingNumber(key);
    if (number < 0) column->IsExcluded = exclude;
    if (number > 0 || controls_.chkShowExcluded.Value == ui::kUnchecked) table_.HideCols(col, col, exclude);
    return key;
  });
}

void ManualExclusion::SwapVisibleExcluded(bool reposition) {
  page_.frame.procedure("SwapVisibleExcluded", [&] {
    if (leadingNumber(table_.Key(table_.m_lMenuCol)) >= 0) return;
    for (const auto& column : page_.analysis().SampleGrid->Columns) {
      const bool visible = column->IsVisible;
      const bool excluded = column->IsExcluded;
      column->IsExcluded = !visible;
      column->IsVisible = !excluded;
      if (reposition) column->ColumnOrder = column->ColumnOrder + table_.m_lFirstSampleCol - 1;
    }
  });
}

// Sample columns do not count: their exclusion is stored with the column and survives a new analysis.
bool ManualExclusion::AnyManualExclusions() const {
  return page_.frame.procedure("AnyManualExclusions (Get)", [&] {
    for (std::int32_t bin = 1; bin <= bins_.m_lBinCount; ++bin) {
      const std::size_t i = bins_.at(bin);
      if (bins_.m_abManualExcluded[i] != 0 || bins_.m_abManualIncluded[i] != 0) return true;
    }
    return false;
  });
}

}  // namespace banddesk
