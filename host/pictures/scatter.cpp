#include "host/pictures/scatter.h"

#include <algorithm>
#include <fmt/format.h>

#include "plugin/base/error.h"

namespace banddesk::host::pictures {
namespace {

constexpr double kLeft = 64, kTop = 40, kRight = 20, kBottom = 52;
constexpr double kPlotSide = 480;  // of the longer axis
constexpr double kShortestSide = 160;
constexpr double kRoom = 0.05;  // beyond the outermost samples, of the axis' length
constexpr int kTicks = 6;

// An axis of the ordination and its place in the drawing.
struct Axis {
  double least = 0, greatest = 0;
  double start = 0, perUnit = 0;
  double at(double value) const { return start + (value - least) * perUnit; }
};

Axis rangeOf(const std::vector<double>& values) {
  const auto [least, greatest] = std::ranges::minmax(values);
  const double room = kRoom * std::max(greatest - least, 1e-9);
  return {least - room, greatest + room};
}

double lengthOf(const Axis& axis) { return axis.greatest - axis.least; }

std::string titleOf(const statistics::Ordination& ordination, std::size_t axis) {
  return fmt::format("Axis {} ({:.1f} %)", axis + 1, ordination.percent(axis));
}

void addFrame(Drawing& drawing, const Axis& across, const Axis& up) {
  const double left = across.at(across.least), right = across.at(across.greatest);
  const double bottom = up.at(up.least), top = up.at(up.greatest);
  for (const double tick : ticksBetween(across.least, across.greatest, kTicks)) {
    drawing.lines.push_back({{across.at(tick), top}, {across.at(tick), bottom}, LineKind::Grid});
    drawing.labels.push_back({{across.at(tick), bottom + 16}, fmt::format("{:.4g}", tick), Anchor::Middle});
  }
  for (const double tick : ticksBetween(up.least, up.greatest, kTicks)) {
    drawing.lines.push_back({{left, up.at(tick)}, {right, up.at(tick)}, LineKind::Grid});
    drawing.labels.push_back({{left - 6, up.at(tick) + 4}, fmt::format("{:.4g}", tick), Anchor::End});
  }
  const Point corners[] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
  for (std::size_t i = 0; i < 4; ++i) drawing.lines.push_back({corners[i], corners[(i + 1) % 4]});
}

}  // namespace

Drawing scatterOf(const statistics::Ordination& ordination, const statistics::BandMatrix& bands,
                  std::size_t horizontal, std::size_t vertical) {
  if (std::max(horizontal, vertical) >= ordination.axes.size())
    raise(ErrorNumber::InvalidArgument, "Pictures", "These samples have no two axes to draw them on.");
  const auto &xs = ordination.axes[horizontal], &ys = ordination.axes[vertical];
  Axis across = rangeOf(xs), up = rangeOf(ys);
  const double scale = kPlotSide / std::max(lengthOf(across), lengthOf(up));
  const double width = std::max(kShortestSide, lengthOf(across) * scale);
  const double height = std::max(kShortestSide, lengthOf(up) * scale);
  across = {across.least, across.least + width / scale, kLeft, scale};
  up = {up.least, up.least + height / scale, kTop + height, -scale};

  Drawing drawing{kLeft + width + kRight, kTop + height + kBottom, "Principal coordinates"};
  addFrame(drawing, across, up);
  drawing.labels.push_back(
      {{kLeft + width / 2, kTop + height + 38}, titleOf(ordination, horizontal), Anchor::Middle});
  drawing.labels.push_back(
      {{16, kTop + height / 2}, titleOf(ordination, vertical), Anchor::Middle, {}, {}, true});
  for (std::size_t i = 0; i < xs.size(); ++i) {
    const std::size_t group = bands.groups.empty() ? 0 : bands.groupOf[i];
    drawing.marks.push_back({{across.at(xs[i]), up.at(ys[i])}, group, i, bands.samples[i]});
  }
  addLegendBeside(drawing, bands.groups, kTop);
  return drawing;
}

}  // namespace banddesk::host::pictures
