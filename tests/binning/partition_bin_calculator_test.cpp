#include "host/binning/partition_bin_calculator.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "host/binning/fragment_sort.h"
#include "host/binning/sizing_error.h"
#include "plugin/base/numbers.h"
#include "tests/binning/calculator_facts.h"

namespace banddesk::host {
namespace {

// As many sizes as there are samples, spread as a normal distribution would spread them, in a mixed order.
std::vector<double> spread(double mean, double sigma, std::size_t samples) {
  std::vector<double> sizes(samples);
  for (std::size_t i = 0; i < samples; ++i) {
    const double share = (static_cast<double>(i * 7 % samples) + 0.5) / static_cast<double>(samples);
    sizes[i] = mean + sigma * 0.5513 * std::log(share / (1 - share));  // the logistic of that deviation
  }
  return sizes;
}

Peaks peaksOf(const std::vector<std::vector<double>>& loci) {
  Peaks peaks;
  for (const auto& sizes : loci) {
    for (std::size_t i = 0; i < sizes.size(); ++i)
      peaks.push_back({static_cast<std::int32_t>(i), sizes[i], 100});
  }
  return peaks;
}

std::int32_t binCount(const Peaks& peaks, double width) {
  PartitionBinCalculator calculator;
  add(calculator, peaks);
  calculate(calculator, width, 0);
  return calculator.BinCount();
}

TEST(PartitionBins, KeepOneFragmentTogetherAndTellTwoApart) {
  EXPECT_EQ(binCount(peaksOf({spread(200, 0.2, 41)}), 1.5), 1) << "spread, but one";
  EXPECT_EQ(binCount(peaksOf({spread(200, 0.1, 41), spread(201, 0.1, 41)}), 1.5), 2) << "a gap between";
  Peaks peaks = peaksOf({spread(200, 0.15, 41), spread(200.6, 0.15, 41)});
  EXPECT_EQ(binCount(peaks, 2), 2) << "two in each sample";
  for (std::size_t i = 41; i < peaks.size(); ++i) peaks[i].result += 41;
  EXPECT_EQ(binCount(peaks, 2), 1) << "the same sizes, but never two in a sample";
}

// Two runs that size one fragment differently look like two fragments, but for the samples.
TEST(PartitionBins, TakeTheSizesOfTwoRunsForOneFragmentUnlessSamplesHaveBoth) {
  constexpr std::int32_t kFew = 7;
  Peaks peaks = peaksOf({spread(397.5, 0.03, kFew), spread(397.95, 0.03, 39)});
  EXPECT_EQ(binCount(peaks, 1.5), 2);
  for (Peak& peak : peaks) peak.result += peak.size > 397.7 ? kFew : 0;
  EXPECT_EQ(binCount(peaks, 1.5), 1);
}

TEST(PartitionBins, OfAlignedLanesHoldWhatTheirShiftsHadParted) {
  constexpr std::int32_t kLanes = 24;
  constexpr double kWidth = 0.6;
  Peaks peaks;
  for (std::int32_t lane = 0; lane < kLanes; ++lane) {
    for (int locus = 100; locus <= 400; locus += 5) {
      if ((locus + lane) % 3 != 0)
        peaks.push_back({lane, locus + (lane % 2 == 0 ? 0.17 : -0.17) + lane * 0.005, 100});
    }
  }
  PartitionBinCalculator calculator;
  add(calculator, peaks);
  calculate(calculator, kWidth / 2, 0);
  EXPECT_GT(calculator.BinCount(), 100);
  EXPECT_TRUE(calculator.laneShifts().empty());
  calculator.setSettings({.alignsLanes = true});
  calculate(calculator, kWidth / 2, 0);
  EXPECT_EQ(calculator.BinCount(), 61);
  EXPECT_EQ(calculator.FragmentCount(0), 16);
  EXPECT_NEAR(calculator.XMean(0), 100, 0.1);
  EXPECT_EQ(calculator.laneShifts().size(), 24U);
}

// Sample 1 is half as bright as the others, sample 3 a blank. "100.20:2" is a bin and its fragments.
TEST(PartitionBins, AreMadeOfWhatTheSettingsLetCount) {
  const Peaks peaks = {{0, 100, 400},   {1, 100.1, 200}, {2, 100.5, 40}, {0, 150, 400}, {1, 150, 200},
                       {2, 150.2, 760}, {0, 200, 90},    {3, 200.1, 30}, {2, 250, 90}};
  struct Case {
    CalculatorSettings settings;
    const char* bins;
    std::size_t outside;
  };
  const GivenBin given{0, 100, 100.2, "own"}, tail{0, 199, 201, "tail"}, other{1, 0, 300, "another dye's"};
  const std::vector<Case> cases = {
      {{}, "100.20:3 150.07:3 200.00:1 250.00:1", 0},
      {{.sizeRange = SizeRange{100.1, 200}}, "100.30:2 150.07:3 200.00:1", 3},
      {{.normalisation = Normalisation::Total}, "100.05:2 150.07:3 200.00:1 250.00:1", 0},
      {{.callPercent = 25}, "100.05:2 150.07:3 200.00:1 250.00:1", 0},
      {{.bins = {tail, given, other}}, "100.05:2 200.00:1", 5},
      {{.bins = {tail, given, other}, .findsBinsBetween = true},
       "100.05:2 100.50:1 150.07:3 200.00:1 250.00:1",
       0}};
  for (const Case& each : cases) {
    PartitionBinCalculator calculator;
    calculator.setSettings(each.settings);
    calculator.setUnmeasured({false, false, false, true});
    add(calculator, peaks);
    calculate(calculator, 1, each.settings.normalisation == Normalisation::None ? 35 : 50);
    std::string bins;
    for (std::int32_t bin = 0; bin < calculator.BinCount(); ++bin)
      bins += twoDecimals(calculator.XMean(bin)) + ":" + std::to_string(calculator.FragmentCount(bin)) + " ";
    EXPECT_EQ(bins, std::string(each.bins) + " ");
    EXPECT_EQ(calculator.outsideBins() + calculator.outsideRange(), each.outside) << each.bins;
  }
}

// The names of the samples say nothing: numbering them otherwise permutes the tables and changes nothing
// else.
RC_GTEST_PROP(PartitionBins, DoNotDependOnTheOrderOfTheSamples, ()) {
  constexpr std::int32_t kSamples = 7;
  Peaks peaks, renumbered;
  for (const int drawn : *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 4000))) {
    const int hundredths = drawn / 7;
    const double size = 100 + hundredths * 0.01;
    peaks.push_back({drawn % kSamples, size, drawn / 10.0});
    renumbered.push_back({kSamples - 1 - drawn % kSamples, size, drawn / 10.0});
  }
  PartitionBinCalculator calculator, other;
  const bool aligns = *rc::gen::arbitrary<bool>();
  calculator.setSettings({.alignsLanes = aligns});
  other.setSettings({.alignsLanes = aligns});
  const Peaks last = {{kSamples - 1, 900, 100}};  // so that the tables are of one size
  const Peaks first = {{0, 900, 100}};
  for (const Peaks& some : {peaks, last, first}) add(calculator, some);
  for (const Peaks& some : {renumbered, first, last}) add(other, some);
  calculate(calculator, 1, 0);
  calculate(other, 1, 0);
  auto facts = factsOf(other);
  for (BinFacts& bin : facts) {
    std::ranges::reverse(bin.counts);
    std::ranges::reverse(bin.heights);
  }
  RC_ASSERT(factsOf(calculator) == facts);
}

TEST(PartitionBins, TakeASpanAsItIsTyped) {
  for (int hundredths = 5000; hundredths <= 50000; ++hundredths) {
    ASSERT_FALSE(isWider(hundredths / 100.0, (hundredths + 100) / 100.0, 1)) << hundredths;
    ASSERT_TRUE(isWider(hundredths / 100.0, (hundredths + 101) / 100.0, 1)) << hundredths;
  }
}

TEST(PartitionBins, OfSizesBeyondAllReasonAreStillNotTooWide) {
  EXPECT_EQ(binCount({{0, -1e300, 1}, {1, -1e300, 1}, {0, 1e300, 1}, {1, 1.7e308, 1}, {2, -1.7e308, 1}}, 1),
            4);
}

TEST(SizingError, FollowsTheDataBetweenItsBounds) {
  constexpr double kWidth = 1.2;
  for (const double sigma : {0.05, 0.25, 0.6}) {
    SizeGrouping grouping(kWidth);
    std::vector<double> sizes;
    for (double locus = 60; locus < 480; locus += 5) {
      const double grown = locus < 200 ? sigma : sigma * 1.1;
      std::ranges::copy(spread(locus, grown, 61), std::back_inserter(sizes));
    }
    std::ranges::sort(sizes);
    for (const double size : sizes) grouping.add(size, 0);
    const SizingError error(SizeDistances(grouping.take(), kWidth), {kWidth / 6, kWidth / 4});
    EXPECT_NEAR(error.at(60), std::clamp(sigma, kWidth / 6, kWidth / 4), 0.03) << sigma;
    EXPECT_NEAR(error.at(480), std::clamp(sigma * 1.1, kWidth / 6, kWidth / 4), 0.03) << sigma;
    EXPECT_LE(error.at(60), error.at(480));
  }
}

RC_GTEST_PROP(SortingFragments, IsAStableSortOfAnySizes, ()) {
  const bool isTyped = *rc::gen::arbitrary<bool>();  // whole hundredths, which are sorted in their own way
  std::vector<Fragment> fragments;
  for (const auto bits : *rc::gen::arbitrary<std::vector<std::int64_t>>()) {
    const double any = std::bit_cast<double>(bits % 3 == 0 ? std::bit_cast<std::int64_t>(-0.0) : bits);
    const double size = isTyped ? static_cast<double>(bits % 2000) / 100 : any;
    if (std::isfinite(size)) fragments.push_back({size, 0, static_cast<std::int32_t>(fragments.size()), 0});
  }
  std::vector<Fragment> expected = fragments;
  std::ranges::stable_sort(expected, {}, &Fragment::size);
  FragmentBlocks blocks(1);
  for (const Fragment& fragment : fragments) {
    if (*rc::gen::inRange(0, 4) == 0) blocks.emplace_back();
    blocks.back().push_back(fragment);
  }
  const std::vector<Fragment> sorted = sortedBySize(std::move(blocks));
  RC_ASSERT(sorted.size() == expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) RC_ASSERT(sorted[i].result == expected[i].result);
}

}  // namespace
}  // namespace banddesk::host
