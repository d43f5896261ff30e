// The axes of a plot: where a value stands in a rectangle and the way back, round ticks, and the size axis
// that several plots share. Nothing is drawn here.
#pragma once

#include <QRectF>
#include <vector>

#include "desktop/views/trace_model.h"
#include "plugin/base/event.h"

namespace banddesk::desktop {

struct PlotRange {
  Span sizes{0, 500};     // nt
  Span heights{0, 1000};  // RFU
  friend bool operator==(const PlotRange&, const PlotRange&) = default;
};

// Both spans of the range are longer than 0, and so is the area.
class PlotTransform {
 public:
  PlotTransform(const PlotRange& range, const QRectF& area) : range_(range), area_(area) {}

  double perNt() const { return area_.width() / range_.sizes.length(); }
  double perRfu() const { return area_.height() / range_.heights.length(); }
  double x(double nt) const { return area_.left() + (nt - range_.sizes.low) * perNt(); }
  double y(double rfu) const { return area_.bottom() - (rfu - range_.heights.low) * perRfu(); }
  QPointF at(double nt, double rfu) const { return {x(nt), y(rfu)}; }
  double nt(double x) const { return range_.sizes.low + (x - area_.left()) / perNt(); }
  double rfu(double y) const { return range_.heights.low + (area_.bottom() - y) / perRfu(); }
  const PlotRange& range() const { return range_; }
  const QRectF& area() const { return area_; }

 private:
  PlotRange range_;
  QRectF area_;
};

// Multiples of 1, 2 or 5 times a power of ten within the span, in ascending order and no more than asked for.
std::vector<double> roundTicks(Span span, int atMost);
// A tick as text, with as many decimals as the distance of the ticks asks for.
QString tickText(double tick, const std::vector<double>& ticks);

// The sizes that plots show, one object for all plots that move together. It stays within the whole.
class SizeAxis {
 public:
  static constexpr double kShortest = 0.2;  // nt

  const Span& whole() const { return whole_; }
  const Span& shown() const { return shown_; }
  void setWhole(Span whole);  // and shows it
  void widen(Span sizes);     // so that these belong to the whole; shows the same as before
  void show(Span sizes);
  void showAll() { show(whole_); }
  void shift(double nt) { show({shown_.low + nt, shown_.high + nt}); }
  // The size `about` stays in its place; a factor above 1 shows less.
  void zoom(double factor, double about);

  Event<> Changed;

 private:
  Span whole_{0, 500};
  Span shown_{0, 500};
};

}  // namespace banddesk::desktop
