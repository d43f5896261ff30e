// Divides a print job into pages. Pure arithmetic in points: it knows no printer and draws nothing.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "host/grid/print_job.h"

namespace banddesk::desktop {

// The room for a page's content, and how long a pixel of the grid's column widths is on paper.
struct PageRoom {
  double width = 0;
  double height = 0;
  double pointsPerPixel = 0.75;
};

// Rows and columns of the job, the second bound not included.
struct PageLines {
  std::size_t firstRow = 0;
  std::size_t endRow = 0;
  std::size_t firstColumn = 0;
  std::size_t endColumn = 0;
};

struct PaperRect {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
};

// The part of a cell that lies on a page.
struct PlacedCell {
  const host::PrintCell* cell = nullptr;
  PaperRect place;              // on the page, from the corner of its room
  PageLines lines;              // that it covers here
  bool holdsText = true;        // false where a cell goes on from an earlier page
  bool reachesTableEnd = true;  // its last column is the table's last one
};

inline constexpr double kDefaultFontPoints = 8;
inline constexpr double kPaperCellMargin = 2;  // points, left and right of a text

double fontPoints(const StyleAttributes& style);
double lineHeight(double fontPoints);

// Points between a text block and the table.
inline constexpr double kBlockGap = 2;

class PrintLayout final {
 public:
  // The job outlives the layout.
  PrintLayout(const host::PrintJob& job, const PageRoom& room);

  // Pages run across first, then down, so that sheets laid out in their order make the table. A job without
  // cells still has a page, for its header and footer.
  std::size_t pageCount() const { return pagesAcross() * pagesDown(); }
  std::size_t pagesAcross() const { return columnStarts_.size() - 1; }
  std::size_t pagesDown() const { return rowStarts_.size() - 1; }
  // The column header that stands on each page is not among the lines.
  PageLines lines(std::size_t page) const;

  // The cells of a page, those of the repeated column header first.
  void visit(std::size_t page, const std::function<void(const PlacedCell&)>& visitor) const;

  // Where the lines of the page's table lie, the repeated column header with them.
  std::vector<double> columnEdges(std::size_t page) const;
  std::vector<double> rowEdges(std::size_t page) const;

  const PageRoom& room() const { return room_; }
  double headerHeight() const { return headerHeight_; }
  double footerHeight() const { return footerHeight_; }
  double blockRowHeight(const std::vector<host::PrintBlockCell>& block, std::int32_t row) const;
  const host::PrintJob& job() const { return job_; }

 private:
  struct SpanStart {
    std::size_t row;
    const host::PrintCell* cell;
  };

  void measureRows();
  void measureColumns();
  double blockHeight(const std::vector<host::PrintBlockCell>& block) const;
  std::size_t rowsOf(std::size_t row, const host::PrintCell& cell) const;
  std::size_t columnsEnd(const host::PrintCell& cell) const;
  void visitRow(std::size_t row, const PageLines& lines, double top,
                const std::function<void(const PlacedCell&)>& visitor) const;
  PlacedCell placed(const host::PrintCell& cell, std::size_t row, const PageLines& lines, double top) const;

  const host::PrintJob& job_;
  PageRoom room_;
  double headerHeight_ = 0;
  double footerHeight_ = 0;
  std::size_t bodyStart_ = 0;              // the first row that is no repeated column header
  std::vector<double> rowTops_;            // of all rows one below the other, and the end
  std::vector<double> columnLefts_;        // likewise
  std::vector<SpanStart> rowSpans_;        // cells of more than one row, by row
  std::vector<std::size_t> rowStarts_;     // of the pages down, and the end
  std::vector<std::size_t> columnStarts_;  // of the pages across, and the end
};

}  // namespace banddesk::desktop
