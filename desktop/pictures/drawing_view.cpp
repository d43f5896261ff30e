#include "desktop/pictures/drawing_view.h"

#include <QApplication>
#include <QHelpEvent>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>

namespace banddesk::desktop {
namespace {

using host::pictures::Point;

constexpr double kLeastScale = 0.05, kLargestScale = 20;
constexpr double kStillReadable = 0.6;  // so that all of it shows
constexpr double kReadable = 0.8;       // names are readable from here on
constexpr double kLargestAtFirst = 1.5;
constexpr double kZoomStep = 1.25;

}  // namespace

DrawingView::DrawingView(QWidget* parent) : QAbstractScrollArea(parent) {
  viewport()->setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setFrameShape(QFrame::NoFrame);
}

void DrawingView::setDrawing(host::pictures::Drawing drawing) {
  drawing_ = std::move(drawing);
  fit();
  viewport()->update();
}

void DrawingView::setEmphasis(std::set<std::size_t> samples, std::optional<std::size_t> locus) {
  selected_ = std::move(samples);
  locus_ = locus;
  viewport()->update();
}

Emphasis DrawingView::emphasis() const { return {selected_, locus_, palette().color(QPalette::Highlight)}; }

// ---- the part that shows

QPointF DrawingView::offset() const {
  const auto of = [](int room, double length, const QScrollBar& bar) {
    return length < room ? (room - length) / 2 : -static_cast<double>(bar.value());
  };
  return {of(viewport()->width(), drawing_.width * scale_, *horizontalScrollBar()),
          of(viewport()->height(), drawing_.height * scale_, *verticalScrollBar())};
}

QPointF DrawingView::shown(Point at) const { return QPointF(at.x, at.y) * scale_ + offset(); }

Point DrawingView::under(QPointF place) const {
  const QPointF at = (place - offset()) / scale_;
  return {at.x(), at.y()};
}

void DrawingView::setScrollRanges() {
  const auto set = [](QScrollBar& bar, double length, int room) {
    bar.setPageStep(room);
    bar.setSingleStep(24);
    bar.setRange(0, std::max(static_cast<int>(length) - room, 0));
  };
  set(*horizontalScrollBar(), drawing_.width * scale_, viewport()->width());
  set(*verticalScrollBar(), drawing_.height * scale_, viewport()->height());
}

// At first as much as stays readable.
void DrawingView::fit() {
  if (drawing_.width <= 0 || drawing_.height <= 0) return;
  const double across = maximumViewportSize().width() / drawing_.width;
  const double whole = std::min(across, maximumViewportSize().height() / drawing_.height);
  if (fit_ == Fit::Whole) scale_ = std::clamp(whole, kLeastScale, kLargestAtFirst);
  if (fit_ == Fit::Readable)
    scale_ = whole >= kStillReadable ? std::min(whole, kLargestAtFirst) : std::clamp(across, kReadable, 1.0);
  setScrollRanges();
}

void DrawingView::showAll() {
  fit_ = Fit::Whole;
  fit();
  viewport()->update();
}

void DrawingView::zoom(double factor, QPointF about) {
  const Point fixed = under(about);
  fit_ = Fit::None;
  scale_ = std::clamp(scale_ * factor, kLeastScale, kLargestScale);
  setScrollRanges();
  horizontalScrollBar()->setValue(static_cast<int>(fixed.x * scale_ - about.x()));
  verticalScrollBar()->setValue(static_cast<int>(fixed.y * scale_ - about.y()));
  viewport()->update();
}

void DrawingView::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  fit();
}

void DrawingView::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  const PlotLook look = PlotLook::ofPalette(palette(), font());
  painter.fillRect(event->rect(), look.ground);
  painter.save();
  painter.translate(offset());
  painter.scale(scale_, scale_);
  const QRectF clip = painter.combinedTransform().inverted().mapRect(QRectF(event->rect()));
  if (drawing_.width > 0) paintDrawing(painter, drawing_, look, clip, emphasis());
  painter.restore();
  if (lasso_.size() < 2) return;
  QColor inside = emphasis().color;
  painter.setPen(QPen(inside, 1.5));
  inside.setAlphaF(0.15F);
  painter.setBrush(inside);
  painter.drawPolygon(lasso_);
}

// ---- the user's acts

void DrawingView::wheelEvent(QWheelEvent* event) {
  if (!(event->modifiers() & Qt::ControlModifier)) return QAbstractScrollArea::wheelEvent(event);
  zoom(event->angleDelta().y() > 0 ? kZoomStep : 1 / kZoomStep, event->position());
}

void DrawingView::keyPressEvent(QKeyEvent* event) {
  const QPointF middle = viewport()->rect().toRectF().center();
  switch (event->key()) {
    case Qt::Key_Plus:
      return zoom(kZoomStep, middle);
    case Qt::Key_Minus:
      return zoom(1 / kZoomStep, middle);
    case Qt::Key_Home:
      return showAll();
    case Qt::Key_Escape:
      Q_EMIT encircled({}, false);
      return;
    default:
      QAbstractScrollArea::keyPressEvent(event);
  }
}

void DrawingView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) lasso_ = {event->position()};
}

void DrawingView::mouseMoveEvent(QMouseEvent* event) {
  if (lasso_.isEmpty()) {
    const Hit hit = hitAt(drawing_, under(event->position()));
    viewport()->setCursor(hit.sample || hit.locus || hit.node ? Qt::PointingHandCursor : Qt::ArrowCursor);
    return;
  }
  const bool isStart = lasso_.size() == 1;
  if (isStart && (event->position() - lasso_.first()).manhattanLength() < QApplication::startDragDistance())
    return;
  lasso_ << event->position();
  viewport()->update();
}

void DrawingView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || lasso_.isEmpty()) return;
  const QPolygonF lasso = std::exchange(lasso_, {});
  viewport()->update();
  const bool adds = event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier);
  if (lasso.size() < 3) {
    Q_EMIT clicked(hitAt(drawing_, under(event->position())), adds);
    return;
  }
  std::vector<Point> outline;
  for (const QPointF& corner : lasso) outline.push_back(under(corner));
  Q_EMIT encircled(samplesWithin(drawing_, outline), adds);
}

void DrawingView::mouseDoubleClickEvent(QMouseEvent* event) {
  lasso_ = {};
  if (event->button() == Qt::LeftButton) Q_EMIT doubleClicked(hitAt(drawing_, under(event->position())));
}

bool DrawingView::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QAbstractScrollArea::viewportEvent(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  Q_EMIT pointed(hitAt(drawing_, under(help->pos())), help->globalPos());
  return true;
}

}  // namespace banddesk::desktop
