#include "host/pictures/histogram.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace banddesk::host::pictures {
namespace {

constexpr double kLeft = 64, kTop = 40, kBottom = 52;
constexpr double kWidth = 720, kHeight = 360;
constexpr int kTicks = 8;
constexpr double kMostClasses = 30;
constexpr double kBarInk = 0.55;

// The classes of a histogram and where its bars stand.
class Histogram {
 public:
  Histogram(const std::vector<double>& values, double width) : width_(width) {
    if (values.empty()) return;
    const auto [least, greatest] = std::ranges::minmax(values);
    first_ = std::floor(least / width);
    counts_.resize(static_cast<std::size_t>(std::floor(greatest / width) - first_) + 1);
    for (const double value : values) most_ = std::max(most_, ++counts_[classOf(value)]);
  }

  std::size_t classOf(double value) const {
    return static_cast<std::size_t>(std::floor(value / width_) - first_);
  }
  const std::vector<std::size_t>& counts() const { return counts_; }
  double from(std::size_t at) const { return (first_ + static_cast<double>(at)) * width_; }

  // `count` entries of a class on top of `below` others.
  Box bar(std::size_t at, std::size_t below, std::size_t count) const {
    const double wide = kWidth / static_cast<double>(counts_.size());
    return {{kLeft + wide * (static_cast<double>(at) + 0.05), y(below + count)},
            wide * 0.9,
            y(below) - y(below + count)};
  }

  Drawing frame(const char* title, const char* across, const char* up) const {
    Drawing drawing{kLeft + kWidth + 20, kTop + kHeight + kBottom, title};
    const double bottom = kTop + kHeight, whole = static_cast<double>(counts_.size()) * width_;
    for (const double tick : ticksBetween(0, static_cast<double>(most_), kTicks)) {
      if (tick != std::floor(tick)) continue;
      const double at = y(static_cast<std::size_t>(tick));
      drawing.lines.push_back({{kLeft, at}, {kLeft + kWidth, at}, LineKind::Grid});
      drawing.labels.push_back({{kLeft - 6, at + 4}, fmt::format("{:.0f}", tick), Anchor::End});
    }
    for (const double tick : ticksBetween(from(0), from(0) + whole, kTicks)) {
      const double at = kLeft + (tick - from(0)) / whole * kWidth;
      drawing.lines.push_back({{at, bottom}, {at, bottom + 4}});
      drawing.labels.push_back({{at, bottom + 17}, fmt::format("{:.4g}", tick), Anchor::Middle});
    }
    drawing.lines.push_back({{kLeft, kTop}, {kLeft, bottom}});
    drawing.lines.push_back({{kLeft, bottom}, {kLeft + kWidth, bottom}});
    drawing.labels.push_back({{kLeft + kWidth / 2, bottom + 38}, across, Anchor::Middle});
    drawing.labels.push_back({{16, kTop + kHeight / 2}, up, Anchor::Middle, {}, {}, true});
    return drawing;
  }

 private:
  double y(std::size_t count) const {
    return kTop + kHeight -
           kHeight * static_cast<double>(count) / static_cast<double>(std::max<std::size_t>(most_, 1));
  }

  double width_, first_ = 0;
  std::vector<std::size_t> counts_;
  std::size_t most_ = 0;
};

}  // namespace

Drawing sizeHistogramOf(const std::vector<double>& sizes, double width) {
  const Histogram histogram(sizes, width);
  Drawing drawing = histogram.frame("Fragments by size", "Size (nt)", "Fragments");
  for (std::size_t at = 0; at < histogram.counts().size(); ++at) {
    Box bar = histogram.bar(at, 0, histogram.counts()[at]);
    bar.kind = BoxKind::Ink;
    bar.ink = kBarInk;
    bar.name = fmt::format("{:g} to {:g} nt: {} fragments", histogram.from(at), histogram.from(at) + width,
                           histogram.counts()[at]);
    drawing.boxes.push_back(bar);
  }
  return drawing;
}

Drawing countHistogramOf(const statistics::BandMatrix& bands, const std::vector<std::size_t>& counts) {
  const std::vector<double> values(counts.begin(), counts.end());
  double width = 1;
  if (!values.empty()) {
    const auto [least, most] = std::ranges::minmax(values);
    width = std::max(std::ceil((most - least) / kMostClasses), 1.0);
  }
  const Histogram histogram(values, width);
  Drawing drawing = histogram.frame("Fragments of the samples", "Fragments", "Samples");
  std::vector<std::size_t> below(histogram.counts().size());
  for (std::size_t group = 0; group < std::max<std::size_t>(bands.groups.size(), 1); ++group) {
    for (std::size_t sample = 0; sample < counts.size(); ++sample) {
      if (!bands.groups.empty() && bands.groupOf[sample] != group) continue;
      const std::size_t at = histogram.classOf(values[sample]);
      Box box = histogram.bar(at, below[at]++, 1);
      box.kind = BoxKind::Group;
      box.group = group;
      box.sample = sample;
      box.name = fmt::format("{}: {} fragments", bands.samples[sample], counts[sample]);
      drawing.boxes.push_back(box);
    }
  }
  addLegendBeside(drawing, bands.groups, kTop);
  return drawing;
}

}  // namespace banddesk::host::pictures
