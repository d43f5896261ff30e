// The sample cells of the table from the data of its bins, in the three display modes, and the finished table
// as records for outside callers. The statistics of whole bins are the calculator's; here they are only read
// back from the grid.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "plugin/table/bin_table.h"
#include "plugin/table/column_sizing.h"
#include "plugin/table/logical_table.h"
#include "plugin/table/pending_commands.h"
#include "plugin/table/styles.h"

namespace banddesk {

class BinStatistics {
 public:
  BinStatistics(PageContext& page, LogicalTable& table, BinTable& bins, Styles& styles, ColumnSizing& sizing,
                PendingCommands& pending)
      : page_(page), table_(table), bins_(bins), styles_(styles), sizing_(sizing), pending_(pending) {}

  static constexpr std::int32_t kRefresh = -1;

  // The logical columns of the results, by result index; 0 for a result that has none. Made once per pass.
  std::vector<std::int32_t> resultColumns() const;

  // Writes the sample cells of one row from a bin's counts and heights, which it stores, or, with kRefresh,
  // from what is stored for the row's bin; styles then stay. A count of 0 leaves its cell alone.
  void CalcBin(std::int32_t row, std::int32_t bin, std::span<const std::int32_t> counts,
               std::span<const double> heights, std::span<const std::int32_t> columns);
  // All sample cells anew, after the display mode changed.
  void CalcAFLP();

  std::shared_ptr<Collection<std::shared_ptr<Bin>>> Bins();
  std::shared_ptr<Collection<std::shared_ptr<AFLPStudyResult>>> AFLPStudyResults();

 private:
  void storeBin(std::int32_t bin, std::span<const std::int32_t> counts, std::span<const double> heights);
  void findFilled(std::span<const std::int32_t> counts);
  void raiseMissingColumn(std::int32_t result) const;
  std::shared_ptr<Bin> binOfRow(std::int32_t row);
  void addResults(Bin& record, std::int32_t bin);

  PageContext& page_;
  LogicalTable& table_;
  BinTable& bins_;
  Styles& styles_;
  ColumnSizing& sizing_;
  PendingCommands& pending_;
  std::vector<LineCell> line_;         // reused from row to row
  std::vector<std::uint32_t> filled_;  // the results of the bin at hand that have a fragment
};

}  // namespace banddesk
