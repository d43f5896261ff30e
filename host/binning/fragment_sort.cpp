#include "host/binning/fragment_sort.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

namespace banddesk::host {
namespace {

/// Unsigned numbers in the order of the doubles.
std::uint64_t orderedBits(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value + 0.0);  // -0 becomes 0
  constexpr std::uint64_t sign = std::uint64_t{1} << 63;
  return (bits & sign) != 0 ? ~bits : bits | sign;
}

/// Instruments write two decimals; whole hundredths make far shorter keys than the bits of a double do.
constexpr double kHundredthsLimit = 1e9;
double hundredths(double size) { return std::nearbyint(size * 100); }
bool isHundredths(double size) {
  const double rounded = hundredths(size);
  return std::abs(rounded) < kHundredthsLimit && rounded / 100 == size;
}

template <class Action>
void forAll(const FragmentBlocks& blocks, Action action) {
  for (const auto& block : blocks) {
    for (const Fragment& fragment : block) action(fragment);
  }
}

std::vector<Fragment> joined(const FragmentBlocks& blocks, std::size_t count) {
  std::vector<Fragment> all;
  all.reserve(count);
  for (const auto& block : blocks) all.insert(all.end(), block.begin(), block.end());
  return all;
}

/// Least digit first: each pass keeps the order of the one before.
template <class KeyOf>
std::vector<Fragment> radixSorted(FragmentBlocks blocks, std::size_t count, std::uint64_t largestKey,
                                  KeyOf keyOf) {
  constexpr unsigned digitBits = 9;  // few enough places that each has its line in the cache
  constexpr std::size_t places = std::size_t{1} << digitBits;
  std::vector<Fragment> sorted(count);
  std::array<std::size_t, places> next{};
  for (unsigned shift = 0; shift < 64 && (largestKey >> shift) != 0; shift += digitBits) {
    const auto placeOf = [&](const Fragment& fragment) {
      return static_cast<std::size_t>(keyOf(fragment.size) >> shift) & (places - 1);
    };
    next.fill(0);
    forAll(blocks, [&](const Fragment& fragment) { ++next[placeOf(fragment)]; });
    std::size_t before = 0;
    for (std::size_t& place : next) before += std::exchange(place, before);
    forAll(blocks, [&](const Fragment& fragment) { sorted[next[placeOf(fragment)]++] = fragment; });
    if ((largestKey >> shift >> digitBits) == 0) break;
    if (blocks.size() != 1) {
      blocks.clear();
      blocks.emplace_back(count);
    }
    blocks.front().swap(sorted);
  }
  return sorted;
}

}  // namespace

std::vector<Fragment> sortedBySize(FragmentBlocks blocks) {
  std::size_t count = 0;
  double least = std::numeric_limits<double>::infinity();
  double most = -least;
  double last = most;
  bool isSorted = true;
  bool areHundredths = true;
  forAll(blocks, [&](const Fragment& fragment) {
    ++count;
    isSorted = isSorted && fragment.size >= last;
    last = fragment.size;
    least = std::min(least, last);
    most = std::max(most, last);
    areHundredths = areHundredths && isHundredths(last);
  });
  if (isSorted) return blocks.size() == 1 ? std::move(blocks.front()) : joined(blocks, count);
  if (areHundredths) {
    const double first = hundredths(least);
    const auto key = [first](double size) { return static_cast<std::uint64_t>(hundredths(size) - first); };
    return radixSorted(std::move(blocks), count, key(most), key);
  }
  const std::uint64_t first = orderedBits(least);
  const auto key = [first](double size) { return orderedBits(size) - first; };
  return radixSorted(std::move(blocks), count, key(most), key);
}

}  // namespace banddesk::host
