// What an analysis keeps of its page: written when the page is saved, restored when it opens again, redone
// with the study's results.
#include <array>
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;

const Script kScript{{0, {{100, {1, 0, 2}}, {200, {0, 1, 0}}}}, {1, {{300, {0, 5, 1}}}}};

IAFLPResultsPage& saveAndReopen(Desk& desk) {
  const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
  EXPECT_TRUE(desk.host.pages().end(desk.pageNamed("AFLP"), true));
  return desk.reopen(analysis);
}

std::string columnsOf(Desk& desk) {
  std::string text;
  for (const auto& column : desk.analysis().SampleGrid->Columns) {
    text += column->Key.get() + "@" + std::to_string(column->ColumnOrder) + (column->IsVisible ? "" : "-") +
            (column->IsExcluded ? "x " : " ");
  }
  return text;
}

TEST(Stored, EveryBoxIsKeptForItselfAlone) {
  struct Box {
    const char* name;
    Property<bool> AFLP::*stored;
  };
  const std::vector<Box> boxes{{"chkExcludeFullBins", &AFLP::ExcludeFullBins},
                               {"chkExcludeEmptySamples", &AFLP::ExcludeEmptySamples},
                               {"chkShowExcluded", &AFLP::ShowExcluded},
                               {"chkShowTimestamp", &AFLP::ShowTimestamp},
                               {"chkShowWellID", &AFLP::ShowWellID}};
  for (const Box& turned : boxes) {
    Desk desk(kScript);
    desk.newAnalysis();
    std::vector<std::int32_t> values;
    desk.control<ui::CheckBox>(turned.name).click();
    for (const Box& box : boxes) values.push_back(desk.control<ui::CheckBox>(box.name).Value);
    EXPECT_THAT(values,
                ElementsAre(turned.name == boxes[0].name ? 0 : 1, turned.name == boxes[1].name ? 0 : 1,
                            turned.name == boxes[2].name ? 1 : 0, turned.name == boxes[3].name ? 1 : 0,
                            turned.name == boxes[4].name ? 0 : 1));
    saveAndReopen(desk);
    EXPECT_FALSE(desk.wait()) << "opening left work";
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      EXPECT_EQ(desk.control<ui::CheckBox>(boxes[i].name).Value, values[i]) << turned.name << boxes[i].name;
      EXPECT_EQ(desk.analysis().*boxes[i].stored, values[i] != 0) << turned.name << boxes[i].name;
    }
  }
}

TEST(Stored, NumbersAxisAndSampleBinComeBackAsRounded) {
  struct Case {
    const char *width, *threshold;
    double maxBinWidth;
    std::int32_t yThreshold;
    const char *widthAgain, *thresholdAgain;
  };
  for (const Case& c :
       {Case{"2.125", "2.5", 2.125, 2, "2.13", "2"}, Case{"0.05", "51.5", 0.05, 52, "0.05", "52"},
        Case{"10abc", "1e3", 10, 1000, "10.00", "1000"}}) {
    Desk desk(kScript);
    desk.newAnalysis();
    desk.control<ui::TextBox>("txtMaxBinWidth").Text = c.width;
    desk.control<ui::TextBox>("txtYThreshold").Text = c.threshold;
    desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1;
    desk.control<ui::OptionButton>("optSampleBin(2)").Value = true;
    IAFLPResultsPage& page = saveAndReopen(desk);
    EXPECT_EQ(desk.analysis().MaxBinWidth, c.maxBinWidth);
    EXPECT_EQ(desk.analysis().YThreshold, c.yThreshold);
    EXPECT_EQ(desk.control<ui::TextBox>("txtMaxBinWidth").Text.get(), c.widthAgain);
    EXPECT_EQ(desk.control<ui::TextBox>("txtYThreshold").Text.get(), c.thresholdAgain);
    EXPECT_TRUE(page.Transpose() && desk.analysis().SamplesInRows);
    EXPECT_THAT(desk.control<ui::ComboBox>("cbxSampleAxis").List(), ElementsAre("Columns", "Rows"));
    EXPECT_EQ(page.CellText("-2", 3), "100") << "heights are not shown again";
    EXPECT_EQ(page.CellText("-2", 0), "2-b");
    EXPECT_FALSE(desk.analysis().IsPending);
    EXPECT_EQ(desk.analysis().ResultsPage, static_cast<Object*>(&page));
    const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
    desk.host.pages().end(desk.pageNamed("AFLP"), true);
    EXPECT_EQ(analysis->ResultsPage, nullptr);
    EXPECT_EQ(analysis->SampleGrid->Columns.Item("-2")->Header.get(), "") << "an abbreviation was saved";
  }
}

TEST(Stored, ADisplayThatDoesNotExistIsAnErrorAndNothingOpens) {
  for (const std::int32_t option : {-1, 3}) {
    Desk desk(kScript);
    desk.newAnalysis();
    const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
    desk.host.pages().endAll();
    analysis->SampleBinOption = option;
    EXPECT_THROW(desk.host.service().OpenAFLP(analysis), Error);
    EXPECT_TRUE(desk.host.pages().openPages().empty());
  }
}

TEST(Stored, DyesKeepTheColourOfTheirBoxAndWhetherItIsChecked) {
  Desk desk(kScript);
  desk.newAnalysis();
  const std::array<Colour, 4> colours{0x000010, 0xFFFFF0, 0x202020, 0xF0F0F0};
  for (std::size_t i = 0; i < 4; ++i) {
    auto& box = desk.control<ui::CheckBox>("chkDye(" + std::to_string(i) + ")");
    box.BackColor = colours[i];
    box.Value = i == 2 ? 0 : 1;
  }
  const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
  desk.host.pages().end(desk.pageNamed("AFLP"), true);
  for (std::size_t i = 0; i < 4; ++i) {
    const auto dye = analysis->DyeGrid->Columns.Item(std::to_string(i));
    EXPECT_EQ(dye->InteriorColor, colours[i]);
    EXPECT_EQ(dye->InteriorBkColor, colours[i]);
    EXPECT_EQ(dye->TextColor, i % 2 == 0 ? 0xFFFFFFU : 0U);
    EXPECT_EQ(dye->IsVisible, i != 2);
  }
}

TEST(Stored, ColumnsComeBackWithHeaderToolTipVisibilityAndLock) {
  for (const bool transposed : {false, true}) {
    Desk desk(kScript, {"a", "b.A01_12345678AB  ", "c"});
    desk.newAnalysis();
    desk.analysis().BinGrid->Columns.Item("9")->IsVisible = false;
    desk.analysis().BinGrid->Columns.Item("8")->ToolTip = "how many";
    desk.analysis().SampleGrid->Columns.Item("-2")->IsVisible = false;
    desk.page().SetLockedCol(2);
    desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = transposed ? 1 : 0;
    desk.page().Init(desk.analysis().SampleGrid);
    EXPECT_TRUE(desk.page().IsColHidden(11)) << "Init hides nothing";
    IAFLPResultsPage& page = saveAndReopen(desk);
    host::GridControl& grid = desk.grid();
    const auto tip = [&](std::int32_t col) {
      return transposed ? grid.GetToolTip(col, 0) : grid.GetToolTip(0, col);
    };
    EXPECT_EQ(page.CellText("6", 0), "Bin");
    EXPECT_EQ(tip(3), "how many");
    EXPECT_EQ(tip(11), "b.A01_12345678AB");
    EXPECT_TRUE(page.IsColHidden(page.Col("9")));
    EXPECT_FALSE(page.IsColHidden(page.Col("10")));
    EXPECT_EQ(page.Key(11), "-2");
    EXPECT_EQ(transposed ? grid.FrozenRows() : grid.FrozenCols(), 2);
    EXPECT_EQ(transposed ? grid.FrozenCols() : grid.FrozenRows(), 0);
    EXPECT_EQ(page.NumCols(), 12);
    EXPECT_EQ(grid.ColHeadersVisible(), !transposed);
    EXPECT_EQ(grid.RowHeadersVisible(), transposed);
  }
}

// The page for choosing columns sees exclusion as visibility; leaving it either way turns that back.
TEST(Stored, ChoosingSamplesEditsExclusionAndCancellingChangesNothing) {
  Desk desk(kScript);
  desk.newAnalysis();
  for (const char* filter : {"chkExcludeFullBins", "chkExcludeEmptySamples"})
    desk.control<ui::CheckBox>(filter).Value = 0;
  desk.wait();
  desk.chooseAt(0, 11, "mnuExcludeColumn");
  desk.grid().user().rightClick(0, 11);
  const std::string before = columnsOf(desk);
  EXPECT_EQ(before, "-1@10 -2@11-x -3@12 ");
  std::string offered;
  desk.front.onSelectColumns = [&](host::ColumnSelection& selection) {
    for (const auto& entry : selection.entries) offered += entry.isVisible ? "+" : "-";
    return false;
  };
  desk.calculators->calculated.clear();
  desk.choose("mnuSelectColumns");
  EXPECT_EQ(offered, "+-+");
  EXPECT_EQ(columnsOf(desk), before);
  EXPECT_TRUE(desk.calculators->calculated.empty());
  desk.front.onSelectColumns = [](host::ColumnSelection& selection) {
    std::swap(selection.entries.front(), selection.entries.back());
    for (auto& entry : selection.entries) entry.isVisible = entry.column->Key.get() != "-3";
    return true;
  };
  desk.choose("mnuSelectColumns");
  EXPECT_EQ(columnsOf(desk), "-1@11 -2@10- -3@12x ");
  EXPECT_EQ(desk.calculators->calculated.size(), 4U);
  EXPECT_EQ(desk.page().Key(10), "-2");
  EXPECT_TRUE(desk.page().IsColHidden(12) && !desk.page().IsColHidden(10));

  // For columns of bin information it is about visibility alone.
  desk.grid().user().rightClick(0, 3);
  desk.front.onSelectColumns = [](host::ColumnSelection& selection) {
    selection.entries.front().isVisible = false;
    return true;
  };
  desk.choose("mnuSelectColumns");
  EXPECT_FALSE(desk.analysis().BinGrid->Columns.Item("6")->IsVisible);
  EXPECT_EQ(columnsOf(desk), "-1@11 -2@10- -3@12x ");
}

TEST(Stored, ARedoneAnalysisFollowsTheStudyAndClosesTheGapsOfWhatIsGone) {
  Desk desk(kScript, {"a", "b", "c", "d "});
  desk.openStudy();
  desk.host.study().setResultExcluded(4, true);
  desk.newAnalysis();
  EXPECT_EQ(columnsOf(desk), "-1@10 -2@11 -3@12 ");
  const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
  EXPECT_EQ(analysis->SampleGrid->Columns.Item("-3")->TypeCode, 219);
  desk.grid().user().selectCols(12, 12);
  desk.grid().user().dragColumns(12, 12, 10);
  EXPECT_EQ(columnsOf(desk), "-1@11 -2@12 -3@10 ");
  desk.host.study().setResultExcluded(1, true);
  desk.host.study().deleteResult(3);
  desk.host.study().setResultExcluded(4, false);
  desk.calculators->added.clear();
  desk.reopen(analysis);
  EXPECT_EQ(columnsOf(desk), "-1@11 -2@12 -3@10 ") << "a stored analysis keeps its results";
  EXPECT_EQ(desk.calculators->added.size(), 12U);

  analysis->IsPending = true;
  desk.calculators->added.clear();
  std::vector<double> progress;
  const auto follows = desk.host.progress().Changed.connect(
      [&](const host::HostProgress& bar) { progress.push_back(bar.Position()); });
  desk.reopen(analysis);
  EXPECT_EQ(columnsOf(desk), "-2@10 -4@11 ");
  EXPECT_EQ(analysis->SampleGrid->Columns.Item("-4")->ToolTip.get(), "d");
  ASSERT_EQ(desk.calculators->added.size(), 8U);
  EXPECT_EQ(desk.calculators->added[7].dye, 3);
  EXPECT_EQ(desk.calculators->added[7].result, 1);
  EXPECT_EQ(desk.page().NumCols(), 11);
  EXPECT_EQ(desk.page().CellText("-4", 0), "2");
  // One step for each result of the study, those left out too.
  const double step = 100.0 / desk.host.study().Study()->Results.Count();
  EXPECT_THAT(std::vector(progress.begin(), progress.begin() + 2), ElementsAre(0, step));
}

TEST(Stored, APageFollowsTheStudyTheNameAndItsResults) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  desk.host.save();
  desk.analysis().Name = "Other";
  EXPECT_EQ(desk.pageNamed("AFLP")->Caption(), "AFLP - Other");
  desk.host.save();
  EXPECT_FALSE(desk.analysis().Persistent().IsDirty);
  desk.host.study().Study()->ResultChanged.raise();
  EXPECT_TRUE(desk.analysis().Persistent().IsDirty);
  desk.control<ui::CommandButton>("cmdHelp").Click.raise();
  ASSERT_EQ(desk.front.help.size(), 1U);
  EXPECT_TRUE(desk.front.help[0].command == 1 && desk.front.help[0].data == 0);
  EXPECT_EQ(page.Transpose(), false);
}

// What waits when a column page opens would work on its half-made choice.
TEST(Stored, NothingRunsBelowTheSelectionOfColumns) {
  Desk desk({{0, {{100, {1, 1, 0}}, {200, {1, 0, 1}}, {300, {1, 1, 1}}}}});
  desk.newAnalysis();
  desk.front.onSelectColumns = [&](host::ColumnSelection& selection) {
    EXPECT_FALSE(desk.wait());
    selection.entries[2].isVisible = false;
    return true;
  };
  desk.control<ui::CheckBox>("chkExcludeFullBins").click();
  desk.chooseAt(0, 12, "mnuSelectColumns");
  for (const bool isSettled : {false, true}) {
    EXPECT_TRUE(desk.analysis().SampleGrid->Columns.Item("-3")->IsExcluded) << isSettled;
    EXPECT_TRUE(desk.page().IsColHidden(desk.page().Col("-3"))) << isSettled;
    EXPECT_FALSE(desk.page().IsColHidden(desk.page().Col("-1"))) << isSettled;
    EXPECT_EQ(desk.wait(), !isSettled);
  }
}

}  // namespace
}  // namespace banddesk::test
