#include "host/runs/signal.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>

#include "host/runs/least_squares.h"

namespace banddesk::host::runs {
namespace {

constexpr int kMostWindow = 2001;
constexpr int kMostDegree = 6;
constexpr int kMeanWindow = 5;

int oddWindow(int window) { return std::clamp(window, 1, kMostWindow) | 1; }

std::vector<double> runningMean(std::span<const std::int32_t> trace, int window) {
  const auto half = static_cast<std::size_t>(window / 2);
  std::vector<double> mean(trace.size());
  for (std::size_t i = 0; i < trace.size(); ++i) {
    const std::size_t first = i < half ? 0 : i - half;
    const std::size_t last = std::min(i + half, trace.size() - 1);
    double sum = 0;
    for (std::size_t k = first; k <= last; ++k) sum += trace[k];
    mean[i] = sum / static_cast<double>(last - first + 1);
  }
  return mean;
}

/// The extreme value, by `isBefore`, within half a window on both sides. Time does not depend on the window.
template <class Before>
std::vector<double> runningExtreme(const std::vector<double>& values, int window, Before isBefore) {
  const auto half = static_cast<std::size_t>(window / 2);
  std::vector<double> extremes(values.size());
  std::vector<std::size_t> queue(values.size());
  std::size_t head = 0, tail = 0, next = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    for (const std::size_t end = std::min(i + half + 1, values.size()); next < end; ++next) {
      while (tail > head && !isBefore(values[queue[tail - 1]], values[next])) --tail;
      queue[tail++] = next;
    }
    while (queue[head] + half < i) ++head;
    extremes[i] = values[queue[head]];
  }
  return extremes;
}

/// Weights of the derivative at the centre of a window.
std::vector<double> slopeWeights(int half, int degree) {
  const auto terms = static_cast<std::size_t>(degree + 1);
  LeastSquares fit(terms);
  std::vector<double> basis(terms);
  const auto powers = [&](int i) {
    double power = 1;
    for (double& value : basis) {
      value = power;
      power *= static_cast<double>(i) / half;
    }
  };
  for (int i = -half; i <= half; ++i) {
    powers(i);
    fit.add(basis, 0, 1);
  }
  std::vector<double> linear(terms, 0.0);
  linear[1] = 1.0 / half;
  std::vector<double> weights;
  for (int i = -half; i <= half; ++i) {
    powers(i);
    weights.push_back(fit.quadraticForm(linear, basis));
  }
  return weights;
}

}  // namespace

std::vector<double> aboveBaseline(std::span<const std::int32_t> trace, int window) {
  const int odd = oddWindow(window);
  std::vector<double> baseline = runningMean(trace, kMeanWindow);
  baseline = runningExtreme(baseline, odd, std::less<>{});
  baseline = runningExtreme(baseline, odd, std::greater<>{});
  for (std::size_t i = 0; i < trace.size(); ++i) baseline[i] = std::max(0.0, trace[i] - baseline[i]);
  return baseline;
}

void smooth(std::vector<double>& signal, Smoothing smoothing) {
  // The heavy weights 1 4 6 4 1 are those of the light ones applied twice.
  const int passes = smoothing == Smoothing::None ? 0 : smoothing == Smoothing::Light ? 1 : 2;
  for (int pass = 0; pass < passes && signal.size() > 2; ++pass) {
    double before = signal.front();
    for (std::size_t i = 1; i + 1 < signal.size(); ++i) {
      const double here = signal[i];
      signal[i] = (before + 2 * here + signal[i + 1]) / 4;
      before = here;
    }
  }
}

std::vector<double> slope(std::span<const double> signal, int window, int degree) {
  std::vector<double> out(signal.size());
  const int order = std::clamp(degree, 1, kMostDegree);
  const int half = std::max(oddWindow(window) / 2, order / 2 + 1);
  if (signal.empty()) return out;
  const std::vector<double> weights = slopeWeights(half, order);
  const auto reach = static_cast<std::size_t>(half);
  const std::size_t last = signal.size() - 1;
  for (std::size_t i = 0; i < signal.size(); ++i) {
    double sum = 0;
    if (i >= reach && i + reach <= last) {
      const double* from = signal.data() + (i - reach);
      for (std::size_t k = 0; k < weights.size(); ++k) sum += weights[k] * from[k];
    } else {
      for (std::size_t k = 0; k < weights.size(); ++k) {
        const std::size_t at = i + k < reach ? 0 : std::min(i + k - reach, last);
        sum += weights[k] * signal[at];
      }
    }
    out[i] = sum;
  }
  return out;
}

}  // namespace banddesk::host::runs
