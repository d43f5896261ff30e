// The right click, which picks one of three menus by its place and prepares their items, and the double click
// on a header, which sorts.
#pragma once

#include "plugin/analysis/sort_and_move.h"
#include "plugin/table/bin_table.h"
#include "plugin/table/column_sizing.h"
#include "plugin/table/logical_table.h"
#include "plugin/table/page_controls.h"

namespace banddesk {

class MouseAndMenus {
 public:
  MouseAndMenus(PageContext& page, LogicalTable& table, PageControls& controls, BinTable& bins,
                SortAndMove& sort, ColumnSizing& sizing)
      : page_(page), table_(table), controls_(controls), bins_(bins), sort_(sort), sizing_(sizing) {}

  void grdAFLP_OnRButtonClickedRowCol(double row, double col);
  void grdAFLP_OnLButtonDblClkRowCol(double row, double col);
  void mnuLockColumn_Click();
  void mnuSortColumn_Click();
  void mnuSortBin_Click();

 private:
  bool isSampleSelected() const;
  void prepareViewItems();
  void prepareColumnItems();
  void popUp();

  PageContext& page_;
  LogicalTable& table_;
  PageControls& controls_;
  BinTable& bins_;
  SortAndMove& sort_;
  ColumnSizing& sizing_;
};

}  // namespace banddesk
