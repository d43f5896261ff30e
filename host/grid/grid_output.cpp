// What the grid control gives away: copies to the clipboard and prints.
#include <map>

#include "host/grid/excel_writer.h"
#include "host/grid/grid_control.h"

namespace banddesk::host {
namespace {

std::vector<Position> shownLines(const LineAxis& axis, bool isHeaderVisible) {
  std::vector<Position> shown;
  for (Position position = isHeaderVisible ? 0 : 1; position <= axis.count; ++position) {
    if (!axis.visibility.isHidden(position)) shown.push_back(position);
  }
  return shown;
}

// How many of the ascending positions lie in first..last.
std::uint32_t countWithin(const std::vector<Position>& positions, Position first, Position last) {
  return static_cast<std::uint32_t>(std::ranges::upper_bound(positions, last) -
                                    std::ranges::lower_bound(positions, first));
}

void setBlockCell(std::vector<PrintBlockCell>& block, double row, double col, const GridStyle& style) {
  const PrintBlockCell cell{static_cast<std::int32_t>(row), static_cast<std::int32_t>(col),
                            style.attributes()};
  const auto same = [&](const PrintBlockCell& other) {
    return other.row == cell.row && other.col == cell.col;
  };
  const auto known = std::ranges::find_if(block, same);
  if (known == block.end()) {
    block.push_back(cell);
  } else {
    *known = cell;
  }
}

// Gathers the table of a print job row by row.
class JobTable {
 public:
  JobTable(const GridControl& grid, PrintJob& job)
      : grid_(grid),
        job_(job),
        rows_(shownLines(grid.rowAxis(), grid.ColHeadersVisible())),
        cols_(shownLines(grid.colAxis(), grid.RowHeadersVisible())) {}

  void fill() {
    job_.repeatsFirstRow = !rows_.empty() && rows_.front() == 0;
    for (const Position col : cols_) job_.columnWidths.push_back(grid_.colWidth(col));
    for (const Position row : rows_) addRow(row);
  }

 private:
  void addRow(Position row) {
    auto& cells = job_.rows.emplace_back();
    const std::vector<Block> covered = grid_.coverings().inRow(row);
    auto next = covered.begin();
    for (std::uint32_t index = 0; index < cols_.size();) {
      const Position col = cols_[index];
      while (next != covered.end() && next->right < col) ++next;
      if (next == covered.end() || next->left > col) {
        cells.push_back(cellOf(row, col, index));
        ++index;
        continue;
      }
      PrintCell cell = cellOf(next->top, next->left, index);
      cell.columns = countWithin(cols_, next->left, next->right);
      cell.rows = countWithin(rows_, next->top, next->bottom);
      index += cell.columns;
      if (*std::ranges::lower_bound(rows_, next->top) == row) cells.push_back(std::move(cell));
    }
  }

  PrintCell cellOf(Position row, Position col, std::uint32_t column) {
    const StyleAttributes& look = grid_.look(row, col);
    const auto [place, isNew] = looks_.try_emplace(&look, static_cast<std::uint32_t>(job_.looks.size()));
    if (isNew) job_.looks.push_back(look);
    NumberText buffer;
    PrintCell cell;
    cell.text = shownText(look, grid_.textAt(row, col, buffer));
    cell.look = place->second;
    cell.column = column;
    return cell;
  }

  const GridControl& grid_;
  PrintJob& job_;
  std::vector<Position> rows_;
  std::vector<Position> cols_;
  std::map<const StyleAttributes*, std::uint32_t> looks_;
};

}  // namespace

void GridControl::SaveExcelFile(const std::string& fileName) { writeExcelFile(*this, fileName); }

void GridControl::CopyCells(const GridRange& range) {
  const Block block = blockOf(range);
  if (block.isEmpty()) return;
  std::string text;
  NumberText buffer;
  for (std::int32_t row = block.top; row <= block.bottom; ++row) {
    if (row > block.top) text += "\r\n";
    for (std::int32_t col = block.left; col <= block.right; ++col) {
      if (col > block.left) text += '\t';
      text += textAt(row, col, buffer);
    }
  }
  ports_.clipboard->setText(std::move(text));
}

void GridControl::SetPrintHeaderCell(double row, double col, const GridStyle& style) {
  setBlockCell(printHeader_, row, col, style);
}

void GridControl::SetPrintFooterCell(double row, double col, const GridStyle& style) {
  setBlockCell(printFooter_, row, col, style);
}

PrintJob GridControl::printJob() const {
  PrintJob job;
  job.header = printHeader_;
  job.footer = printFooter_;
  job.isBlackWhite = printsBlackWhite_;
  JobTable(*this, job).fill();
  return job;
}

// Whether the user cancelled makes no difference to the grid.
void GridControl::PrintGrid() { ports_.printer->print(printJob()); }

}  // namespace banddesk::host
