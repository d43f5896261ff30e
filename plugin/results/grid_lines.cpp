// The grid's operations on whole lines, cell by cell: what every grid can do that has the single operations.
#include <algorithm>

#include "plugin/base/error.h"
#include "plugin/base/numbers.h"
#include "plugin/results/grid_addressing.h"

namespace banddesk {
namespace {

constexpr std::int32_t kValueRangeMode = 4;
constexpr std::int32_t kCellStyle = 1;

struct Place {
  std::int32_t row;
  std::int32_t col;
};

Place placeOn(Axis axis, std::int32_t index, std::int32_t position) {
  return axis == Axis::Rows ? Place{index, position} : Place{position, index};
}

}  // namespace

void Grid::StoreLine(Axis axis, std::int32_t index, std::span<const LineCell> cells, LineStep& step) {
  GridStyle style;
  for (const LineCell& cell : cells) {
    const auto [row, col] = placeOn(axis, index, cell.position);
    step = LineStep::Value;
    SetValueRange(row, col, integerText(cell.value), kValueRangeMode);
    if (cell.baseStyle < 0) continue;
    step = LineStep::Style;
    style.SetBaseStyle(cell.baseStyle);
    GridParam().GetData().StoreStyleRowCol(row, col, style, StyleMode::Override, kCellStyle);
  }
}

std::int32_t Grid::AppendTexts(Axis axis, std::int32_t index, std::int32_t from, std::int32_t to,
                               bool visibleOnly, std::string_view before, std::string_view after,
                               std::string& out) {
  std::int32_t last = -1;
  for (std::int32_t position = from; position <= to; ++position) {
    if (visibleOnly && (axis == Axis::Rows ? IsColHidden(position) : IsRowHidden(position))) continue;
    const auto [row, col] = placeOn(axis, index, position);
    SetCurrentCell(row, col);
    out.append(before).append(GetCurrentCellText(row, col)).append(after);
    last = position;
  }
  return last;
}

void Grid::VisitUserAttributes(Axis axis, std::int32_t index, std::int32_t from, std::int32_t to,
                               const TextVisitor& visitor) const {
  for (std::int32_t position = from; position <= to; ++position) {
    const auto [row, col] = placeOn(axis, index, position);
    visitor(position, GetUserAttribute(row, col));
  }
}

// The square that rows and columns share is exchanged pair by pair, from its upper triangle; what lies beyond
// it moves.
void Grid::ExchangeAxes(std::int64_t every, const CellsExchanged& done) {
  const std::int32_t rows = RowCount();
  const std::int32_t cols = ColCount();
  const std::int32_t smaller = std::min(rows, cols);
  const auto first = NewStyle();
  const auto second = NewStyle();
  GridStyle& own = required(first, "Style");
  GridStyle& other = required(second, "Style");
  for (std::int32_t i = 0; i <= std::max(rows, cols); ++i) {
    const bool row = IsRowHidden(i);
    const bool col = IsColHidden(i);
    HideCols(i, i, row);
    HideRows(i, i, col);
  }
  GridData& data = GridParam().GetData();
  std::int64_t cells = 0;
  for (std::int32_t row = 0; row <= rows; ++row) {
    for (std::int32_t col = 0; col <= cols; ++col) {
      const bool isInSquare = row <= smaller && col <= smaller;
      if (!isInSquare || col > row) {
        data.GetStyleRowCol(row, col, own, StyleMode::Copy, kCellStyle);
        if (isInSquare) {
          // NOLINTNEXTLINE(readability-suspicious-call-argument): rows and columns change places
          data.GetStyleRowCol(col, row, other, StyleMode::Copy, kCellStyle);
          data.StoreStyleRowCol(row, col, other, StyleMode::Copy, kCellStyle);
        }
        // NOLINTNEXTLINE(readability-suspicious-call-argument): rows and columns change places
        data.StoreStyleRowCol(col, row, own, StyleMode::Copy, kCellStyle);
      }
      if (++cells % every == 0) done(cells);
    }
  }
}

}  // namespace banddesk
