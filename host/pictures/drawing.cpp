#include "host/pictures/drawing.h"

#include <algorithm>
#include <cmath>

#include "plugin/base/text.h"

namespace banddesk::host::pictures {
namespace {

constexpr double kLegendStep = 18;

}  // namespace

double widthOf(const std::string& text) {
  return 0.62 * kFontSize * static_cast<double>(characterCount(text));
}

double widestOf(const std::vector<std::string>& texts) {
  double widest = 0;
  for (const std::string& text : texts) widest = std::max(widest, widthOf(text));
  return widest;
}

std::vector<double> ticksBetween(double from, double to, int wanted) {
  const double raw = (to - from) / wanted;
  if (!(raw > 0) || !std::isfinite(raw)) return {};
  const double power = std::pow(10, std::floor(std::log10(raw)));
  const double part = raw / power;
  const double step = power * (part < 1.5 ? 1 : part < 3.5 ? 2 : part < 7.5 ? 5 : 10);
  std::vector<double> ticks;
  const auto last = static_cast<long>(std::floor(to / step + 1e-9));
  for (auto at = static_cast<long>(std::ceil(from / step - 1e-9)); at <= last; ++at)
    ticks.push_back(static_cast<double>(at) * step);
  return ticks;
}

void addLegend(Drawing& drawing, const std::vector<std::string>& groups, Point at) {
  if (groups.size() < 2) return;
  for (std::size_t group = 0; group < groups.size(); ++group) {
    const double y = at.y + kLegendStep * static_cast<double>(group);
    drawing.marks.push_back({{at.x, y}, group, {}, groups[group]});
    drawing.labels.push_back({{at.x + 10, y + kFontSize / 3}, groups[group]});
  }
}

void addLegendBeside(Drawing& drawing, const std::vector<std::string>& groups, double top) {
  if (groups.size() < 2) return;
  addLegend(drawing, groups, {drawing.width + 4, top + 8});
  drawing.width += widestOf(groups) + 28;
  drawing.height = std::max(drawing.height, top + 20 + kLegendStep * static_cast<double>(groups.size()));
}

}  // namespace banddesk::host::pictures
