// A comma-separated copy of the grid as it is shown, physical rows and columns, the parameter lines below.
// Fields are quoted and nothing inside them is escaped: it is a copy of the screen, not an exchange format.
#pragma once

#include <string>

#include "plugin/output/file_export.h"
#include "plugin/table/grid_fill.h"

namespace banddesk {

class CsvExport {
 public:
  CsvExport(PageContext& page, LogicalTable& table, SampleLabels& labels, GridFill& fill, FileExport& files)
      : page_(page), table_(table), labels_(labels), fill_(fill), files_(files) {}

  void ExportCSV(const std::string& fileName);

 private:
  bool writeFile(const std::string& fileName, std::int32_t number);
  bool writeRow(const std::string& fileName, std::int32_t number, std::int32_t row, std::int32_t firstCol);

  PageContext& page_;
  LogicalTable& table_;
  SampleLabels& labels_;
  GridFill& fill_;
  FileExport& files_;
  std::string line_;  // reused from row to row
};

}  // namespace banddesk
