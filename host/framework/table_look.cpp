#include "host/framework/table_look.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>
#include <vector>

#include "host/history/bytes.h"

namespace banddesk::host {
namespace {

constexpr ui::Colour kExcludedGrey = 0xC0C0C0;

using Lines = std::vector<std::int32_t>;  // a value for each line, from the header on

Lines linesOf(std::int32_t count, const std::function<std::int32_t(std::int32_t line)>& value) {
  Lines lines;
  for (std::int32_t line = 0; line <= count; ++line) lines.push_back(value(line));
  return lines;
}

// Neighbours are mostly equal.
void write(ByteWriter& out, const Lines& lines) {
  out.number(lines.size());
  for (auto from = lines.begin(); from != lines.end();) {
    const auto to = std::find_if(from, lines.end(), [&](std::int32_t value) { return value != *from; });
    out.number(static_cast<std::uint64_t>(to - from));
    out.whole(*from);
    from = to;
  }
}

Lines read(ByteReader& in, std::int32_t count) {
  Lines lines;
  if (in.number() != static_cast<std::uint64_t>(count) + 1) return lines;
  while (lines.size() < static_cast<std::size_t>(count) + 1) {
    const std::uint64_t equal = in.number();
    const auto value = static_cast<std::int32_t>(in.whole());
    if (equal == 0 || equal > static_cast<std::size_t>(count) + 1 - lines.size())
      raise(ErrorNumber::Internal, "TableLook", "the look of a table is damaged");
    lines.insert(lines.end(), equal, value);
  }
  return lines;
}

// Calls with each stretch of lines whose wanted value differs from the present one.
void change(const Lines& present, const Lines& wanted,
            const std::function<void(std::int32_t from, std::int32_t to, std::int32_t value)>& act) {
  const auto count = static_cast<std::int32_t>(std::min(present.size(), wanted.size()));
  for (std::int32_t from = 0; from < count; ++from) {
    const auto at = static_cast<std::size_t>(from);
    if (present[at] == wanted[at]) continue;
    std::int32_t to = from;
    while (to + 1 < count && wanted[static_cast<std::size_t>(to) + 1] == wanted[at]) ++to;
    act(from, to, wanted[at]);
    from = to;
  }
}

struct Look {
  std::int32_t frozenRows = 0, frozenCols = 0;
  Lines bins, hiddenRows, hiddenCols, widths, greyCols, greyRows;
};

bool isGrey(const GridControl& grid, std::int32_t row, std::int32_t col) {
  return grid.look(row, col).interior->bkColor == kExcludedGrey;
}

Look present(IAFLPResultsPage& page, const GridControl& grid) {
  Look look{grid.FrozenRows(), grid.FrozenCols(), {}, {}, {}, {}, {}, {}};
  look.bins = linesOf(page.NumRows(), [&](std::int32_t row) { return row == 0 ? 0 : page.Bin(row); });
  const std::int32_t rows = grid.RowCount(), cols = grid.ColCount();
  look.hiddenRows = linesOf(rows, [&](std::int32_t row) { return grid.IsRowHidden(row) ? 1 : 0; });
  look.hiddenCols = linesOf(cols, [&](std::int32_t col) { return grid.IsColHidden(col) ? 1 : 0; });
  look.widths = linesOf(cols, [&](std::int32_t col) { return grid.colWidth(col); });
  look.greyCols = linesOf(cols, [&](std::int32_t col) { return isGrey(grid, 0, col) ? 1 : 0; });
  look.greyRows = linesOf(rows, [&](std::int32_t row) { return isGrey(grid, row, 0) ? 1 : 0; });
  return look;
}

void arrangeBins(const Lines& from, const Lines& to, Axis axis, GridControl& grid) {
  if (from == to) return;
  Lines places(from.size(), -1), order;
  for (std::size_t row = 1; row < from.size(); ++row) {
    const auto bin = static_cast<std::size_t>(from[row]);
    if (bin < places.size()) places[bin] = static_cast<std::int32_t>(row);
  }
  for (std::size_t row = 1; row < to.size(); ++row) {
    const auto bin = static_cast<std::size_t>(to[row]);
    if (bin >= places.size() || places[bin] < 0) return;
    order.push_back(std::exchange(places[bin], -1));
  }
  grid.arrange(axis, 1, order);
}

void paintHeaders(GridControl& grid, const Look& from, const Look& to) {
  GridStyle grey;
  grey.SetInterior(kExcludedGrey);
  const auto paint = [&](std::int32_t row, std::int32_t col, std::int32_t toRow, std::int32_t toCol,
                         std::int32_t isGrey) {
    GridRange range;
    range.InitRange(col, row, toCol, toRow);
    grid.SetStyleRange(range, grey, isGrey != 0 ? StyleMode::Override : StyleMode::Remove);
  };
  change(from.greyCols, to.greyCols, [&](auto a, auto b, auto isGrey) { paint(0, a, 0, b, isGrey); });
  change(from.greyRows, to.greyRows, [&](auto a, auto b, auto isGrey) { paint(a, 0, b, 0, isGrey); });
}

}  // namespace

std::string lookOf(IAFLPResultsPage& page, const GridControl& grid) {
  const Look look = present(page, grid);
  ByteWriter out;
  out.field(look.frozenRows);
  out.field(look.frozenCols);
  for (const Lines* lines :
       {&look.bins, &look.hiddenRows, &look.hiddenCols, &look.widths, &look.greyCols, &look.greyRows})
    write(out, *lines);
  return out.take();
}

void showLook(std::string_view look, IAFLPResultsPage& page, GridControl& grid) {
  ByteReader in(look);
  Look to;
  in.field(to.frozenRows);
  in.field(to.frozenCols);
  const std::int32_t rows = grid.RowCount(), cols = grid.ColCount();
  const std::array wanted{std::pair{&to.bins, page.NumRows()}, std::pair{&to.hiddenRows, rows},
                          std::pair{&to.hiddenCols, cols},     std::pair{&to.widths, cols},
                          std::pair{&to.greyCols, cols},       std::pair{&to.greyRows, rows}};
  for (const auto& [lines, count] : wanted) {
    *lines = read(in, count);
    if (lines->empty()) return;
  }
  const Axis axis = page.Transpose() ? Axis::Columns : Axis::Rows;
  arrangeBins(linesOf(page.NumRows(), [&](std::int32_t row) { return row == 0 ? 0 : page.Bin(row); }),
              to.bins, axis, grid);
  const Look from = present(page, grid);
  if (from.frozenRows != to.frozenRows) grid.SetFrozenRows(to.frozenRows, to.frozenRows);
  if (from.frozenCols != to.frozenCols) grid.SetFrozenCols(to.frozenCols, to.frozenCols);
  change(from.hiddenRows, to.hiddenRows, [&](auto a, auto b, auto hide) { grid.HideRows(a, b, hide != 0); });
  change(from.hiddenCols, to.hiddenCols, [&](auto a, auto b, auto hide) { grid.HideCols(a, b, hide != 0); });
  change(from.widths, to.widths, [&](auto a, auto b, auto width) { grid.SetColWidth(a, b, width); });
  paintHeaders(grid, from, to);
}

}  // namespace banddesk::host
