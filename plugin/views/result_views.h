// The raw data behind the selected samples, in the host's own pages: one window a sample, or one graph of
// many.
#pragma once

#include <string>

#include "plugin/table/logical_table.h"

namespace banddesk {

class ResultViews {
 public:
  ResultViews(PageContext& page, LogicalTable& table) : page_(page), table_(table) {}

  void SingleResult();
  void EgramView(bool overlay);

 private:
  void OpenSingleResultWindow(const std::string& key);

  PageContext& page_;
  LogicalTable& table_;
};

}  // namespace banddesk
