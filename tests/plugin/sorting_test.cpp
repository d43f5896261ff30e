// Sorting by a column or by a bin, and moving columns: what the table shows, and what the analysis keeps of
// it.
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;

const Script kScript{{0, {{100, {1, 0, 2}}, {200, {0, 1, 0}}}}, {1, {{300, {2, 5, 1}}}}};

struct Sorted {
  Desk desk{kScript};
  IAFLPResultsPage& page = desk.newAnalysis();

  std::string bins() {
    std::string text;
    for (std::int32_t row = 1; row <= page.NumRows(); ++row) text += std::to_string(page.Bin(row));
    return text;
  }
  // The samples in their order, "x" behind a hidden one.
  std::string samples() {
    std::string text;
    for (std::int32_t col = 10; col <= page.NumCols(); ++col) {
      const std::string key = page.Key(col);
      EXPECT_EQ(desk.analysis().SampleGrid->Columns.Item(key)->ColumnOrder, col);
      text += key.substr(1) + (page.IsColHidden(col) ? "x" : "");
    }
    return text;
  }
  // The columns with a sort priority, and each column's order where it has one.
  std::string state() {
    std::string text;
    for (const auto& layout : {desk.analysis().BinGrid, desk.analysis().SampleGrid}) {
      for (const auto& column : layout->Columns) {
        if (column->SortPriority != 0) text += column->Key.get() + "!";
        if (column->SortOrder != 2) text += column->Key.get() + "=" + std::to_string(column->SortOrder) + " ";
      }
    }
    return text;
  }
};

TEST(Sorting, ByAColumnFlipsItsOrderAndTakesThePriorityOfAllOthers) {
  Sorted t;
  struct Step {
    std::int32_t col;
    const char *bins, *state;
  };
  // Of equal values the order stays.
  for (const Step& s :
       {Step{12, "231", "-3!-3=0 "}, Step{12, "132", "-3!-3=1 "}, Step{1, "123", "6!6=0 -3=1 "},
        Step{1, "321", "6!6=1 -3=1 "}, Step{10, "213", "6=1 -1!-1=0 -3=1 "},
        Step{11, "123", "6=1 -1=0 -2!-2=0 -3=1 "}, Step{10, "312", "6=1 -1!-1=1 -2=0 -3=1 "}}) {
    t.desk.grid().user().doubleClick(0, s.col);
    EXPECT_EQ(t.bins(), s.bins) << s.col;
    EXPECT_EQ(t.state(), s.state);
  }
  t.desk.grid().user().doubleClick(2, 5);
  t.desk.grid().user().doubleClick(2, 10);
  EXPECT_EQ(t.bins(), "312") << "a double click on a cell sorts";
  t.desk.choose("mnuTransposeCell");
  t.desk.grid().user().doubleClick(12, 0);
  EXPECT_EQ(t.bins(), "231") << "a transposed column";
  t.page.Analyze(true);
  EXPECT_EQ(t.bins(), "231") << "an analysis applies the stored order";
}

TEST(Sorting, ByABinMovesWholeSamplesTheLargestFirstAndThenTheOtherWay) {
  for (const bool transposed : {false, true}) {
    Sorted t;
    if (transposed) t.desk.choose("mnuTransposeCell");
    const auto sort = [&](std::int32_t row) {
      transposed ? t.desk.grid().user().doubleClick(1, row) : t.desk.grid().user().doubleClick(row, 1);
      return t.samples();
    };
    EXPECT_EQ(sort(1), "312");
    EXPECT_EQ(t.page.CellText("-3", 1), "2");
    EXPECT_EQ(sort(1), "213");
    EXPECT_EQ(sort(1), "312");
    EXPECT_EQ(sort(3), "213") << "another bin begins with its own first order";
    EXPECT_EQ(sort(1), "312");
    t.page.Analyze(true);
    EXPECT_EQ(sort(1), "312") << "so does a new analysis";
    const auto analysis = t.desk.host.study().Study()->AFLPs.Item(1);
    t.desk.host.save();
    t.desk.host.closeStudy();
    t.desk.openStudy();
    IAFLPResultsPage& again = t.desk.reopen(t.desk.host.study().Study()->AFLPs.Item(1));
    EXPECT_EQ(again.Key(10) + again.Key(11) + again.Key(12), "-3-1-2");
  }
}

TEST(Sorting, ByABinTakesTheHiddenStateOfSamplesAlong) {
  Sorted t;
  t.desk.control<ui::CheckBox>("chkExcludeEmptySamples").Value = 0;
  t.desk.wait();
  t.desk.chooseAt(0, 12, "mnuExcludeColumn");
  EXPECT_EQ(t.samples(), "123x");
  t.page.SortRow(1);
  EXPECT_EQ(t.samples(), "3x12");
  t.desk.control<ui::CheckBox>("chkShowExcluded").Value = 1;
  t.page.SortRow(1);
  EXPECT_EQ(t.samples(), "213");
}

// A sort shows and hides rows anew, by dyes and by marks, whether or not a bin was brought back.
TEST(Sorting, ByAColumnHidesTheRowsOfExcludedBinsAndUncheckedDyes) {
  Desk desk({{0, {{100, {1, 1, 1}}, {200, {1, 0, 1}}, {250, {0, 1, 1}}}}, {1, {{300, {0, 5, 1}}}}});
  IAFLPResultsPage& page = desk.newAnalysis();
  const auto rows = [&] {
    std::string text;
    for (std::int32_t row = 1; row <= page.NumRows(); ++row) {
      text += std::to_string(page.Bin(row)) + (page.IsRowHidden(row) ? "x" : "");
    }
    return text;
  };
  desk.control<ui::CheckBox>("chkExcludeEmptySamples").click();
  desk.control<ui::CheckBox>("chkDye(1)").click();
  desk.wait();
  desk.chooseAt(2, 1, "mnuExcludeBin");
  EXPECT_EQ(rows(), "1x2x34x");
  page.SortCol(1);
  page.SortCol(1);
  EXPECT_EQ(rows(), "4x32x1x");
  desk.control<ui::CheckBox>("chkShowExcluded").click();
  desk.wait();
  page.SortCol(1);
  EXPECT_EQ(rows(), "1234x");
}

TEST(Sorting, ByThePageForColumnsTakesItsKeysAndForgetsThoseOfSamples) {
  Sorted t;
  t.page.SortCol(12);
  t.desk.front.onSortColumns = [](host::ColumnSorting& sorting) {
    sorting.keys = {{sorting.columns().at(0).column, true}};
    return false;
  };
  t.desk.choose("mnuSortColumns");
  EXPECT_EQ(t.state(), "-3!-3=0 ");
  t.desk.front.onSortColumns = [](host::ColumnSorting& sorting) {
    EXPECT_EQ(sorting.columns().size(), 9U);
    sorting.keys = {{sorting.columns().at(0).column, true}};
    return true;
  };
  t.desk.choose("mnuSortColumns");
  EXPECT_EQ(t.bins(), "321");
  EXPECT_EQ(t.state(), "6!6=1 -3=0 ");
}

TEST(Moving, PutsABlockInFrontOfItsTargetOnItsOwnSideOnly) {
  struct Move {
    std::int32_t first, last, target;
    bool allowed;
    const char* keys;
  };
  const char* const unmoved = "6,7,8,119,9,10,83,84,85,-1,-2,-3,";
  for (const bool transposed : {false, true}) {
    for (const Move& m :
         {Move{10, 10, 13, true, "6,7,8,119,9,10,83,84,85,-2,-3,-1,"},
          Move{11, 12, 10, true, "6,7,8,119,9,10,83,84,85,-2,-3,-1,"},
          Move{12, 12, 11, true, "6,7,8,119,9,10,83,84,85,-1,-3,-2,"},
          Move{1, 2, 5, true, "8,119,6,7,9,10,83,84,85,-1,-2,-3,"}, Move{8, 9, 10, true, unmoved},
          Move{3, 4, 10, true, "6,7,9,10,83,84,85,8,119,-1,-2,-3,"},
          Move{4, 5, 1, true, "119,9,6,7,8,10,83,84,85,-1,-2,-3,"}, Move{9, 10, 12, false, unmoved},
          Move{9, 10, 1, false, unmoved}, Move{2, 3, 11, false, unmoved}, Move{11, 11, 9, false, unmoved},
          Move{2, 3, 3, true, unmoved}, Move{2, 3, 4, true, unmoved}}) {
      Sorted t;
      if (transposed) t.desk.choose("mnuTransposeCell");
      host::GridControl& grid = t.desk.grid();
      transposed ? grid.user().selectRows(m.first, m.last) : grid.user().selectCols(m.first, m.last);
      EXPECT_EQ(transposed ? grid.user().dragRows(m.first, m.last, m.target)
                           : grid.user().dragColumns(m.first, m.last, m.target),
                m.allowed)
          << m.first << "-" << m.last << " to " << m.target;
      std::string keys, places;
      for (std::int32_t col = 1; col <= 12; ++col) {
        keys += t.page.Key(col) + ",";
        EXPECT_EQ(t.page.Col(t.page.Key(col)), col) << m.first << "-" << m.last << " to " << m.target;
      }
      EXPECT_EQ(keys, m.keys) << m.first << "-" << m.last << " to " << m.target;
    }
  }
  Sorted t;  // the other axis cannot be dragged
  for (const Axis axis : {Axis::Rows, Axis::Columns}) {
    if (axis == Axis::Columns) t.desk.choose("mnuTransposeCell");
    t.desk.grid().SetAllowDragRows(true);
    t.desk.grid().SetAllowDragCols(true);
    axis == Axis::Rows ? t.desk.grid().user().selectRows(1, 1) : t.desk.grid().user().selectCols(1, 1);
    EXPECT_FALSE(t.desk.grid().user().startDrag(axis, 1, 1));
  }
}

}  // namespace
}  // namespace banddesk::test
