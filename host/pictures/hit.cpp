#include "host/pictures/hit.h"

#include <algorithm>
#include <cmath>
#include <ranges>

namespace banddesk::host::pictures {
namespace {

constexpr double kReach = 3;  // beyond an edge

struct Area {
  double left, top, right, bottom;
  bool holds(Point at) const { return at.x >= left && at.x <= right && at.y >= top && at.y <= bottom; }
  Point middle() const { return {(left + right) / 2, (top + bottom) / 2}; }
};

Area areaOf(const Box& box) { return {box.at.x, box.at.y, box.at.x + box.width, box.at.y + box.height}; }

Area areaOf(const Mark& mark) {
  const double reach = kMarkSize + kReach;
  return {mark.at.x - reach, mark.at.y - reach, mark.at.x + reach, mark.at.y + reach};
}

Area areaOf(const Label& label) {
  const double width = widthOf(label.text);
  const double before = label.anchor == Anchor::Start    ? 0
                        : label.anchor == Anchor::Middle ? width / 2
                                                         : width;
  if (label.isUpright)
    return {label.at.x - kFontSize, label.at.y - width + before, label.at.x + kReach, label.at.y + before};
  return {label.at.x - before, label.at.y - kFontSize, label.at.x - before + width, label.at.y + kReach};
}

std::size_t cellAt(double from, double length, std::size_t count, double at) {
  const double share = (at - from) / length * static_cast<double>(count);
  return std::min(static_cast<std::size_t>(std::max(share, 0.0)), count - 1);
}

// False once nothing below counts any more.
bool take(Hit& hit, const Box& box) {
  if (!hit.sample) hit.sample = box.sample;
  if (!hit.locus) hit.locus = box.locus;
  if (!hit.node) hit.node = box.node;
  hit.name = box.name;
  return box.name.empty();
}

bool isWithin(std::span<const Point> outline, Point at) {
  bool isInside = false;
  for (std::size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
    const Point &a = outline[i], &b = outline[j];
    if ((a.y > at.y) != (b.y > at.y) && at.x < (b.x - a.x) * (at.y - a.y) / (b.y - a.y) + a.x)
      isInside = !isInside;
  }
  return isInside;
}

void addLinesWithin(const Raster& raster, std::span<const Point> outline, std::set<std::size_t>& found) {
  const auto [left, right] = std::ranges::minmax(outline, {}, &Point::x);
  const auto [top, bottom] = std::ranges::minmax(outline, {}, &Point::y);
  if (right.x < raster.at.x || left.x > raster.at.x + raster.width) return;
  const double line = raster.height / static_cast<double>(raster.samples.size());
  double middle = raster.at.y + line / 2;
  for (const std::size_t sample : raster.samples) {
    if (middle >= top.y && middle <= bottom.y) found.insert(sample);
    middle += line;
  }
}

}  // namespace

Hit hitAt(const Drawing& drawing, Point at) {
  Hit hit;
  for (const Mark& mark : drawing.marks | std::views::reverse) {
    if (areaOf(mark).holds(at)) return {mark.sample, {}, {}, mark.name};
  }
  for (const Label& label : drawing.labels) {
    if (label.sample && areaOf(label).holds(at)) return {label.sample, {}, {}, label.text};
  }
  for (const Box& box : drawing.boxes | std::views::reverse) {
    if (areaOf(box).holds(at) && !take(hit, box)) return hit;
  }
  for (const Raster& raster : drawing.rasters) {
    const Area area{raster.at.x, raster.at.y, raster.at.x + raster.width, raster.at.y + raster.height};
    if (!area.holds(at)) continue;
    hit.sample = raster.samples[cellAt(raster.at.y, raster.height, raster.samples.size(), at.y)];
    hit.locus = raster.loci[cellAt(raster.at.x, raster.width, raster.loci.size(), at.x)];
  }
  return hit;
}

std::set<std::size_t> samplesWithin(const Drawing& drawing, std::span<const Point> outline) {
  std::set<std::size_t> found;
  if (outline.size() < 3) return found;
  const auto take = [&](const auto& parts) {
    for (const auto& part : parts) {
      if (part.sample && isWithin(outline, areaOf(part).middle())) found.insert(*part.sample);
    }
  };
  take(drawing.marks);
  take(drawing.labels);
  take(drawing.boxes);
  for (const Raster& raster : drawing.rasters) addLinesWithin(raster, outline, found);
  return found;
}

}  // namespace banddesk::host::pictures
