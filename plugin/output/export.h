// The export of the grid to a file that the user names: it asks for name and type and hands over to the
// writer.
#pragma once

#include <string>

#include "plugin/output/csv_export.h"
#include "plugin/output/ntsys_export.h"
#include "plugin/table/page_controls.h"

namespace banddesk {

class Export {
 public:
  Export(PageContext& page, LogicalTable& table, PageControls& controls, CsvExport& csv, NtsysExport& ntsys)
      : page_(page), table_(table), controls_(controls), csv_(csv), ntsys_(ntsys) {}

  void run();

 private:
  // The chosen path; empty if the user cancelled or the dialog failed.
  std::string GetExportFileName(const std::string& filter);

  PageContext& page_;
  LogicalTable& table_;
  PageControls& controls_;
  CsvExport& csv_;
  NtsysExport& ntsys_;
  bool wasAsked_ = false;  // from the second time on the dialog stays in the folder used last
};

}  // namespace banddesk
