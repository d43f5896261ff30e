// From fragments to the filtered table: the run, exclusion by filters, by dyes and by
// hand, and what is kept of it.
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;

// Two dyes: bins of 122.5 and 123.5 nt in D1 (ties to even), one of 80.125 in D3.
const Script kScript{{0, {{122.5, {1, 0, 2}, {10, 0, 20.5}}, {123.5, {0, 3, 0}, {0, 0.5, 0}}}},
                     {2, {{80.125, {1, 1, 0}}}}};

void uncheckFilters(Desk& desk) {
  for (const char* name : {"chkExcludeFullBins", "chkExcludeEmptySamples"}) {
    desk.control<ui::CheckBox>(name).Value = 0;
  }
  desk.wait();
}

void hideColumns(Desk& desk, std::initializer_list<std::int32_t> columns) {
  for (const auto col : columns) desk.page().HideCols(col, col, true);
}

TEST(Analyze, LaysTheBinsOfEachDyeAsRowsWithTheirTexts) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  const auto row = [&](std::int32_t r) {
    std::string text;
    for (const char* key : {"6", "7", "8", "119", "9", "10", "83", "84", "85", "-1", "-2", "-3"}) {
      text += page.CellText(key, r) + " ";
    }
    return text + std::to_string(page.Bin(r));
  };
  EXPECT_EQ(page.NumRows(), 3);
  EXPECT_EQ(page.NumCols(), 12);
  EXPECT_EQ(row(1), "122 D1 2 3 122.25 122.75 122.5 1.25E-06 0.333333333333333 1 0 2 1");
  EXPECT_EQ(row(2), "124 D1 1 3 123.25 123.75 123.5 1.25E-06 0.333333333333333 0 3 0 2");
  EXPECT_EQ(row(3), "80 D3 2 2 79.875 80.375 80.125 1.25E-06 0.333333333333333 1 1 0 3");
}

TEST(Analyze, GivesEveryCalculatorItsFragmentsOnceAndItsParametersEachTime) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  EXPECT_EQ(desk.calculators->added.size(), 12U);
  EXPECT_EQ(desk.calculators->added[5].dye, 1);
  EXPECT_EQ(desk.calculators->added[5].result, 1);
  page.Analyze(false);  // nothing changed
  EXPECT_EQ(desk.calculators->calculated.size(), 4U);
  desk.control<ui::TextBox>("txtYThreshold").Text = "75";
  page.Analyze(false);
  EXPECT_THAT(std::vector(desk.calculators->calculated.end() - 4, desk.calculators->calculated.end()),
              ::testing::Each(std::pair(1.0, 75.0)));
  EXPECT_EQ(desk.calculators->added.size(), 12U);
  page.Analyze(true);
  EXPECT_EQ(desk.calculators->calculated.size(), 12U);
}

TEST(Analyze, StopsAtABadNumberAndWithoutResults) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  desk.control<ui::TextBox>("txtMaxBinWidth").Text = "99";
  page.Analyze(true);
  EXPECT_EQ(desk.calculators->calculated.size(), 4U);
  EXPECT_EQ(desk.host.platform().beeps(), 1);

  Desk empty(kScript, {"only"});
  empty.newAnalysis();
  empty.host.study().setResultExcluded(1, true);
  const auto analysis = empty.host.study().Study()->AFLPs.Item(1);
  analysis->IsPending = true;
  EXPECT_EQ(empty.reopen(analysis).NumRows(), 0);
  empty.page().Analyze(true);
  EXPECT_EQ(empty.calculators->calculated.size(), 4U);
}

TEST(Analyze, KeepsAResultsDataUnderItsOwnNameWhenItComesBackIntoTheStudy) {
  Desk desk(kScript);
  desk.openStudy();
  desk.host.study().setResultExcluded(2, true);
  desk.newAnalysis();
  const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
  desk.host.study().setResultExcluded(2, false);
  analysis->IsPending = true;
  desk.calculators->added.clear();
  desk.reopen(analysis);
  std::vector<std::pair<std::int32_t, double>> handed;
  for (const auto& call : desk.calculators->added) {
    if (call.dye == 0) handed.emplace_back(call.result, call.sizes.front());
  }
  // The analysis holds the results 1, 3, 2 in this order; the study offers 1, 2, 3.
  EXPECT_THAT(handed, ElementsAre(std::pair(0, 101.0), std::pair(2, 102.0), std::pair(1, 103.0)));
}

TEST(Records, ReadOnePlaceToTheLeftBehindAHiddenSample) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  uncheckFilters(desk);
  hideColumns(desk, {10});
  const auto bins = page.Bins();
  ASSERT_EQ(bins->Count(), 3);
  const auto& first = *bins->Item(1);
  EXPECT_EQ(first.BinNumber, 122);
  EXPECT_EQ(first.Dye, "D1");
  EXPECT_FLOAT_EQ(first.XMin, 122.25F);
  EXPECT_FLOAT_EQ(first.YMean, 1.25e-6F);
  ASSERT_EQ(first.AFLPResults.Count(), 2);
  EXPECT_EQ(first.AFLPResults.Item(1).FragmentCount, 1);  // of the hidden sample
  EXPECT_EQ(first.AFLPResults.Item(2).FragmentCount, 0);
  const auto samples = page.AFLPStudyResults();
  ASSERT_EQ(samples->Count(), 2);
  EXPECT_EQ(samples->Item(1)->Name, "b");
}

TEST(Filters, TakeTurnsUntilNothingChanges) {
  // b's only bin is full once c, which has none, is out; then b has none left.
  Desk desk({{0, {{100, {1, 1, 0}}, {200, {1, 0, 0}}}}});
  desk.newAnalysis();
  hideColumns(desk, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  const AnalysisView view = desk.page().Analysis();
  EXPECT_THAT(std::vector<int>(view.autoExcluded.begin() + 1, view.autoExcluded.end()), ElementsAre(1, 1));
  desk.control<ui::CheckBox>("chkShowExcluded").click();
  desk.wait();
  EXPECT_EQ(desk.visibleTable(), "1 2 3\n1* 1* 0*\n1* 0* 0*\n");
  desk.control<ui::CheckBox>("chkExcludeEmptySamples").click();
  desk.wait();
  EXPECT_EQ(desk.visibleTable(), "1 2 3\n1 1 0\n1 0 0\n");
}

TEST(Filters, TakeNoNoticeOfBinsWhoseDyeIsHidden) {
  Desk desk({{0, {{100, {1, 0, 0}}, {200, {0, 1, 0}}}}, {1, {{150, {0, 0, 1}}, {250, {1, 1, 1}}}}});
  desk.newAnalysis();
  desk.control<ui::CheckBox>("chkDye(1)").click();
  desk.wait();
  const AnalysisView view = desk.page().Analysis();
  EXPECT_THAT(std::vector<int>(view.autoExcluded.begin() + 1, view.autoExcluded.end()),
              ElementsAre(0, 0, 0, 0));
  EXPECT_TRUE(desk.analysis().SampleGrid->Columns.Item("-3")->IsAutoExcluded);
}

TEST(Dyes, HideTheirRowsWithoutGreyAndFollowTheStudy) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  uncheckFilters(desk);
  desk.host.study().setDyeVisible(0, false);
  desk.wait();
  EXPECT_TRUE(page.IsRowHidden(1) && page.IsRowHidden(2));
  EXPECT_FALSE(page.IsRowHidden(3));
  const auto& dye = desk.analysis().DyeGrid->Columns.Item("0");
  EXPECT_FALSE(dye->IsVisible);
  desk.host.study().setDyeColor(0, 0x00F0F0);
  EXPECT_EQ(desk.control<ui::CheckBox>("chkDye(0)").BackColor, 0x00F0F0U);
  EXPECT_EQ(dye->InteriorBkColor, 0x00F0F0U);
  EXPECT_FALSE(dye->IsVisible);
}

void excludeBin(Desk& desk, std::int32_t row) { desk.chooseAt(row, 1, "mnuExcludeBin"); }

TEST(ByHand, ABinIsExcludedBroughtBackAndBoth) {
  Desk desk({{0, {{100, {1, 1, 1}}, {200, {1, 0, 1}}, {300, {0, 1, 1}}}}});
  IAFLPResultsPage& page = desk.newAnalysis();
  const auto flags = [&](std::int32_t bin) {
    const AnalysisView view = page.Analysis();
    const auto at = static_cast<std::size_t>(bin);
    return std::string(view.manualExcluded[at] ? "X" : "-") + (view.manualIncluded[at] ? "I" : "-") +
           (view.autoExcluded[at] ? "A" : "-") + (page.IsRowHidden(bin) ? "h" : "v");
  };
  EXPECT_EQ(flags(1), "--Ah");
  excludeBin(desk, 1);  // the item is checked: the bin comes back
  EXPECT_EQ(flags(1), "-IAv");
  EXPECT_TRUE(page.AnyManualExclusions());
  excludeBin(desk, 1);
  EXPECT_EQ(flags(1), "--Ah");
  EXPECT_FALSE(page.AnyManualExclusions());
  excludeBin(desk, 2);
  EXPECT_EQ(flags(2), "X--h");
  excludeBin(desk, 2);
  EXPECT_EQ(flags(2), "---v");
}

TEST(ByHand, DecisionsAreStoredByDyeAndMeanAndFoundOncePerPage) {
  Desk desk({{0, {{100.5, {1, 1, 1}}, {200, {1, 0, 1}}, {300, {0, 1, 1}}}}});
  desk.newAnalysis();
  excludeBin(desk, 1);
  excludeBin(desk, 3);
  desk.host.save();
  const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
  EXPECT_EQ(analysis->AFLPBins.Count(), 2);
  EXPECT_TRUE(analysis->AFLPBins.Item("D1-100.5")->ManuallyIncluded);
  EXPECT_TRUE(analysis->AFLPBins.Item("D1-300")->ManuallyExcluded);

  IAFLPResultsPage& page = desk.reopen(analysis);
  EXPECT_EQ(page.Analysis().manualIncluded[1], 1);
  EXPECT_EQ(page.Analysis().manualExcluded[3], 1);
  desk.host.study().options().SetShowInclusionWarning(false);
  page.Analyze(true);
  EXPECT_FALSE(page.AnyManualExclusions());
  desk.host.pages().userEvent(*desk.pageNamed("AFLP"), [] {});
  desk.host.save();
  EXPECT_EQ(analysis->AFLPBins.Count(), 0);
}

TEST(Warning, GuardsDecisionsAndPutsTheParametersBack) {
  Desk desk({{0, {{100, {1, 1, 1}}, {200, {1, 0, 1}}}}});
  IAFLPResultsPage& page = desk.newAnalysis();
  excludeBin(desk, 2);
  const auto runWith = [&](const char* button, const char* threshold, bool dontShow) {
    desk.host.platform().formAnswers.emplace_back([=](ui::Form& form) {
      EXPECT_EQ(form.Caption(), "Inclusion/Exclusion Warning");
      if (dontShow) form.Controls().find<ui::CheckBox>("chkDontShow")->click();
      if (button != nullptr) form.Controls().find<ui::CommandButton>(button)->Click.raise();
    });
    desk.control<ui::TextBox>("txtMaxBinWidth").Text = "2.5";
    desk.control<ui::TextBox>("txtYThreshold").Text = threshold;
    page.Analyze(false);
  };
  runWith("btnCancel", "12.5", false);
  EXPECT_EQ(desk.control<ui::TextBox>("txtMaxBinWidth").Text.get(), "1.00");
  EXPECT_EQ(desk.control<ui::TextBox>("txtYThreshold").Text.get(), "0");
  EXPECT_TRUE(page.AnyManualExclusions());
  runWith("btnOK", "12.5", false);
  EXPECT_FALSE(page.AnyManualExclusions());
  EXPECT_EQ(page.Analysis().yThreshold, 12.5);

  excludeBin(desk, 2);
  runWith(nullptr, "13", false);  // closed by its frame: as it was answered last
  EXPECT_FALSE(page.AnyManualExclusions());
  excludeBin(desk, 2);
  runWith("btnCancel", "14", true);
  EXPECT_FALSE(desk.host.study().options().ShowInclusionWarning());
  EXPECT_TRUE(page.AnyManualExclusions());
}

TEST(Columns, ASampleIsExcludedAndABinColumnHidden) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  uncheckFilters(desk);
  const auto exclude = [&](std::int32_t col, const std::string& caption) {
    desk.chooseAt(0, col, "mnuExcludeColumn");
    EXPECT_EQ(desk.control<ui::MenuItem>("mnuExcludeColumn").Caption.get(), caption);
  };
  exclude(12, "&Exclude Column");
  exclude(5, "&Hide Column");
  EXPECT_TRUE(page.IsColHidden(12) && page.IsColHidden(5));
  EXPECT_TRUE(desk.analysis().SampleGrid->Columns.Item("-3")->IsExcluded);
  EXPECT_FALSE(desk.analysis().BinGrid->Columns.Item("9")->IsExcluded);
  hideColumns(desk, {1, 2, 3, 4, 6, 7, 8, 9});
  desk.control<ui::CheckBox>("chkShowExcluded").click();
  desk.wait();
  EXPECT_EQ(desk.visibleTable(), "1 2 3*\n1 0 2*\n0 3 0*\n1 1 0*\n");
}

}  // namespace
}  // namespace banddesk::test
