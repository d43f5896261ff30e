// A finished analysis on its open page, as anyone outside the page reads it: which bin a row holds, what each
// result has in a bin, and which bins are excluded and why. It reads the logical table, the look of the grid,
// the columns of the analysis and the calculators that the host made for the page, and changes none of them.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/binning/partition_bin_calculator.h"
#include "host/framework/pages.h"
#include "host/study/fragments.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

// Why a bin is in the table or not. Where the filter finds a bin full that the user excluded before, the
// table looks the same as without the user; the exclusion counts as the user's once it is stored, as the
// filter's until then. BroughtBack is a bin that the filter finds full and that the user shows all the same.
enum class BinMark { None, ExcludedByFilter, ExcludedByHand, BroughtBack };

inline bool isExcluded(BinMark mark) {
  return mark == BinMark::ExcludedByFilter || mark == BinMark::ExcludedByHand;
}

class FinishedTable {
 public:
  // Page and analysis outlive it. It is valid until the page analyses again.
  FinishedTable(const AFLP& analysis, IAFLPResultsPage& page);

  // Of the last run: nt and RFU, 0 before any.
  double maxBinWidth() const;
  double yThreshold() const;
  std::int32_t binCount() const { return firstBins_.back() - 1; }
  std::int32_t resultCount() const { return resultCount_; }

  // Bins count from 1, dye after dye. A table that is half built may show a bin that is not there.
  bool holds(std::int32_t bin) const { return bin >= 1 && bin <= binCount(); }
  std::int32_t dyeOf(std::int32_t bin) const;  // 0 to 3

  // What each result has in a bin, by result index: fragments, and the largest height in RFU. Both stay valid
  // until another bin is asked for, be it for its mark.
  struct ResultCells {
    std::span<const std::int32_t> counts;
    std::span<const double> heights;
  };
  ResultCells cellsOf(std::int32_t bin);

  // The host's own calculator of a bin's dye, and the bin's number there; error 91 with another calculator.
  struct OwnBin {
    const PartitionBinCalculator& calculator;
    std::int32_t number;
  };
  OwnBin ownBin(std::int32_t bin) const;
  // Null without one.
  const PartitionBinCalculator* ownCalculator(std::int32_t dye) const;
  // Whether the table looks at a dye.
  bool looksAt(std::int32_t dye) const { return isDyeChecked_[static_cast<std::size_t>(dye)]; }

  // Of the bin that a logical row holds.
  BinMark markOf(std::int32_t row, std::int32_t bin);

 private:
  bool isGrey(std::int32_t row) const;
  bool isStoredAsExcluded(std::int32_t row) const;
  bool isFull(std::int32_t bin);
  bool isChecked(const std::string& box) const;
  const GuardedCalculator* calculatorOfDye(std::int32_t dye) const;

  const AFLP& analysis_;
  IAFLPResultsPage& page_;
  std::shared_ptr<HostPageBase> base_;
  std::int32_t resultCount_;
  std::array<std::int32_t, kDyeCount + 1> firstBins_{};  // of each dye, and one past the last
  bool filtersFullBins_;
  std::array<bool, kDyeCount> isDyeChecked_{};
  std::vector<std::int32_t> remaining_;  // result indexes of the samples that are not excluded
  std::vector<std::int32_t> counts_;
  std::vector<double> heights_;
};

}  // namespace banddesk::host
