#include "desktop/views/plot_view.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPaintEvent>
#include <QStyle>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

constexpr int kSettleMs = 250;

}  // namespace

PlotView::PlotView(std::shared_ptr<SizeAxis> axis, QWidget* parent)
    : QWidget(parent), axis_(std::move(axis)) {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setAccessibleName(QStringLiteral("Plot"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  settle_.setSingleShot(true);
  settle_.setInterval(kSettleMs);
  connect(&settle_, &QTimer::timeout, this, [this] { fitHeights(); });
  axisConnection_ = axis_->Changed.connect([this] {
    // A pan keeps the heights until it rests: else curves would pump up and down under the pointer.
    const bool isPan = drawn_ && std::abs(drawn_->range.sizes.length() - axis_->shown().length()) < 1e-9;
    if (isPan)
      settle_.start();
    else
      fitHeights();
    update();
  });
}

QSize PlotView::sizeHint() const {
  const QFontMetrics metrics(font());
  return {metrics.averageCharWidth() * 100, metrics.height() * 24};
}

QSize PlotView::minimumSizeHint() const {
  const QFontMetrics metrics(font());
  return {metrics.averageCharWidth() * 30, metrics.height() * 8};
}

void PlotView::redraw() {
  drawn_.reset();
  fitHeights();
  update();
}

void PlotView::setTraces(std::shared_ptr<const TraceSet> traces, std::vector<std::size_t> samples) {
  scene_.traces = std::move(traces);
  setSamples(std::move(samples));
}

void PlotView::setSamples(std::vector<std::size_t> samples) {
  scene_.samples = std::move(samples);
  readOut(std::nullopt);
  redraw();
}

void PlotView::setDyes(const Dyes& dyes) {
  if (scene_.dyes == dyes) return;
  scene_.dyes = dyes;
  readOut(std::nullopt);
  redraw();
}

void PlotView::setBands(std::shared_ptr<const std::vector<BinBand>> bands) {
  scene_.bands = std::move(bands);
  if (read_) readout_ = describe(*read_);
  drawn_.reset();
  update();
}

void PlotView::setOutlinedBand(std::optional<BinBand> band) {
  outlined_ = std::move(band);
  update();
}

void PlotView::setEmphasis(std::optional<std::size_t> sample) {
  emphasis_ = sample;
  update();
}

void PlotView::setTitle(const QString& title) {
  scene_.title = title;
  setAccessibleName(title.isEmpty() ? QStringLiteral("Plot") : QStringLiteral("Plot of ") + title);
  update();
}

void PlotView::setSizeTitle(bool isShown) {
  if (scene_.hasSizeTitle == isShown) return;
  scene_.hasSizeTitle = isShown;
  update();
}

void PlotView::setLegend(bool isShown) {
  scene_.hasLegend = isShown;
  update();
}

// ---- the part that is shown

PlotTransform PlotView::transform() const {
  const PlotPainter plot(scene_, PlotLook::ofPalette(palette(), font()));
  return {range(), plot.areaIn(QRectF(rect()))};
}

double PlotView::panBy(double pixels) {
  const double moved = std::round(pixels * devicePixelRatioF()) / devicePixelRatioF();
  if (moved != 0) axis_->shift(-moved / transform().perNt());
  return moved;
}

void PlotView::zoomHeight(double factor) {
  showHeights({heights_.low / factor, std::max(heights_.high / factor, 1.0)});
}

void PlotView::showHeights(Span heights) {
  if (!isAutomatic_ && heights_ == heights) return;
  isAutomatic_ = false;
  heights_ = heights;
  update();
  Q_EMIT heightsChanged();
}

void PlotView::setAutomaticHeight(bool isAutomatic) {
  if (isAutomatic_ == isAutomatic) return;
  isAutomatic_ = isAutomatic;
  fitHeights();
  Q_EMIT heightsChanged();
}

void PlotView::showAll() {
  axis_->showAll();
  setAutomaticHeight(true);
  fitHeights();
}

void PlotView::fitHeights() {
  if (!isAutomatic_) return;
  heights_ = fittedHeights(scene_, axis_->shown());
  update();
}

// ---- the read-out

std::optional<PeakPlace> PlotView::peakNear(QPointF place) const {
  const PlotTransform map = transform();
  if (!scene_.traces || !map.area().contains(place)) return std::nullopt;
  PeakSearch search;
  search.size = map.nt(place.x());
  search.height = map.rfu(place.y());
  search.unitsPerNt = map.perNt();
  search.unitsPerRfu = map.perRfu();
  search.reach = 2 * QFontMetricsF(font()).height();
  return nearestPeak(*scene_.traces, scene_.samples, scene_.dyes, search);
}

QString PlotView::describe(const PeakPlace& peak) const {
  const TraceSample& sample = scene_.traces->samples[peak.sample];
  const DyeTrace& trace = sample.dyes[peak.dye];
  QString text = QStringLiteral("%1, %2: %3 nt, %4 RFU")
                     .arg(toQString(sample.name), toQString(scene_.traces->dyes[peak.dye].name),
                          QString::number(trace.sizes[peak.peak], 'f', 2),
                          QString::number(trace.heights[peak.peak], 'f', 0));
  if (!scene_.bands) return text;
  Dyes dye{};
  dye[peak.dye] = true;
  const BinBand* band = bandAt(*scene_.bands, trace.sizes[peak.peak], dye);
  if (band != nullptr) text += QStringLiteral(", bin ") + toQString(band->name);
  return text;
}

void PlotView::readOut(std::optional<PeakPlace> peak) {
  if (read_ == peak) return;
  read_ = peak;
  readout_ = peak ? describe(*peak) : QString();
  setAccessibleDescription(readout_);
  update();
}

void PlotView::stepPeak(int direction) {
  if (!scene_.traces) return;
  std::vector<std::pair<double, PeakPlace>> shown;
  const Span sizes = axis_->shown();
  for (const std::size_t sample : scene_.samples) {
    for (std::size_t dye = 0; dye < scene_.dyes.size(); ++dye) {
      if (!scene_.dyes[dye]) continue;
      const auto& all = scene_.traces->samples[sample].dyes[dye].sizes;
      for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i] >= sizes.low && all[i] <= sizes.high) shown.push_back({all[i], {sample, dye, i}});
      }
    }
  }
  if (shown.empty()) return;
  std::ranges::stable_sort(shown, {}, [](const auto& each) { return each.first; });
  const auto at =
      std::ranges::find_if(shown, [&](const auto& each) { return read_ && each.second == *read_; });
  const auto last = static_cast<std::ptrdiff_t>(shown.size()) - 1;
  const std::ptrdiff_t from = at == shown.end() ? (direction > 0 ? -1 : last + 1) : at - shown.begin();
  readOut(shown[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(from + direction, 0, last))].second);
}

void PlotView::pointOut(const PeakPlace& peak) {
  const double size = scene_.traces->samples[peak.sample].dyes[peak.dye].sizes[peak.peak];
  const Span shown = axis_->shown();
  if (size < shown.low || size > shown.high) axis_->shift(size - shown.middle());
  readOut(peak);
}

// ---- painting

void PlotView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) redraw();
  QWidget::changeEvent(event);
}

void PlotView::drawContent(const PlotTransform& transform, Span xs) {
  QPainter painter(&drawn_->pixmap);
  painter.translate(-transform.area().topLeft());
  painter.setClipRect(QRectF(xs.low, transform.area().top(), xs.length(), transform.area().height()));
  this->painter().paintContent(painter, transform, xs, devicePixelRatioF());
}

// Moves what is drawn and draws only what comes in. False where that does not do.
bool PlotView::scrollContent(const PlotTransform& transform) {
  const PlotRange wanted = range();
  if (drawn_->range.heights != wanted.heights) return false;
  const double perNt = transform.perNt() * devicePixelRatioF();
  const double tooLong = std::abs(drawn_->range.sizes.length() - wanted.sizes.length()) * perNt;
  const double shift = (drawn_->range.sizes.low - wanted.sizes.low) * perNt;
  const double pixels = std::round(shift);
  if (tooLong > 1e-3 || std::abs(shift - pixels) > 1e-3 || std::abs(pixels) >= drawn_->size.width())
    return false;
  drawn_->pixmap.scroll(static_cast<int>(pixels), 0, drawn_->pixmap.rect());
  drawn_->range = wanted;
  // A little more than what comes in: a border between pixels was drawn in part.
  const QRectF& area = transform.area();
  const double width = std::min(std::abs(pixels) / devicePixelRatioF() + 1, area.width());
  if (pixels > 0) drawContent(transform, {area.left(), area.left() + width});
  if (pixels < 0) drawContent(transform, {area.right() - width, area.right()});
  return true;
}

void PlotView::refreshContent() {
  const PlotTransform map = transform();
  const QSize size = (map.area().size() * devicePixelRatioF()).toSize().expandedTo({1, 1});
  if (drawn_ && drawn_->size == size && (drawn_->range == range() || scrollContent(map))) return;
  drawn_ = Drawn{QPixmap(size), range(), size};
  drawn_->pixmap.setDevicePixelRatio(devicePixelRatioF());
  drawContent(map, {map.area().left(), map.area().right()});
}

void PlotView::paintEvent(QPaintEvent*) {
  refreshContent();
  QPainter painter(this);
  const PlotTransform map = transform();
  painter.fillRect(rect(), palette().color(QPalette::Base));
  painter.drawPixmap(map.area().topLeft(), drawn_->pixmap);
  this->painter().paintFrame(painter, QRectF(rect()), map);
  paintOverlay(painter, map);
}

void PlotView::paintOverlay(QPainter& painter, const PlotTransform& transform) {
  const PlotPainter plot = this->painter();
  if (outlined_) plot.paintBandOutline(painter, transform, *outlined_);
  if (emphasis_) plot.paintSample(painter, transform, *emphasis_, devicePixelRatioF());
  if (read_) paintReadout(painter, transform);
  painter.setBrush(Qt::NoBrush);
  if (drag_ && drag_->isRubberBand) {
    QColor fill = palette().color(QPalette::Highlight);
    painter.setPen(fill);
    fill.setAlphaF(0.2F);
    painter.setBrush(fill);
    painter.drawRect(QRectF(drag_->start, drag_->last).normalized());
    painter.setBrush(Qt::NoBrush);
  }
  if (hasFocus()) {
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
  }
}

void PlotView::paintReadout(QPainter& painter, const PlotTransform& transform) {
  const DyeTrace& trace = scene_.traces->samples[read_->sample].dyes[read_->dye];
  QPointF top = transform.at(trace.sizes[read_->peak], trace.heights[read_->peak]);
  const QRectF& area = transform.area();
  if (top.x() < area.left() || top.x() > area.right()) return;
  top.setY(std::clamp(top.y(), area.top(), area.bottom()));
  const QFontMetricsF metrics(font());
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette().color(QPalette::Text), 1.5));
  painter.setBrush(Qt::NoBrush);
  painter.drawEllipse(top, metrics.height() / 4, metrics.height() / 4);
  painter.setRenderHint(QPainter::Antialiasing, false);
  const double margin = metrics.height() / 4;
  QRectF box(0, 0, metrics.horizontalAdvance(readout_) + 2 * margin, metrics.height() + 2 * margin);
  box.moveTopLeft(top + QPointF(margin * 2, margin * 2));
  if (box.right() > area.right()) box.moveRight(std::max(top.x() - 2 * margin, area.left() + box.width()));
  if (box.right() > rect().right()) box.moveRight(rect().right());
  if (box.bottom() > area.bottom()) box.moveBottom(area.bottom());
  painter.setPen(palette().color(QPalette::ToolTipText));
  painter.setBrush(palette().color(QPalette::ToolTipBase));
  painter.drawRect(box);
  painter.drawText(box, Qt::AlignCenter, readout_);
}

void PlotView::paintFigure(QPainter& painter, const QRectF& whole, double columnsPerUnit) const {
  PlotScene figure = scene_;
  figure.hasLegend = true;
  PlotPainter(figure, PlotLook::paper(font())).paint(painter, whole, range(), columnsPerUnit);
}

}  // namespace banddesk::desktop
