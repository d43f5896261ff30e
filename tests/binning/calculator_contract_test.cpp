// What every bin calculator owes, whatever its rule.
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <rapidcheck/gtest.h>

#include "host/binning/partition_bin_calculator.h"
#include "plugin/base/error.h"
#include "tests/binning/calculator_facts.h"

namespace banddesk::host {
namespace {

using Calculator = PartitionBinCalculator;

constexpr std::int32_t kResults = 6;

// Crowded, so that equal sizes and several fragments of one result in a bin are common. The steps in size are
// coarse, hundredths or thousandths; tenths of RFU are not exact in binary, so that sums show their order.
rc::Gen<Peaks> anyPeaks() {
  return rc::gen::mapcat(rc::gen::element(4.0, 100.0, 1000.0), [](double steps) {
    return rc::gen::container<Peaks>(rc::gen::map(
        rc::gen::tuple(rc::gen::inRange(0, kResults), rc::gen::inRange(0, 400), rc::gen::inRange(0, 999)),
        [steps](const std::tuple<int, int, int>& drawn) {
          return Peak{std::get<0>(drawn), 100 + std::get<1>(drawn) / steps, std::get<2>(drawn) / 10.0};
        }));
  });
}
double anyWidth() { return *rc::gen::element(0.0, 0.004, 0.05, 0.25, 1.0, 2.5, 10.0); }
double anyThreshold() { return *rc::gen::element(0.0, 30.0, 60.0); }

void expectStatistics(const BinFacts& bin, const Peaks& peaks) {
  double sizes = 0, squares = 0, heights = 0;
  std::map<std::int32_t, std::pair<std::int32_t, double>> ofResult;
  for (const Peak& peak : peaks) {
    sizes += peak.size;
    heights += peak.height;
    auto& [count, largest] = ofResult[peak.result];
    ++count;
    largest = std::max(largest, peak.height);
  }
  const auto count = static_cast<double>(peaks.size());
  for (const Peak& peak : peaks) squares += (peak.size - sizes / count) * (peak.size - sizes / count);
  RC_ASSERT(bin.fragments == static_cast<std::int32_t>(peaks.size()));
  RC_ASSERT(bin.samples == static_cast<std::int32_t>(ofResult.size()));
  RC_ASSERT(std::abs(bin.xMean - sizes / count) < 1e-9);
  RC_ASSERT(std::abs(bin.xVariance - squares / count) < 1e-9);
  RC_ASSERT(bin.fragments > 1 || bin.xVariance == 0);
  RC_ASSERT(std::abs(bin.yMean - heights / count) < 1e-9);
  for (std::int32_t result = 0; result < static_cast<std::int32_t>(bin.counts.size()); ++result) {
    const auto index = static_cast<std::size_t>(result);
    RC_ASSERT((std::pair{bin.counts[index], bin.heights[index]} == ofResult[result]));
  }
}

TEST(ACalculator, PutsEveryCountingFragmentIntoOneOfDisjointAscendingBinsNotTooWide) {
  ASSERT_TRUE(rc::check([] {
    const Peaks peaks = *anyPeaks();
    const double width = anyWidth(), threshold = anyThreshold();
    Calculator calculator;
    add(calculator, peaks);
    calculate(calculator, width, threshold);

    std::size_t placed = 0;
    double last = -1;
    for (const BinFacts& bin : factsOf(calculator)) {
      RC_ASSERT(bin.xMin > last);
      RC_ASSERT(bin.xMax - bin.xMin <= width + 1e-12);
      last = bin.xMax;
      Peaks inside = peaks;
      std::erase_if(inside, [&](const Peak& peak) {
        return peak.height < threshold || peak.size < bin.xMin || peak.size > bin.xMax;
      });
      RC_ASSERT(!inside.empty());
      const auto [least, most] = std::ranges::minmax(inside, {}, &Peak::size);
      RC_ASSERT((bin.xMin == least.size && bin.xMax == most.size));
      expectStatistics(bin, inside);
      placed += inside.size();
    }
    const auto counting =
        std::ranges::count_if(peaks, [&](const Peak& peak) { return peak.height >= threshold; });
    RC_ASSERT(static_cast<std::ptrdiff_t>(placed) == counting);
  }));
}

TEST(ACalculator, DependsNeitherOnTheOrderOfTheFragmentsNorOnEarlierCalculations) {
  ASSERT_TRUE(rc::check([] {
    Peaks peaks = *anyPeaks();
    const double width = anyWidth(), threshold = anyThreshold();
    const bool aligns = *rc::gen::arbitrary<bool>();
    Calculator calculator;
    add(calculator, peaks);
    calculator.setSettings({.alignsLanes = !aligns});
    calculate(calculator, 5, 40);
    calculator.setSettings({.alignsLanes = aligns});
    calculate(calculator, width, threshold);

    std::ranges::reverse(peaks);
    std::ranges::stable_sort(peaks, {}, [](const Peak& peak) { return std::fmod(peak.size * 7, 1.0); });
    Calculator fresh;
    fresh.setSettings({.alignsLanes = aligns});
    add(fresh, peaks);
    calculate(fresh, width, threshold);
    RC_ASSERT(factsOf(calculator) == factsOf(fresh));
  }));
}

TEST(ACalculator, CoversTheResultsUpToTheHighestIndexGivenEvenWithoutFragments) {
  Calculator calculator;
  add(calculator, {{1, 100, 50}});
  calculator.AddFragments(4, 0, OneDye(), 0, 1, 1);
  calculate(calculator, 1, 0);
  ASSERT_EQ(calculator.BinCount(), 1);
  EXPECT_EQ(factsOf(calculator)[0].counts, (std::vector<std::int32_t>{0, 1, 0, 0, 0}));
}

TEST(ACalculator, RefusesWhatItDoesNotHaveAndLeavesOutWhatIsNoNumber) {
  Calculator calculator;
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

}  // namespace
}  // namespace banddesk::host
