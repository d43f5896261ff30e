#include "host/runs/peaks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "host/runs/signal.h"

namespace banddesk::host::runs {
namespace {

constexpr double kWindowPerWidth =
    1.9;  // above this many widths the polynomial follows the window, not noise
constexpr double kSecondTop = 0.3, kDip = 0.75;  // shares of the top, and of the second one
constexpr double kWidthError = 0.2;              // scans: a peak of few scans has no more exact width
constexpr std::size_t kPeaksForWidth = 25;
constexpr std::size_t kLongestHalf = 200;  // scans from the top of a peak to half of its height

struct Stretch {
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// From one rise of the slope to the next, where the slope falls in between.
std::vector<Stretch> stretchesOf(const std::vector<double>& slopes) {
  std::vector<Stretch> found;
  bool isInPeak = false;
  for (std::size_t i = 1; i < slopes.size(); ++i) {
    if (!(slopes[i - 1] <= 0 && slopes[i] > 0)) continue;
    if (isInPeak) found.back().end = i - 1;
    found.push_back({i, slopes.size() - 1});
    isInPeak = true;
  }
  // The last one must come down again.
  if (isInPeak && slopes.back() > 0) {
    const auto last = static_cast<std::ptrdiff_t>(found.back().begin);
    if (std::all_of(slopes.begin() + last, slopes.end(), [](double value) { return value > 0; }))
      found.pop_back();
  }
  return found;
}

/// Where the signal passes half the height between `inner` (above) and `outer` (not above).
double crossing(std::span<const double> signal, std::size_t inner, std::size_t outer, double half) {
  const double rise = signal[inner] - signal[outer];
  const double share = rise > 0 ? (half - signal[outer]) / rise : 0;
  const auto at = static_cast<double>(outer);
  return inner > outer ? at + share : at - share;
}

double widthAtHalf(std::span<const double> signal, std::size_t top, Stretch within) {
  const double half = signal[top] / 2;
  std::size_t left = top;
  while (left > within.begin && signal[left] > half) --left;
  std::size_t right = top;
  while (right < within.end && signal[right] > half) ++right;
  const double from =
      left < top && signal[left] <= half ? crossing(signal, left + 1, left, half) : static_cast<double>(left);
  const double to = right > top && signal[right] <= half ? crossing(signal, right - 1, right, half)
                                                         : static_cast<double>(right);
  return to - from;
}

/// Whether a second top stands beside the highest, high enough and with a dip between them.
bool hasSecondTop(std::span<const double> signal, std::size_t top, Stretch within) {
  const double least = kSecondTop * signal[top];
  const auto look = [&](std::size_t steps, auto at) {
    double dip = signal[top];
    for (std::size_t i = 1; i <= steps; ++i) {
      const double value = signal[at(i)];
      dip = std::min(dip, value);
      if (value >= least && dip <= kDip * value) return true;
    }
    return false;
  };
  return look(top - within.begin, [&](std::size_t i) { return top - i; }) ||
         look(within.end - top, [&](std::size_t i) { return top + i; });
}

Peak peakOf(std::span<const double> signal, Stretch stretch) {
  const auto at = [&](std::size_t i) { return signal.begin() + static_cast<std::ptrdiff_t>(i); };
  const auto top =
      static_cast<std::size_t>(std::max_element(at(stretch.begin), at(stretch.end + 1)) - signal.begin());
  Peak peak;
  peak.scan = static_cast<int>(top);
  peak.begin = static_cast<int>(stretch.begin);
  peak.end = static_cast<int>(stretch.end);
  peak.height = signal[top];
  return peak;
}

}  // namespace

std::vector<Peak> findPeaks(std::span<const double> signal, const PeakSettings& settings, int window,
                            double leastHeight) {
  std::vector<Peak> peaks;
  if (signal.empty()) return peaks;
  for (const Stretch& stretch : stretchesOf(slope(signal, window, settings.polynomialDegree))) {
    Peak peak = peakOf(signal, stretch);
    if (peak.height < leastHeight || peak.height <= 0) continue;
    peak.width = widthAtHalf(signal, static_cast<std::size_t>(peak.scan), stretch);
    if (peak.width < settings.leastWidth - kWidthError) continue;
    for (std::size_t i = stretch.begin; i <= stretch.end; ++i) peak.area += signal[i];
    peak.isDouble = hasSecondTop(signal, static_cast<std::size_t>(peak.scan), stretch);
    peaks.push_back(peak);
  }
  return peaks;
}

double typicalWidth(std::span<const double> signal, double leastHeight) {
  std::vector<std::size_t> tops;
  for (std::size_t i = 1; i + 1 < signal.size(); ++i)
    if (signal[i] >= leastHeight && signal[i] > signal[i - 1] && signal[i] >= signal[i + 1])
      tops.push_back(i);
  std::ranges::stable_sort(tops, [&](std::size_t a, std::size_t b) { return signal[a] > signal[b]; });
  std::vector<double> widths;
  std::vector<Stretch> taken;
  for (const std::size_t top : tops) {
    if (widths.size() == kPeaksForWidth) break;
    // Lesser tops on the flank of one that was taken are ripples of it.
    if (std::ranges::any_of(taken, [&](const Stretch& one) { return one.begin <= top && top <= one.end; }))
      continue;
    const Stretch reach{top < kLongestHalf ? 0 : top - kLongestHalf,
                        std::min(top + kLongestHalf, signal.size() - 1)};
    const double width = widthAtHalf(signal, top, reach);
    const auto twice = static_cast<std::size_t>(2 * width) + 1;
    taken.push_back({top < twice ? 0 : top - twice, top + twice});
    widths.push_back(width);
  }
  if (widths.empty()) return 0;
  const auto middle = widths.begin() + static_cast<std::ptrdiff_t>(widths.size() / 2);
  std::ranges::nth_element(widths, middle);
  return *middle;
}

int windowFor(double width, const PeakSettings& settings) {
  if (!settings.doesWindowFollowWidth) return settings.polynomialWindow;
  const int wide = static_cast<int>(std::min(width, 1000.0) * kWindowPerWidth) | 1;
  return std::max(settings.polynomialWindow, wide);
}

}  // namespace banddesk::host::runs
