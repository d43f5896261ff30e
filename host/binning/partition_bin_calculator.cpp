#include "host/binning/partition_bin_calculator.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/binning/height_factors.h"
#include "plugin/base/error.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

constexpr std::size_t kBlock = 1024;  // fragments

// Sums of whole numbers below this are exact, in whatever order.
constexpr double kWholeLimit = 1e9;

bool holds(const std::optional<SizeRange>& range, double size) {
  return !range || (size >= range->from && size <= range->to);
}

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
  dye_ = dye;
  resultCount_ = std::max(resultCount_, resultIndex + 1);
  for (std::size_t i = 0; i < given.sizes.size(); ++i) {
    const double size = given.sizes[i];
    const double height = given.heights[i];
    if (!std::isfinite(size) || !std::isfinite(height)) continue;
    if (!holds(settings_.sizeRange, size)) {
      ++outsideRange_;
      continue;
    }
    if (added_.empty() || added_.back().size() == kBlock) added_.emplace_back().reserve(kBlock);
    added_.back().push_back({size, height, resultIndex, 0});
    heightsAreWhole_ = heightsAreWhole_ && std::abs(height) < kWholeLimit && std::trunc(height) == height;
  }
}

void PartitionBinCalculator::Calculate() {
  bins_.clear();
  calculatedThreshold_ = yThreshold_;
  sortFragments();
  changed_.clear();
  normalise();
  align();
  const std::vector<Place> places = this->places();
  outsideBins_ = countBetween(places);
  std::vector<std::int32_t> lastBinOfResult(static_cast<std::size_t>(resultCount_), -1);
  bins_.reserve(places.size());
  for (const Place& place : places) addBin(place, lastBinOfResult);
}

void PartitionBinCalculator::sortFragments() {
  if (added_.empty()) return;
  if (!fragments_.empty()) added_.insert(added_.begin(), std::move(fragments_));
  fragments_ = sortedBySize(std::exchange(added_, {}));
  if (!heightsAreWhole_) orderHeights(fragments_);
}

/// Sums of heights must come out the same however the fragments came.
void PartitionBinCalculator::orderHeights(std::vector<Fragment>& fragments) const {
  for (auto begin = fragments.begin(); begin != fragments.end();) {
    const auto isOther = [&](const Fragment& fragment) { return fragment.size != begin->size; };
    const auto end = std::find_if(begin + 1, fragments.end(), isOther);
    std::ranges::sort(begin, end, {}, &Fragment::height);
    begin = end;
  }
}

/// Each knows the measured one that it was made from.
std::vector<Fragment>& PartitionBinCalculator::changedFragments() {
  if (!changed_.empty()) return changed_;
  changed_ = fragments_;
  for (std::size_t i = 0; i < changed_.size(); ++i) changed_[i].measured = static_cast<std::uint32_t>(i);
  return changed_;
}

void PartitionBinCalculator::normalise() {
  factors_.clear();
  if (settings_.normalisation == Normalisation::None) return;
  factors_ =
      heightFactors(fragments_, static_cast<std::size_t>(resultCount_), settings_.normalisation, unmeasured_);
  for (Fragment& fragment : changedFragments())
    fragment.height *= factors_[static_cast<std::size_t>(fragment.result)];
  orderHeights(changed_);
}

void PartitionBinCalculator::align() {
  laneShifts_.clear();
  if (!settings_.alignsLanes) return;
  std::vector<std::vector<double>> lanes(static_cast<std::size_t>(resultCount_));
  for (const Fragment& fragment : binned()) {
    if (fragment.height >= calculatedThreshold_)
      lanes[static_cast<std::size_t>(fragment.result)].push_back(fragment.size);
  }
  laneShifts_ = alignLanes(lanes);
  FragmentBlocks moved(1, std::move(changedFragments()));
  for (Fragment& fragment : moved.front())
    fragment.size = laneShifts_[static_cast<std::size_t>(fragment.result)].moved(fragment.size);
  changed_ = sortedBySize(std::move(moved));
  orderHeights(changed_);
}

std::vector<PartitionBinCalculator::Place> PartitionBinCalculator::places() const {
  std::vector<Place> places = givenPlaces();
  if (places.empty()) {
    for (const Slice& slice : slicesOf(binned())) places.push_back({slice, nullptr});
    return places;
  }
  if (!settings_.findsBinsBetween) return places;
  const std::vector<Place> found = between(places);
  places.insert(places.end(), found.begin(), found.end());
  std::ranges::sort(places, {}, [](const Place& place) { return place.slice.begin; });
  return places;
}

std::vector<PartitionBinCalculator::Place> PartitionBinCalculator::givenPlaces() const {
  std::vector<Place> places;
  for (const GivenBin& bin : settings_.bins) {
    if (bin.dye != dye_) continue;
    const auto begin = std::ranges::lower_bound(binned(), bin.from, {}, &Fragment::size);
    const auto end = std::ranges::upper_bound(binned(), bin.to, {}, &Fragment::size);
    places.push_back({{static_cast<std::size_t>(begin - binned().begin()),
                       static_cast<std::size_t>(end - binned().begin())},
                      &bin});
  }
  std::ranges::sort(places, {}, [](const Place& place) { return place.given->from; });
  return places;
}

std::vector<Slice> PartitionBinCalculator::slicesOf(std::span<const Fragment> fragments) const {
  return partitionOf(fragments, static_cast<std::size_t>(resultCount_), {maxBinWidth_, calculatedThreshold_});
}

/// A bin that is found never reaches over one that is given.
std::vector<PartitionBinCalculator::Place> PartitionBinCalculator::between(
    const std::vector<Place>& given) const {
  std::vector<Fragment> outside;
  std::vector<std::size_t> indices;  // of them in binned()
  std::vector<std::size_t> gaps;     // between which given bins they lie
  std::size_t next = 0;
  for (std::size_t i = 0; i < binned().size(); ++i) {
    while (next < given.size() && i >= given[next].slice.end) ++next;
    if (next < given.size() && i >= given[next].slice.begin) continue;
    outside.push_back(binned()[i]);
    indices.push_back(i);
    gaps.push_back(next);
  }
  std::vector<Place> places;
  for (const Slice& slice : slicesOf(outside)) {
    for (std::size_t i = slice.begin; i < slice.end; ++i) {
      if (i == slice.begin || gaps[i] != gaps[i - 1]) places.push_back({{indices[i], indices[i]}, nullptr});
      places.back().slice.end = indices[i] + 1;
    }
  }
  return places;
}

double PartitionBinCalculator::ownThreshold(const Slice& slice) const {
  if (settings_.callPercent <= 0) return calculatedThreshold_;
  double sum = 0, count = 0;
  for (std::size_t i = slice.begin; i < slice.end; ++i) {
    if (binned()[i].height < calculatedThreshold_) continue;
    sum += binned()[i].height;
    ++count;
  }
  return count == 0 ? calculatedThreshold_
                    : std::max(calculatedThreshold_, sum / count * settings_.callPercent / 100);
}

template <class Action>
void PartitionBinCalculator::visit(const Bin& bin, Action action) const {
  for (std::size_t i = bin.slice.begin; i < bin.slice.end; ++i) {
    if (binned()[i].height >= bin.threshold) action(binned()[i]);
  }
}

void PartitionBinCalculator::addBin(const Place& place, std::vector<std::int32_t>& lastBinOfResult) {
  Bin bin{};
  bin.slice = place.slice;
  if (place.given != nullptr) bin.name = place.given->name;
  bin.threshold = ownThreshold(place.slice);
  const std::int32_t number = BinCount();
  double deviations = 0, squares = 0, heights = 0;  // deviations from xMin: small numbers lose little
  visit(bin, [&](const Fragment& fragment) {
    if (bin.fragmentCount++ == 0) bin.xMin = fragment.size;
    bin.xMax = fragment.size;
    const double deviation = fragment.size - bin.xMin;
    deviations += deviation;
    squares += deviation * deviation;
    heights += fragment.height;
    std::int32_t& lastBin = lastBinOfResult[static_cast<std::size_t>(fragment.result)];
    if (lastBin != number) ++bin.sampleCount;
    lastBin = number;
  });
  if (bin.fragmentCount == 0) return;
  const double mean = deviations / bin.fragmentCount;
  bin.xMean = std::clamp(bin.xMin + mean, bin.xMin, bin.xMax);
  bin.xVariance = std::max(0.0, squares / bin.fragmentCount - mean * mean);
  bin.yMean = heights / bin.fragmentCount;
  bins_.push_back(bin);
}

/// Fragments that are high enough.
std::size_t PartitionBinCalculator::countBetween(const std::vector<Place>& places) const {
  std::size_t count = 0, next = 0;
  for (std::size_t i = 0; i < binned().size(); ++i) {
    while (next < places.size() && i >= places[next].slice.end) ++next;
    const bool isInside = next < places.size() && i >= places[next].slice.begin;
    count += !isInside && binned()[i].height >= calculatedThreshold_;
  }
  return count;
}

void PartitionBinCalculator::GetResultData(std::int32_t bin, std::vector<std::int32_t>& counts,
                                           std::vector<double>& heights) const {
  const Bin& wanted = at(bin);
  counts.assign(static_cast<std::size_t>(resultCount_), 0);
  heights.assign(static_cast<std::size_t>(resultCount_), 0.0);
  visit(wanted, [&](const Fragment& fragment) {
    const auto result = static_cast<std::size_t>(fragment.result);
    heights[result] = counts[result]++ == 0 ? fragment.height : std::max(heights[result], fragment.height);
  });
}

std::vector<PartitionBinCalculator::Cell> PartitionBinCalculator::cellsOf(std::int32_t bin) const {
  const Bin& wanted = at(bin);
  std::vector<Cell> cells(static_cast<std::size_t>(resultCount_));
  for (std::size_t i = wanted.slice.begin; i < wanted.slice.end; ++i) {
    const Fragment& fragment = binned()[i];
    if (fragment.height < calculatedThreshold_) continue;
    Cell& cell = cells[static_cast<std::size_t>(fragment.result)];
    if (fragment.height < wanted.threshold) {
      ++cell.taken;
      continue;
    }
    ++cell.fragments;
    cell.heightSum += fragment.height;
    const double measured = measuredOf(fragment).height;
    cell.tallest = cell.fragments == 1 ? measured : std::max(cell.tallest, measured);
  }
  return cells;
}

PartitionBinCalculator::Measured PartitionBinCalculator::measuredIn(std::int32_t bin) const {
  const Bin& wanted = at(bin);
  Measured sums;
  bool isFirst = true;
  visit(wanted, [&](const Fragment& fragment) {
    const Fragment& measured = measuredOf(fragment);
    sums.xMin = isFirst ? measured.size : std::min(sums.xMin, measured.size);
    sums.xMax = isFirst ? measured.size : std::max(sums.xMax, measured.size);
    sums.xMean += measured.size / wanted.fragmentCount;
    sums.yMean += measured.height / wanted.fragmentCount;
    isFirst = false;
  });
  return sums;
}

const Fragment& PartitionBinCalculator::measuredOf(const Fragment& fragment) const {
  return changed_.empty() ? fragment : fragments_[fragment.measured];
}

const PartitionBinCalculator::Bin& PartitionBinCalculator::at(std::int32_t bin) const {
  if (bin < 0 || bin >= BinCount()) {
    raise(ErrorNumber::SubscriptOutOfRange, "BinCalculator", "There is no bin " + integerText(bin) + ".");
  }
  return bins_[static_cast<std::size_t>(bin)];
}

}  // namespace banddesk::host
