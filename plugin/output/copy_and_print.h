// The visible table for the clipboard, the printer and a spreadsheet. All three work on the live grid: they
// add the parameter lines, let the grid do its work and rebuild the table by a new analysis. So decisions
// about bins made by hand are asked for and then lost.
#pragma once

#include <string>

#include "plugin/analysis/analyze.h"
#include "plugin/table/grid_fill.h"

namespace banddesk {

class CopyAndPrint {
 public:
  CopyAndPrint(PageContext& page, LogicalTable& table, SampleLabels& labels, GridFill& fill,
               Analysis& analysis)
      : page_(page), table_(table), labels_(labels), fill_(fill), analysis_(analysis) {}

  void CopyGrid();
  void PrintGrid(bool color);
  void ExportExcel(const std::string& fileName);

 private:
  void removeHiddenRows(std::int32_t last);
  void removeHiddenColumns();
  void rebuildTable();

  PageContext& page_;
  LogicalTable& table_;
  SampleLabels& labels_;
  GridFill& fill_;
  Analysis& analysis_;
};

}  // namespace banddesk
