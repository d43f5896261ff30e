// What the text writers share: statements on files that the user may retry, and the small helpers of both
// formats.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "plugin/table/logical_table.h"
#include "plugin/table/sample_labels.h"

namespace banddesk {

class FileExport {
 public:
  FileExport(PageContext& page, LogicalTable& table, SampleLabels& labels)
      : page_(page), table_(table), labels_(labels) {}

  // Runs one statement on a file. If the file is held by another program the user may retry it; false if not.
  // Other failures go on.
  bool attempt(const std::string& fileName, const std::function<void()>& statement) const;
  // Runs the body; if it fails, closes the file, whatever comes of that, and lets the failure go on.
  void closingOnFailure(std::int32_t number, const std::function<void()>& body) const;

  std::string FilterText(std::string_view text) const;
  std::int32_t VisibleBinCount() const;
  std::int32_t VisibleSampleCount() const;

 private:
  PageContext& page_;
  LogicalTable& table_;
  SampleLabels& labels_;
};

}  // namespace banddesk
