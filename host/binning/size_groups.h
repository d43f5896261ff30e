// The row of sizes that bins are made of: fragments whose sizes agree to a hundredth of a nucleotide are one
// group and are never parted. It knows no costs.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace banddesk::host {

/// Sizes are measured to some hundredths of a nucleotide at best, and written to two decimals mostly: where
/// inside of a hundredth a bin ends means nothing.
inline constexpr double kHundredth = 0.01;

struct SizeGroup {
  double least;       // nt
  double largest;     // nt
  double count;       // fragments
  std::size_t begin;  // its first fragment
};

/// Spans of decimals are seldom exact in binary: 101.13 - 100.13 is more than 1. A span counts as wider only
/// beyond the rounding of the two sizes and their difference.
inline bool isWider(double least, double largest, double maxWidth) {
  constexpr double kRounding = 4 * 2.220446049250313e-16;
  return largest - least > maxWidth + kRounding * std::max(std::abs(least), std::abs(largest));
}

/// Takes sizes in ascending order. No group is wider than `maxWidth`: below a hundredth only equal sizes are
/// one.
class SizeGrouping {
 public:
  explicit SizeGrouping(double maxWidth) : isFine_(!(maxWidth >= kHundredth)) {}

  void add(double size, std::size_t fragment) {
    if (groups_.empty() || !joins(size)) {
      groups_.push_back({size, size, 0, fragment});
      end_ = (std::floor(size / kHundredth + 0.5) + 0.5) * kHundredth;
    }
    groups_.back().largest = size;
    ++groups_.back().count;
  }

  std::vector<SizeGroup> take() { return std::move(groups_); }

 private:
  bool joins(double size) const {
    const SizeGroup& last = groups_.back();
    if (size == last.largest) return true;
    return !isFine_ && size < end_ && size - last.least < kHundredth;
  }

  bool isFine_;
  double end_ = 0;
  std::vector<SizeGroup> groups_;
};

}  // namespace banddesk::host
