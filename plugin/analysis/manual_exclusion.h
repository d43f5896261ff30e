// The user's hand over the filters: excluding bins and samples, bringing back bins that a filter excluded,
// and hiding bin information columns.
#pragma once

#include <cstdint>
#include <string>

#include "plugin/analysis/exclusion.h"

namespace banddesk {

class ManualExclusion {
 public:
  ManualExclusion(PageContext& page, LogicalTable& table, BinTable& bins, PageControls& controls,
                  Exclusion& exclusion)
      : page_(page), table_(table), bins_(bins), controls_(controls), exclusion_(exclusion) {}

  void mnuExcludeBin_Click();
  void mnuExcludeColumn_Click();
  // Returns the column's key.
  std::string ExcludeColumn(std::int32_t col, bool exclude);
  // The host's column selector edits visibility; for samples the user is to edit exclusion with it, so the
  // two meanings change places while it is open.
  void SwapVisibleExcluded(bool reposition);
  bool AnyManualExclusions() const;

 private:
  void toggleBin(std::int32_t bin, bool itemChecked);

  PageContext& page_;
  LogicalTable& table_;
  BinTable& bins_;
  PageControls& controls_;
  Exclusion& exclusion_;
};

}  // namespace banddesk
