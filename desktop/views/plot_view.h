// A plot as a widget: zoom, pan, a read-out under the pointer, and what was drawn kept for the next move. The
// size axis may be shared with other plots; which samples, dyes and bins it shows it is told.
#pragma once

#include <QPixmap>
#include <QTimer>
#include <QWidget>
#include <memory>
#include <optional>

#include "desktop/views/plot_axes.h"
#include "desktop/views/plot_painter.h"
#include "plugin/base/event.h"

namespace banddesk::desktop {

class PlotView final : public QWidget {
  Q_OBJECT

 public:
  explicit PlotView(std::shared_ptr<SizeAxis> axis, QWidget* parent = nullptr);

  // ---- what it shows
  void setTraces(std::shared_ptr<const TraceSet> traces, std::vector<std::size_t> samples);
  void setSamples(std::vector<std::size_t> samples);
  void setDyes(const Dyes& dyes);
  void setBands(std::shared_ptr<const std::vector<BinBand>> bands);
  void setOutlinedBand(std::optional<BinBand> band);
  void setEmphasis(std::optional<std::size_t> sample);  // drawn above the others
  void setTitle(const QString& title);
  void setLegend(bool isShown);
  void setSizeTitle(bool isShown);
  const PlotScene& scene() const { return scene_; }

  // ---- the part that it shows
  SizeAxis& axis() { return *axis_; }
  PlotRange range() const { return {axis_->shown(), heights_}; }
  PlotTransform transform() const;
  // To the right, with the pointer, by the nearest number of whole pixels of the device; the answer is how
  // far.
  double panBy(double pixels);
  void zoom(double factor) { axis_->zoom(factor, axis_->shown().middle()); }
  void zoomHeight(double factor);
  void showHeights(Span heights);  // and keeps them
  // Automatic heights follow the highest peak that is shown.
  void setAutomaticHeight(bool isAutomatic);
  void fitHeights();  // at once, where a pan would let them wait; nothing unless they are automatic
  bool isAutomaticHeight() const { return isAutomatic_; }
  void showAll();

  // ---- the read-out
  std::optional<PeakPlace> peakNear(QPointF place) const;
  QString describe(const PeakPlace& peak) const;
  const QString& readout() const { return readout_; }  // empty while the pointer is nowhere near a peak
  // The next (1) or the previous (-1) peak of the one that is read out, in the order of sizes.
  void stepPeak(int direction);
  void pointOut(const PeakPlace& peak);  // it comes into view and is read out

  // The same plot for another device, on white.
  void paintFigure(QPainter& painter, const QRectF& whole, double columnsPerUnit) const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 Q_SIGNALS:
  // Other heights were chosen, or they became automatic.
  void heightsChanged();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  // The curves as they were drawn last, in the area's place.
  struct Drawn {
    QPixmap pixmap;
    PlotRange range;
    QSize size;
  };
  struct Drag {
    QPointF start;
    QPointF last;
    bool isRubberBand = false;
  };

  PlotPainter painter() const { return {scene_, PlotLook::ofPalette(palette(), font())}; }
  void redraw();  // what was drawn no longer counts
  void refreshContent();
  bool scrollContent(const PlotTransform& transform);
  void drawContent(const PlotTransform& transform, Span xs);
  void paintOverlay(QPainter& painter, const PlotTransform& transform);
  void paintReadout(QPainter& painter, const PlotTransform& transform);
  void readOut(std::optional<PeakPlace> peak);
  void dragTo(QPointF place);
  void zoomInto(const QRectF& rubberBand);
  bool act(const QKeyEvent& event);

  std::shared_ptr<SizeAxis> axis_;
  PlotScene scene_;
  Span heights_{0, 1000};
  bool isAutomatic_ = true;
  std::optional<BinBand> outlined_;
  std::optional<std::size_t> emphasis_;
  std::optional<PeakPlace> read_;
  QString readout_;
  std::optional<Drag> drag_;
  std::optional<Drawn> drawn_;
  QTimer settle_;  // after the last step of a pan the automatic heights follow
  Connection axisConnection_;
};

}  // namespace banddesk::desktop
