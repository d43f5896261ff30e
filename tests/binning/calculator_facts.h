// What the tests of the bin calculators share: peaks in, all that a calculator tells out.
#pragma once

#include <cstdint>
#include <tuple>
#include <vector>

#include "plugin/analysis/bin_calculator.h"

namespace banddesk::host {

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
inline void add(BinCalculator& calculator, const Peaks& peaks) {
  for (const Peak& peak : peaks) {
    OneDye table;
    table.sizes = {peak.size};
    table.heights = {peak.height};
    calculator.AddFragments(peak.result, 0, table, 0, 1, 1);
  }
}

inline void calculate(BinCalculator& calculator, double maxBinWidth, double threshold) {
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

inline std::vector<BinFacts> factsOf(const BinCalculator& calculator) {
  std::vector<BinFacts> facts;
  for (std::int32_t bin = 0; bin < calculator.BinCount(); ++bin) {
    BinFacts& one = facts.emplace_back();
    one = {calculator.XMin(bin),
           calculator.XMax(bin),
           calculator.XMean(bin),
           calculator.XVariance(bin),
           calculator.YMean(bin),
           calculator.SampleCount(bin),
           calculator.FragmentCount(bin),
           {},
           {}};
    calculator.GetResultData(bin, one.counts, one.heights);
  }
  return facts;
}

}  // namespace banddesk::host
