#include "desktop/views/plot_axes.h"

#include <QString>
#include <algorithm>
#include <cmath>

namespace banddesk::desktop {

std::vector<double> roundTicks(Span span, int atMost) {
  std::vector<double> ticks;
  if (!(span.length() > 0) || atMost < 1) return ticks;
  const double least = span.length() / atMost;
  const double power = std::pow(10.0, std::floor(std::log10(least)));
  for (const double factor : {1.0, 2.0, 5.0, 10.0, 20.0}) {
    const double step = factor * power;
    const double first = std::ceil(span.low / step);
    const double last = std::floor(span.high / step);
    if (last - first + 1 > atMost) continue;
    for (double n = first; n <= last; ++n) ticks.push_back(n * step);
    return ticks;
  }
  return ticks;
}

QString tickText(double tick, const std::vector<double>& ticks) {
  const double step = ticks.size() > 1 ? ticks[1] - ticks[0] : 1;
  const int decimals = std::clamp(static_cast<int>(-std::floor(std::log10(step) + 1e-9)), 0, 6);
  return QString::number(std::abs(tick) < step / 2 ? 0.0 : tick, 'f', decimals);
}

void SizeAxis::setWhole(Span whole) {
  whole_ = whole;
  shown_ = {};  // so that the change is told in any case
  show(whole);
}

void SizeAxis::widen(Span sizes) {
  whole_ = {std::min(whole_.low, sizes.low), std::max(whole_.high, sizes.high)};
}

void SizeAxis::show(Span sizes) {
  const double whole = std::max(whole_.length(), kShortest);
  const double length = std::clamp(sizes.length(), kShortest, whole);
  const double low = sizes.length() == length ? sizes.low : sizes.middle() - length / 2;
  const double start = std::clamp(low, whole_.low, whole_.low + (whole - length));
  const Span wanted{start, start + length};
  if (wanted == shown_) return;
  shown_ = wanted;
  Changed.raise();
}

void SizeAxis::zoom(double factor, double about) {
  const double length = std::clamp(shown_.length() / factor, kShortest, std::max(whole_.length(), kShortest));
  const double share = (about - shown_.low) / shown_.length();
  const double low = about - share * length;
  show({low, low + length});
}

}  // namespace banddesk::desktop
