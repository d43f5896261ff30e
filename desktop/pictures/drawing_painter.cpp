#include "desktop/pictures/drawing_painter.h"

#include <QFontMetricsF>
#include <algorithm>

#include "desktop/base/qt_text.h"
#include "host/pictures/palette.h"

namespace banddesk::desktop {
namespace {

using namespace host::pictures;

constexpr int kTitleSize = 14;
constexpr Point kTitleAt{20, 22};
constexpr double kRing = 7;  // around a mark, its radius
constexpr float kTint = 0.35F;

QColor between(const QColor& from, const QColor& to, double share) {
  const auto part = [share](int a, int b) { return static_cast<int>(a + share * (b - a) + 0.5); };
  return {part(from.red(), to.red()), part(from.green(), to.green()), part(from.blue(), to.blue())};
}

QRectF placeOf(const Box& box) { return {box.at.x, box.at.y, box.width, box.height}; }
QRectF placeOf(const Raster& raster) { return {raster.at.x, raster.at.y, raster.width, raster.height}; }

class DrawingPainter {
 public:
  DrawingPainter(QPainter& painter, const PlotLook& look, const QRectF& clip, const Emphasis& emphasis)
      : painter_(painter), look_(look), clip_(clip), emphasis_(emphasis) {
    tint_ = emphasis.color.isValid() ? look.curve({"", toColour(emphasis.color)}) : look.text;
    tint_.setAlphaF(kTint);
    font_ = look.font;
    font_.setPixelSize(static_cast<int>(kFontSize));
  }

  void paint(const Drawing& drawing) {
    for (const Box& box : drawing.boxes) {
      if (box.kind == BoxKind::Bin) paintBin(box);
    }
    for (const Raster& raster : drawing.rasters) paintRaster(raster);
    painter_.setRenderHint(QPainter::Antialiasing);
    for (const Line& line : drawing.lines) paintLine(line);
    for (const Box& box : drawing.boxes) paintBox(box);
    for (const Mark& mark : drawing.marks) paintMark(mark);
    for (const Label& label : drawing.labels) paintLabel(label);
    font_.setPixelSize(kTitleSize);
    painter_.setFont(font_);
    painter_.setPen(look_.text);
    painter_.drawText(QPointF(kTitleAt.x, kTitleAt.y), toQString(drawing.title));
  }

 private:
  QColor groupColour(std::size_t group) const {
    return look_.curve({"", toColour(QColor(QRgb(lookOf(group).colour)))});
  }
  bool isSelected(const std::optional<std::size_t>& sample) const {
    return sample && emphasis_.samples.contains(*sample);
  }

  void paintBin(const Box& box) {
    const QRectF place = placeOf(box);
    if (!place.intersects(clip_)) return;
    const bool isMarked = box.locus && box.locus == emphasis_.locus;
    painter_.fillRect(place, isMarked ? tint_ : between(look_.ground, QColor(0x4F, 0x86, 0xC6), 0.3));
  }

  void paintRaster(const Raster& raster) {
    const QRectF place = placeOf(raster);
    if (!place.intersects(clip_)) return;
    const auto columns = static_cast<int>(raster.loci.size()),
               lines = static_cast<int>(raster.samples.size());
    QImage image(columns, lines, QImage::Format_Indexed8);
    for (int ink = 0; ink < 256; ++ink)
      image.setColor(ink, between(look_.ground, look_.text, ink / 255.0).rgb());
    for (int line = 0; line < lines; ++line)
      std::copy_n(raster.ink.begin() + static_cast<std::ptrdiff_t>(line) * columns, columns,
                  image.scanLine(line));
    // Cells smaller than a pixel would else show or not by chance.
    const double pixels = painter_.combinedTransform().m11() * raster.width / columns;
    painter_.setRenderHint(QPainter::SmoothPixmapTransform, pixels < 1);
    painter_.setRenderHint(QPainter::LosslessImageRendering);
    painter_.drawImage(place, image.convertToFormat(QImage::Format_RGB32));
    const double line = raster.height / lines;
    for (int at = 0; at < lines; ++at) {
      if (isSelected(raster.samples[static_cast<std::size_t>(at)]))
        painter_.fillRect(QRectF(place.left(), place.top() + at * line, place.width(), line), tint_);
    }
    if (const auto found = std::ranges::find(raster.loci, emphasis_.locus.value_or(raster.loci.size()));
        found != raster.loci.end()) {
      const double column = raster.width / columns;
      const double left = place.left() + column * static_cast<double>(found - raster.loci.begin());
      painter_.fillRect(QRectF(left, place.top(), column, place.height()), tint_);
    }
  }

  void paintLine(const Line& line) {
    const QRectF place =
        QRectF(QPointF(line.from.x, line.from.y), QPointF(line.to.x, line.to.y)).normalized();
    if (!place.adjusted(-1, -1, 1, 1).intersects(clip_)) return;
    QColor colour = line.kind == LineKind::Grid     ? look_.grid
                    : line.kind == LineKind::Branch ? look_.text
                                                    : look_.frame;
    if (line.group) colour = groupColour(*line.group);
    painter_.setPen(QPen(colour, lineWidth_, Qt::SolidLine, Qt::SquareCap));
    // A line along an axis would lie half on two pixels.
    painter_.setRenderHint(QPainter::Antialiasing, line.from.x != line.to.x && line.from.y != line.to.y);
    painter_.drawLine(QPointF(line.from.x, line.from.y), QPointF(line.to.x, line.to.y));
    painter_.setRenderHint(QPainter::Antialiasing);
  }

  void paintBox(const Box& box) {
    const QRectF place = placeOf(box);
    if (box.kind == BoxKind::Bin || !place.intersects(clip_)) return;
    if (box.kind == BoxKind::Ink) painter_.fillRect(place, between(look_.ground, look_.text, box.ink));
    if (box.kind == BoxKind::Group) {
      painter_.setPen(
          QPen(isSelected(box.sample) ? look_.text : look_.ground, isSelected(box.sample) ? 1.5 : 0.5));
      painter_.setBrush(groupColour(box.group));
      painter_.drawRect(place);
    }
    if (box.kind == BoxKind::Place && isSelected(box.sample)) painter_.fillRect(place, tint_);
  }

  void paintMark(const Mark& mark) {
    const QPointF at(mark.at.x, mark.at.y);
    if (!clip_.adjusted(-kRing, -kRing, kRing, kRing).contains(at)) return;
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(groupColour(mark.group));
    const auto corners = cornersOf(lookOf(mark.group).shape);
    QPolygonF outline;
    for (const Point& corner : corners) outline << at + QPointF(kMarkSize * corner.x, kMarkSize * corner.y);
    corners.empty() ? painter_.drawEllipse(at, kMarkSize, kMarkSize) : painter_.drawPolygon(outline);
    if (!isSelected(mark.sample)) return;
    painter_.setBrush(Qt::NoBrush);
    painter_.setPen(QPen(look_.text, 2));
    painter_.drawEllipse(at, kRing, kRing);
  }

  void paintLabel(const Label& label) {
    painter_.setFont(font_);
    const QString text = toQString(label.text);
    const double width = QFontMetricsF(font_).horizontalAdvance(text);
    const double before = label.anchor == Anchor::Start    ? 0
                          : label.anchor == Anchor::Middle ? width / 2
                                                           : width;
    const double reach = width + kFontSize;
    if (!clip_.adjusted(-reach, -reach, reach, reach).contains(QPointF(label.at.x, label.at.y))) return;
    painter_.save();
    painter_.translate(label.at.x, label.at.y);
    if (label.isUpright) painter_.rotate(-90);
    if (isSelected(label.sample))
      painter_.fillRect(QRectF(-before - 1, -kFontSize, width + 2, kFontSize + 3), tint_);
    painter_.setPen(label.group ? groupColour(*label.group) : look_.text);
    painter_.drawText(QPointF(-before, 0), text);
    painter_.restore();
  }

  QPainter& painter_;
  const PlotLook& look_;
  const QRectF clip_;
  const Emphasis& emphasis_;
  // Never thinner than a pixel of the device, in which it would fade.
  const double lineWidth_ = std::max(1.0, 1 / std::max(painter_.combinedTransform().m11(), 1e-6));
  QColor tint_;
  QFont font_;
};

}  // namespace

void paintDrawing(QPainter& painter, const Drawing& drawing, const PlotLook& look, const QRectF& clip,
                  const Emphasis& emphasis) {
  painter.fillRect(clip, look.ground);
  DrawingPainter(painter, look, clip, emphasis).paint(drawing);
}

}  // namespace banddesk::desktop
