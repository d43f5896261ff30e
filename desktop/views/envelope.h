// A trace reduced to pixel columns: its value at the columns' borders, and the smallest and largest within
// each. What is drawn from it costs as much as there are columns, however many fragments lie under one.
#pragma once

#include <QPointF>
#include <QRectF>
#include <functional>
#include <vector>

#include "desktop/views/plot_axes.h"

namespace banddesk::desktop {

class Envelope {
 public:
  // The columns share the area's width evenly. Its storage serves one trace after the other.
  Envelope(const PlotTransform& transform, std::size_t columns);

  // Peaks as bells of their width, the higher one counting where they overlap; or the trace's own curve.
  void take(const DyeTrace& trace);

  std::size_t columns() const { return low_.size(); }
  double lowest(std::size_t column) const { return low_[column]; }  // RFU
  double highest(std::size_t column) const { return high_[column]; }

  // The line to draw, in pieces where the trace lies on the baseline between them.
  void visitLines(const std::function<void(const std::vector<QPointF>&)>& line);

 private:
  void clear();
  void takePeaks(const DyeTrace& trace);
  void takePeak(double size, double height, double width);
  void takeCurve(const DyeTrace& trace);
  void takeEdges();
  double heightAt(double rfu) const;
  double column(double nt) const { return (nt - range_.sizes.low) * columnsPerNt_; }
  bool isFlat(std::size_t column) const { return high_[column] == 0 && low_[column] == 0; }

  PlotTransform transform_;
  PlotRange range_;
  double columnsPerNt_;
  double negligible_;  // RFU, too little to be seen
  double columnWidth_;
  std::vector<double> edge_;  // one more than columns
  std::vector<double> low_;
  std::vector<double> high_;
  std::vector<QPointF> points_;
};

// The height of a bell at a distance from its middle.
double bell(double distance, double height, double fullWidthAtHalfHeight);

}  // namespace banddesk::desktop
