#include "desktop/print/print_layout.h"

#include <algorithm>
#include <map>

namespace banddesk::desktop {
namespace {

constexpr double kLineStretch = 1.25;
constexpr double kLineMargins = 2;  // points, above and below together

using Span = std::pair<std::size_t, std::size_t>;  // the first line and the one behind the last

// Where each page starts, and the end. A page breaks before a span that it cannot hold as a whole, unless no
// page can.
std::vector<std::size_t> breakPages(const std::vector<double>& offsets, std::size_t start, double asked,
                                    const std::vector<Span>& spans) {
  const double room = std::max(asked, 0.0);
  const std::size_t count = offsets.size() - 1;
  std::vector<std::size_t> starts{start};
  while (starts.back() < count) {
    const std::size_t first = starts.back();
    const auto fits = std::ranges::upper_bound(offsets, offsets[first] + room + 1e-6);
    std::size_t end = static_cast<std::size_t>(fits - offsets.begin()) - 1;
    end = std::clamp(end, first + 1, count);
    // Spans come by their first line; the last one that the break would cut decides, and may uncover another.
    for (auto span = spans.rbegin(); span != spans.rend(); ++span) {
      const bool isCut = span->first < end && span->second > end;
      if (isCut && span->first > first && offsets[span->second] - offsets[span->first] <= room)
        end = span->first;
    }
    starts.push_back(end);
  }
  if (starts.size() == 1) starts.push_back(count);
  return starts;
}

std::vector<double> offsetsOf(const std::vector<double>& lengths) {
  std::vector<double> offsets{0};
  for (const double length : lengths) offsets.push_back(offsets.back() + length);
  return offsets;
}

}  // namespace

double fontPoints(const StyleAttributes& style) {
  return style.font && style.font->size > 0 ? style.font->size : kDefaultFontPoints;
}

double lineHeight(double fontPoints) { return fontPoints * kLineStretch + kLineMargins; }

PrintLayout::PrintLayout(const host::PrintJob& job, const PageRoom& room) : job_(job), room_(room) {
  headerHeight_ = blockHeight(job.header);
  footerHeight_ = blockHeight(job.footer);
  if (footerHeight_ == 0) footerHeight_ = lineHeight(kDefaultFontPoints);  // of the page number
  bodyStart_ = job.repeatsFirstRow && !job.rows.empty() ? 1 : 0;
  measureRows();
  measureColumns();
}

std::size_t PrintLayout::rowsOf(std::size_t row, const host::PrintCell& cell) const {
  // What is repeated cannot cover the body.
  const std::size_t most = row < bodyStart_ ? 1 : job_.rows.size() - row;
  return std::clamp<std::size_t>(cell.rows, 1, most);
}

std::size_t PrintLayout::columnsEnd(const host::PrintCell& cell) const {
  return std::min<std::size_t>(cell.column + std::max(cell.columns, 1U), job_.columnWidths.size());
}

void PrintLayout::measureRows() {
  std::vector<double> lookHeights;
  for (const StyleAttributes& look : job_.looks) lookHeights.push_back(lineHeight(fontPoints(look)));
  std::vector<double> heights;
  std::vector<Span> spans;
  for (std::size_t row = 0; row < job_.rows.size(); ++row) {
    double height = lineHeight(kDefaultFontPoints);
    for (const host::PrintCell& cell : job_.rows[row]) {
      const std::size_t rows = rowsOf(row, cell);
      if (rows == 1) height = std::max(height, lookHeights.at(cell.look));
      if (rows == 1) continue;
      rowSpans_.push_back({row, &cell});
      spans.emplace_back(row, row + rows);
    }
    heights.push_back(height);
  }
  rowTops_ = offsetsOf(heights);
  const double room = room_.height - headerHeight_ - footerHeight_ - rowTops_[bodyStart_];
  rowStarts_ = breakPages(rowTops_, bodyStart_, room, spans);
}

void PrintLayout::measureColumns() {
  std::vector<double> widths;
  for (const std::int32_t pixels : job_.columnWidths) {
    widths.push_back(std::min(std::max(pixels, 0) * room_.pointsPerPixel, room_.width));
  }
  columnLefts_ = offsetsOf(widths);
  std::map<std::size_t, std::size_t> widest;  // of the merged cells that begin at a column
  for (const auto& row : job_.rows) {
    for (const host::PrintCell& cell : row) {
      if (cell.columns < 2) continue;
      std::size_t& end = widest[cell.column];
      end = std::max(end, columnsEnd(cell));
    }
  }
  columnStarts_ = breakPages(columnLefts_, 0, room_.width, {widest.begin(), widest.end()});
}

double PrintLayout::blockRowHeight(const std::vector<host::PrintBlockCell>& block, std::int32_t row) const {
  double height = 0;
  for (const host::PrintBlockCell& cell : block) {
    if (cell.row == row) height = std::max(height, lineHeight(fontPoints(cell.style)));
  }
  return height;
}

double PrintLayout::blockHeight(const std::vector<host::PrintBlockCell>& block) const {
  std::map<std::int32_t, double> rows;
  for (const host::PrintBlockCell& cell : block) rows[cell.row] = blockRowHeight(block, cell.row);
  double height = rows.empty() ? 0 : kBlockGap;
  for (const auto& [row, rowHeight] : rows) height += rowHeight;
  return height;
}

PageLines PrintLayout::lines(std::size_t page) const {
  const std::size_t down = page / pagesAcross();
  const std::size_t across = page % pagesAcross();
  return {rowStarts_[down], rowStarts_[down + 1], columnStarts_[across], columnStarts_[across + 1]};
}

std::vector<double> PrintLayout::columnEdges(std::size_t page) const {
  const PageLines lines = this->lines(page);
  std::vector<double> edges;
  for (std::size_t column = lines.firstColumn; column <= lines.endColumn; ++column) {
    edges.push_back(columnLefts_[column] - columnLefts_[lines.firstColumn]);
  }
  return edges;
}

std::vector<double> PrintLayout::rowEdges(std::size_t page) const {
  const PageLines lines = this->lines(page);
  std::vector<double> edges;
  if (bodyStart_ > 0) edges.push_back(headerHeight_);
  for (std::size_t row = lines.firstRow; row <= lines.endRow; ++row) {
    edges.push_back(headerHeight_ + rowTops_[bodyStart_] + rowTops_[row] - rowTops_[lines.firstRow]);
  }
  return edges;
}

void PrintLayout::visit(std::size_t page, const std::function<void(const PlacedCell&)>& visitor) const {
  PageLines lines = this->lines(page);
  double top = headerHeight_;
  if (bodyStart_ > 0) {
    const PageLines header{0, bodyStart_, lines.firstColumn, lines.endColumn};
    visitRow(0, header, top, visitor);
    top += rowTops_[bodyStart_];
  }
  for (const SpanStart& span : rowSpans_) {
    if (span.row >= lines.firstRow) break;
    const bool isHere = span.row + rowsOf(span.row, *span.cell) > lines.firstRow &&
                        span.cell->column < lines.endColumn && columnsEnd(*span.cell) > lines.firstColumn;
    if (isHere) visitor(placed(*span.cell, span.row, lines, top));
  }
  for (std::size_t row = lines.firstRow; row < lines.endRow; ++row) visitRow(row, lines, top, visitor);
}

void PrintLayout::visitRow(std::size_t row, const PageLines& lines, double top,
                           const std::function<void(const PlacedCell&)>& visitor) const {
  const auto& cells = job_.rows[row];
  auto cell = std::ranges::lower_bound(cells, lines.firstColumn, {},
                                       [](const host::PrintCell& each) { return std::size_t{each.column}; });
  // A merged cell may have begun on the page before.
  if (cell != cells.begin() && columnsEnd(*std::prev(cell)) > lines.firstColumn) --cell;
  for (; cell != cells.end() && cell->column < lines.endColumn; ++cell)
    visitor(placed(*cell, row, lines, top));
}

PlacedCell PrintLayout::placed(const host::PrintCell& cell, std::size_t row, const PageLines& lines,
                               double top) const {
  PlacedCell result;
  result.cell = &cell;
  const std::size_t column = cell.column;
  result.lines = {std::max(row, lines.firstRow), std::min(row + rowsOf(row, cell), lines.endRow),
                  std::max(column, lines.firstColumn), std::min(columnsEnd(cell), lines.endColumn)};
  const double left = columnLefts_[result.lines.firstColumn];
  const double upper = rowTops_[result.lines.firstRow];
  result.place = {left - columnLefts_[lines.firstColumn], top + upper - rowTops_[lines.firstRow],
                  columnLefts_[result.lines.endColumn] - left, rowTops_[result.lines.endRow] - upper};
  result.holdsText = result.lines.firstRow == row && result.lines.firstColumn == column;
  result.reachesTableEnd = columnsEnd(cell) == job_.columnWidths.size();
  return result;
}

}  // namespace banddesk::desktop
