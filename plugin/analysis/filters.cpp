// The two filters and the hiding of dyes.
#include <algorithm>

#include "plugin/analysis/exclusion.h"

namespace banddesk {

bool Exclusion::IsValidBin(std::int32_t bin) const {
  return page_.frame.procedure("IsValidBin", [&] {
    const std::size_t i = bins_.at(bin);
    return bins_.m_abManualExcluded[i] == 0 && bins_.m_abAutoExcluded[i] == 0 &&
           controls_.dyeValue(bins_.m_aiBinDye[i]) != ui::kUnchecked;
  });
}

void Exclusion::CalcExcluded() {
  page_.frame.procedure("CalcExcluded", [&] {
    if (!page_.m_bInitialized) return;
    CalcSuppressed(SuppressMode::Clear);
    bool again = true;
    while (again) {
      bool changed = false;
      HideFullBins(changed);
      HideEmptySamples(changed);
      const std::int32_t both = controls_.chkExcludeEmptySamples.Value & controls_.chkExcludeFullBins.Value;
      again = changed && both != 0;
    }
    CalcSuppressed(SuppressMode::Apply);
    sizing_.ResizeCols();
    pending_.clear(kPendingCalcExcluded | kPendingShowExcluded);
  });
}

// By result index: whether the sample's column is excluded neither by hand nor by the filter.
std::vector<std::uint8_t> Exclusion::remainingSamples() const {
  const auto& columns = page_.analysis().SampleGrid->Columns;
  std::vector<std::uint8_t> remaining;
  remaining.reserve(static_cast<std::size_t>(columns.Count()));
  for (const auto& column : columns) {
    remaining.push_back(!column->IsExcluded && !column->IsAutoExcluded ? 1 : 0);
  }
  return remaining;
}

bool Exclusion::isFull(std::int32_t bin, const std::vector<std::uint8_t>& remaining) const {
  const auto counts = std::as_const(bins_).fragmentCounts(bin);
  for (std::size_t i = 0; i < remaining.size(); ++i) {
    if (remaining[i] != 0 && counts[bins_.resultAt(static_cast<std::int32_t>(i))] == 0) return false;
  }
  return true;
}

void Exclusion::HideFullBins(bool& changed) {
  page_.frame.procedure("HideFullBins", [&] {
    if (controls_.chkExcludeFullBins.Value == ui::kUnchecked) return;
    const auto remaining = remainingSamples();
    for (const std::int32_t bin : table_.binsOfRows()) {
      if (!IsValidBin(bin) || !isFull(bin, remaining)) continue;
      bins_.m_abAutoExcluded[bins_.at(bin)] = 1;
      changed = true;
    }
  });
}

// By result index: whether no valid bin has a fragment of the sample. Bin by bin, along the lines of the
// counts, until every sample is known to have one.
std::vector<std::uint8_t> Exclusion::emptySamples(const std::vector<std::uint8_t>& remaining) const {
  std::vector<std::uint8_t> empty(remaining.size(), 1);
  for (const std::int32_t bin : table_.binsOfRows()) {
    if (!IsValidBin(bin)) continue;
    const auto counts = std::as_const(bins_).fragmentCounts(bin);
    const std::size_t length = std::min(empty.size(), counts.size());
    std::uint8_t left = 0;
    for (std::size_t i = 0; i < length; ++i) {
      empty[i] &= static_cast<std::uint8_t>(counts[i] <= 0);
      left |= empty[i];
    }
    for (std::size_t i = length; i < empty.size(); ++i) {
      if (remaining[i] != 0)
        bins_.resultAt(static_cast<std::int32_t>(i));  // a column without a result: error 9
    }
    if (left == 0 && length == empty.size()) break;
  }
  return empty;
}

void Exclusion::HideEmptySamples(bool& changed) {
  page_.frame.procedure("HideEmptySamples", [&] {
    if (controls_.chkExcludeEmptySamples.Value == ui::kUnchecked) return;
    const auto remaining = remainingSamples();
    const auto empty = emptySamples(remaining);
    std::size_t i = 0;
    for (const auto& column : page_.analysis().SampleGrid->Columns) {
      if (remaining[i] != 0 && empty[i] != 0) {
        column->IsAutoExcluded = true;
        changed = true;
      }
      ++i;
    }
  });
}

void Exclusion::HideDyes(std::int32_t dye) {
  page_.frame.procedure("HideDyes", [&] {
    const bool showExcluded = controls_.chkShowExcluded.Value != ui::kUnchecked;
    std::int32_t row = 0;
    for (const std::int32_t bin : table_.binsOfRows()) {
      ++row;
      const std::size_t i = bins_.at(bin);
      if (dye >= 0 && dye != bins_.m_aiBinDye[i]) continue;
      const bool excluded = bins_.m_abAutoExcluded[i] != 0 || bins_.m_abManualExcluded[i] != 0;
      table_.HideRows(row, row, excluded && !showExcluded ? true : hidesDye(bin));
    }
  });
}

}  // namespace banddesk
