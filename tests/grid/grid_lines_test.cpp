#include <gtest/gtest.h>

#include "host/grid/grid_control.h"

namespace banddesk::host {
namespace {

GridRange block(int left, int top, int right, int bottom) {
  GridRange range;
  range.InitRange(left, top, right, bottom);
  return range;
}

std::string column(GridControl& grid, int col) {
  std::string texts;
  grid.AppendTexts(Axis::Columns, col, 0, grid.RowCount(), false, "", "|", texts);
  return texts;
}

TEST(GridLines, ShrinkingDiscardsBlocksAndWidthsBeyondForGood) {
  for (const int before : {3, 5}) {  // also by a put of the present count
    GridControl grid("grid");
    grid.SetRowCount(before);
    grid.SetColCount(5);
    grid.SetCoveredCells(2, 1, 4, 2);
    grid.SetCoveredCells(5, 1, 5, 5);
    grid.SetColWidth(5, 8, 30);
    grid.SetRowCount(3);
    grid.SetColCount(4);
    grid.SetRowCount(20);
    grid.SetColCount(20);
    EXPECT_EQ(grid.coverings().all(), (std::vector<Block>{{2, 1, 3, 2}}));
    EXPECT_EQ(grid.colWidth(5), LineAxis::kDefaultWidth);
  }
}

TEST(GridLines, ASpanThatEndsBeforeItStartsIsEmpty) {
  GridControl grid("grid");
  grid.SetRowCount(3);
  grid.SetColCount(3);
  for (int row = 0; row <= 3; ++row) grid.SetValueRange(row, 1, std::to_string(9 - row), 4);
  GridStyle zero;
  zero.SetValue("0");
  SortInfo key{1, 0, 0, false};
  grid.SetStyleRange(block(1, 1, 3, 0), zero, StyleMode::Override);
  grid.HideRows(1, 0, true);
  grid.HideCols(3, 2, true);
  grid.RemoveRows(3, 2);
  grid.SetColWidth(2, 1, 5);
  grid.ResizeToFit(block(3, 0, 2, 3));
  grid.SortRows(block(1, 3, 3, 2), 1, {&key, 1}, 2.0);
  grid.SetCoveredCells(2, 1, 2, 0);
  EXPECT_EQ(column(grid, 1), "9|8|7|6|");
  EXPECT_EQ(grid.rowAxis().visibility.visibleUpTo(3), 3);
  EXPECT_FALSE(grid.IsRowHidden(0) || grid.IsColHidden(2) || grid.IsColHidden(3));
  EXPECT_EQ(grid.colWidth(2) + grid.colWidth(3), 2 * LineAxis::kDefaultWidth);
  EXPECT_TRUE(grid.coverings().all().empty());
}

TEST(GridLines, CoveringsFollowTheirLines) {
  GridControl grid("grid");
  grid.SetRowCount(10);
  grid.SetColCount(4);
  grid.SetCoveredCells(5, 1, 5, 4);
  grid.SetCoveredCells(7, 2, 8, 3);
  const auto is = [&](const std::vector<Block>& wanted) { return grid.coverings().all() == wanted; };
  grid.InsertRows(8, 2);
  EXPECT_TRUE(is({{5, 1, 5, 4}, {7, 2, 10, 3}}));
  grid.RemoveRows(1, 3);
  EXPECT_TRUE(is({{2, 1, 2, 4}, {4, 2, 7, 3}}));
  grid.RemoveCols(2, 2);
  EXPECT_TRUE(is({{2, 1, 2, 3}, {4, 2, 7, 2}}));
  grid.exchangeAxes();
  EXPECT_EQ(*grid.coverings().at(3, 2), (Block{1, 2, 3, 2}));
  EXPECT_EQ(grid.coverings().at(3, 1), nullptr);
  grid.SetCoveredCells(3, 2, 3, 2);  // a single cell dissolves its block
  EXPECT_EQ(grid.coverings().at(1, 2), nullptr);
  EXPECT_EQ(grid.coverings().inRow(2).size(), 1U);
}

TEST(GridLines, ASortMayTellCasesApartOrBeNone) {
  for (const auto& [order, withCase, wanted] : {std::tuple(0, true, "9|1.5|007|10|B|C|b|"),
                                                {1, false, "9|C|B|b|10|007|1.5|"},
                                                {2, false, "9|10|B|b|007|C|1.5|"}}) {
    GridControl grid("grid");
    grid.SetRowCount(6);
    for (int row = 0; const char* text : {"9", "10", "B", "b", "007", "C", "1.5"})
      grid.SetValueRange(row++, 1, text, 4);
    GridRange table;
    table.SetTable();
    SortInfo key = grid.NewSortInfo();
    key.nRC = 1;
    key.SortOrder = order;
    key.bCase = withCase;
    grid.SortRows(table, 1, {&key, 1}, 2.0);
    EXPECT_EQ(column(grid, 1), wanted) << order;
  }
}

TEST(GridLines, FurtherSortKeysDecideAmongTies) {
  GridControl grid("grid");
  grid.SetRowCount(4);
  grid.SetColCount(4);
  const char* rows[] = {"2 1", "1 1", "2 3", "1 2"};
  for (int col = 1; col <= 4; ++col) {
    grid.SetValueRange(1, col, std::string(1, rows[col - 1][0]), 4);
    grid.SetValueRange(2, col, std::string(1, rows[col - 1][2]), 4);
    grid.SetValueRange(0, col, rows[col - 1], 4);
  }
  grid.SetColWidth(1, 1, 11);
  const SortInfo keys[] = {{1, 3, 0, false}, {2, 3, 1, false}};
  grid.SortColumns(block(1, 1, 4, 4), 2, keys, 2.0);
  std::string header;
  for (int col = 1; col <= 4; ++col) header += grid.GetValue(0, col) + '|';
  EXPECT_EQ(header, "1 2|1 1|2 3|2 1|");
  EXPECT_EQ(grid.colWidth(1), 11);
}

TEST(GridLines, TiesOfALongTableKeepTheirOrder) {
  GridControl grid("grid");
  constexpr int kRows = 300;
  for (int row = 1; row <= kRows; ++row) {
    grid.SetValueRange(row, 1, std::to_string(row % 3), 4);
    grid.SetValueRange(row, 2, std::to_string(row), 4);
  }
  const SortInfo key{1, 3, 1, false};
  grid.SortRows(block(1, 1, 1, kRows), 1, {&key, 1}, 2.0);
  const auto number = [&](int row, int col) { return std::stoi(grid.GetValue(row, col)); };
  for (int row = 2; row <= kRows; ++row) {
    ASSERT_GE(number(row - 1, 1), number(row, 1));
    if (number(row - 1, 1) == number(row, 1)) {
      ASSERT_LT(number(row - 1, 2), number(row, 2)) << row;
    }
  }
}

TEST(GridLines, ExchangingLeavesWidthsFrozenLinesAndHeaderStates) {
  GridControl grid("grid");
  grid.SetRowCount(3);
  grid.SetColCount(5);
  grid.SetColWidth(1, 1, 33);
  grid.SetFrozenCols(2, 2);
  grid.SetRowHeadersVisible(false);
  grid.SetAllowDragCols(true);
  grid.HideRows(0, 0, true);
  grid.SetValueRange(0, 5, "header", 4);
  grid.exchangeAxes();
  EXPECT_EQ(grid.GetValue(5, 0), "header");
  EXPECT_TRUE(grid.IsColHidden(0) && !grid.IsRowHidden(0));
  EXPECT_EQ(grid.colWidth(1), 33);
  EXPECT_EQ(std::pair(grid.FrozenRows(), grid.FrozenCols()), std::pair(0, 2));
  EXPECT_TRUE(grid.ColHeadersVisible() && !grid.RowHeadersVisible() && grid.AllowDragCols());
}

TEST(GridLines, FittingMeasuresUncoveredTextAndLeavesHiddenColumnsHidden) {
  struct Case {
    const char* what;
    int row;
    const char* text;
    int characters;  // that the column is fitted to
  };
  const Case cases[] = {{"number", 2, "1234567", 7},
                        {"negative", 2, "-1234567", 8},
                        {"covered row", 4, "abcdefghijk", 4},
                        {"beyond the range", 6, "abcdefghijk", 4},
                        {"letters beyond ASCII", 1, "Größe", 5}};
  for (const Case& each : cases) {
    GridControl grid("grid");
    grid.SetRowCount(6);
    grid.SetColCount(2);
    grid.HideCols(1, 1, true);
    grid.SetCoveredCells(4, 1, 4, 2);
    grid.SetValueRange(5, 1, "1234", 4);
    grid.SetValueRange(each.row, 1, each.text, 4);
    grid.ResizeToFit(block(1, 0, 1, 5));
    EXPECT_EQ(grid.colWidth(1), 8 + 6 * each.characters) << each.what;
    EXPECT_EQ(grid.colWidth(2), LineAxis::kDefaultWidth) << each.what;
    EXPECT_TRUE(grid.IsColHidden(1)) << each.what;
  }
}

TEST(GridLines, FittingMeasuresWhatIsDrawnInItsFont) {
  GridControl grid("grid");
  grid.SetRowCount(1);
  grid.SetColCount(2);
  grid.SetValueRange(1, 1, "3", 4);
  GridStyle style;
  style.SetFormat(1);
  style.SetPlaces(3);
  style.SetFont(GridFont{16}, 0);
  grid.SetStyleRange(block(1, 1, 1, 1), style, StyleMode::Override);
  GridRange table;
  table.SetTable();
  grid.ResizeToFit(table);
  EXPECT_EQ(grid.colWidth(1), 8 + 5 * 12);  // 3.000
}

TEST(GridLines, TheNthVisibleLineIsFoundAcrossLongRunsOfHiddenOnes) {
  Visibility visibility;
  visibility.hide(0, 0, true);  // the header does not count
  visibility.hide(100, 1099, true);
  visibility.hide(2000, 2000, true);
  EXPECT_EQ(visibility.visibleUpTo(0), 0);
  EXPECT_EQ(visibility.visibleUpTo(99), 99);
  EXPECT_EQ(visibility.visibleUpTo(1099), 99);
  EXPECT_EQ(visibility.visibleUpTo(5000), 5000 - 1001);
  for (Position n = 1; n < 3000; ++n) {
    const Position position = visibility.nthVisible(n);
    ASSERT_FALSE(visibility.isHidden(position)) << n;
    ASSERT_EQ(visibility.visibleUpTo(position), n);
  }
}

}  // namespace
}  // namespace banddesk::host
