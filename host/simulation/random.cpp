#include "host/simulation/random.h"

#include <bit>
#include <cmath>

namespace banddesk::host::simulation {
namespace {

constexpr double ln2 = 0.693147180559945309417;

}  // namespace

double portableLog(double value) {
  int exponent = 0;
  double mantissa = std::frexp(value, &exponent);  // exact
  if (mantissa < 0.70710678118654752) {
    mantissa *= 2;
    --exponent;
  }
  // log m = 2 artanh((m - 1) / (m + 1)), and |t| < 0.172 makes thirteen terms enough.
  const double t = (mantissa - 1) / (mantissa + 1);
  const double square = t * t;
  double sum = 0;
  for (int k = 25; k >= 1; k -= 2) sum = sum * square + 1.0 / k;
  return 2 * t * sum + exponent * ln2;
}

double portableExp(double value) {
  const double halves = std::floor(value / ln2 + 0.5);
  const double rest = value - halves * ln2;
  double sum = 1;
  for (int k = 16; k >= 1; --k) sum = 1 + sum * rest / k;
  return std::ldexp(sum, static_cast<int>(halves));
}

Random::Random(std::uint64_t seed) {
  // Splitmix64 spreads even small seeds over the whole state.
  for (std::uint64_t& word : state_) {
    seed += 0x9E3779B97F4A7C15;
    std::uint64_t mixed = seed;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    word = mixed ^ (mixed >> 31);
  }
}

/// Xoshiro256**.
std::uint64_t Random::bits() {
  const std::uint64_t result = std::rotl(state_[1] * 5, 7) * 9;
  const std::uint64_t shifted = state_[1] << 17;
  state_[2] ^= state_[0];
  state_[3] ^= state_[1];
  state_[1] ^= state_[2];
  state_[0] ^= state_[3];
  state_[2] ^= shifted;
  state_[3] = std::rotl(state_[3], 45);
  return result;
}

double Random::uniform() { return static_cast<double>(bits() >> 11) * 0x1.0p-53; }

/// The polar method: two independent values from a point in the unit disc.
double Random::normal() {
  if (spare_) {
    const double value = *spare_;
    spare_.reset();
    return value;
  }
  for (;;) {
    const double x = uniform(-1, 1);
    const double y = uniform(-1, 1);
    const double square = x * x + y * y;
    if (square >= 1 || square == 0) continue;
    const double factor = std::sqrt(-2 * portableLog(square) / square);
    spare_ = y * factor;
    return x * factor;
  }
}

}  // namespace banddesk::host::simulation
