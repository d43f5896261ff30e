#include "host/binning/gap_bin_calculator.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "host/binning/gap_tree.h"
#include "plugin/base/error.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {

void GapBinCalculator::AddFragments(std::int32_t resultIndex, std::int32_t, const FragmentTable& fragments,
                                    std::int16_t dye, std::int32_t, std::int32_t) {
  if (resultIndex < 0) {
    raise(ErrorNumber::SubscriptOutOfRange, "BinCalculator",
          "There is no result index " + integerText(resultIndex) + ".");
  }
  const DyeFragments given = fragments.OfDye(dye);
  if (given.sizes.size() != given.heights.size()) {
    raise(ErrorNumber::InvalidArgument, "BinCalculator",
          "The fragments of a dye have different numbers of sizes and heights.");
  }
  resultCount_ = std::max(resultCount_, resultIndex + 1);
  for (std::size_t i = 0; i < given.sizes.size(); ++i) {
    if (!std::isfinite(given.sizes[i]) || !std::isfinite(given.heights[i])) continue;
    fragments_.push_back({given.sizes[i], given.heights[i], resultIndex});
    isSorted_ = false;
  }
}

void GapBinCalculator::Calculate() {
  bins_.clear();
  calculatedThreshold_ = yThreshold_;
  sortFragments();
  const std::vector<SizeGroup> groups = groupSizes();
  if (groups.empty()) return;

  const GapTree gaps(groups.size() - 1, [&](std::size_t i) { return groups[i + 1].size - groups[i].size; });
  std::vector<std::int32_t> lastBinOfResult(static_cast<std::size_t>(resultCount_), -1);
  gaps.part([&](std::size_t first,
                std::size_t last) { return groups[last].size - groups[first].size > maxBinWidth_; },
            [&](std::size_t first, std::size_t last) { addBin(groups, first, last, lastBinOfResult); });
  bins_.shrink_to_fit();
}

// The whole order is fixed, heights included, so that sums come out the same however the fragments came.
void GapBinCalculator::sortFragments() {
  if (isSorted_) return;
  std::sort(fragments_.begin(), fragments_.end(), [](const Fragment& a, const Fragment& b) {
    if (a.size != b.size) return a.size < b.size;
    return std::tie(a.result, a.height) < std::tie(b.result, b.height);
  });
  fragments_.shrink_to_fit();
  isSorted_ = true;
}

std::vector<GapBinCalculator::SizeGroup> GapBinCalculator::groupSizes() const {
  std::vector<SizeGroup> groups;
  for (std::size_t i = 0; i < fragments_.size(); ++i) {
    if (!qualifies(fragments_[i])) continue;
    if (groups.empty() || groups.back().size != fragments_[i].size) groups.push_back({fragments_[i].size, i});
  }
  return groups;
}

void GapBinCalculator::addBin(const std::vector<SizeGroup>& groups, std::size_t first, std::size_t last,
                              std::vector<std::int32_t>& lastBinOfResult) {
  Bin bin{};
  bin.begin = groups[first].begin;
  bin.end = last + 1 < groups.size() ? groups[last + 1].begin : fragments_.size();
  bin.xMin = groups[first].size;
  bin.xMax = groups[last].size;

  const std::int32_t number = BinCount();
  double sizes = 0;
  double heights = 0;
  for (std::size_t i = bin.begin; i < bin.end; ++i) {
    const Fragment& fragment = fragments_[i];
    if (!qualifies(fragment)) continue;
    ++bin.fragmentCount;
    sizes += fragment.size;
    heights += fragment.height;
    std::int32_t& lastBin = lastBinOfResult[static_cast<std::size_t>(fragment.result)];
    if (lastBin != number) ++bin.sampleCount;
    lastBin = number;
  }
  // Rounding must not carry the mean of equal sizes out of the bin.
  bin.xMean = std::clamp(sizes / bin.fragmentCount, bin.xMin, bin.xMax);
  bin.yMean = heights / bin.fragmentCount;

  double squares = 0;
  for (std::size_t i = bin.begin; i < bin.end; ++i) {
    if (!qualifies(fragments_[i])) continue;
    const double deviation = fragments_[i].size - bin.xMean;
    squares += deviation * deviation;
  }
  bin.xVariance = squares / bin.fragmentCount;
  bins_.push_back(bin);
}

void GapBinCalculator::GetResultData(std::int32_t bin, std::vector<std::int32_t>& counts,
                                     std::vector<double>& heights) const {
  const Bin& wanted = at(bin);
  counts.assign(static_cast<std::size_t>(resultCount_), 0);
  heights.assign(static_cast<std::size_t>(resultCount_), 0.0);
  for (std::size_t i = wanted.begin; i < wanted.end; ++i) {
    const Fragment& fragment = fragments_[i];
    if (!qualifies(fragment)) continue;
    const auto result = static_cast<std::size_t>(fragment.result);
    ++counts[result];
    heights[result] = std::max(heights[result], fragment.height);
  }
}

const GapBinCalculator::Bin& GapBinCalculator::at(std::int32_t bin) const {
  if (bin < 0 || bin >= BinCount()) {
    raise(ErrorNumber::SubscriptOutOfRange, "BinCalculator", "There is no bin " + integerText(bin) + ".");
  }
  return bins_[static_cast<std::size_t>(bin)];
}

}  // namespace banddesk::host
