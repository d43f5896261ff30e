// Random numbers that are the same for a seed on every machine. Standard distributions and the math library
// may differ between libraries and processors; here all is made of integer steps, + - * / and sqrt. Not for
// cryptography.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace banddesk::host::simulation {

/// Natural logarithm and exponential of + - * / alone, good to about 1e-15.
double portableLog(double value);
double portableExp(double value);

class Random {
 public:
  explicit Random(std::uint64_t seed);

  std::uint64_t bits();
  /// In [0, 1).
  double uniform();
  double uniform(double from, double to) { return from + (to - from) * uniform(); }
  /// Mean 0, standard deviation 1.
  double normal();
  bool chance(double probability) { return uniform() < probability; }

 private:
  std::array<std::uint64_t, 4> state_{};
  std::optional<double> spare_;
};

}  // namespace banddesk::host::simulation
