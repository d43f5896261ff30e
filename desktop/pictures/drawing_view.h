// A drawing as a widget: zoom, scroll, the name under the pointer, clicks and a lasso. What is selected it is
// told; what a click means is for its owner.
#pragma once

#include <QAbstractScrollArea>
#include <QPolygonF>
#include <set>

#include "desktop/pictures/drawing_painter.h"
#include "host/pictures/hit.h"

namespace banddesk::desktop {

class DrawingView final : public QAbstractScrollArea {
  Q_OBJECT

 public:
  explicit DrawingView(QWidget* parent);

  // Zoom and place stay, but for the first one.
  void setDrawing(host::pictures::Drawing drawing);
  void setEmphasis(std::set<std::size_t> samples, std::optional<std::size_t> locus);
  const host::pictures::Drawing& drawing() const { return drawing_; }

  void showAll();
  void zoom(double factor, QPointF about);
  // From the drawing's units to the viewport's.
  QPointF shown(host::pictures::Point at) const;

  using Hit = host::pictures::Hit;

 Q_SIGNALS:
  void clicked(const Hit& hit, bool adds);
  void doubleClicked(const Hit& hit);
  void encircled(const std::set<std::size_t>& samples, bool adds);
  void pointed(const Hit& hit, const QPoint& where);  // the pointer rests there, on the screen

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool viewportEvent(QEvent* event) override;

 private:
  enum class Fit { Readable, Whole, None };

  host::pictures::Point under(QPointF place) const;
  QPointF offset() const;
  void fit();
  void setScrollRanges();
  Emphasis emphasis() const;

  host::pictures::Drawing drawing_;
  std::set<std::size_t> selected_;
  std::optional<std::size_t> locus_;
  double scale_ = 1;
  Fit fit_ = Fit::Readable;
  QPolygonF lasso_;  // while the button is down
};

}  // namespace banddesk::desktop
