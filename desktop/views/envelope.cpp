#include "desktop/views/envelope.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace banddesk::desktop {
namespace {

const double kLog16 = std::log(16.0);  // a bell's exponent where its distance is one full width

}  // namespace

double bell(double distance, double height, double fullWidthAtHalfHeight) {
  const double widths = distance / fullWidthAtHalfHeight;
  return height * std::exp(-kLog16 * widths * widths);
}

Envelope::Envelope(const PlotTransform& transform, std::size_t columns)
    : transform_(transform),
      range_(transform.range()),
      columnsPerNt_(static_cast<double>(columns) / range_.sizes.length()),
      negligible_(0.25 / transform.perRfu()),
      columnWidth_(transform.area().width() / static_cast<double>(columns)),
      edge_(columns + 1),
      low_(columns),
      high_(columns) {}

void Envelope::clear() {
  std::ranges::fill(edge_, 0.0);
  std::ranges::fill(low_, std::numeric_limits<double>::infinity());
  std::ranges::fill(high_, -std::numeric_limits<double>::infinity());
}

void Envelope::take(const DyeTrace& trace) {
  clear();
  if (trace.hasCurve())
    takeCurve(trace);
  else
    takePeaks(trace);
  takeEdges();
}

void Envelope::takePeaks(const DyeTrace& trace) {
  const double widest =
      trace.widths.empty() ? kUsualPeakWidth : *std::max_element(trace.widths.begin(), trace.widths.end());
  const double reach = 4 * widest;  // a bell of 33,000 RFU has come down to nothing there
  const auto first = std::ranges::lower_bound(trace.sizes, range_.sizes.low - reach);
  for (auto i = static_cast<std::size_t>(first - trace.sizes.begin());
       i < trace.sizes.size() && trace.sizes[i] <= range_.sizes.high + reach; ++i) {
    takePeak(trace.sizes[i], trace.heights[i], trace.width(i));
  }
}

void Envelope::takePeak(double size, double height, double width) {
  if (height <= negligible_) return;
  const double middle = column(size);
  const auto last = static_cast<double>(columns());
  if (middle >= 0 && middle < last) {
    double& high = high_[static_cast<std::size_t>(middle)];
    high = std::max(high, height);
  }
  const double reach = width * std::sqrt(std::log(height / negligible_) / kLog16) * columnsPerNt_;
  const double from = std::max(std::ceil(middle - reach), 0.0);
  const double to = std::min(std::floor(middle + reach), last);
  for (double at = from; at <= to; ++at) {
    double& edge = edge_[static_cast<std::size_t>(at)];
    edge = std::max(edge, bell((at - middle) / columnsPerNt_, height, width));
  }
}

void Envelope::takeCurve(const DyeTrace& trace) {
  const auto& xs = trace.curveX;
  const auto found = std::ranges::lower_bound(xs, range_.sizes.low);
  const auto start = static_cast<std::size_t>(found - xs.begin());
  const auto last = static_cast<double>(columns());
  // From the point before the area to the one behind it: the line between two points crosses borders.
  for (std::size_t i = start > 0 ? start - 1 : 0; i < xs.size(); ++i) {
    const double here = column(xs[i]);
    const double y = trace.curveY[i];
    if (here >= 0 && here < last) {
      const auto at = static_cast<std::size_t>(here);
      low_[at] = std::min(low_[at], y);
      high_[at] = std::max(high_[at], y);
    }
    if (i + 1 == xs.size() || here > last) break;
    const double next = column(xs[i + 1]);
    for (double at = std::max(std::ceil(here), 0.0); at <= std::min(next, last); ++at) {
      const double share = next > here ? (at - here) / (next - here) : 0;
      edge_[static_cast<std::size_t>(at)] = y + share * (trace.curveY[i + 1] - y);
    }
  }
}

// A column's extremes are those inside it and at its two borders.
void Envelope::takeEdges() {
  for (std::size_t i = 0; i < columns(); ++i) {
    const auto [least, most] = std::minmax(edge_[i], edge_[i + 1]);
    low_[i] = std::min(low_[i], least);
    high_[i] = std::max(high_[i], most);
  }
}

// Not far outside the area: not every device cuts off what leaves it.
double Envelope::heightAt(double rfu) const {
  return std::clamp(transform_.y(rfu), transform_.area().top() - 1, transform_.area().bottom() + 1);
}

void Envelope::visitLines(const std::function<void(const std::vector<QPointF>&)>& line) {
  const double left = transform_.area().left();
  const double unseen = 0.1 / transform_.perRfu();
  points_.clear();
  for (std::size_t i = 0; i <= columns(); ++i) {
    const bool ends = i == columns() || isFlat(i);
    if (ends && points_.empty()) continue;
    const double x = left + static_cast<double>(i) * columnWidth_;
    points_.emplace_back(x, heightAt(edge_[i]));
    if (ends) {
      line(points_);
      points_.clear();
      continue;
    }
    const auto [least, most] = std::minmax(edge_[i], edge_[i + 1]);
    const double middle = x + columnWidth_ / 2;
    if (low_[i] < least - unseen) points_.emplace_back(middle, heightAt(low_[i]));
    if (high_[i] > most + unseen) points_.emplace_back(middle, heightAt(high_[i]));
  }
}

}  // namespace banddesk::desktop
