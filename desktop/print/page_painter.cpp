#include "desktop/print/page_painter.h"

#include <QFontMetricsF>
#include <algorithm>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

// Inside, lengths are tenths of a point: fonts then have whole pixel sizes and the same metrics everywhere.
constexpr double kUnits = 10;
constexpr qsizetype kShortText = 12;
constexpr double kNarrowest = 0.8;  // a text is squeezed down to this before it is cut
constexpr int kLinePale = 170;
constexpr int kGroundDarkest = 140;  // of a printout in black and white, so that black text is readable
constexpr std::int32_t kRight = 1;
constexpr std::int32_t kCentre = 2;
constexpr std::int32_t kBottom = 2;

QRectF unitRect(const PaperRect& rect) {
  return {rect.left * kUnits, rect.top * kUnits, rect.width * kUnits, rect.height * kUnits};
}

struct Gap {
  double from;
  double to;
};

// The line at `at` from `start` to `end`, but for the gaps.
template <class Draw>
void drawInterrupted(std::vector<Gap> gaps, double start, double end, const Draw& draw) {
  std::ranges::sort(gaps, {}, &Gap::from);
  for (const Gap& gap : gaps) {
    if (gap.from > start) draw(start, gap.from);
    start = std::max(start, gap.to);
  }
  if (end > start) draw(start, end);
}

bool isMerged(const PlacedCell& placed) {
  return placed.lines.endRow - placed.lines.firstRow > 1 ||
         placed.lines.endColumn - placed.lines.firstColumn > 1;
}

}  // namespace

PagePainter::PagePainter(const PrintLayout& layout) : layout_(layout) {}

void PagePainter::paint(QPainter& painter, std::size_t page) {
  painter.save();
  painter.scale(1 / kUnits, 1 / kUnits);
  paintGrounds(painter, page);
  paintLines(painter, page);
  paintCells(painter, page);
  paintBlock(painter, layout_.job().header, 0);
  paintBlock(painter, layout_.job().footer, layout_.room().height - layout_.footerHeight() + kBlockGap);
  paintPageNumber(painter, page);
  painter.restore();
}

PagePainter::TextFont& PagePainter::fontOf(double points) {
  const auto [place, isNew] = fonts_.try_emplace(points);
  TextFont& font = place->second;
  if (!isNew) return font;
  font.font.setPixelSize(std::max(1, qRound(points * kUnits)));
  font.font.setHintingPreference(QFont::PreferNoHinting);
  const QFontMetricsF metrics(font.font);
  font.ascent = metrics.ascent();
  font.height = metrics.height();
  return font;
}

double PagePainter::widthOf(TextFont& font, const QString& text) {
  if (text.size() > kShortText) return QFontMetricsF(font.font).horizontalAdvance(text);
  const auto known = font.widths.constFind(text);
  if (known != font.widths.constEnd()) return *known;
  return *font.widths.insert(text, QFontMetricsF(font.font).horizontalAdvance(text));
}

QColor PagePainter::groundOf(const StyleAttributes& look) const {
  QColor ground = toQColor(look.interior.value_or(GridBrush{}).color);
  if (!ground.isValid()) ground = QColor(Qt::lightGray).lighter(115);
  if (!layout_.job().isBlackWhite) return ground;
  const int grey = kGroundDarkest + qGray(ground.rgb()) * (255 - kGroundDarkest) / 255;
  return {grey, grey, grey};
}

QColor PagePainter::inkOf(const StyleAttributes& look) const {
  if (layout_.job().isBlackWhite) return Qt::black;
  const QColor ink = toQColor(look.textColor.value_or(ui::kWindowText));
  return ink.isValid() ? ink : QColor(Qt::black);
}

void PagePainter::paintGrounds(QPainter& painter, std::size_t page) const {
  layout_.visit(page, [&](const PlacedCell& placed) {
    const QColor ground = groundOf(layout_.job().looks.at(placed.cell->look));
    if (ground != Qt::white) painter.fillRect(unitRect(placed.place), ground);
  });
}

// Whole lines through the table, with gaps where merged cells lie.
void PagePainter::paintLines(QPainter& painter, std::size_t page) const {
  const std::vector<double> columns = layout_.columnEdges(page);
  const std::vector<double> rows = layout_.rowEdges(page);
  if (columns.size() < 2 || rows.size() < 2) return;
  std::vector<PaperRect> merged;
  layout_.visit(page, [&](const PlacedCell& placed) {
    if (isMerged(placed)) merged.push_back(placed.place);
  });
  constexpr double kTouch = 0.01;
  QList<QLineF> lines;
  for (const double x : columns) {
    std::vector<Gap> gaps;
    for (const PaperRect& rect : merged) {
      const bool isCrossed = rect.left + kTouch < x && x < rect.left + rect.width - kTouch;
      if (isCrossed) gaps.push_back({rect.top, rect.top + rect.height});
    }
    drawInterrupted(gaps, rows.front(), rows.back(), [&](double from, double to) {
      lines << QLineF(x * kUnits, from * kUnits, x * kUnits, to * kUnits);
    });
  }
  for (const double y : rows) {
    std::vector<Gap> gaps;
    for (const PaperRect& rect : merged) {
      const bool isCrossed = rect.top + kTouch < y && y < rect.top + rect.height - kTouch;
      if (isCrossed) gaps.push_back({rect.left, rect.left + rect.width});
    }
    drawInterrupted(gaps, columns.front(), columns.back(), [&](double from, double to) {
      lines << QLineF(from * kUnits, y * kUnits, to * kUnits, y * kUnits);
    });
  }
  painter.setPen(QPen(QColor(kLinePale, kLinePale, kLinePale), kUnits / 4));
  painter.drawLines(lines);
}

void PagePainter::paintCells(QPainter& painter, std::size_t page) {
  layout_.visit(page, [&](const PlacedCell& placed) {
    if (placed.holdsText && !placed.cell->text.empty()) paintCell(painter, placed);
  });
}

void PagePainter::paintCell(QPainter& painter, const PlacedCell& placed) {
  PaperRect place = placed.place;
  // A merged line at the table's end, such as a parameter, may use the paper beside a narrow table.
  if (isMerged(placed) && placed.reachesTableEnd) place.width = layout_.room().width - place.left;
  paintText(painter, toQString(placed.cell->text), layout_.job().looks.at(placed.cell->look), place);
}

void PagePainter::paintText(QPainter& painter, const QString& text, const StyleAttributes& style,
                            const PaperRect& place) {
  TextFont& font = fontOf(fontPoints(style));
  painter.setFont(font.font);
  painter.setPen(inkOf(style));
  const double margin = kPaperCellMargin * kUnits;
  const QRectF box = unitRect(place).adjusted(margin, 0, -margin, 0);
  if (style.wrapText.value_or(false) && box.height() >= 2 * font.height) {
    painter.drawText(box, Qt::TextWordWrap, text);
    return;
  }
  const double width = widthOf(font, text);
  const double scale = std::min(1.0, box.width() / std::max(width, 1.0));
  if (scale < kNarrowest) {
    const QString cut = QFontMetricsF(font.font).elidedText(text, Qt::ElideRight, box.width());
    painter.drawText(QPointF(box.left(), box.top() + (box.height() - font.height) / 2 + font.ascent), cut);
    return;
  }
  const double spare = box.width() - width * scale;
  const std::int32_t across = style.horizontalAlignment.value_or(0);
  const double left = box.left() + (across == kRight ? spare : across == kCentre ? spare / 2 : 0);
  const double free = box.height() - font.height;
  const std::int32_t down = style.verticalAlignment.value_or(1);
  const double top = box.top() + (down == kBottom ? free : down == 1 ? free / 2 : 0);
  if (scale == 1) {
    painter.drawText(QPointF(left, top + font.ascent), text);
    return;
  }
  painter.save();
  painter.translate(left, top + font.ascent);
  painter.scale(scale, 1);
  painter.drawText(QPointF(0, 0), text);
  painter.restore();
}

// The columns of a block are left, middle and right of the page.
void PagePainter::paintBlock(QPainter& painter, const std::vector<host::PrintBlockCell>& block, double top) {
  std::map<std::int32_t, double> tops;
  for (const host::PrintBlockCell& cell : block) tops[cell.row] = 0;
  for (auto& [row, rowTop] : tops) {
    rowTop = top;
    top += layout_.blockRowHeight(block, row);
  }
  for (const host::PrintBlockCell& cell : block) {
    StyleAttributes style = cell.style;
    style.horizontalAlignment = cell.col == 2 ? kCentre : cell.col > 2 ? kRight : 0;
    const PaperRect place{0, tops[cell.row], layout_.room().width, layout_.blockRowHeight(block, cell.row)};
    paintText(painter, toQString(cell.style.value.value_or(std::string())), style, place);
  }
}

void PagePainter::paintPageNumber(QPainter& painter, std::size_t page) {
  QString text = QStringLiteral("Page %1 of %2").arg(page + 1).arg(layout_.pageCount());
  if (layout_.pagesAcross() > 1) {
    text += QStringLiteral(" (%1 across, %2 down)")
                .arg(page % layout_.pagesAcross() + 1)
                .arg(page / layout_.pagesAcross() + 1);
  }
  StyleAttributes style;
  style.horizontalAlignment = kRight;
  const double height = lineHeight(kDefaultFontPoints);
  paintText(painter, text, style, {0, layout_.room().height - height, layout_.room().width, height});
}

}  // namespace banddesk::desktop
