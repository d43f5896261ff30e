// The user's decisions about bins, kept with the analysis. Bins exist only in memory and are computed anew
// whenever the page opens, so a decision is found again by a text key: dye label, hyphen, mean size in full
// precision. A change of parameters that changes a bin's mean loses its decision.
#pragma once

#include <string>

#include "plugin/table/bin_table.h"
#include "plugin/table/logical_table.h"

namespace banddesk {

class BinPersistence {
 public:
  BinPersistence(PageContext& page, LogicalTable& table, BinTable& bins)
      : page_(page), table_(table), bins_(bins) {}

  // Once per page: only the first analysis of a page gets the stored decisions.
  void LoadAFLPBins();
  // Afterwards a record exists for exactly the keys of the bins marked now. A record that existed keeps its
  // flags.
  void SaveAFLPBins();

 private:
  std::string keyOfRow(std::int32_t row) const;

  PageContext& page_;
  LogicalTable& table_;
  BinTable& bins_;
  bool loaded_ = false;
};

}  // namespace banddesk
