#include "host/framework/finished_table.h"

#include <algorithm>

#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::host {
namespace {

constexpr std::int32_t kAnyBinColumn = 1;  // grey with its row alone; a sample's column may be grey itself
constexpr ui::Colour kExcludedGrey = 0xC0C0C0;

}  // namespace

FinishedTable::FinishedTable(const AFLP& analysis, IAFLPResultsPage& page)
    : analysis_(analysis),
      page_(page),
      base_(cast<HostPageBase>(page.Page(), "PageBase")),
      resultCount_(analysis.Results.Count()),
      filtersFullBins_(isChecked(names::kExcludeFullBins)) {
  firstBins_[0] = 1;
  for (std::size_t dye = 0; dye < kDyeCount; ++dye) {
    const auto* const calculator = calculatorOfDye(static_cast<std::int32_t>(dye));
    firstBins_[dye + 1] = firstBins_[dye] + (calculator != nullptr ? calculator->own().BinCount() : 0);
    isDyeChecked_[dye] = isChecked(names::element(names::kDye, dye));
  }
  std::int32_t result = 0;
  for (const auto& column : analysis.SampleGrid->Columns) {
    if (!column->IsExcluded && !column->IsAutoExcluded) remaining_.push_back(result);
    ++result;
  }
}

double FinishedTable::maxBinWidth() const {
  return base_->calculators().empty() ? 0 : base_->calculators().front()->maxBinWidth();
}

double FinishedTable::yThreshold() const {
  return base_->calculators().empty() ? 0 : base_->calculators().front()->yThreshold();
}

const GuardedCalculator* FinishedTable::calculatorOfDye(std::int32_t dye) const {
  const auto& all = base_->calculators();
  const auto found = std::ranges::find_if(all, [&](const auto& each) { return each->dye() == dye; });
  return found == all.end() ? nullptr : found->get();
}

std::int32_t FinishedTable::dyeOf(std::int32_t bin) const {
  if (!holds(bin)) {
    raise(ErrorNumber::SubscriptOutOfRange, "FinishedTable", "There is no bin " + integerText(bin) + ".");
  }
  return static_cast<std::int32_t>(std::ranges::upper_bound(firstBins_, bin) - firstBins_.begin()) - 1;
}

FinishedTable::ResultCells FinishedTable::cellsOf(std::int32_t bin) {
  const std::int32_t dye = dyeOf(bin);
  const std::int32_t number = bin - firstBins_[static_cast<std::size_t>(dye)];
  calculatorOfDye(dye)->own().GetResultData(number, counts_, heights_);
  return {counts_, heights_};
}

FinishedTable::OwnBin FinishedTable::ownBin(std::int32_t bin) const {
  const std::int32_t dye = dyeOf(bin);
  return {required(ownCalculator(dye), "PartitionBinCalculator"),
          bin - firstBins_[static_cast<std::size_t>(dye)]};
}

const PartitionBinCalculator* FinishedTable::ownCalculator(std::int32_t dye) const {
  const GuardedCalculator* const calculator = calculatorOfDye(dye);
  return calculator == nullptr ? nullptr : dynamic_cast<const PartitionBinCalculator*>(&calculator->own());
}

BinMark FinishedTable::markOf(std::int32_t row, std::int32_t bin) {
  const bool isFilters = isFull(bin);
  if (!isGrey(row)) return isFilters ? BinMark::BroughtBack : BinMark::None;
  return isFilters && !isStoredAsExcluded(row) ? BinMark::ExcludedByFilter : BinMark::ExcludedByHand;
}

bool FinishedTable::isStoredAsExcluded(std::int32_t row) const {
  const auto& decisions = analysis_.AFLPBins;
  if (decisions.Count() == 0) return false;
  const std::string key = page_.CellText(kDyeKey, row) + "-" + page_.CellText(kXMeanKey, row);
  return decisions.holdsKey(key) && decisions.Item(key)->ManuallyExcluded;
}

bool FinishedTable::isGrey(std::int32_t row) const {
  std::int32_t physicalRow = row;
  std::int32_t physicalCol = kAnyBinColumn;
  if (page_.Transpose()) std::swap(physicalRow, physicalCol);
  Grid& grid = required(page_.Controls().find<Grid>(names::kGrid), "Grid");
  GridStyle style;
  grid.GridParam().GetData().GetStyleRowCol(physicalRow, physicalCol, style, StyleMode::Copy, 1);
  const auto interior = style.GetInterior();
  return interior && interior->GetBkColor() == kExcludedGrey;
}

// Of the bins that the filter looks at, those in which every remaining sample has a fragment. Few bins have
// enough samples for that, so the cells are hardly ever read.
bool FinishedTable::isFull(std::int32_t bin) {
  const std::int32_t dye = dyeOf(bin);
  const auto place = static_cast<std::size_t>(dye);
  if (!filtersFullBins_ || !isDyeChecked_[place]) return false;
  const std::int32_t samples = calculatorOfDye(dye)->own().SampleCount(bin - firstBins_[place]);
  if (static_cast<std::size_t>(samples) < remaining_.size()) return false;
  const auto counts = cellsOf(bin).counts;
  return std::ranges::all_of(remaining_, [&](std::int32_t result) {
    return static_cast<std::size_t>(result) < counts.size() && counts[static_cast<std::size_t>(result)] != 0;
  });
}

bool FinishedTable::isChecked(const std::string& box) const {
  return required(page_.Controls().find<ui::CheckBox>(box), "CheckBox").Value == ui::kChecked;
}

}  // namespace banddesk::host
