#include "host/binning/fragment_sort.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
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

/// Least digit first: each pass keeps the order of the one before.
template <class KeyOf>
void radixSort(std::vector<Fragment>& fragments, std::uint64_t largestKey, KeyOf keyOf) {
  constexpr unsigned digitBits = 9;  // few enough places that each has its line in the cache
  constexpr std::size_t places = std::size_t{1} << digitBits;
  std::vector<Fragment> sorted(fragments.size());
  std::array<std::size_t, places> next{};
  for (unsigned shift = 0; shift < 64 && (largestKey >> shift) != 0; shift += digitBits) {
    const auto placeOf = [&](const Fragment& fragment) {
      return static_cast<std::size_t>(keyOf(fragment.size) >> shift) & (places - 1);
    };
    next.fill(0);
    for (const Fragment& fragment : fragments) ++next[placeOf(fragment)];
    std::size_t before = 0;
    for (std::size_t& place : next) before += std::exchange(place, before);
    for (const Fragment& fragment : fragments) sorted[next[placeOf(fragment)]++] = fragment;
    fragments.swap(sorted);
  }
}

}  // namespace

void sortBySize(std::vector<Fragment>& fragments) {
  const auto bySize = [](const Fragment& a, const Fragment& b) { return a.size < b.size; };
  if (std::is_sorted(fragments.begin(), fragments.end(), bySize)) return;
  const auto [least, most] = std::minmax_element(fragments.begin(), fragments.end(), bySize);
  if (std::ranges::all_of(fragments, isHundredths, &Fragment::size)) {
    const double first = hundredths(least->size);
    const auto key = [first](double size) { return static_cast<std::uint64_t>(hundredths(size) - first); };
    radixSort(fragments, key(most->size), key);
  } else {
    const std::uint64_t first = orderedBits(least->size);
    const auto key = [first](double size) { return orderedBits(size) - first; };
    radixSort(fragments, key(most->size), key);
  }
}

}  // namespace banddesk::host
