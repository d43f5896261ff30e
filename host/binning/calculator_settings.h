// What a calculator does to fragments beside the two parameters of an analysis: which of them count, what
// their heights are compared by, and where bins are given instead of found. Plain values.
#pragma once

#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace banddesk::host {

/// Both ends count.
struct SizeRange {
  double from = 0;                                      // nt
  double to = std::numeric_limits<double>::infinity();  // nt
  friend bool operator==(const SizeRange&, const SizeRange&) = default;
};

/// What is made equal in all results by a factor on their heights.
enum class Normalisation { None, Total, Median };

/// A bin that is given. It holds the sizes from `from` up to and with `to`.
struct GivenBin {
  int dye = 0;              // 0 to 3
  double from = 0, to = 0;  // nt
  std::string name;
  friend bool operator==(const GivenBin&, const GivenBin&) = default;
};

struct CalculatorSettings {
  std::optional<SizeRange> sizeRange = {};
  Normalisation normalisation = Normalisation::None;
  /// Fragments below this percentage of the mean height of their bin are taken out of it; 0 takes none.
  double callPercent = 0;
  /// None of a dye: its bins are found.
  std::vector<GivenBin> bins = {};
  /// Find bins for what lies outside of all given ones, which else counts nowhere.
  bool findsBinsBetween = false;
  bool alignsLanes = false;
  friend bool operator==(const CalculatorSettings&, const CalculatorSettings&) = default;
};

}  // namespace banddesk::host
