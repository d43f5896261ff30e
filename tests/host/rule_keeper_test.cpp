// Rules on a page: what they leave to the hand, and what becomes of their marks when the page runs again.
#include "host/framework/rule_keeper.h"

#include <gmock/gmock.h>

#include "plugin/base/numbers.h"
#include "tests/plugin/desk.h"

namespace banddesk::host {
namespace {

using test::Desk;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

// Bins at 100 (of a, b, c), 200 (a, low), 300 (a and b, low), 302 (c) and 400 (a and d).
std::vector<NewResult> results() {
  const auto result = [](const char* name, std::vector<double> sizes, std::vector<double> heights) {
    NewResult made{name, {}};
    made.fragments.dyes[0].sizes = std::move(sizes);
    made.fragments.dyes[0].heights = std::move(heights);
    return made;
  };
  return {result("a", {100, 200, 300, 400}, {500, 50, 60, 500}), result("b", {100, 300}, {500, 60}),
          result("c", {100.1, 301.6}, {500, 500}), result("d", {400.2}, {500})};
}

class Ruled : public testing::Test {
 protected:
  Ruled() : desk(results()) {
    desk.host.keepTablesWhole();
    connection = desk.host.rules().Told.connect([this](const std::string& line) { told.push_back(line); });
    desk.newAnalysis();
    desk.front.onRunModal = [this](ui::Form& form) {
      ++asked;
      form.UnloadMe();
    };
    for (const char* filter : {"chkExcludeFullBins", "chkExcludeEmptySamples"})
      act([&] { desk.control<ui::CheckBox>(filter).Value = ui::kUnchecked; });
    desk.wait();
  }

  void setRules(const std::vector<std::string>& texts) {
    auto scoring = hostSide(desk.analysis()).scoring();
    scoring.rules.clear();
    for (const std::string& text : texts) scoring.rules.push_back(scoring::parseRule(text));
    desk.host.setScoring(desk.pageNamed("AFLP"), scoring);
  }
  void act(const std::function<void()>& action) {
    desk.host.pages().userEvent(*desk.pageNamed("AFLP"), action);
  }
  void toggle(std::int32_t row) {
    act([&] {
      desk.grid().user().clickCell(row, 1);
      desk.chooseAt(row, 1, "mnuExcludeBin");
    });
  }
  // The numbers of the bins that are excluded.
  std::vector<std::string> excluded() {
    std::vector<std::string> bins;
    FinishedTable table = desk.finished();
    for (std::int32_t row = 1; row <= desk.page().NumRows(); ++row) {
      if (isExcluded(table.markOf(row, desk.page().Bin(row)))) bins.push_back(desk.page().CellText("6", row));
    }
    return bins;
  }
  std::vector<std::string> low() {
    std::vector<std::string> bins;
    for (std::int32_t row = 1; row <= desk.page().NumRows(); ++row) {
      if (leadingNumber(desk.page().CellText("84", row)) < 100)
        bins.push_back(desk.page().CellText("6", row));
    }
    return bins;
  }
  std::size_t marks() { return hostSide(desk.analysis()).scoring().marks.size(); }

  Desk desk;
  std::vector<std::string> told;
  Connection connection;
  int asked = 0;
};

TEST_F(Ruled, BinsStayAsTheHandLeftThemAndTheRestFollowsTheRules) {
  for (const bool isTransposed : {false, true}) {
    desk.page().SetTranspose(isTransposed);
    setRules({"height<100"});
    EXPECT_THAT(excluded(), ElementsAre("200", "300"));
    setRules({"samples<2"});
    EXPECT_THAT(excluded(), ElementsAre("200", "302"));
    setRules({});
    EXPECT_THAT(excluded(), IsEmpty());
  }
  desk.page().SetTranspose(false);
  act([&] { desk.control<ui::CheckBox>("chkShowExcluded").Value = ui::kChecked; });
  desk.wait();
  toggle(1);
  setRules({"height<100", "samples<2"});
  EXPECT_THAT(excluded(), ElementsAre("100", "200", "300", "302"));
  EXPECT_EQ(marks(), 3U);
  toggle(2);
  EXPECT_THAT(excluded(), ElementsAre("100", "300", "302"));
  setRules({"samples<2"});
  EXPECT_THAT(excluded(), ElementsAre("100", "302")) << "no rule takes again what the hand brought back";
  setRules({});
  EXPECT_THAT(excluded(), ElementsAre("100"));
}

TEST_F(Ruled, TablesThatRunAgainHaveTheirMarksAgainAndAskOnlyForTheHand) {
  setRules({"height<100"});
  act([&] { desk.page().CopyGrid(); });
  EXPECT_THAT(excluded(), ElementsAre("200", "300"));
  EXPECT_EQ(asked, 0);
  EXPECT_THAT(told, Not(IsEmpty()));
  act([&] {
    desk.control<ui::TextBox>("txtMaxBinWidth").Text = "0.05";
    desk.page().Analyze(false);
  });
  EXPECT_EQ(asked, 0);
  EXPECT_GT(desk.page().NumRows(), 5);
  EXPECT_EQ(excluded(), low());
  toggle(1);
  const auto before = excluded();
  act([&] { desk.page().CopyGrid(); });
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(excluded(), before) << "the hand's decision was kept by refusing";
}

TEST_F(Ruled, SamplesGoBeforeBinsAreCounted) {
  setRules({"fragments<3", "samples<2"});
  EXPECT_THAT(excluded(), ElementsAre("100", "200", "300", "302", "400")) << "of all samples only a is left";
  EXPECT_EQ(marks(), 8U);
  const auto analysis = std::dynamic_pointer_cast<AFLP>(desk.pageNamed("AFLP")->bound());
  desk.host.save();
  desk.host.pages().endAll();
  desk.reopen(analysis);
  EXPECT_EQ(marks(), 8U);
  EXPECT_FALSE(analysis->persistentState().IsDirty) << "what a page shows at first is no change";
  setRules({"samples<2"});
  EXPECT_THAT(excluded(), ElementsAre("200", "302"));
}

}  // namespace
}  // namespace banddesk::host
