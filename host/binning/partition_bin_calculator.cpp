#include "host/binning/partition_bin_calculator.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/binning/crowding.h"
#include "host/binning/partition_search.h"
#include "host/binning/shared_samples.h"
#include "host/binning/sizing_error.h"
#include "plugin/base/error.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

// In units of log-likelihood; docs/binning.md says why these.
constexpr double kBinCost = 7;
constexpr double kRepeatCost = 10;
constexpr double kCrowdingCost = 2.5;
constexpr double kMissingCost = 5;  // of a cut that lacks a whole sample, or more, on both sides

// Of the maximum width. A bin that is just wide enough holds three standard deviations to each side; with
// less than two it could not hold a fragment.
constexpr double kLeastSigma = 1.0 / 6;
constexpr double kLargestSigma = 1.0 / 4;
// Where cuts are looked for, the noise may be as little as this, in nt, however wide a bin is allowed.
constexpr double kLeastNoise = 0.1;

constexpr std::size_t kBlock = 1024;  // fragments

constexpr std::uint32_t kNoGroup = UINT32_MAX;

// Sums of whole numbers below this are exact, in whatever order.
constexpr double kWholeLimit = 1e9;

}  // namespace

void PartitionBinCalculator::AddFragments(std::int32_t resultIndex, std::int32_t,
                                          const FragmentTable& fragments, std::int16_t dye, std::int32_t,
                                          std::int32_t) {
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
    const double size = given.sizes[i];
    const double height = given.heights[i];
    if (!std::isfinite(size) || !std::isfinite(height)) continue;
    if (added_.empty() || added_.back().size() == kBlock) added_.emplace_back().reserve(kBlock);
    added_.back().push_back({size, height, resultIndex});
    heightsAreWhole_ = heightsAreWhole_ && std::abs(height) < kWholeLimit && std::trunc(height) == height;
  }
}

void PartitionBinCalculator::Calculate() {
  bins_.clear();
  calculatedThreshold_ = yThreshold_;
  sortFragments();
  chooseSizes();
  const std::vector<SizeGroup> groups = groupSizes();
  if (groups.empty()) return;
  const std::vector<std::uint32_t> begins = binBegins(groups);
  std::vector<std::int32_t> lastBinOfResult(static_cast<std::size_t>(resultCount_), -1);
  bins_.reserve(begins.size());
  for (std::size_t i = 0; i < begins.size(); ++i) {
    const bool isLast = i + 1 == begins.size();
    addBin(groups[begins[i]], isLast ? binned().size() : groups[begins[i + 1]].begin, lastBinOfResult);
  }
}

void PartitionBinCalculator::sortFragments() {
  if (added_.empty()) return;
  if (!fragments_.empty()) added_.insert(added_.begin(), std::move(fragments_));
  fragments_ = sortedBySize(std::exchange(added_, {}));
  orderHeights(fragments_);
}

/// Sums of heights must come out the same however the fragments came.
void PartitionBinCalculator::orderHeights(std::vector<Fragment>& fragments) const {
  if (heightsAreWhole_) return;
  for (auto begin = fragments.begin(); begin != fragments.end();) {
    const auto isOther = [&](const Fragment& fragment) { return fragment.size != begin->size; };
    const auto end = std::find_if(begin + 1, fragments.end(), isOther);
    std::ranges::sort(begin, end, {}, &Fragment::height);
    begin = end;
  }
}

void PartitionBinCalculator::chooseSizes() {
  laneShifts_.clear();
  moved_.clear();
  if (!alignsLanes_) return;
  std::vector<std::vector<double>> lanes(static_cast<std::size_t>(resultCount_));
  for (const Fragment& fragment : fragments_) {
    if (qualifies(fragment)) lanes[static_cast<std::size_t>(fragment.result)].push_back(fragment.size);
  }
  laneShifts_ = alignLanes(lanes);
  FragmentBlocks moved(1, fragments_);
  for (Fragment& fragment : moved.front())
    fragment.size = laneShifts_[static_cast<std::size_t>(fragment.result)].moved(fragment.size);
  moved_ = sortedBySize(std::move(moved));
  orderHeights(moved_);
}

std::vector<SizeGroup> PartitionBinCalculator::groupSizes() const {
  SizeGrouping grouping(maxBinWidth_);
  for (std::size_t i = 0; i < binned().size(); ++i) {
    if (qualifies(binned()[i])) grouping.add(binned()[i].size, i);
  }
  return grouping.take();
}

std::vector<std::uint32_t> PartitionBinCalculator::binBegins(const std::vector<SizeGroup>& groups) const {
  const SizeDistances distances(groups, maxBinWidth_);
  const double least = kLeastSigma * maxBinWidth_, largest = kLargestSigma * maxBinWidth_;
  const SizingError error(distances, {least, largest});
  const SizingError noise(distances, {std::min(least, kLeastNoise), largest});
  const Neighbours neighbours = findNeighbours(groups);
  const std::vector<double> missing = missingSamples(groups, neighbours);
  Crowding crowding(groups);
  PartitionSearch search({.bin = kBinCost, .repeat = kRepeatCost, .maxWidth = maxBinWidth_});
  double position = 0;
  for (std::size_t number = 0; number < groups.size(); ++number) {
    double opening = 0;
    if (number > 0) {
      const double cut = (groups[number - 1].largest + groups[number].least) / 2;
      const double sigma = error.at(cut);
      if (sigma > 0) position += (groups[number].least - groups[number - 1].least) / sigma;
      opening = kCrowdingCost * crowding.before(number, cut, noise.at(cut)) +
                kMissingCost * std::clamp(missing[number], 0.0, 1.0);
    }
    search.add(groups[number], position, opening, neighbours.of(number));
  }
  return search.binBegins();
}

std::vector<double> PartitionBinCalculator::missingSamples(const std::vector<SizeGroup>& groups,
                                                           const Neighbours& neighbours) const {
  SharedSamples shared(groups, maxBinWidth_ / 2);
  for (std::uint32_t group = 0; group < groups.size(); ++group) {
    for (const std::uint32_t earlier : neighbours.of(group)) shared.add(earlier, group);
  }
  return shared.missing(static_cast<double>(neighbours.results));
}

std::span<const std::uint32_t> PartitionBinCalculator::Neighbours::of(std::size_t group) const {
  const std::size_t begin = group == 0 ? 0 : ends[group - 1];
  return std::span(earlier).subspan(begin, ends[group] - begin);
}

PartitionBinCalculator::Neighbours PartitionBinCalculator::findNeighbours(
    const std::vector<SizeGroup>& groups) const {
  Neighbours found;
  found.ends.reserve(groups.size());
  std::vector<std::uint32_t> lastGroupOfResult(static_cast<std::size_t>(resultCount_), kNoGroup);
  std::uint32_t reached = 0;  // the first group that a bin can hold together with the group at hand
  for (std::uint32_t group = 0; group < groups.size(); ++group) {
    const std::size_t end = group + 1 < groups.size() ? groups[group + 1].begin : binned().size();
    while (reached < group && isWider(groups[reached].least, groups[group].largest, maxBinWidth_)) ++reached;
    for (std::size_t i = groups[group].begin; i < end; ++i) {
      if (!qualifies(binned()[i])) continue;
      std::uint32_t& last = lastGroupOfResult[static_cast<std::size_t>(binned()[i].result)];
      if (last == kNoGroup)
        ++found.results;
      else if (last >= reached)
        found.earlier.push_back(last);
      last = group;
    }
    found.ends.push_back(found.earlier.size());
  }
  return found;
}

void PartitionBinCalculator::addBin(const SizeGroup& first, std::size_t end,
                                    std::vector<std::int32_t>& lastBinOfResult) {
  Bin bin{};
  bin.begin = first.begin;
  bin.end = end;
  bin.xMin = first.least;
  const std::int32_t number = BinCount();
  double deviations = 0, squares = 0, heights = 0;  // deviations from xMin: small numbers lose little
  for (std::size_t i = bin.begin; i < bin.end; ++i) {
    const Fragment& fragment = binned()[i];
    if (!qualifies(fragment)) continue;
    bin.xMax = fragment.size;
    ++bin.fragmentCount;
    const double deviation = fragment.size - bin.xMin;
    deviations += deviation;
    squares += deviation * deviation;
    heights += fragment.height;
    std::int32_t& lastBin = lastBinOfResult[static_cast<std::size_t>(fragment.result)];
    if (lastBin != number) ++bin.sampleCount;
    lastBin = number;
  }
  const double mean = deviations / bin.fragmentCount;
  bin.xMean = std::clamp(bin.xMin + mean, bin.xMin, bin.xMax);
  bin.xVariance = std::max(0.0, squares / bin.fragmentCount - mean * mean);
  bin.yMean = heights / bin.fragmentCount;
  bins_.push_back(bin);
}

void PartitionBinCalculator::GetResultData(std::int32_t bin, std::vector<std::int32_t>& counts,
                                           std::vector<double>& heights) const {
  const Bin& wanted = at(bin);
  counts.assign(static_cast<std::size_t>(resultCount_), 0);
  heights.assign(static_cast<std::size_t>(resultCount_), 0.0);
  for (std::size_t i = wanted.begin; i < wanted.end; ++i) {
    const Fragment& fragment = binned()[i];
    if (!qualifies(fragment)) continue;
    const auto result = static_cast<std::size_t>(fragment.result);
    heights[result] = counts[result]++ == 0 ? fragment.height : std::max(heights[result], fragment.height);
  }
}

const PartitionBinCalculator::Bin& PartitionBinCalculator::at(std::int32_t bin) const {
  if (bin < 0 || bin >= BinCount()) {
    raise(ErrorNumber::SubscriptOutOfRange, "BinCalculator", "There is no bin " + integerText(bin) + ".");
  }
  return bins_[static_cast<std::size_t>(bin)];
}

}  // namespace banddesk::host
