#include "host/binning/gap_bin_calculator.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <rapidcheck/gtest.h>
#include <tuple>
#include <vector>

#include "plugin/base/error.h"

namespace banddesk::host {
namespace {

struct Peak {
  std::int32_t result;
  double size;
  double height;
  auto operator<=>(const Peak&) const = default;
};
using Peaks = std::vector<Peak>;

class OneDye final : public FragmentTable {
 public:
  DyeFragments OfDye(std::int16_t) const override { return {sizes, heights}; }
  std::vector<double> sizes, heights;
};

// In the order of the peaks, so that a shuffled list reaches the calculator shuffled.
void add(GapBinCalculator& calculator, const Peaks& peaks) {
  for (const Peak& peak : peaks) {
    OneDye table;
    table.sizes = {peak.size};
    table.heights = {peak.height};
    calculator.AddFragments(peak.result, 0, table, 0, 1, 1);
  }
}

void calculate(GapBinCalculator& calculator, double maxBinWidth, double threshold) {
  calculator.SetMaxBinWidth(maxBinWidth);
  calculator.SetYThreshold(threshold);
  calculator.Calculate();
}

struct BinFacts {
  double xMin, xMax, xMean, xVariance, yMean;
  std::int32_t samples, fragments;
  std::vector<std::int32_t> counts;
  std::vector<double> heights;
  bool operator==(const BinFacts&) const = default;
};

std::vector<BinFacts> factsOf(const GapBinCalculator& calculator) {
  std::vector<BinFacts> facts;
  for (std::int32_t bin = 0; bin < calculator.BinCount(); ++bin) {
    BinFacts& one = facts.emplace_back(BinFacts{calculator.XMin(bin),
                                                calculator.XMax(bin),
                                                calculator.XMean(bin),
                                                calculator.XVariance(bin),
                                                calculator.YMean(bin),
                                                calculator.SampleCount(bin),
                                                calculator.FragmentCount(bin),
                                                {},
                                                {}});
    calculator.GetResultData(bin, one.counts, one.heights);
  }
  return facts;
}

// The rule said once more, as slowly as it reads.
void partByRule(const std::vector<double>& sizes, double maxBinWidth,
                std::vector<std::pair<double, double>>& bins) {
  if (sizes.empty()) return;
  if (sizes.back() - sizes.front() <= maxBinWidth) {
    bins.emplace_back(sizes.front(), sizes.back());
    return;
  }
  std::size_t widest = 1;
  for (std::size_t i = 2; i < sizes.size(); ++i) {
    if (sizes[i] - sizes[i - 1] > sizes[widest] - sizes[widest - 1]) widest = i;
  }
  const auto middle = sizes.begin() + static_cast<std::ptrdiff_t>(widest);
  partByRule({sizes.begin(), middle}, maxBinWidth, bins);
  partByRule({middle, sizes.end()}, maxBinWidth, bins);
}

// Sizes on a coarse raster, so that equal sizes and equal gaps are common.
rc::Gen<Peaks> anyPeaks() {
  return rc::gen::container<Peaks>(rc::gen::map(
      rc::gen::tuple(rc::gen::inRange(0, 6), rc::gen::inRange(200, 240), rc::gen::inRange(0, 12)),
      [](const std::tuple<int, int, int>& drawn) {
        return Peak{std::get<0>(drawn), std::get<1>(drawn) * 0.25, std::get<2>(drawn) * 10.0};
      }));
}

RC_GTEST_PROP(GapBins, AreThoseOfTheRuleAndHoldEveryCountingFragmentOnce, ()) {
  Peaks peaks = *anyPeaks();
  const double width = *rc::gen::elementOf(std::vector<double>{0.05, 0.25, 1, 2.5, 10});
  const double threshold = *rc::gen::elementOf(std::vector<double>{0, 30, 60});
  GapBinCalculator calculator;
  add(calculator, peaks);
  calculate(calculator, width, threshold);

  std::erase_if(peaks, [&](const Peak& peak) { return peak.height < threshold; });
  std::vector<double> sizes;
  for (const Peak& peak : peaks) sizes.push_back(peak.size);
  std::ranges::sort(sizes);
  std::vector<std::pair<double, double>> expected;
  partByRule(sizes, width, expected);
  const auto bins = factsOf(calculator);
  RC_ASSERT(bins.size() == expected.size());

  for (std::size_t i = 0; i < bins.size(); ++i) {
    const BinFacts& bin = bins[i];
    RC_ASSERT((std::pair{bin.xMin, bin.xMax} == expected[i]));
    std::map<std::int32_t, std::pair<std::int32_t, double>> ofResult;
    double sum = 0, squares = 0, heights = 0;
    std::int32_t count = 0;
    for (const Peak& peak : peaks) {
      if (peak.size < bin.xMin || peak.size > bin.xMax) continue;
      auto& [fragments, largest] = ofResult[peak.result];
      ++fragments, ++count;
      largest = std::max(largest, peak.height);
      sum += peak.size, heights += peak.height, squares += peak.size * peak.size;
    }
    RC_ASSERT(bin.fragments == count);
    RC_ASSERT(bin.samples == static_cast<std::int32_t>(ofResult.size()));
    RC_ASSERT(std::abs(bin.xMean - sum / count) < 1e-9);
    RC_ASSERT(std::abs(bin.yMean - heights / count) < 1e-9);
    RC_ASSERT(std::abs(bin.xVariance - (squares / count - bin.xMean * bin.xMean)) < 1e-6);
    for (std::size_t result = 0; result < bin.counts.size(); ++result) {
      const auto found = ofResult.find(static_cast<std::int32_t>(result));
      RC_ASSERT(bin.counts[result] == (found == ofResult.end() ? 0 : found->second.first));
      RC_ASSERT(bin.heights[result] == (found == ofResult.end() ? 0.0 : found->second.second));
    }
  }
}

RC_GTEST_PROP(GapBins, DependNeitherOnTheOrderOfTheFragmentsNorOnEarlierCalculations, ()) {
  Peaks peaks = *anyPeaks();
  for (Peak& peak : peaks) peak.size += 0.1;  // not exact in binary, so that sums show their order
  GapBinCalculator calculator;
  add(calculator, peaks);
  calculate(calculator, 5, 40);
  calculate(calculator, 0.5, 20);

  std::ranges::reverse(peaks);
  std::ranges::stable_sort(peaks, {}, [](const Peak& peak) { return std::fmod(peak.size * 7, 1.0); });
  GapBinCalculator fresh;
  add(fresh, peaks);
  calculate(fresh, 0.5, 20);
  RC_ASSERT(factsOf(calculator) == factsOf(fresh));
}

TEST(GapBins, CoverTheResultsUpToTheHighestIndexGivenEvenWithoutFragments) {
  GapBinCalculator calculator;
  add(calculator, {{1, 100, 50}});
  calculator.AddFragments(4, 0, OneDye(), 0, 1, 1);
  calculate(calculator, 1, 0);
  ASSERT_EQ(calculator.BinCount(), 1);
  EXPECT_EQ(factsOf(calculator)[0].counts, (std::vector<std::int32_t>{0, 1, 0, 0, 0}));
}

TEST(GapBins, RefuseWhatTheyDoNotHaveAndLeaveOutWhatIsNoNumber) {
  GapBinCalculator calculator;
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  add(calculator, {{0, kNone, 50}, {0, 100, kNone}, {0, 100, 50}});
  calculate(calculator, 1, 0);
  EXPECT_EQ(calculator.FragmentCount(0), 1);
  for (const std::int32_t bin : {-1, 1}) {
    try {
      calculator.XMean(bin);
      FAIL() << "bin " << bin;
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), ErrorNumber::SubscriptOutOfRange);
    }
  }
}

// Growing gaps make the largest one stand at an end each time: the worst case for parting again and again.
TEST(GapBins, OfGrowingGapsTakeNoQuadraticTime) {
  constexpr std::size_t kCount = 200'000;
  OneDye table;
  for (std::size_t i = 0; i < kCount; ++i) {
    const auto step = static_cast<double>(i);
    table.sizes.push_back(100 + step * step);
    table.heights.push_back(100);
  }
  GapBinCalculator calculator;
  calculator.AddFragments(0, 0, table, 0, 1, 1);
  calculate(calculator, 0.5, 0);
  EXPECT_EQ(calculator.BinCount(), static_cast<std::int32_t>(kCount));
}

}  // namespace
}  // namespace banddesk::host
