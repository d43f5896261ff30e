#include "host/binning/height_factors.h"

#include <algorithm>
#include <numeric>

namespace banddesk::host {
namespace {

// Of sorted values, of which there is at least one.
double medianOf(const std::vector<double>& sorted) {
  return (sorted[(sorted.size() - 1) / 2] + sorted[sorted.size() / 2]) / 2;
}

// Heights are sorted: a sum must not depend on the order in which they came.
double levelOf(std::vector<double>& heights, Normalisation normalisation) {
  if (heights.empty()) return 0;
  std::ranges::sort(heights);
  if (normalisation == Normalisation::Median) return medianOf(heights);
  return std::accumulate(heights.begin(), heights.end(), 0.0);
}

}  // namespace

std::vector<double> heightFactors(std::span<const Fragment> fragments, std::size_t results,
                                  Normalisation normalisation, const std::vector<bool>& unmeasured) {
  std::vector<double> factors(results, 1);
  if (normalisation == Normalisation::None) return factors;
  std::vector<std::vector<double>> heights(results);
  for (const Fragment& fragment : fragments) {
    const auto result = static_cast<std::size_t>(fragment.result);
    if (result >= unmeasured.size() || !unmeasured[result]) heights[result].push_back(fragment.height);
  }
  std::vector<double> levels;
  for (std::size_t result = 0; result < results; ++result) {
    factors[result] = levelOf(heights[result], normalisation);
    if (factors[result] > 0) levels.push_back(factors[result]);
  }
  std::ranges::sort(levels);
  for (double& factor : factors) factor = factor > 0 ? medianOf(levels) / factor : 1;
  return factors;
}

}  // namespace banddesk::host
