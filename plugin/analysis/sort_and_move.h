// Sorting the table by a column or by a bin's row, and moving columns by dragging. Column order and sort
// state live in the columns of the analysis, so they are saved with it.
#pragma once

#include <cstdint>

#include "plugin/analysis/exclusion.h"
#include "plugin/table/column_sizing.h"
#include "plugin/table/logical_table.h"
#include "plugin/table/page_controls.h"

namespace banddesk {

class SortAndMove {
 public:
  SortAndMove(PageContext& page, LogicalTable& table, PageControls& controls, ColumnSizing& sizing,
              Exclusion& exclusion)
      : page_(page), table_(table), controls_(controls), sizing_(sizing), exclusion_(exclusion) {}

  std::int32_t m_lSortedRow = 0;       // the bin whose row was sorted last
  std::int32_t m_lSortedRowOrder = 0;  // direction of that sort

  void SortRow(std::int32_t row);
  void SortCol(std::int32_t col);
  // Applies the sort state stored in the layouts.
  void SortCols();
  // Takes the sort priority of all columns but the one at `except`.
  void ClearSortOrder(const std::shared_ptr<GridLayout>& layout, std::int32_t except);
  // Records that the logical columns first..last now stand in front of target; the grid has moved them.
  void MoveCols(std::int32_t first, std::int32_t last, std::int32_t target);

  void grdAFLP_OnSelDragColsStart(double first, double last, double& value);
  void grdAFLP_OnSelDragColsMove(double first, double last, double target, double& value);
  void grdAFLP_OnSelDragColsDrop(double first, double last, double target);
  void grdAFLP_OnSelDragRowsStart(double first, double last, double& value);
  void grdAFLP_OnSelDragRowsMove(double first, double last, double target, double& value);
  void grdAFLP_OnSelDragRowsDrop(double first, double last, double target);

 private:
  void sortSampleBlock(std::int32_t row);
  void storeSampleOrder();
  bool mayDrag(double first, double last) const;
  bool mayDrop(double first, double target) const;
  void drop(double first, double last, double target);

  PageContext& page_;
  LogicalTable& table_;
  PageControls& controls_;
  ColumnSizing& sizing_;
  Exclusion& exclusion_;
};

}  // namespace banddesk
