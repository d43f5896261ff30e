// What the grid hands to a printer: the visible table with all that paper shows of it. Dividing it into pages
// is the printer's work.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugin/results/grid_addressing.h"

namespace banddesk::host {

// One text of the block above or below the table on each page; the text is the style's value.
struct PrintBlockCell {
  std::int32_t row = 0;
  std::int32_t col = 0;
  StyleAttributes style;
};

struct PrintCell {
  std::string text;           // as drawn, with fixed places where the look has them
  std::uint32_t look = 0;     // index into the job's looks
  std::uint32_t column = 0;   // index into the job's column widths
  std::uint32_t columns = 1;  // printed columns and rows that the cell covers
  std::uint32_t rows = 1;
};

struct PrintJob {
  std::vector<PrintBlockCell> header;
  std::vector<PrintBlockCell> footer;
  bool isBlackWhite = false;
  bool repeatsFirstRow = false;  // the first of `rows` is the column header, wanted on each page
  std::vector<std::int32_t> columnWidths;
  std::vector<StyleAttributes> looks;
  std::vector<std::vector<PrintCell>> rows;  // cells that another one covers are left out
};

}  // namespace banddesk::host
