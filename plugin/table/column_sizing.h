// Widths of the columns: stored or fitted to content. Holds the small state machine that keeps the grid's own
// dragging of widths, double clicks and the stored width in step: press, track, track end, release.
#pragma once

#include <cstdint>

#include "plugin/table/logical_table.h"

namespace banddesk {

class ColumnSizing {
 public:
  ColumnSizing(PageContext& page, LogicalTable& table) : page_(page), table_(table) {}

  std::int32_t m_lTrackedCol = -1;  // physical column whose track ended and is not yet applied; -1 for none
  bool m_bTrackEnded = false;       // since the last press; a double click that ends a drag does not sort
  bool m_bResizeApplied = false;    // the next track start is refused
  bool m_bPressState = false;       // the grid's at the last press; refuses the next track start

  void ResizeCols();
  void ResizeCol(std::int32_t col);  // physical

  void grdAFLP_OnLButtonDown();
  void grdAFLP_OnTrackColWidth(double col, double& value);
  void grdAFLP_OnTrackColWidthEnd(double col, double width);
  void grdAFLP_OnLButtonUp();

 private:
  void ResizeColumnSet(const GridLayout* layout);
  void fitColumns(std::int32_t first, std::int32_t last);
  void fitPhysicalColumn(std::int32_t col);

  PageContext& page_;
  LogicalTable& table_;
};

}  // namespace banddesk
