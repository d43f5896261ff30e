// What excluded bins and samples do to the table. Three words are kept apart:
// - excluded: a bin or sample is marked, by hand or by a filter;
// - suppressed: the exclusion is in force: for bins after the user's overrides, for samples if either mark is
//   set;
// - hidden: the grid does not show the row or column. Suppressed elements are grey, and hidden only while
//   excluded elements are not shown; rows of unchecked dyes are hidden and not grey.
//
// Two filters mark: bins in which every remaining sample has a fragment, and samples without a fragment in
// any remaining bin. Each changes what the other sees, so with both on they take turns until nothing changes.
#pragma once

#include <cstdint>
#include <vector>

#include "plugin/table/bin_table.h"
#include "plugin/table/column_sizing.h"
#include "plugin/table/logical_table.h"
#include "plugin/table/page_controls.h"
#include "plugin/table/pending_commands.h"

namespace banddesk {

enum class SuppressMode : std::int32_t {
  Clear = 0,  // takes all marks of the filters, ungreys and unhides
  Show = 1,   // hides or shows what is suppressed, no colour changes
  Apply = 2,  // greys what is suppressed, hides it if need be, hides rows of unchecked dyes
};

class Exclusion {
 public:
  Exclusion(PageContext& page, LogicalTable& table, BinTable& bins, PageControls& controls,
            ColumnSizing& sizing, PendingCommands& pending)
      : page_(page), table_(table), bins_(bins), controls_(controls), sizing_(sizing), pending_(pending) {}

  void CalcExcluded();
  void CalcSuppressed(SuppressMode mode);
  void ShowExcluded();
  // Applies the hidden state of rows again after a sort. A negative dye stands for all. It looks at the
  // filter's mark alone: a bin brought back by hand is hidden by it.
  void HideDyes(std::int32_t dye);

 private:
  // Neither mark is set and the bin's dye is not unchecked. A bin brought back by hand counts as invalid
  // while the filter's mark holds.
  bool IsValidBin(std::int32_t bin) const;
  void HideFullBins(bool& changed);
  void HideEmptySamples(bool& changed);
  std::vector<std::uint8_t> remainingSamples() const;
  std::vector<std::uint8_t> emptySamples(const std::vector<std::uint8_t>& remaining) const;
  bool isFull(std::int32_t bin, const std::vector<std::uint8_t>& remaining) const;
  bool hidesDye(std::int32_t bin) const;

  void clearMarks();
  void suppressRows(SuppressMode mode, bool hideExcluded);
  void suppressColumns(SuppressMode mode, bool hideExcluded);

  PageContext& page_;
  LogicalTable& table_;
  BinTable& bins_;
  PageControls& controls_;
  ColumnSizing& sizing_;
  PendingCommands& pending_;
};

}  // namespace banddesk
