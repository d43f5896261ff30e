#include "bench/binning_rules.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <queue>
#include <tuple>
#include <unordered_set>

#include "host/binning/default_calculator.h"

namespace banddesk::bench {
namespace {

/// Turns any numbering that never decreases along the pool into 0, 1, 2, ...
BinNumbers renumbered(const std::vector<double>& keys) {
  BinNumbers bins(keys.size(), 0);
  for (std::size_t i = 1; i < keys.size(); ++i) bins[i] = bins[i - 1] + (keys[i] != keys[i - 1] ? 1 : 0);
  return bins;
}

/// Cells of equal width, counted from 0 nt; empty ones are no bins.
BinNumbers fixedGrid(const Pool& pool, double maxWidth) {
  std::vector<double> cells;
  for (const PooledPeak& peak : pool) cells.push_back(std::floor(peak.size / maxWidth + kRounding));
  return renumbered(cells);
}

/// From the left: a bin takes peaks as long as it does not grow too wide.
BinNumbers greedy(const Pool& pool, double maxWidth) {
  std::vector<double> starts;
  for (const PooledPeak& peak : pool) {
    const bool fits = !starts.empty() && peak.size - starts.back() <= maxWidth + kRounding;
    starts.push_back(fits ? starts.back() : peak.size);
  }
  return renumbered(starts);
}

/// Parts at the largest gap what is wider than the maximum, and what is wider than the minimum and holds two
/// peaks of one sample. The first split is unconditional. The minimum is usually set to half the maximum.
class LargestGap {
 public:
  LargestGap(const Pool& pool, double maxWidth, double minWidth)
      : pool_(pool), maxWidth_(maxWidth), minWidth_(minWidth), isCut_(pool.size(), false) {}

  BinNumbers bins() {
    std::vector<std::pair<std::size_t, std::size_t>> waiting = {{0, pool_.size()}};
    for (bool isFirst = true; !waiting.empty(); isFirst = false) {
      const auto [begin, end] = waiting.back();
      waiting.pop_back();
      if (end - begin < 2 || !(isFirst || mustPart(begin, end))) continue;
      std::size_t cut = begin + 1;
      for (std::size_t i = begin + 1; i < end; ++i) {
        if (gap(i) > gap(cut)) cut = i;
      }
      if (gap(cut) == 0) continue;
      isCut_[cut] = true;
      waiting.emplace_back(begin, cut);
      waiting.emplace_back(cut, end);
    }
    BinNumbers numbers(pool_.size(), 0);
    for (std::size_t i = 1; i < pool_.size(); ++i) numbers[i] = numbers[i - 1] + (isCut_[i] ? 1 : 0);
    return numbers;
  }

 private:
  double gap(std::size_t i) const { return pool_[i].size - pool_[i - 1].size; }

  bool mustPart(std::size_t begin, std::size_t end) const {
    const double width = pool_[end - 1].size - pool_[begin].size;
    if (width > maxWidth_ + kRounding) return true;
    return width > minWidth_ + kRounding && holdsTwoOfOneSample(begin, end);
  }

  bool holdsTwoOfOneSample(std::size_t begin, std::size_t end) const {
    std::unordered_set<std::int32_t> seen;
    for (std::size_t i = begin; i < end; ++i) {
      if (!seen.insert(pool_[i].sample).second) return true;
    }
    return false;
  }

  const Pool& pool_;
  double maxWidth_;
  double minWidth_;
  std::vector<bool> isCut_;
};

/// Joins the two neighbouring groups whose means are nearest, unless the group would grow too wide or hold
/// two peaks of one sample, until no two can be joined.
class Agglomeration {
 public:
  Agglomeration(const Pool& pool, double maxWidth) : pool_(pool), maxWidth_(maxWidth) {
    for (const PooledPeak& peak : pool) {
      const double size = peak.size;
      if (groups_.empty() || size != groups_.back().last) groups_.push_back({size, size, 0, {}, {}, {}});
      groups_.back().sum += size;
      groups_.back().samples.push_back(peak.sample);
    }
    for (std::size_t i = 0; i < groups_.size(); ++i) {
      groups_[i].previous = i == 0 ? kNone : i - 1;
      groups_[i].next = i + 1 == groups_.size() ? kNone : i + 1;
      std::ranges::sort(groups_[i].samples);
      offer(i);
    }
  }

  BinNumbers bins() {
    while (!candidates_.empty()) {
      const auto [distance, left, leftVersion, right, rightVersion] = candidates_.top();
      candidates_.pop();
      if (groups_[left].version != leftVersion || groups_[right].version != rightVersion) continue;
      join(left, right);
    }
    std::vector<double> keys;
    std::size_t group = 0;
    for (const PooledPeak& peak : pool_) {
      while (peak.size > groups_[group].last) group = groups_[group].next;
      keys.push_back(static_cast<double>(group));
    }
    return renumbered(keys);
  }

 private:
  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
  struct Group {
    double first, last, sum;
    std::vector<std::int32_t> samples;  // sorted
    std::size_t previous, next;
    std::uint32_t version = 0;

    double mean() const { return sum / static_cast<double>(samples.size()); }
  };
  using Candidate = std::tuple<double, std::size_t, std::uint32_t, std::size_t, std::uint32_t>;

  /// The group and its right neighbour, if they may be joined.
  void offer(std::size_t left) {
    if (left == kNone || groups_[left].next == kNone) return;
    const std::size_t right = groups_[left].next;
    const Group& a = groups_[left];
    const Group& b = groups_[right];
    if (b.last - a.first > maxWidth_ + kRounding) return;
    std::vector<std::int32_t> common;
    std::ranges::set_intersection(a.samples, b.samples, std::back_inserter(common));
    if (common.empty()) candidates_.emplace(b.mean() - a.mean(), left, a.version, right, b.version);
  }

  void join(std::size_t left, std::size_t right) {
    Group& a = groups_[left];
    Group& b = groups_[right];
    std::vector<std::int32_t> samples;
    std::ranges::merge(a.samples, b.samples, std::back_inserter(samples));
    a.samples = std::move(samples);
    a.last = b.last;
    a.sum += b.sum;
    a.next = b.next;
    if (a.next != kNone) groups_[a.next].previous = left;
    ++a.version;
    ++b.version;
    offer(a.previous);
    offer(left);
  }

  const Pool& pool_;
  double maxWidth_;
  std::vector<Group> groups_;
  std::priority_queue<Candidate, std::vector<Candidate>, std::greater<>> candidates_;
};

class OnePeak final : public FragmentTable {
 public:
  explicit OnePeak(const PooledPeak& peak) : peak_(peak) {}
  DyeFragments OfDye(std::int16_t) const override { return {{&peak_.size, 1}, {&peak_.height, 1}}; }

 private:
  const PooledPeak& peak_;
};

}  // namespace

BinNumbers binsOf(BinCalculator& calculator, const Pool& pool, double maxWidth) {
  for (const PooledPeak& peak : pool) calculator.AddFragments(peak.sample, 0, OnePeak(peak), 0, 1, 1);
  calculator.SetMaxBinWidth(maxWidth);
  calculator.SetYThreshold(0);
  calculator.Calculate();
  BinNumbers numbers;
  std::int32_t bin = 0;
  for (const PooledPeak& peak : pool) {
    while (peak.size > calculator.XMax(bin)) ++bin;
    numbers.push_back(bin);
  }
  return numbers;
}

std::vector<Rule> allRules() {
  return {
      {"fixed grid", fixedGrid},
      {"greedy", greedy},
      {"largest gap", [](const Pool& pool, double width) { return LargestGap(pool, width, width).bins(); }},
      {"largest gap, min",
       [](const Pool& pool, double width) { return LargestGap(pool, width, width / 2).bins(); }},
      {"agglomerative", [](const Pool& pool, double width) { return Agglomeration(pool, width).bins(); }},
      {"banddesk",
       [](const Pool& pool, double width) { return binsOf(*host::makeBinCalculator(), pool, width); }},
  };
}

}  // namespace banddesk::bench
