#include "plugin/results/mouse_and_menus.h"

#include "plugin/base/numbers.h"

namespace banddesk {
namespace {

constexpr std::int32_t kColumns = 1;
constexpr std::int32_t kIndexes = 1;

}  // namespace

void MouseAndMenus::grdAFLP_OnRButtonClickedRowCol(double row, double col) {
  page_.frame.handler("grdAFLP_OnRButtonClickedRowCol", [&] {
    table_.m_lMenuCol = roundToLong(col);
    table_.m_lMenuRow = roundToLong(row);
    table_.Translate(table_.m_lMenuRow, table_.m_lMenuCol);
    prepareViewItems();
    prepareColumnItems();
    popUp();
  });
}

bool MouseAndMenus::isSampleSelected() const {
  const auto selected = table_.GetSelected(kColumns, kIndexes);
  for (const std::int32_t col : *selected) {
    if (col >= table_.m_lFirstSampleCol) return true;
  }
  return false;
}

void MouseAndMenus::prepareViewItems() {
  PageMenus& menus = controls_.menus;
  const bool enabled = isSampleSelected();
  for (ui::MenuItem* item : {&menus.mnuSingleCell, &menus.mnuSingleColumn, &menus.mnuEgramCell,
                             &menus.mnuEgramColumn, &menus.mnuOverlayCell, &menus.mnuOverlayColumn}) {
    item->Enabled = enabled;
  }
}

// The corner carries no column: its items are prepared all the same.
void MouseAndMenus::prepareColumnItems() {
  PageMenus& menus = controls_.menus;
  menus.mnuLockColumn.Checked = table_.LockedCol() == table_.m_lMenuCol;
  const std::string key = table_.Key(table_.m_lMenuCol);
  const auto& columns = table_.ColumnSet(key)->Columns;
  menus.mnuExcludeColumn.Checked =
      page_.framework().ItemExists(columns, key) && columns.Item(key)->IsExcluded.get();
  menus.mnuExcludeColumn.Caption = leadingNumber(key) < 0 ? "&Exclude Column" : "&Hide Column";
}

void MouseAndMenus::popUp() {
  PageMenus& menus = controls_.menus;
  ui::Platform& platform = page_.platform();
  if (table_.m_lMenuRow == 0) {
    platform.ShowPopup(menus.mnuColumn, &menus.mnuSortColumn);
  } else if (table_.m_lMenuCol == 1) {
    menus.mnuExcludeBin.Checked = bins_.isSuppressed(table_.Bin(table_.m_lMenuRow));
    platform.ShowPopup(menus.mnuRow, &menus.mnuSortBin);
  } else if (table_.m_lMenuCol > 1) {
    platform.ShowPopup(menus.mnuCell, nullptr);
  }
}

void MouseAndMenus::grdAFLP_OnLButtonDblClkRowCol(double row, double col) {
  page_.frame.handler("grdAFLP_OnLButtonDblClkRowCol", [&] {
    std::int32_t logicalRow = roundToLong(row);
    std::int32_t logicalCol = roundToLong(col);
    table_.Translate(logicalRow, logicalCol);
    if (sizing_.m_bTrackEnded) return;  // the double click ended a width drag
    if (logicalRow == 0) {
      sort_.SortCol(logicalCol);
    } else if (logicalCol == 1) {
      sort_.SortRow(logicalRow);
    }
  });
}

void MouseAndMenus::mnuLockColumn_Click() {
  page_.frame.handler("mnuLockColumn_Click", [&] {
    table_.SetLockedCol(controls_.menus.mnuLockColumn.Checked ? 0 : table_.m_lMenuCol);
  });
}

void MouseAndMenus::mnuSortColumn_Click() {
  page_.frame.handler("mnuSortColumn_Click", [&] { sort_.SortCol(table_.m_lMenuCol); });
}

void MouseAndMenus::mnuSortBin_Click() {
  page_.frame.handler("mnuSortBin_Click", [&] { sort_.SortRow(table_.m_lMenuRow); });
}

}  // namespace banddesk
