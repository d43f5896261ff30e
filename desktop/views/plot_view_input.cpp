// What the user does to a plot: wheel, mouse and keys.
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "desktop/views/plot_view.h"

namespace banddesk::desktop {
namespace {

constexpr double kZoomStep = 1.25;
constexpr double kPanShare = 0.1;       // of the width, for an arrow key
constexpr double kLeastRubberBand = 4;  // pixels; less is a click

}  // namespace

void PlotView::wheelEvent(QWheelEvent* event) {
  const QPoint turned = event->angleDelta();
  const double steps = turned.y() / 120.0;
  if (event->modifiers().testFlag(Qt::ControlModifier)) {
    zoomHeight(std::pow(kZoomStep, steps));
  } else if (turned.y() != 0) {
    axis_->zoom(std::pow(kZoomStep, steps), transform().nt(event->position().x()));
  } else {
    panBy(turned.x() / 2.0);
  }
  event->accept();
}

void PlotView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
  drag_ = Drag{event->position(), event->position(), event->modifiers().testFlag(Qt::ShiftModifier)};
}

void PlotView::mouseMoveEvent(QMouseEvent* event) {
  if (drag_)
    dragTo(event->position());
  else
    readOut(peakNear(event->position()));
}

void PlotView::dragTo(QPointF place) {
  const QPointF moved = place - drag_->last;
  drag_->last = place;
  if (drag_->isRubberBand) {
    update();
    return;
  }
  readOut(std::nullopt);
  const double rfu = moved.y() / transform().perRfu();
  // What is less than a pixel waits for the next move.
  drag_->last.rx() -= moved.x() - panBy(moved.x());
  if (!isAutomatic_ && rfu != 0) showHeights({heights_.low + rfu, heights_.high + rfu});
}

void PlotView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !drag_) return QWidget::mouseReleaseEvent(event);
  const Drag done = *drag_;
  drag_.reset();
  update();
  if (done.isRubberBand) zoomInto(QRectF(done.start, event->position()).normalized());
}

// A flat band is about sizes alone.
void PlotView::zoomInto(const QRectF& rubberBand) {
  const PlotTransform map = transform();
  const QRectF part = rubberBand.intersected(map.area());
  if (part.width() < kLeastRubberBand) return;
  if (part.height() >= kLeastRubberBand) showHeights({map.rfu(part.bottom()), map.rfu(part.top())});
  axis_->show({map.nt(part.left()), map.nt(part.right())});
}

void PlotView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) showAll();
}

void PlotView::leaveEvent(QEvent* event) {
  readOut(std::nullopt);
  QWidget::leaveEvent(event);
}

void PlotView::keyPressEvent(QKeyEvent* event) {
  if (!act(*event)) QWidget::keyPressEvent(event);
}

bool PlotView::act(const QKeyEvent& event) {
  const auto along = [&](int direction) {
    if (event.modifiers().testFlag(Qt::ControlModifier))
      stepPeak(direction);
    else
      panBy(-direction * kPanShare * transform().area().width());
  };
  switch (event.key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      zoom(kZoomStep);
      return true;
    case Qt::Key_Minus:
      zoom(1 / kZoomStep);
      return true;
    case Qt::Key_Left:
      along(-1);
      return true;
    case Qt::Key_Right:
      along(1);
      return true;
    case Qt::Key_Up:
      zoomHeight(kZoomStep);
      return true;
    case Qt::Key_Down:
      zoomHeight(1 / kZoomStep);
      return true;
    case Qt::Key_Home:
      showAll();
      return true;
    case Qt::Key_Escape:
      if (!drag_) return false;
      drag_.reset();
      update();
      return true;
    default:
      return false;
  }
}

}  // namespace banddesk::desktop
