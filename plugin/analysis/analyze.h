// The run of an analysis: it gives the two parameters to one calculator per dye, lays the bins out as rows
// dye after dye, and then restores the user's decisions, applies the filters and sorts. The grouping of
// fragments is the calculators'.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include "plugin/analysis/bin_persistence.h"
#include "plugin/analysis/bin_statistics.h"
#include "plugin/analysis/exclusion.h"
#include "plugin/analysis/manual_exclusion.h"
#include "plugin/analysis/sort_and_move.h"
#include "plugin/table/bin_table.h"
#include "plugin/table/styles.h"

namespace banddesk {

class Analysis {
 public:
  Analysis(PageContext& page, LogicalTable& table, BinTable& bins, Styles& styles, PageControls& controls,
           PendingCommands& pending, BinStatistics& statistics, Exclusion& exclusion, ManualExclusion& byHand,
           BinPersistence& persistence, SortAndMove& sort)
      : page_(page),
        table_(table),
        bins_(bins),
        styles_(styles),
        controls_(controls),
        pending_(pending),
        statistics_(statistics),
        exclusion_(exclusion),
        byHand_(byHand),
        persistence_(persistence),
        sort_(sort) {}

  // Nothing happens with a bad parameter, without results, or, unless forced, with unchanged parameters.
  // Where decisions made by hand would be lost, the user is asked first.
  void Analyze(bool force);

  // The calculator of a dye, made on first use. It keeps its fragments as long as the page lives.
  BinCalculator& calculator(std::int32_t dye);

 private:
  struct Columns;    // where the bin information columns stand
  struct Indicator;  // the progress of one run

  bool parametersAreValid();
  bool mustRun(bool force);
  bool mayLoseDecisions();
  void restoreParameters();
  void run();
  void calculate();
  void initSampleCells();
  void layDyes(GridStyle& style, Indicator& indicator);
  void layDye(std::int32_t dye, std::optional<Columns>& columns, GridStyle& style, Indicator& indicator);
  void layBin(std::int32_t row, std::int32_t dye, std::int32_t bin, const Columns& columns);
  void applyColumnStyles(GridStyle& style);
  void applyToColumn(const GridStyle& style, std::int32_t col, std::int32_t firstRow, std::int32_t lastRow);

  PageContext& page_;
  LogicalTable& table_;
  BinTable& bins_;
  Styles& styles_;
  PageControls& controls_;
  PendingCommands& pending_;
  BinStatistics& statistics_;
  Exclusion& exclusion_;
  ManualExclusion& byHand_;
  BinPersistence& persistence_;
  SortAndMove& sort_;

  std::array<std::shared_ptr<BinCalculator>, kDyeCount> m_aoBinCalculators;
  bool m_bWarningActive = false;
  bool m_bWarningAccepted = false;
  std::vector<std::int32_t> counts_;  // of the bin being laid
  std::vector<double> heights_;
  std::vector<std::int32_t> resultColumns_;
};

}  // namespace banddesk
