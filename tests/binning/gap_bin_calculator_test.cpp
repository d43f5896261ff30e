#include "host/binning/gap_bin_calculator.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <utility>
#include <vector>

#include "tests/binning/calculator_facts.h"

namespace banddesk::host {
namespace {

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
RC_GTEST_PROP(GapBins, AreThoseOfTheRule, ()) {
  std::vector<double> sizes;
  for (const int quarter : *rc::gen::container<std::vector<int>>(rc::gen::inRange(200, 240)))
    sizes.push_back(quarter * 0.25);
  const double width = *rc::gen::element(0.05, 0.25, 1.0, 2.5, 10.0);
  GapBinCalculator calculator;
  for (const double size : sizes) add(calculator, {{0, size, 100}});
  calculate(calculator, width, 0);

  std::ranges::sort(sizes);
  std::vector<std::pair<double, double>> expected, found;
  partByRule(sizes, width, expected);
  for (const BinFacts& bin : factsOf(calculator)) found.emplace_back(bin.xMin, bin.xMax);
  RC_ASSERT(found == expected);
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
