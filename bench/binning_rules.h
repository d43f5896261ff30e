// The rules that the bins of the host are compared with, each written as its users know it, and the host's
// own behind the same face. They are for comparison only: nothing of the product uses them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "plugin/analysis/bin_calculator.h"

namespace banddesk::bench {

/// One counting peak of the pooled samples of a dye.
struct PooledPeak {
  double size = 0;
  double height = 0;
  std::int32_t sample = 0;
  std::int32_t locus = -1;  // the truth, where it is known; -1: a false peak
};
using Pool = std::vector<PooledPeak>;  // by ascending size

/// Spans of decimals such as 1.00 are not exact in binary.
inline constexpr double kRounding = 1e-9;

/// For each peak of the pool the number of its bin, from 0 in ascending size.
using BinNumbers = std::vector<std::int32_t>;

struct Rule {
  std::string name;
  std::function<BinNumbers(const Pool& pool, double maxWidth)> bins;
};

/// All rules; the host's stands last.
std::vector<Rule> allRules();

/// What a calculator of the contract makes of a pool.
BinNumbers binsOf(BinCalculator& calculator, const Pool& pool, double maxWidth);

}  // namespace banddesk::bench
