// The page's operations on its logical table: the same cells whichever way the grid lies, the selection, the
// exchange of the axes, the locked column.
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;

const Script kScript{{0, {{100, {1, 0, 2}}, {200, {0, 1, 0}}}}, {1, {{300, {0, 5, 1}}}}};

std::vector<std::int32_t> values(const std::shared_ptr<Collection<std::int32_t>>& selected) {
  std::vector<std::int32_t> all;
  for (const std::int32_t value : *selected) all.push_back(value);
  return all;
}

TEST(Table, TakesLogicalReadsAndWritesInEitherOrientation) {
  for (const bool transposed : {false, true}) {
    Desk desk(kScript);
    IAFLPResultsPage& page = desk.newAnalysis();
    host::GridControl& grid = desk.grid();
    page.SetTranspose(transposed);
    const auto at = [&](std::int32_t row, std::int32_t col) {
      return transposed ? std::pair(col, row) : std::pair(row, col);
    };
    const auto [row, col] = at(2, 11);
    page.SetCellUserAttribute("-2", 2, "mine");
    page.SetCellToolTip("-2", 2, "tip");
    page.SetCellText("-2", 2, "text");
    EXPECT_EQ(page.CellUserAttribute("-2", 2), "mine");
    EXPECT_EQ(grid.GetUserAttribute(row, col), "mine");
    EXPECT_EQ(grid.GetToolTip(row, col), "tip");
    EXPECT_EQ(grid.GetValue(row, col), "text");
    EXPECT_EQ(page.CellText("-2", 2), "text");
    EXPECT_EQ(page.CurrentCellText("-2", 2), "text");
    EXPECT_EQ(std::pair(grid.currentRow(), grid.currentCol()), at(2, 11));
    page.SetBin(1, 3);
    EXPECT_EQ(page.Bin(1), 3);
    EXPECT_EQ((transposed ? grid.GetUserAttribute(0, 1) : grid.GetUserAttribute(1, 0)), "3");

    GridRange range;
    page.InitRange(range, 10, 1, 12, 2);
    EXPECT_THAT((std::vector{range.Left, range.Top, range.Right, range.Bottom}),
                transposed ? ElementsAre(1, 10, 2, 12) : ElementsAre(10, 1, 12, 2));
    grid.SetLockReadOnly(true);
    GridStyle grey;
    grey.SetInterior(0xC0C0C0);
    EXPECT_TRUE(page.SetStyleRange(range, grey, StyleMode::Override));
    EXPECT_TRUE(grid.LockReadOnly());
    grid.SetLockReadOnly(false);
    EXPECT_TRUE(page.StoreStyleRowCol(3, 10, grey, StyleMode::Override, 1));
    for (const auto& [r, c, isGrey] :
         {std::tuple(2, 12, true), {3, 10, true}, {3, 11, false}, {2, 9, false}}) {
      const auto [physicalRow, physicalCol] = at(r, c);
      EXPECT_EQ(grid.look(physicalRow, physicalCol).interior->bkColor == 0xC0C0C0, isGrey) << r << "," << c;
    }
    EXPECT_TRUE(page.HideCols(11, 12, true) && page.HideRows(2, 2, true));
    EXPECT_TRUE(page.IsColHidden(12) && page.IsRowHidden(2) && !page.IsColHidden(2) && !page.IsRowHidden(1));
    EXPECT_TRUE(transposed ? grid.IsRowHidden(11) : grid.IsColHidden(11));
    EXPECT_EQ(page.VisibleSampleCount(), 1);
    EXPECT_EQ(page.VisibleBinCount(), 2);
    EXPECT_TRUE(page.RemoveRows(1, 1));
    EXPECT_EQ(page.NumRows(), 2);
    EXPECT_EQ(page.NumCols(), 12);
    page.SetNumCols(11);
    page.SetNumRows(1);
    EXPECT_EQ(page.NumCols(), 11);
    EXPECT_EQ(page.NumRows(), 1);
  }
}

TEST(Table, KnowsItsColumnsByKeys) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  std::string keys;
  for (std::int32_t col = 0; col <= page.NumCols() + 1; ++col) keys += page.Key(col) + " ";
  EXPECT_EQ(keys, "0 6 7 8 119 9 10 83 84 85 -1 -2 -3 0 ");
  page.SetCellUserAttribute("6", 0, "no number");
  EXPECT_EQ(page.Key(1), "0");
  EXPECT_EQ(page.ColumnSet("0"), desk.analysis().BinGrid);
  EXPECT_EQ(page.ColumnSet("-0.5"), desk.analysis().SampleGrid);
  EXPECT_EQ(page.Col("-3"), 12);
  for (const char* key : {"17", "-17", ""}) EXPECT_THROW(page.Col(key), Error) << key;
  try {
    page.Init(nullptr);
    FAIL() << "took no layout";
  } catch (const Error& error) {
    EXPECT_EQ(error, Error(ErrorNumber::InvalidParameter, "Check Parameters", "ColumnSet is invalid."));
  }
}

TEST(Table, GivesWhatIsSelectedAsIndexesKeysOrBins) {
  for (const bool transposed : {false, true}) {
    Desk desk(kScript);
    IAFLPResultsPage& page = desk.newAnalysis();
    page.SortCol(12);  // bins 2, 3, 1
    page.SetTranspose(transposed);
    const auto select = [&](std::int32_t row, std::int32_t col, std::int32_t toRow, std::int32_t toCol,
                            bool add) {
      transposed ? desk.grid().user().selectCells(col, row, toCol, toRow, add)
                 : desk.grid().user().selectCells(row, col, toRow, toCol, add);
    };
    transposed ? desk.grid().user().rightClick(11, 2) : desk.grid().user().rightClick(2, 11);
    EXPECT_THAT(values(page.GetSelected(1, 1)), ElementsAre(11));
    EXPECT_THAT(values(page.GetSelected(0, 1)), ElementsAre(2));
    EXPECT_THAT(values(page.GetSelected(1, 0)), ElementsAre(-2));
    EXPECT_THAT(values(page.GetSelected(0, 0)), ElementsAre(7))
        << "asked for keys, a row yields that of a column";
    page.HideCols(11, 11, true);
    page.HideRows(2, 2, true);
    select(3, 12, 1, 10, false);
    select(1, 9, 1, 10, true);
    EXPECT_THAT(values(page.GetSelected(1, 1)), ElementsAre(10, 12, 9));
    EXPECT_THAT(values(page.GetSelected(1, 0)), ElementsAre(-1, -3, 85));
    EXPECT_THAT(values(page.GetSelected(0, 1)), ElementsAre(1, 3));
    EXPECT_THAT(values(page.GetSelected(0, 0)), ElementsAre(2, 1));
    EXPECT_EQ(page.GetSelected(1, 0)->Item("-3"), -3);
  }
}

// What the grid shows of itself beyond its cells.
std::string frameOf(const host::GridControl& grid) {
  std::string text = std::to_string(grid.RowCount()) + "x" + std::to_string(grid.ColCount()) + " frozen " +
                     std::to_string(grid.FrozenRows()) + "," + std::to_string(grid.FrozenCols());
  text += std::string(grid.AllowDragRows() ? " dragRows" : "") + (grid.AllowDragCols() ? " dragCols" : "");
  text += std::string(grid.RowHeadersVisible() ? " rowHeaders" : "") +
          (grid.ColHeadersVisible() ? " colHeaders" : "");
  for (std::int32_t i = 1; i <= 12; ++i) {
    if (grid.IsRowHidden(i)) text += " row" + std::to_string(i);
    if (grid.IsColHidden(i)) text += " col" + std::to_string(i);
  }
  return text;
}

TEST(Exchange, TakesHeadersHiddenFrozenAndDraggedLinesToTheOtherAxisAndBack) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  host::GridControl& grid = desk.grid();
  page.HideRows(2, 2, true);
  page.HideCols(4, 4, true);
  page.SetLockedCol(3);
  grid.ColHeaderStyle().SetTextColor(0x111111);
  grid.RowHeaderStyle().SetTextColor(0x222222);
  int repaints = 0;
  const auto counts = grid.Repaint.connect([&] { ++repaints; });
  const std::string before = frameOf(grid);
  EXPECT_EQ(before, "3x12 frozen 0,3 dragCols colHeaders row2 col4");
  const std::string cells = desk.visibleTable();
  page.SetTranspose(true);
  page.SetTranspose(true);
  EXPECT_EQ(repaints, 1) << "the state in force was set again";
  EXPECT_EQ(frameOf(grid), "12x3 frozen 3,0 dragRows rowHeaders col2 row4");
  EXPECT_EQ(grid.ColHeaderStyle().attributes().textColor, 0x222222U);
  EXPECT_EQ(grid.RowHeaderStyle().attributes().textColor, 0x111111U);
  page.SetTranspose(false);
  EXPECT_EQ(frameOf(grid), before);
  EXPECT_EQ(grid.ColHeaderStyle().attributes().textColor, 0x111111U);
  EXPECT_EQ(grid.RowHeaderStyle().attributes().textColor, 0x222222U);
  EXPECT_EQ(desk.visibleTable(), cells);
}

TEST(Exchange, LeavesNothingOfTheFormerTableBehind) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  page.SetTranspose(true);
  page.SetNumRows(12);
  for (std::int32_t col = 4; col <= 12; ++col) EXPECT_EQ(desk.grid().GetValue(1, col), "") << col;
}

TEST(LockedColumn, FreezesAndIsKeptByOneLayoutWhicheverWayTheTableLies) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  host::GridControl& grid = desk.grid();
  const auto locked = [&] {
    const auto keyOf = [](const GridLayout& layout) {
      const auto& column = layout.LockedColumn.get();
      return column ? column->Key.get() : std::string("none");
    };
    return keyOf(*desk.analysis().BinGrid) + " " + keyOf(*desk.analysis().SampleGrid) + " " +
           std::to_string(page.LockedCol()) + " frozen " + std::to_string(grid.FrozenRows()) + "," +
           std::to_string(grid.FrozenCols());
  };
  struct Step {
    const char* act;
    std::function<void()> run;
    const char* then;
  };
  const auto lockAt = [&](std::int32_t col) { return [&, col] { desk.chooseAt(0, col, "mnuLockColumn"); }; };
  for (const Step& step :
       {Step{"none", [] {}, "none none 0 frozen 0,0"}, Step{"a sample", lockAt(11), "none -2 11 frozen 0,11"},
        Step{"bin information", lockAt(4), "119 none 4 frozen 0,4"},
        Step{"seen from a sample", [&] { grid.user().rightClick(0, 12); }, "119 none 4 frozen 0,4"},
        Step{"exchanged", [&] { desk.choose("mnuTransposeCell"); }, "119 none 4 frozen 4,0"},
        Step{"another", lockAt(10), "none -1 10 frozen 10,0"},
        Step{"seen from bin information", [&] { grid.user().rightClick(2, 0); }, "none -1 10 frozen 10,0"},
        Step{"a new analysis", [&] { page.Analyze(true); }, "none -1 10 frozen 10,0"},
        Step{"Init", [&] { page.Init(desk.analysis().BinGrid); }, "none -1 10 frozen 10,0"},
        Step{"back", [&] { desk.choose("mnuTransposeRow"); }, "none -1 10 frozen 0,10"},
        Step{"the same again", lockAt(10), "none none 0 frozen 0,0"},
        Step{"the corner's column", [&] { page.SetLockedCol(13); }, "none none 0 frozen 0,13"}}) {
    step.run();
    EXPECT_EQ(locked(), step.then) << step.act;
  }
  desk.choose("mnuTransposeCell");
  page.SetLockedCol(0);
  EXPECT_EQ(locked(), "none none 0 frozen 0,0");
}

struct Label {
  const char *name, *whole, *well, *stamp, *neither;
};

TEST(Labels, ShortenNamesByTheirSuffix) {
  const auto kept = [](const char* name) { return Label{name, name, name, name, name}; };
  std::vector<Label> labels{
      {"Sample1.A01_12345678AB", "Sample1.A01_12345678AB", "Sample1.A01", "Sample1_12345678AB", "Sample1"},
      {" S.A01_12345678AB ", "S.A01_12345678AB", "S.A01", "S_12345678AB", "S"},
      {".A01_12345678AB", ".A01_12345678AB", ".A01", "_12345678AB", ""},
      {"éé. 01_12345678 .", "éé. 01_12345678 .", "éé. 01", "éé_12345678 .", "éé"}};
  for (const char* name : {"A01_12345678AB", "x,A01_12345678AB", "x.A0a_12345678AB", "x.Aa1_12345678AB",
                           "x.A01-12345678AB", "x.A01_a2345678AB", "x.A01_1234567aAB", "xA01_12345678ABCD"}) {
    labels.push_back(kept(name));
  }
  std::vector<std::string> names;
  for (const Label& label : labels) names.emplace_back(label.name);
  Desk desk({{0, {{100, std::vector<std::int32_t>(names.size(), 1)}}}}, names);
  IAFLPResultsPage& page = desk.newAnalysis();
  const auto header = [&](std::size_t i) { return page.CellText("-" + std::to_string(i + 1), 0); };
  for (const bool transposed : {false, true}) {
    if (transposed) desk.choose("mnuTransposeCell");
    for (const int well : {1, 0}) {
      for (const int stamp : {1, 0}) {
        desk.control<ui::CheckBox>("chkShowWellID").Value = well;
        desk.control<ui::CheckBox>("chkShowTimestamp").Value = stamp;
        desk.wait();
        EXPECT_FALSE(desk.wait());
        for (std::size_t i = 0; i < labels.size(); ++i) {
          const Label& l = labels[i];
          const std::string shown = well + stamp == 2 ? l.whole
                                    : well == 1       ? l.well
                                    : stamp == 1      ? l.stamp
                                                      : l.neither;
          const std::string number = std::to_string(i + 1);
          EXPECT_EQ(header(i), transposed ? number + "-" + shown : number) << l.name;
          EXPECT_EQ(desk.analysis().SampleGrid->Columns.Item("-" + number)->Header.get(), header(i));
        }
      }
    }
  }
}

}  // namespace
}  // namespace banddesk::test
