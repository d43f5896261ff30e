// The labels of the sample columns: a number while samples run along columns, a number and a shortened name
// while they run along rows. A name may end in a suffix of fifteen characters that holds a well and a time
// stamp (".A01_12345678AB"); the user decides which of the two stays.
#pragma once

#include <string>
#include <string_view>

#include "plugin/table/column_sizing.h"
#include "plugin/table/logical_table.h"
#include "plugin/table/page_controls.h"
#include "plugin/table/pending_commands.h"

namespace banddesk {

class SampleLabels {
 public:
  SampleLabels(PageContext& page, LogicalTable& table, PageControls& controls, ColumnSizing& sizing,
               PendingCommands& pending)
      : page_(page), table_(table), controls_(controls), sizing_(sizing), pending_(pending) {}

  void SetSampleAbbreviations(bool withName, bool numbered);
  std::string ParseText(std::string_view text) const;
  void ShowSuffix();

  // True for every character: the places of the suffix so marked accept anything. Error 5 for the empty text.
  bool IsAlphaNumeric(std::string_view text) const;
  // One character a line, up to the first "_". Stays available; nothing uses it.
  std::string VerticalText(std::string_view text) const;

 private:
  bool isSuffix(const std::vector<std::string_view>& suffix) const;

  PageContext& page_;
  LogicalTable& table_;
  PageControls& controls_;
  ColumnSizing& sizing_;
  PendingCommands& pending_;
};

}  // namespace banddesk
