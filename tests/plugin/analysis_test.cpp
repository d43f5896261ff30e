// The run of an analysis: what the calculators are handed and asked, and the table and records that come of
// it.
#include <gmock/gmock.h>
#include <sstream>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using host::BinMark;

using ::testing::ElementsAre;

// Two dyes: bins of 122.5 and 123.5 nt in D1 (ties to even), one of 80.125 in D3; heights that round to even.
const Script kScript{{0, {{122.5, {1, 0, 2}, {10, 0, 20.5}}, {123.5, {0, 3, 0}, {0, 0.5, 0}}}},
                     {2, {{80.125, {1, 1, 0}, {1.5, 7, 0}}}}};

void uncheckFilters(Desk& desk) {
  for (const char* name : {"chkExcludeFullBins", "chkExcludeEmptySamples"})
    desk.control<ui::CheckBox>(name).Value = 0;
  desk.wait();
}

std::string rowOf(IAFLPResultsPage& page, std::int32_t row) {
  std::string text;
  for (const char* key : {"6", "7", "8", "119", "9", "10", "83", "84", "85", "-1", "-2", "-3"}) {
    text += page.CellText(key, row) + " ";
  }
  return text + std::to_string(page.Bin(row));
}

TEST(Analyze, LaysTheBinsOfEachDyeAsRowsWithTheirTexts) {
  for (const bool transposed : {false, true}) {
    Desk desk(kScript);
    IAFLPResultsPage& page = desk.newAnalysis();
    if (transposed) {
      page.SetTranspose(true);
      page.Analyze(true);
    }
    EXPECT_EQ(page.NumRows(), 3);
    EXPECT_EQ(page.NumCols(), 12);
    EXPECT_EQ(rowOf(page, 1), "122 D1 2 3 122.25 122.75 122.5 1.25E-06 0.333333333333333 1 0 2 1");
    EXPECT_EQ(rowOf(page, 2), "124 D1 1 3 123.25 123.75 123.5 1.25E-06 0.333333333333333 0 3 0 2");
    EXPECT_EQ(rowOf(page, 3), "80 D3 2 2 79.875 80.375 80.125 1.25E-06 0.333333333333333 1 1 0 3");
  }
}

TEST(Analyze, ShowsCountsPresenceOrHeightsWithTheStyleOfTheCount) {
  struct Mode {
    const char* option;
    std::int32_t stored;
    const char *first, *second, *third;
  };
  for (const Mode& m :
       {Mode{"optSampleBin(1)", 1, "101", "010", "110"}, Mode{"optSampleBin(2)", 2, "10020", "000", "270"},
        Mode{"optSampleBin(0)", 0, "102", "030", "110"}}) {
    Desk desk(kScript);
    IAFLPResultsPage& page = desk.newAnalysis();
    const auto styles = [&] {
      std::string text;
      for (std::int32_t row = 1; row <= 3; ++row) {
        for (std::int32_t col = 10; col <= 12; ++col) {
          GridStyle style;
          desk.grid().GridParam().GetData().GetStyleRowCol(row, col, style, StyleMode::Copy, 1);
          text += desk.grid().looks().registeredName(style.attributes().baseStyle.value_or(0)) + ",";
        }
      }
      return text;
    };
    const auto name = [&](std::int32_t order) {
      return desk.analysis().StyleGrid->Columns.Item(order)->ToolTip.get() + " Style,";
    };
    const std::string expected =
        name(1) + name(3) + name(2) + name(3) + name(2) + name(3) + name(1) + name(1) + name(3);
    EXPECT_EQ(styles(), expected);
    desk.control<ui::OptionButton>("optSampleBin(2)").Value = true;
    desk.control<ui::OptionButton>(m.option).Value = true;
    EXPECT_EQ(desk.analysis().SampleBinOption, m.stored);
    desk.wait();
    std::vector<std::string> rows;
    for (std::int32_t row = 1; row <= 3; ++row) {
      rows.push_back(page.CellText("-1", row) + page.CellText("-2", row) + page.CellText("-3", row));
    }
    EXPECT_THAT(rows, ElementsAre(m.first, m.second, m.third)) << m.option;
    EXPECT_EQ(styles(), expected);
    const std::string before = page.CellText("-3", 1);
    page.Analyze(true);
    EXPECT_EQ(page.CellText("-3", 1), before) << "an analysis forgot what is shown";
  }
}

TEST(Analyze, GivesEveryCalculatorItsFragmentsOnceAndItsParametersEachTime) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  ASSERT_EQ(desk.calculators->added.size(), 12U);
  EXPECT_EQ(desk.calculators->added[5].dye, 1);
  EXPECT_EQ(desk.calculators->added[5].result, 1);
  EXPECT_THAT(desk.calculators->added[5].sizes, ElementsAre(102));
  page.Analyze(false);  // nothing changed
  EXPECT_EQ(desk.calculators->calculated.size(), 4U);
  desk.control<ui::TextBox>("txtYThreshold").Text = "75 ";
  page.Analyze(false);
  EXPECT_THAT(
      std::vector(desk.calculators->calculated.begin() + 4, desk.calculators->calculated.end()),
      ElementsAre(std::pair(1.0, 75.0), std::pair(1.0, 75.0), std::pair(1.0, 75.0), std::pair(1.0, 75.0)));
  desk.control<ui::TextBox>("txtMaxBinWidth").Text = "1.5x";
  page.Analyze(false);
  EXPECT_EQ(desk.calculators->calculated.back(), std::pair(1.5, 75.0));
  page.Analyze(true);
  EXPECT_EQ(desk.calculators->calculated.size(), 16U);
  EXPECT_EQ(desk.calculators->added.size(), 12U);
}

TEST(Analyze, StopsAtABadNumberAndWithoutResults) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  for (const auto& [box, text] : {std::pair("txtMaxBinWidth", "99"), {"txtYThreshold", "no"}}) {
    const std::string before = desk.control<ui::TextBox>(box).Text;
    desk.control<ui::TextBox>(box).Text = text;
    page.Analyze(true);
    EXPECT_EQ(desk.control<ui::TextBox>(box).BackColor, ui::kYellow);
    desk.control<ui::TextBox>(box).Text = before;
  }
  EXPECT_EQ(desk.calculators->calculated.size(), 4U);
  EXPECT_EQ(desk.front.beeps, 2);

  Desk empty(kScript, {"only"});
  empty.newAnalysis();
  empty.host.study().setResultExcluded(1, true);
  const auto analysis = empty.host.study().Study()->AFLPs.Item(1);
  analysis->IsPending = true;
  EXPECT_EQ(empty.reopen(analysis).NumRows(), 0);
  empty.page().Analyze(true);
  EXPECT_EQ(empty.calculators->calculated.size(), 4U);
  EXPECT_TRUE(empty.page().Bins()->Count() == 0 && empty.page().AFLPStudyResults()->Count() == 0);
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

// The records of the visible rows, a line each.
std::vector<std::string> records(IAFLPResultsPage& page) {
  std::vector<std::string> lines;
  const auto bins = page.Bins();
  for (const auto& bin : *bins) {
    std::ostringstream line;
    line << bin->BinNumber << " " << bin->Dye << " " << bin->SampleCount << " " << bin->FragmentCount << " "
         << bin->XMin << " " << bin->XMax << " " << bin->XMean << " " << bin->XVariance << " " << bin->YMean;
    for (const AFLPResult& result : bin->AFLPResults) {
      line << " " << result.FragmentCount << "/" << result.BinaryPresence << "/" << result.MaxYHeight;
    }
    lines.push_back(line.str());
  }
  return lines;
}

std::string namesOf(IAFLPResultsPage& page) {
  std::string names;
  const auto samples = page.AFLPStudyResults();
  for (const auto& sample : *samples) names += sample->Name + "|";
  return names;
}

TEST(Records, HoldTheVisibleBinsAndReadOnePlaceToTheLeftBehindAHiddenSample) {
  Desk desk(kScript, {" a", "b  ", "c"});
  IAFLPResultsPage& page = desk.newAnalysis();
  uncheckFilters(desk);
  const char* const first = "122 D1 2 3 122.25 122.75 122.5 0.333333 1.25e-06";
  const char* const third = "80 D3 2 2 79.875 80.375 80.125 0.333333 1.25e-06";
  EXPECT_THAT(records(page),
              ElementsAre(first + std::string(" 1/1/10 0/0/0 2/1/20.5"),
                          "124 D1 1 3 123.25 123.75 123.5 0.333333 1.25e-06 0/0/0 3/1/0.5 0/0/0",
                          third + std::string(" 1/1/1.5 1/1/7 0/0/0")));
  EXPECT_EQ(namesOf(page), " a|b|c|");
  page.HideCols(10, 10, true);
  page.HideRows(2, 2, true);
  EXPECT_THAT(records(page),
              ElementsAre(first + std::string(" 1/1/10 0/0/0"), third + std::string(" 1/1/1.5 1/1/7")));
  EXPECT_EQ(namesOf(page), "b|c|");
  page.SortCol(1);
  page.SetTranspose(true);
  EXPECT_THAT(records(page)[0], ::testing::StartsWith(third + std::string(" 1/1/1.5 1/1/7")));
  page.SetCellText("6", 1, "7.5 nt");
  EXPECT_THAT(records(page)[0], ::testing::StartsWith("8 D3"));
  page.HideRows(1, 3, true);
  EXPECT_EQ(page.Bins()->Count(), 0);
}

}  // namespace
}  // namespace banddesk::test
