// Draws a plot of traces on any painter: on the screen, in a picture, in SVG and PDF. It holds no state of a
// view; what it draws is handed to it.
#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QPalette>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/views/plot_axes.h"
#include "desktop/views/trace_model.h"

namespace banddesk::desktop {

// What is drawn. The samples are indexes into the traces, in the order of drawing.
struct PlotScene {
  std::shared_ptr<const TraceSet> traces;
  std::vector<std::size_t> samples;
  Dyes dyes{};
  std::shared_ptr<const std::vector<BinBand>> bands;
  QString title;
  bool hasLegend = true;
  bool hasSizeTitle = true;
};

// From 0, or below for curves that go there, to a little above the highest peak within the sizes.
Span fittedHeights(const PlotScene& scene, Span sizes);

// Fonts are measured in pixels of the painter, so that a figure is the same on every device.
struct PlotLook {
  QFont font;
  QColor ground;
  QColor text;
  QColor grid;
  QColor frame;
  QColor excluded;

  static PlotLook ofPalette(const QPalette& palette, const QFont& font);
  static PlotLook paper(const QFont& font);
  // The dye's colour, darker or lighter where it would not stand out from the ground; its hue stays.
  QColor curve(const DyeLook& dye) const;
};

class PlotPainter {
 public:
  PlotPainter(const PlotScene& scene, PlotLook look) : scene_(scene), look_(std::move(look)) {}

  // The curves' rectangle inside the whole; not empty, however small the whole is. Plots of equal width have
  // areas of equal width.
  QRectF areaIn(const QRectF& whole) const;

  // All of it. `columnsPerUnit` is how finely curves follow: device pixels a unit on a screen.
  void paint(QPainter& painter, const QRectF& whole, const PlotRange& range, double columnsPerUnit) const;

  // Ground, bands, grid lines and curves between two x; what is already drawn beside them fits on.
  void paintContent(QPainter& painter, const PlotTransform& transform, Span xs, double columnsPerUnit) const;
  // Frame, ticks, their texts, titles and legend.
  void paintFrame(QPainter& painter, const QRectF& whole, const PlotTransform& transform) const;
  // One sample above the others.
  void paintSample(QPainter& painter, const PlotTransform& transform, std::size_t sample,
                   double columnsPerUnit) const;
  void paintBandOutline(QPainter& painter, const PlotTransform& transform, const BinBand& band) const;

 private:
  void paintBands(QPainter& painter, const PlotTransform& transform, Span xs) const;
  void paintHatch(QPainter& painter, const QRectF& place, double origin) const;
  void paintGrid(QPainter& painter, const PlotTransform& transform, Span xs) const;
  void paintCurves(QPainter& painter, const PlotTransform& transform, const std::vector<std::size_t>& samples,
                   double columnsPerUnit, double penWidth) const;
  void paintSizeTicks(QPainter& painter, const QRectF& whole, const PlotTransform& transform) const;
  void paintHeightTicks(QPainter& painter, const QRectF& whole, const PlotTransform& transform) const;
  double paintLegend(QPainter& painter, const QRectF& area) const;
  std::vector<double> sizeTicks(const PlotTransform& transform) const;
  std::vector<double> heightTicks(const PlotTransform& transform) const;

  const PlotScene& scene_;
  PlotLook look_;
};

}  // namespace banddesk::desktop
