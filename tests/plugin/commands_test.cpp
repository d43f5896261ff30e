// Every command of the results page that its three menus and its boxes offer, and the page's own operations
// on its table.
#include <filesystem>
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

const Script kScript{{0, {{100, {1, 0, 2}}, {200, {0, 1, 0}}}}, {1, {{300, {0, 5, 1}}}}};

TEST(Commands, OfTheThreeMenusDoTheSame) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  bool rows = false;
  for (const char* item : {"mnuTransposeCell", "mnuTransposeColumn", "mnuTransposeRow"}) {
    desk.choose(item);
    EXPECT_EQ(page.Transpose(), rows = !rows) << item;
  }
  desk.choose("mnuTransposeCell");
  // These rebuild the table by a new analysis.
  for (const char* item : {"mnuCopy1", "mnuCopy2", "mnuCopy3", "mnuPrintBW1", "mnuPrintBW2", "mnuPrintBW3",
                           "mnuPrintColor1", "mnuPrintColor2", "mnuPrintColor3"}) {
    desk.calculators->calculated.clear();
    desk.choose(item);
    EXPECT_EQ(desk.calculators->calculated.size(), 4U) << item;
    EXPECT_EQ(page.NumRows(), 3) << item;
  }
  for (const char* item : {"mnuExport1", "mnuExport2", "mnuExport3"}) {
    const std::string path = scratch(item);
    desk.host.platform().saveAnswers.emplace_back(host::SaveAnswer{path, 1});
    desk.choose(item);
    EXPECT_TRUE(std::filesystem::exists(path)) << item;
  }
  for (const char* item : {"mnuFormatCell", "mnuFormatColumn", "mnuFormatRow"}) {
    desk.choose(item);
    EXPECT_FALSE(desk.grid().LockUpdate(false)) << item;
  }
  desk.grid().selectCols(10, 11);
  for (const auto& [item, view] : {std::pair("mnuEgramCell", "StackedView"),
                                   {"mnuOverlayCell", "OverlayGraphView"},
                                   {"mnuOverlayColumn", "OverlayGraphView"}}) {
    const std::size_t before = desk.host.pages().openPages().size();
    desk.choose(item);
    EXPECT_EQ(desk.host.pages().openPages().size(), before + 1);
    EXPECT_EQ(desk.host.pages().openPages().back()->DefinitionName(), view) << item;
  }
  EXPECT_TRUE(desk.host.framework().reports().empty());
}

TEST(Commands, SortByTheColumnsThatTheUserChooses) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  desk.host.pages().sortColumns = [](host::ColumnSorting& sorting) {
    sorting.keys = {{sorting.columns().at(0).column, true}};
    return true;
  };
  desk.choose("mnuSortColumns");
  EXPECT_EQ(page.CellText("6", 1), "300");
  desk.host.pages().sortColumns = [](host::ColumnSorting& sorting) {
    sorting.keys.front().isDescending = false;
    return false;
  };
  desk.choose("mnuSortColumns");
  EXPECT_EQ(page.CellText("6", 1), "300");
}

TEST(Commands, SortAndLockWhereTheRightClickWas) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  desk.chooseAt(0, 12, "mnuSortColumn");
  EXPECT_EQ(page.CellText("-3", 1), "0");
  desk.chooseAt(3, 1, "mnuSortBin");
  EXPECT_EQ(page.Key(10), "-3");
  for (const std::int32_t col : {11, 4}) {
    desk.chooseAt(0, col, "mnuLockColumn");
    EXPECT_EQ(page.LockedCol(), col);
    EXPECT_EQ(desk.grid().FrozenCols(), col);
  }
  EXPECT_EQ(desk.analysis().SampleGrid->LockedColumn.get(), nullptr);
  desk.chooseAt(0, 4, "mnuLockColumn");
  EXPECT_EQ(page.LockedCol(), 0);
  EXPECT_EQ(desk.grid().FrozenCols(), 0);
  desk.grid().selectCols(3, 4);
  desk.grid().selectCols(4, 10, true);
  EXPECT_EQ(page.GetSelected(1, 1)->Count(), 8);
  EXPECT_EQ(page.GetSelected(1, 0)->Item(8), -3);
  EXPECT_EQ(page.ExcludeColumn(4, true), page.Key(4));
  EXPECT_EQ(page.GetSelected(1, 1)->Count(), 7);
}

TEST(Commands, LeavingABoxAndEnterAnalyseAtOnceAndEnterIsTakenAway) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  for (const auto& [box, text] : {std::pair("txtMaxBinWidth", "2"), {"txtYThreshold", "7"}}) {
    desk.calculators->calculated.clear();
    desk.control<ui::TextBox>(box).Text = text;
    EXPECT_TRUE(desk.control<ui::TextBox>(box).leave());
    EXPECT_EQ(desk.calculators->calculated.size(), 4U) << box;
  }
  desk.control<ui::TextBox>("txtYThreshold").Text = "5";
  std::int32_t down = 13, other = 65, press = 13;
  page.UserControl_KeyDown(down);
  page.UserControl_KeyDown(other);
  page.UserControl_KeyPress(press);
  EXPECT_EQ(desk.calculators->calculated.size(), 8U);
  EXPECT_TRUE(down == 0 && other == 65 && press == 0);
}

TEST(Commands, HelpOpensForThePageAndForTheWarningUnlessAPressCameBefore) {
  Desk desk({{0, {{100, {1, 1, 1}}, {200, {1, 0, 1}}}}});
  desk.newAnalysis();
  desk.control<ui::CommandButton>("cmdHelp").Click.raise();
  desk.chooseAt(2, 1, "mnuExcludeBin");
  desk.host.platform().formAnswers.emplace_back([](ui::Form& form) {
    form.MouseDown();
    form.MouseUp();
    form.MouseUp();
  });
  desk.page().Analyze(true);
  const auto& help = desk.host.platform().help();
  ASSERT_EQ(help.size(), 2U);
  EXPECT_EQ(help.back().topic, "AFLPWarning");
  for (const auto& shown : help) EXPECT_TRUE(shown.command == 1 && shown.data == 0);
}

TEST(Table, TakesLogicalWritesInEitherOrientationAndRefusesWhatIsNoLayout) {
  for (const bool transposed : {false, true}) {
    Desk desk(kScript);
    IAFLPResultsPage& page = desk.newAnalysis();
    page.SetTranspose(transposed);
    page.SetCellUserAttribute("-2", 2, "mine");
    page.SetCellToolTip("-2", 2, "tip");
    EXPECT_EQ(page.CellUserAttribute("-2", 2), "mine");
    EXPECT_EQ(transposed ? desk.grid().GetToolTip(11, 2) : desk.grid().GetToolTip(2, 11), "tip");
    page.SetBin(1, 3);
    EXPECT_EQ(page.Bin(1), 3);
    GridRange range;
    page.InitRange(range, 10, 1, 12, 1);
    GridStyle grey;
    grey.SetInterior(0xC0C0C0);
    EXPECT_TRUE(page.SetStyleRange(range, grey, StyleMode::Override));
    EXPECT_TRUE((transposed ? desk.grid().look(12, 1) : desk.grid().look(1, 12)).interior->bkColor ==
                0xC0C0C0);
    page.HideCols(12, 12, true);
    EXPECT_EQ(page.VisibleSampleCount(), 2);
    EXPECT_EQ(page.VisibleBinCount(), 3);
    EXPECT_TRUE(page.RemoveRows(1, 1));
    EXPECT_EQ(page.NumRows(), 2);
    try {
      page.Init(nullptr);
      FAIL() << "took no layout";
    } catch (const Error& error) {
      EXPECT_EQ(error, Error(ErrorNumber::InvalidParameter, "Check Parameters", "ColumnSet is invalid."));
    }
    EXPECT_THROW(page.Col("17"), Error);
    EXPECT_EQ(page.Key(20), "0");
  }
}

}  // namespace
}  // namespace banddesk::test
