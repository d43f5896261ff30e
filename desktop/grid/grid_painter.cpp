#include "desktop/grid/grid_painter.h"

#include <algorithm>
#include <cmath>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

constexpr std::int32_t kRightAligned = 1;
constexpr std::int32_t kCentred = 2;
constexpr std::int32_t kAtTop = 0;
constexpr std::int32_t kAtBottom = 2;

// A cell's rectangle without the grid lines that close it.
QRect inner(const QRect& rect) { return rect.adjusted(0, 0, -1, -1); }

std::span<const ShownLine> meeting(const std::vector<ShownLine>& lines, int from, int to) {
  const auto first = std::ranges::upper_bound(lines, from, {}, &ShownLine::end);
  const auto last = std::ranges::upper_bound(lines, to, {}, &ShownLine::start);
  return first < last ? std::span<const ShownLine>(first, last) : std::span<const ShownLine>();
}

// Where a content of that extent begins, by the number of an alignment that means the end or the middle.
double aligned(std::int32_t alignment, std::int32_t atEnd, std::int32_t centred, int start, int room,
               double extent) {
  if (alignment == atEnd) return start + room - extent;
  return alignment == centred ? start + (room - extent) / 2 : start;
}

}  // namespace

GridPainter::GridPainter(const host::GridControl& grid, const GridLayout& layout, CellFonts& fonts,
                         const QPalette& palette)
    : grid_(grid), layout_(layout), fonts_(fonts), palette_(palette), gridColour_(palette.mid().color()) {}

const GridPainter::Ink& GridPainter::ink(Position row, Position col, bool isSelected) {
  const StyleAttributes& look = grid_.look(row, col);
  Inks& inks = inks_[isSelected ? 1 : 0];
  const auto known = inks.find(&look);
  if (known != inks.end()) return known->second;
  const CellColours colours = cellColours(look, palette_, isSelected);
  CellTexts& texts = fonts_.at(look.font ? look.font->size : 0);
  return inks
      .emplace(&look, Ink{&look, colours.ground, colours.text, &texts, look.draw3dFrame.value_or(false)})
      .first->second;
}

// The header of a wholly selected line shows it too.
bool GridPainter::isSelected(const Line& row, Position col) const {
  const Position line = row.line->position;
  return std::ranges::any_of(row.selected, [&](const host::Block* block) {
    if (col == 0) return line > 0 && block->left <= 1 && block->right >= grid_.ColCount();
    return block->left <= col && col <= block->right;
  });
}

void GridPainter::paint(QPainter& painter, const QRect& exposed, const GridMarks& marks, bool hasFocus) {
  painter_ = &painter;
  exposed_ = exposed;
  cols_ = meeting(layout_.cols.lines(), exposed.left(), exposed.right());
  painter.fillRect(exposed, palette_.base().color());
  for (const ShownLine& line : meeting(layout_.rows.lines(), exposed.top(), exposed.bottom())) {
    Line& row = rows_.emplace_back(Line{&line, {}});
    for (const host::Block& block : grid_.selection().blocks()) {
      const bool meets = line.position == 0 ? block.top <= 1 && block.bottom >= grid_.RowCount()
                                            : block.top <= line.position && line.position <= block.bottom;
      if (meets) row.selected.push_back(&block);
    }
  }
  for (const Line& row : rows_) fillRow(row);
  drawLines();
  for (const Line& row : rows_) drawTexts(row);
  drawCovered();
  drawCurrent(hasFocus);
  drawMarks(marks);
}

// Neighbours of one colour are one rectangle; the ground of most is there already.
void GridPainter::fillRow(const Line& row) {
  const QColor base = palette_.base().color();
  for (std::size_t first = 0; first < cols_.size();) {
    const QColor ground =
        ink(row.line->position, cols_[first].position, isSelected(row, cols_[first].position)).ground;
    std::size_t next = first + 1;
    while (next < cols_.size() &&
           ink(row.line->position, cols_[next].position, isSelected(row, cols_[next].position)).ground ==
               ground) {
      ++next;
    }
    if (ground != base) {
      const int left = cols_[first].start;
      painter_->fillRect(left, row.line->start, cols_[next - 1].end() - left, row.line->extent, ground);
    }
    first = next;
  }
}

// As filled rectangles: the toolkit spreads long lines over threads, which costs more than all the rest.
void GridPainter::drawLines() {
  if (rows_.empty() || cols_.empty()) return;
  const QRect table(QPoint(cols_.front().start, rows_.front().line->start),
                    QPoint(cols_.back().end() - 1, rows_.back().line->end() - 1));
  const QRect part = table & exposed_;
  const auto below = [&](int end, const QColor& colour) {
    painter_->fillRect(part.left(), end - 1, part.width(), 1, colour);
  };
  const auto behind = [&](int end, const QColor& colour) {
    painter_->fillRect(end - 1, part.top(), 1, part.height(), colour);
  };
  for (const Line& row : rows_) below(row.line->end(), gridColour_);
  for (const ShownLine& col : cols_) behind(col.end(), gridColour_);
  // What is frozen is set off from what scrolls.
  const QColor dark = palette_.dark().color();
  if (layout_.rows.frozen() > 0) below(layout_.rows.scrollStart(), dark);
  if (layout_.cols.frozen() > 0) behind(layout_.cols.scrollStart(), dark);
}

void GridPainter::drawTexts(const Line& row) {
  const Position line = row.line->position;
  for (const ShownLine& col : cols_) {
    const Ink& colours = ink(line, col.position, isSelected(row, col.position));
    drawCell({line, col.position, line, col.position},
             {col.start, row.line->start, col.extent, row.line->extent}, colours);
  }
}

void GridPainter::drawCell(const host::Block& cell, const QRect& rect, const Ink& colours) {
  if (colours.hasFrame) drawFrame(rect);
  drawText(cell, rect, colours);
}

void GridPainter::drawFrame(const QRect& rect) {
  const QRect frame = inner(rect);
  if (frame.isEmpty()) return;
  const QColor light = palette_.light().color();
  const QColor dark = palette_.dark().color();
  painter_->fillRect(frame.left(), frame.top(), frame.width(), 1, light);
  painter_->fillRect(frame.left(), frame.top(), 1, frame.height(), light);
  painter_->fillRect(rect.left(), rect.bottom(), rect.width(), 1, dark);
  painter_->fillRect(rect.right(), rect.top(), 1, rect.height(), dark);
}

void GridPainter::drawText(const host::Block& cell, const QRect& rect, const Ink& colours) {
  host::NumberText buffer;
  const std::string_view stored = grid_.textAt(cell.top, cell.left, buffer);
  if (stored.empty()) return;
  if (pen_ != colours.text) painter_->setPen(pen_ = colours.text);
  if (penTexts_ != colours.texts) {
    penTexts_ = colours.texts;
    painter_->setFont(colours.texts->font());
  }
  const StyleAttributes& look = *colours.look;
  if (look.wrapText.value_or(false)) return drawWrapped(cell, rect, colours);
  std::string formatted;
  std::string_view text = stored;
  if (look.format.value_or(0) != 0) text = formatted = host::shownText(look, stored);
  const QRect area = inner(rect).adjusted(kCellMargin, 0, -kCellMargin, 0);
  if (area.width() <= 0) return;
  const ReadyText& ready = colours.texts->ready(text, area.width());
  const double height = colours.texts->height();
  const double x = ready.isCut ? area.left() + std::min(area.width() - ready.width, 0.0) / 2
                               : aligned(look.horizontalAlignment.value_or(0), kRightAligned, kCentred,
                                         area.left(), area.width(), ready.width);
  const double y = look.verticalAlignment == kAtTop ? area.top()
                                                    : aligned(look.verticalAlignment.value_or(1), kAtBottom,
                                                              1, area.top(), area.height(), height);
  painter_->drawStaticText(QPointF(x, std::round(y)), ready.shown);
}

void GridPainter::drawWrapped(const host::Block& cell, const QRect& rect, const Ink& colours) {
  const StyleAttributes& look = *colours.look;
  const std::int32_t horizontal = look.horizontalAlignment.value_or(0);
  const std::int32_t vertical = look.verticalAlignment.value_or(1);
  Qt::Alignment alignment = horizontal == kRightAligned ? Qt::AlignRight
                            : horizontal == kCentred    ? Qt::AlignHCenter
                                                        : Qt::AlignLeft;
  alignment |= vertical == kAtTop ? Qt::AlignTop : vertical == kAtBottom ? Qt::AlignBottom : Qt::AlignVCenter;
  host::NumberText buffer;
  const QString text = toQString(host::shownText(look, grid_.textAt(cell.top, cell.left, buffer)));
  painter_->save();
  painter_->setClipRect(inner(rect), Qt::IntersectClip);
  painter_->drawText(inner(rect).adjusted(kCellMargin, 0, -kCellMargin, 0),
                     static_cast<int>(alignment) | Qt::TextWordWrap, text);
  painter_->restore();
}

// A merged block is painted over its cells as far as it is in sight, so that its text stays readable while
// the table scrolls under it.
void GridPainter::drawCovered() {
  if (rows_.empty() || cols_.empty() || grid_.coverings().all().empty()) return;
  for (const Line& row : rows_) {
    for (const host::Block& block : grid_.coverings().inRow(row.line->position)) {
      const QRect rect = layout_.rectOf(block);
      const bool isDrawnBefore =
          row.line != rows_.front().line && std::prev(&row)->line->position >= block.top;
      if (isDrawnBefore || !rect.intersects(exposed_)) continue;
      const Ink& colours = ink(block.top, block.left, isSelected(row, block.left));
      painter_->fillRect(inner(rect), colours.ground);
      drawCell(block, rect, colours);
    }
  }
}

void GridPainter::drawCurrent(bool hasFocus) {
  const QRect rect = layout_.rectOf(wholeCell(grid_, {grid_.currentRow(), grid_.currentCol()}));
  if (rect.isEmpty() || !rect.intersects(exposed_)) return;
  painter_->setBrush(Qt::NoBrush);
  painter_->setPen(QPen(hasFocus ? palette_.highlight().color() : palette_.dark().color(), hasFocus ? 2 : 1));
  painter_->drawRect(hasFocus ? inner(rect).adjusted(1, 1, 0, 0) : inner(rect).adjusted(0, 0, -1, -1));
}

void GridPainter::drawMarks(const GridMarks& marks) {
  const int width = layout_.cols.room();
  const int height = layout_.rows.room();
  if (marks.widthGuide) {
    painter_->setPen(QPen(palette_.text().color(), 1, Qt::DashLine));
    painter_->drawLine(*marks.widthGuide, 0, *marks.widthGuide, height);
  }
  painter_->setPen(QPen(palette_.highlight().color(), 3));
  if (marks.columnInsertion) painter_->drawLine(*marks.columnInsertion, 0, *marks.columnInsertion, height);
  if (marks.rowInsertion) painter_->drawLine(0, *marks.rowInsertion, width, *marks.rowInsertion);
}

bool GridPainter::isCut(const host::GridControl& grid, const host::Block& cell, const QRect& rect,
                        CellFonts& fonts) {
  const StyleAttributes& look = grid.look(cell.top, cell.left);
  host::NumberText buffer;
  const std::string text = host::shownText(look, grid.textAt(cell.top, cell.left, buffer));
  if (text.empty() || look.wrapText.value_or(false)) return false;
  const int room = inner(rect).width() - 2 * kCellMargin;
  return room <= 0 || fonts.at(look.font ? look.font->size : 0).ready(text, room).isCut;
}

}  // namespace banddesk::desktop
