// The results page's life: its controls and the delayed work, sizes, what it saves, its child pages, labels,
// sorting, transposing and the mouse.
#include <algorithm>
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;

// No filter marks anything here.
const Script kScript{{0, {{100, {1, 0, 2}}, {200, {0, 1, 0}}}}, {1, {{300, {0, 5, 1}}}}};

std::vector<std::string> sampleHeaders(Desk& desk) {
  std::vector<std::string> headers;
  for (std::int32_t col = 10; col <= desk.page().NumCols(); ++col) {
    headers.push_back(desk.page().CellText(desk.page().Key(col), 0));
  }
  return headers;
}

std::vector<std::string> keys(Desk& desk) {
  std::vector<std::string> all;
  for (std::int32_t col = 1; col <= desk.page().NumCols(); ++col) all.push_back(desk.page().Key(col));
  return all;
}

TEST(DelayedWork, RunsOnceForABurstOfEventsAndNotBeforeThePause) {
  Desk desk(kScript);
  desk.newAnalysis();
  EXPECT_FALSE(desk.wait()) << "opening the page left work";
  desk.calculators->calculated.clear();
  auto& spin = desk.control<ui::UpDown>("udMaxBinWidth");
  for (int i = 0; i < 5; ++i) spin.up();
  EXPECT_TRUE(desk.calculators->calculated.empty());
  EXPECT_EQ(desk.control<ui::Timer>("ctlTimer").Interval, 500);
  EXPECT_TRUE(desk.wait());
  ASSERT_EQ(desk.calculators->calculated.size(), 4U);
  EXPECT_EQ(desk.calculators->calculated.front().first, 1.25);
  EXPECT_FALSE(desk.wait());
}

TEST(Numbers, StepWithinTheLimitsThatEachBoxHas) {
  Desk desk(kScript);
  desk.newAnalysis();
  auto& threshold = desk.control<ui::TextBox>("txtYThreshold");
  auto& spin = desk.control<ui::UpDown>("udYThreshold");
  threshold.Text = "99";
  spin.down();
  EXPECT_EQ(threshold.Text.get(), "99");
  spin.up();
  EXPECT_EQ(threshold.Text.get(), "199");
  spin.down();
  EXPECT_EQ(threshold.Text.get(), "99");
  auto& width = desk.control<ui::TextBox>("txtMaxBinWidth");
  width.Text = "1abc";
  threshold.Text = "100abc";
  EXPECT_FALSE(desk.host.pages().validate(*desk.pageNamed("AFLP")));
  EXPECT_EQ(desk.host.platform().focus(), "txtYThreshold");
  EXPECT_EQ(width.BackColor, ui::kWhite);
}

TEST(Resize, MovesTheControlsAndLetsTheGridOweHeight) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  auto& box = desk.control<ui::TextBox>("txtMaxBinWidth");
  double lowest = 0;
  for (const ui::Control* control : page.Controls().all()) {
    if (control->hasPlace()) lowest = std::max(lowest, control->Top + control->Height);
  }
  const double top = box.Top;
  const double height = desk.grid().Height;
  struct Step {
    double change, grid;
  };
  double at = lowest;
  for (const Step& step : {Step{-height - 50, 0}, Step{30, 0}, Step{40, 20}, Step{height - 20, height}}) {
    at += step.change;
    page.UserControl_Resize(640, at);
    EXPECT_EQ(desk.grid().Height, step.grid) << step.change;
    EXPECT_EQ(box.Top, top + at - lowest);
  }
  EXPECT_EQ(desk.grid().Width, 640);
}

TEST(Saving, KeepsParametersViewOrderAndNoAbbreviation) {
  Desk desk(kScript);
  desk.newAnalysis();
  desk.control<ui::TextBox>("txtMaxBinWidth").Text = "2.125";
  desk.control<ui::TextBox>("txtYThreshold").Text = "2.5";
  desk.control<ui::CheckBox>("chkDye(1)").click();
  desk.control<ui::CheckBox>("chkShowTimestamp").click();
  desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1;
  desk.wait();
  desk.host.pages().userEvent(*desk.pageNamed("AFLP"), [] {});
  ASSERT_TRUE(desk.host.save().refused.empty());
  desk.host.closeStudy();
  desk.openStudy();
  const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
  EXPECT_EQ(analysis->MaxBinWidth, 2.125);
  EXPECT_EQ(analysis->YThreshold, 2);
  EXPECT_TRUE(analysis->SamplesInRows && analysis->ShowTimestamp);
  EXPECT_FALSE(analysis->DyeGrid->Columns.Item("1")->IsVisible);
  EXPECT_EQ(analysis->SampleGrid->Columns.Item("-1")->Header.get(), "");
  IAFLPResultsPage& page = desk.reopen(analysis);
  EXPECT_TRUE(page.Transpose());
  EXPECT_EQ(desk.control<ui::TextBox>("txtMaxBinWidth").Text.get(), "2.13");  // halves away from zero
  EXPECT_TRUE(page.IsRowHidden(3));
  EXPECT_EQ(sampleHeaders(desk).front(), "1-a");
}

TEST(ChildPages, SelectingSamplesEditsExclusionAndOrder) {
  Desk desk(kScript);
  desk.newAnalysis();
  desk.control<ui::CheckBox>("chkExcludeEmptySamples").Value = 0;
  desk.control<ui::CheckBox>("chkExcludeFullBins").Value = 0;
  desk.wait();
  desk.grid().rightClick(0, 11);
  const auto columns = [&] {
    std::string text;
    for (const auto& column : desk.analysis().SampleGrid->Columns) {
      text +=
          column->Key.get() + "@" + std::to_string(column->ColumnOrder) + (column->IsExcluded ? "x " : " ");
    }
    return text;
  };
  desk.host.pages().selectColumns = [](host::ColumnSelection&) { return false; };
  desk.choose("mnuSelectColumns");
  EXPECT_EQ(columns(), "-1@10 -2@11 -3@12 ");
  desk.host.pages().selectColumns = [](host::ColumnSelection& selection) {
    std::swap(selection.entries.front(), selection.entries.back());
    selection.entries.front().isVisible = false;
    return true;
  };
  desk.choose("mnuSelectColumns");
  EXPECT_EQ(columns(), "-1@11 -2@10 -3@12x ");
  EXPECT_EQ(keys(desk).back(), "-3");
  EXPECT_TRUE(desk.page().IsColHidden(12));
}

TEST(Labels, ShortenNamesByTheirSuffix) {
  struct Case {
    const char* name;
    const char* well;
    const char* stamp;
    const char* neither;
  };
  for (const Case& c : {Case{"Sample1.A01_12345678AB", "Sample1.A01", "Sample1_12345678AB", "Sample1"},
                        Case{" S.A01_12345678AB ", "S.A01", "S_12345678AB", "S"},
                        Case{"éé. 01_12345678 .", "éé. 01", "éé_12345678 .", "éé"},
                        Case{"x.A01_1234567XAB", "x.A01_1234567XAB", "x.A01_1234567XAB", "x.A01_1234567XAB"},
                        Case{"A01_12345678AB", "A01_12345678AB", "A01_12345678AB", "A01_12345678AB"}}) {
    Desk desk({{0, {{100, {1}}}}}, {c.name});
    desk.newAnalysis();
    desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1;
    const auto label = [&](int well, int stamp) {
      desk.control<ui::CheckBox>("chkShowWellID").Value = well;
      desk.control<ui::CheckBox>("chkShowTimestamp").Value = stamp;
      desk.wait();
      return sampleHeaders(desk).front();
    };
    EXPECT_EQ(label(0, 0), std::string("1-") + c.neither);
    EXPECT_EQ(label(1, 0), std::string("1-") + c.well);
    EXPECT_EQ(label(0, 1), std::string("1-") + c.stamp);
    desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 0;
    EXPECT_THAT(sampleHeaders(desk), ElementsAre("1"));
  }
}

TEST(Transposing, ExchangesHeadersHiddenFrozenAndDraggedLines) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  page.HideRows(2, 2, true);
  page.HideCols(4, 4, true);
  desk.grid().SetAllowDragCols(true);
  page.SetLockedCol(3);
  page.SetTranspose(true);
  EXPECT_EQ(desk.grid().RowCount(), 12);
  EXPECT_EQ(desk.grid().ColCount(), 3);
  EXPECT_TRUE(desk.grid().IsRowHidden(4) && desk.grid().IsColHidden(2));
  EXPECT_TRUE(desk.grid().AllowDragRows());
  EXPECT_EQ(desk.grid().FrozenRows(), 3);
  EXPECT_FALSE(desk.grid().ColHeadersVisible());
  EXPECT_TRUE(desk.grid().RowHeadersVisible());
}

TEST(Sorting, ByColumnFlipsAndByBinMovesWholeSamples) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  const auto bins = [&] { return std::vector{page.Bin(1), page.Bin(2), page.Bin(3)}; };
  desk.grid().doubleClick(0, 12);
  EXPECT_THAT(bins(), ElementsAre(2, 3, 1));  // 0, 1, 2 fragments in c
  desk.grid().doubleClick(0, 12);
  EXPECT_THAT(bins(), ElementsAre(1, 3, 2));
  EXPECT_EQ(desk.analysis().SampleGrid->Columns.Item("-3")->SortPriority, 1);
  desk.grid().doubleClick(1, 1);  // bin 1: 1, 0, 2, the largest first
  EXPECT_EQ(page.Key(10) + page.Key(11) + page.Key(12), "-3-1-2");
  EXPECT_EQ(desk.analysis().SampleGrid->Columns.Item("-3")->ColumnOrder, 10);
  desk.grid().doubleClick(1, 1);
  EXPECT_EQ(keys(desk).back(), "-3");
  EXPECT_EQ(page.CellText("-3", 1), "2");
}

TEST(Widths, ADragEndsWhereTheColumnsKindSaysAndTheNextIsRefused) {
  Desk desk(kScript);
  desk.newAnalysis();
  const auto sample = desk.analysis().SampleGrid->Columns.Item("-1");
  const auto fixed = desk.analysis().BinGrid->Columns.Item("6");
  auto definition = std::make_shared<GridColumnDefinition>();
  definition->DefaultWidth = 40;
  fixed->Definition = definition;
  EXPECT_TRUE(desk.grid().trackColumnWidth(1, 300));
  EXPECT_EQ(fixed->Width, 40);
  EXPECT_FALSE(desk.grid().trackColumnWidth(10, 300));
  EXPECT_TRUE(desk.grid().trackColumnWidth(10, 300));
  EXPECT_EQ(sample->Width, -1);
}

TEST(Menus, PopUpByPlaceWithTheirItemsPrepared) {
  Desk desk(kScript);
  desk.newAnalysis();
  struct Case {
    std::int32_t row, col;
    std::string menu;
    bool views;
  };
  for (const Case& c : {Case{0, 0, "mnuColumn mnuSortColumn", false},
                        Case{0, 11, "mnuColumn mnuSortColumn", true}, Case{2, 1, "mnuRow mnuSortBin", false},
                        Case{2, 4, "mnuCell", false}, Case{2, 12, "mnuCell", true}, Case{2, 0, "", false}}) {
    std::string shown;
    desk.host.platform().popupAnswers = {[&](ui::MenuItem& menu, ui::MenuItem* usual) {
      shown = menu.Name() + (usual == nullptr ? "" : " " + usual->Name());
    }};
    desk.grid().rightClick(c.row, c.col);
    EXPECT_EQ(shown, c.menu) << c.row << "," << c.col;
    EXPECT_EQ(desk.control<ui::MenuItem>("mnuOverlayCell").Enabled, c.views) << c.row << "," << c.col;
  }
  EXPECT_TRUE(desk.host.framework().reports().empty());
}

TEST(Views, OpenWindowsForSamplesOnly) {
  Desk desk(kScript);
  desk.newAnalysis();
  desk.host.study().setDisplayViewIndex(2);
  desk.grid().selectCols(9, 11);
  desk.choose("mnuSingleColumn");
  const auto window = desk.pageNamed("SingleSample");
  EXPECT_EQ(window->Caption().substr(window->Caption().size() - 4), " - b");
  EXPECT_EQ(window->viewIndex(), 3);
  EXPECT_TRUE(window->isShown());
  desk.choose("mnuEgramColumn");
  const auto graph = desk.pageNamed("StackedView");
  EXPECT_EQ(std::dynamic_pointer_cast<KeyedLookup>(graph->BoundObject())->Count(), 2);
}

}  // namespace
}  // namespace banddesk::test
