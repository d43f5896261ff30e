#include "host/binning/partition.h"

#include <algorithm>
#include <cstdint>

#include "host/binning/crowding.h"
#include "host/binning/partition_search.h"
#include "host/binning/shared_samples.h"
#include "host/binning/size_groups.h"
#include "host/binning/sizing_error.h"

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

constexpr std::uint32_t kNoGroup = UINT32_MAX;

class Partition {
 public:
  Partition(std::span<const Fragment> fragments, std::size_t results, const PartitionLimits& limits)
      : fragments_(fragments), results_(results), limits_(limits) {}

  std::vector<Slice> slices() const;

 private:
  // For each fragment whose result has an earlier one in reach of a bin, the group of that one; by groups.
  struct Neighbours {
    std::vector<std::uint32_t> earlier;
    std::vector<std::size_t> ends;  // of each group's, in `earlier`
    std::size_t results = 0;        // that have counting fragments

    std::span<const std::uint32_t> of(std::size_t group) const;
  };

  bool qualifies(const Fragment& fragment) const { return fragment.height >= limits_.threshold; }
  std::vector<SizeGroup> groupSizes() const;
  std::vector<std::uint32_t> binBegins(const std::vector<SizeGroup>& groups) const;
  Neighbours findNeighbours(const std::vector<SizeGroup>& groups) const;
  std::vector<double> missingSamples(const std::vector<SizeGroup>& groups,
                                     const Neighbours& neighbours) const;

  std::span<const Fragment> fragments_;
  std::size_t results_;
  PartitionLimits limits_;
};

std::vector<Slice> Partition::slices() const {
  const std::vector<SizeGroup> groups = groupSizes();
  std::vector<Slice> slices;
  if (groups.empty()) return slices;
  for (const std::uint32_t begin : binBegins(groups)) {
    if (!slices.empty()) slices.back().end = groups[begin].begin;
    slices.push_back({groups[begin].begin, fragments_.size()});
  }
  return slices;
}

std::vector<SizeGroup> Partition::groupSizes() const {
  SizeGrouping grouping(limits_.maxBinWidth);
  for (std::size_t i = 0; i < fragments_.size(); ++i) {
    if (qualifies(fragments_[i])) grouping.add(fragments_[i].size, i);
  }
  return grouping.take();
}

std::vector<std::uint32_t> Partition::binBegins(const std::vector<SizeGroup>& groups) const {
  const SizeDistances distances(groups, limits_.maxBinWidth);
  const double least = kLeastSigma * limits_.maxBinWidth, largest = kLargestSigma * limits_.maxBinWidth;
  const SizingError error(distances, {least, largest});
  const SizingError noise(distances, {std::min(least, kLeastNoise), largest});
  const Neighbours neighbours = findNeighbours(groups);
  const std::vector<double> missing = missingSamples(groups, neighbours);
  Crowding crowding(groups);
  PartitionSearch search({.bin = kBinCost, .repeat = kRepeatCost, .maxWidth = limits_.maxBinWidth});
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

std::vector<double> Partition::missingSamples(const std::vector<SizeGroup>& groups,
                                              const Neighbours& neighbours) const {
  SharedSamples shared(groups, limits_.maxBinWidth / 2);
  for (std::uint32_t group = 0; group < groups.size(); ++group) {
    for (const std::uint32_t earlier : neighbours.of(group)) shared.add(earlier, group);
  }
  return shared.missing(static_cast<double>(neighbours.results));
}

std::span<const std::uint32_t> Partition::Neighbours::of(std::size_t group) const {
  const std::size_t begin = group == 0 ? 0 : ends[group - 1];
  return std::span(earlier).subspan(begin, ends[group] - begin);
}

Partition::Neighbours Partition::findNeighbours(const std::vector<SizeGroup>& groups) const {
  Neighbours found;
  found.ends.reserve(groups.size());
  std::vector<std::uint32_t> lastGroupOfResult(results_, kNoGroup);
  std::uint32_t reached = 0;  // the first group that a bin can hold together with the group at hand
  for (std::uint32_t group = 0; group < groups.size(); ++group) {
    const std::size_t end = group + 1 < groups.size() ? groups[group + 1].begin : fragments_.size();
    while (reached < group && isWider(groups[reached].least, groups[group].largest, limits_.maxBinWidth))
      ++reached;
    for (std::size_t i = groups[group].begin; i < end; ++i) {
      if (!qualifies(fragments_[i])) continue;
      std::uint32_t& last = lastGroupOfResult[static_cast<std::size_t>(fragments_[i].result)];
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

}  // namespace

std::vector<Slice> partitionOf(std::span<const Fragment> fragments, std::size_t results,
                               const PartitionLimits& limits) {
  return Partition(fragments, results, limits).slices();
}

}  // namespace banddesk::host
