#include "desktop/views/plot_painter.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QPaintEngine>
#include <algorithm>
#include <cmath>

#include "desktop/base/qt_text.h"
#include "desktop/views/envelope.h"

namespace banddesk::desktop {
namespace {

constexpr int kMostHeightTicks = 12;
constexpr double kTick = 4;
constexpr double kGap = 3;
constexpr double kHeadroom = 1.08;     // above the highest peak
constexpr double kEmptyHeight = 100;   // RFU, where there is no peak
constexpr double kLeastContrast = 3;   // between a curve and its ground
constexpr double kLeastBandWidth = 2;  // a bin of one fragment has no width of its own
constexpr double kHatch = 8;           // between its lines
constexpr std::size_t kSmoothCurves = 48;

QColor mixed(const QColor& a, const QColor& b, double share) {
  const auto part = [share](int from, int to) {
    return static_cast<int>(std::lround(from + share * (to - from)));
  };
  return {part(a.red(), b.red()), part(a.green(), b.green()), part(a.blue(), b.blue())};
}

double luminance(const QColor& color) {
  const auto linear = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
  const double first = luminance(a) + 0.05;
  const double second = luminance(b) + 0.05;
  return std::max(first / second, second / first);
}

QFont inPixels(QFont font) {
  font.setPixelSize(QFontInfo(font).pixelSize());
  return font;
}

PlotLook lookOf(const QFont& font, const QColor& ground, const QColor& text) {
  return {inPixels(font),           ground, text, mixed(ground, text, 0.12), mixed(ground, text, 0.55),
          mixed(ground, text, 0.45)};
}

}  // namespace

Span fittedHeights(const PlotScene& scene, Span sizes) {
  Span all;
  for (const std::size_t sample : scene.samples) {
    for (std::size_t dye = 0; dye < scene.dyes.size(); ++dye) {
      if (!scene.dyes[dye] || !scene.traces) continue;
      const Span one = heightExtent(scene.traces->samples[sample].dyes[dye], sizes);
      all = {std::min(all.low, one.low), std::max(all.high, one.high)};
    }
  }
  return {all.low * kHeadroom, all.high > 0 ? all.high * kHeadroom : kEmptyHeight};
}

PlotLook PlotLook::ofPalette(const QPalette& palette, const QFont& font) {
  return lookOf(font, palette.color(QPalette::Base), palette.color(QPalette::Text));
}

PlotLook PlotLook::paper(const QFont& font) { return lookOf(font, Qt::white, Qt::black); }

QColor PlotLook::curve(const DyeLook& dye) const {
  const QColor own = toQColor(dye.color);
  QColor color = own.isValid() ? own : text;
  const float step = luminance(ground) > 0.4 ? -0.02F : 0.02F;
  while (contrast(color, ground) < kLeastContrast) {
    const float lightness = color.lightnessF() + step;
    if (lightness <= 0 || lightness >= 1) break;
    color.setHslF(std::max(own.hslHueF(), 0.0F), own.hslSaturationF(), lightness);
  }
  return color;
}

QRectF PlotPainter::areaIn(const QRectF& whole) const {
  const QFontMetricsF metrics(look_.font);
  const double left =
      metrics.height() + metrics.horizontalAdvance(QStringLiteral("000000")) + kTick + 2 * kGap;
  const double bottom = (scene_.hasSizeTitle ? 2 : 1) * metrics.height() + kTick + 2 * kGap;
  const double top = metrics.height() + 2 * kGap;
  const double right = metrics.horizontalAdvance(QStringLiteral("00"));
  // On whole pixels, so that what was drawn can be moved by them.
  return {std::round(whole.left() + left), std::round(whole.top() + top),
          std::max(std::floor(whole.width() - left - right), 1.0),
          std::max(std::floor(whole.height() - top - bottom), 1.0)};
}

void PlotPainter::paint(QPainter& painter, const QRectF& whole, const PlotRange& range,
                        double columnsPerUnit) const {
  const PlotTransform transform(range, areaIn(whole));
  const QRectF& area = transform.area();
  painter.fillRect(whole, look_.ground);
  painter.save();
  painter.setClipRect(area);
  paintContent(painter, transform, {area.left(), area.right()}, columnsPerUnit);
  painter.restore();
  paintFrame(painter, whole, transform);
}

void PlotPainter::paintContent(QPainter& painter, const PlotTransform& transform, Span xs,
                               double columnsPerUnit) const {
  const QRectF& area = transform.area();
  painter.fillRect(QRectF(xs.low, area.top(), xs.length(), area.height()), look_.ground);
  paintBands(painter, transform, xs);
  paintGrid(painter, transform, xs);
  // Only the columns between the two x are worked out, on the same borders as those of the whole, and one
  // more on each side: its line is half a pixel wide beyond its border.
  const double first = std::floor((xs.low - area.left()) * columnsPerUnit) - 1;
  const double last = std::ceil((xs.high - area.left()) * columnsPerUnit) + 1;
  const QRectF part(area.left() + first / columnsPerUnit, area.top(), (last - first) / columnsPerUnit,
                    area.height());
  PlotRange range = transform.range();
  range.sizes = {transform.nt(part.left()), transform.nt(part.right())};
  paintCurves(painter, PlotTransform(range, part), scene_.samples, columnsPerUnit, 1);
}

void PlotPainter::paintBands(QPainter& painter, const PlotTransform& transform, Span xs) const {
  if (!scene_.bands) return;
  const QRectF& area = transform.area();
  const double hatchOrigin = transform.x(0) + area.bottom();
  for (const BinBand& band : *scene_.bands) {
    const auto dye = static_cast<std::size_t>(band.dye);
    if (!scene_.dyes[dye]) continue;
    const double from = transform.x(band.xMin);
    const double width = std::max(transform.x(band.xMax) - from, kLeastBandWidth);
    if (from > xs.high || from + width < xs.low) continue;
    const QRectF place = QRectF(from, area.top(), width, area.height()).intersected(area);
    QColor tint = band.excluded ? look_.text : look_.curve(scene_.traces->dyes[dye]);
    tint.setAlphaF(band.excluded ? 0.12F : 0.16F);
    painter.fillRect(place, tint);
    if (band.excluded && width > kHatch / 2) paintHatch(painter, place, hatchOrigin);
  }
}

// Lines by hand: not every device draws patterns. They go through fixed sizes, so they move with the band.
void PlotPainter::paintHatch(QPainter& painter, const QRectF& place, double origin) const {
  QList<QLineF> lines;
  const double first = std::ceil((place.left() + place.top() - origin) / kHatch) * kHatch + origin;
  for (double sum = first; sum < place.right() + place.bottom(); sum += kHatch) {
    const double left = std::max(place.left(), sum - place.bottom());
    const double right = std::min(place.right(), sum - place.top());
    if (left < right) lines.append(QLineF(left, sum - left, right, sum - right));
  }
  painter.setPen(QPen(look_.excluded, 1));
  painter.drawLines(lines);
}

std::vector<double> PlotPainter::sizeTicks(const PlotTransform& transform) const {
  const double room = QFontMetricsF(look_.font).horizontalAdvance(QStringLiteral("0000.00"));
  return roundTicks(transform.range().sizes, std::max(static_cast<int>(transform.area().width() / room), 1));
}

std::vector<double> PlotPainter::heightTicks(const PlotTransform& transform) const {
  const double room = 1.5 * QFontMetricsF(look_.font).height();
  const int fitting = static_cast<int>(transform.area().height() / room);
  return roundTicks(transform.range().heights, std::clamp(fitting, 1, kMostHeightTicks));
}

void PlotPainter::paintGrid(QPainter& painter, const PlotTransform& transform, Span xs) const {
  const QRectF& area = transform.area();
  painter.setPen(QPen(look_.grid, 1));
  for (const double tick : sizeTicks(transform)) {
    const double x = transform.x(tick);
    if (x < xs.low - 1 || x > xs.high + 1) continue;
    painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
  }
  for (const double tick : heightTicks(transform)) {
    const double y = transform.y(tick);
    painter.drawLine(QPointF(xs.low, y), QPointF(xs.high, y));
  }
}

void PlotPainter::paintCurves(QPainter& painter, const PlotTransform& transform,
                              const std::vector<std::size_t>& samples, double columnsPerUnit,
                              double penWidth) const {
  if (!scene_.traces || samples.empty()) return;
  const auto columns =
      static_cast<std::size_t>(std::max(std::lround(transform.area().width() * columnsPerUnit), 1L));
  Envelope envelope(transform, columns);
  const auto dyes = static_cast<std::size_t>(std::ranges::count(scene_.dyes, true));
  painter.save();
  // On pixels many curves are drawn without smoothing, a pixel wide whatever the scale: ten times as quick.
  const bool isCrowded =
      painter.paintEngine()->type() == QPaintEngine::Raster && samples.size() * dyes > kSmoothCurves;
  painter.setRenderHint(QPainter::Antialiasing, !isCrowded);
  painter.setBrush(Qt::NoBrush);
  for (std::size_t dye = 0; dye < scene_.dyes.size(); ++dye) {
    if (!scene_.dyes[dye]) continue;
    QPen pen(look_.curve(scene_.traces->dyes[dye]), penWidth);
    pen.setCosmetic(isCrowded);
    painter.setPen(pen);
    for (const std::size_t sample : samples) {
      envelope.take(scene_.traces->samples[sample].dyes[dye]);
      envelope.visitLines([&](const std::vector<QPointF>& line) {
        painter.drawPolyline(line.data(), static_cast<int>(line.size()));
      });
    }
  }
  painter.restore();
}

void PlotPainter::paintSample(QPainter& painter, const PlotTransform& transform, std::size_t sample,
                              double columnsPerUnit) const {
  painter.save();
  painter.setClipRect(transform.area());
  paintCurves(painter, transform, {sample}, columnsPerUnit, 2);
  painter.restore();
}

void PlotPainter::paintBandOutline(QPainter& painter, const PlotTransform& transform,
                                   const BinBand& band) const {
  const double from = transform.x(band.xMin);
  const double width = std::max(transform.x(band.xMax) - from, kLeastBandWidth);
  painter.save();
  painter.setClipRect(transform.area());
  painter.setPen(QPen(look_.text, 1, Qt::DashLine));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(QRectF(from, transform.area().top(), width, transform.area().height() - 1));
  painter.restore();
}

void PlotPainter::paintFrame(QPainter& painter, const QRectF& whole, const PlotTransform& transform) const {
  const QRectF& area = transform.area();
  painter.save();
  painter.setFont(look_.font);
  painter.setPen(QPen(look_.frame, 1));
  painter.drawLine(area.topLeft(), area.bottomLeft());
  painter.drawLine(area.bottomLeft(), area.bottomRight());
  paintSizeTicks(painter, whole, transform);
  paintHeightTicks(painter, whole, transform);
  const double right = scene_.hasLegend ? paintLegend(painter, area) : area.right();
  const QFontMetricsF metrics(look_.font);
  const double room = std::max(right - area.left(), 0.0);
  painter.setPen(look_.text);
  painter.drawText(QRectF(area.left(), whole.top() + kGap, room, metrics.height()), Qt::AlignLeft,
                   metrics.elidedText(scene_.title, Qt::ElideRight, room));
  painter.restore();
}

void PlotPainter::paintSizeTicks(QPainter& painter, const QRectF& whole,
                                 const PlotTransform& transform) const {
  const QRectF& area = transform.area();
  const double height = QFontMetricsF(look_.font).height();
  const double width = 200;
  const auto ticks = sizeTicks(transform);
  for (const double tick : ticks) {
    const double x = transform.x(tick);
    painter.setPen(QPen(look_.frame, 1));
    painter.drawLine(QPointF(x, area.bottom()), QPointF(x, area.bottom() + kTick));
    painter.setPen(look_.text);
    painter.drawText(QRectF(x - width / 2, area.bottom() + kTick + 1, width, height), Qt::AlignHCenter,
                     tickText(tick, ticks));
  }
  if (!scene_.hasSizeTitle) return;
  painter.drawText(QRectF(area.left(), whole.bottom() - height - kGap, area.width(), height),
                   Qt::AlignHCenter, QStringLiteral("Size (nt)"));
}

void PlotPainter::paintHeightTicks(QPainter& painter, const QRectF& whole,
                                   const PlotTransform& transform) const {
  const QRectF& area = transform.area();
  const QFontMetricsF metrics(look_.font);
  const auto ticks = heightTicks(transform);
  for (const double tick : ticks) {
    const double y = transform.y(tick);
    painter.setPen(QPen(look_.frame, 1));
    painter.drawLine(QPointF(area.left() - kTick, y), QPointF(area.left(), y));
    painter.setPen(look_.text);
    painter.drawText(QRectF(whole.left(), y - metrics.height() / 2, area.left() - whole.left() - kTick - kGap,
                            metrics.height()),
                     Qt::AlignRight | Qt::AlignVCenter, tickText(tick, ticks));
  }
  const QString title = QStringLiteral("Height (RFU)");
  const double length = metrics.horizontalAdvance(title);
  if (length > whole.height()) return;
  painter.save();
  painter.setPen(look_.text);
  painter.translate(whole.left() + kGap, std::max(area.center().y() + length / 2, whole.top() + length));
  painter.rotate(-90);
  painter.drawText(QRectF(0, 0, length + 1, metrics.height()), Qt::AlignLeft, title);
  painter.restore();
}

// Dyes from right to left above the curves; the answer is where they begin.
double PlotPainter::paintLegend(QPainter& painter, const QRectF& area) const {
  const QFontMetricsF metrics(look_.font);
  const double height = metrics.height();
  double right = area.right();
  const double top = area.top() - height - kGap;
  for (std::size_t dye = scene_.dyes.size(); dye-- > 0;) {
    if (!scene_.dyes[dye] || !scene_.traces) continue;
    const DyeLook& shown = scene_.traces->dyes[dye];
    const double width = metrics.horizontalAdvance(toQString(shown.name)) + 1;
    right -= width;
    painter.setPen(look_.text);
    painter.drawText(QRectF(right, top, width, height), Qt::AlignLeft, toQString(shown.name));
    right -= height;
    painter.fillRect(QRectF(right + height * 0.2, top + height * 0.3, height * 0.6, height * 0.4),
                     look_.curve(shown));
    right -= height * 0.6;
  }
  return right;
}

}  // namespace banddesk::desktop
