// Whatever a user does, in pages and to the study, is undone and done again: the table, its export and all
// that the study holds are what they were at each step.
#include "host/framework/study_history.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <random>

#include "tests/plugin/random_user.h"

namespace banddesk::host {
namespace {

using test::Desk;

// What is to be seen of a study at one step; nothing of a table whose page is closed.
struct Seen {
  StudyState state;
  StudyRecord record;
  std::vector<ImportRecord> imports;
  std::int32_t analysis = 0;
  std::string table, csv;
};

class AnyUser {
 public:
  explicit AnyUser(unsigned seed) : random_(seed), desk_(test::smallPopulation()) {
    desk_.openStudy();
    desk_.newAnalysis();
    user_.emplace(
        desk_, [this](int most) { return upTo(most); }, test::scratch("out"));
    seen_ = {Seen{}, look()};
  }

  // One act, and the pause after it.
  void act() {
    const auto page = desk_.pageNamed("AFLP");
    const int what = upTo(19);
    if (what == 0) desk_.newAnalysis();
    if (what == 1) addResult();
    if (what == 2) rename();
    if (what == 3) remove();
    if (what > 3) desk_.host.pages().userEvent(*page, [this] { user_->act(); });
    said_ = what > 3 ? user_->said() : "study " + std::to_string(what);
    if (desk_.host.study().Study()->AFLPs.Count() == 0) desk_.newAnalysis();
    openAny();
    desk_.wait();
    seen_.resize(history_.position());
    seen_.push_back(look());
  }

  const std::string& said() const { return said_; }
  StudyHistory& history() { return history_; }
  int compared() const { return compared_; }  // tables

  void compareAt(std::size_t position) {
    history_.goTo(position);
    const Seen& wanted = seen_[position];
    if (!wanted.state.record) return;  // within one act
    SCOPED_TRACE(history_.steps()[position].label);
    openAny();
    const Seen now = look();
    ASSERT_EQ(history_.position(), position) << "what was put back counts as an act";
    ASSERT_TRUE(now.record == wanted.record);
    ASSERT_TRUE(now.imports == wanted.imports);
    ASSERT_TRUE(haveSameAnalyses(now.state, wanted.state));
    if (now.analysis != wanted.analysis || wanted.table.empty() || now.table.empty()) return;
    ++compared_;
    ASSERT_EQ(now.table, wanted.table);
    ASSERT_EQ(now.csv, wanted.csv);
  }

 private:
  int upTo(int most) { return static_cast<int>(random_() % (static_cast<unsigned>(most) + 1)); }

  void openAny() {
    for (const auto& page : desk_.host.pages().openPages()) {
      if (page->DefinitionName() == "AFLP") return;
    }
    desk_.host.service().OpenAFLP(desk_.host.study().Study()->AFLPs.Item(1));
  }
  void addResult() {
    desk_.host.study().addResults({test::smallPopulation()[static_cast<std::size_t>(upTo(6))]},
                                  ImportRecord{"now", "a result", {{"file", 1, random_()}}});
  }
  void rename() {
    auto& tree = desk_.host.tree();
    const auto item = tree.children().front().item;
    tree.BeginRename(item);
    tree.endRename(item, "Name " + std::to_string(random_()));
  }
  void remove() {
    const auto item = desk_.host.tree().children().back().item;
    desk_.host.runCommand(item, "DeleteAFLP");
    auto& pages = desk_.host.pages();
    const auto open = pages.openPages();
    for (const auto& page : open) {
      const auto analysis = std::dynamic_pointer_cast<AFLP>(page->bound());
      if (analysis && !desk_.host.study().Study()->AFLPs.holdsKey(analysis->collectionKey()))
        pages.end(page, false);
    }
  }
  Seen look() {
    Seen seen{history_.steps()[history_.position()].state,
              desk_.host.study().record(),
              desk_.host.study().imports(),
              desk_.analysis().ID(),
              "",
              ""};
    // A value that is not valid, or not analysed yet, is in the boxes alone; and no analysis keeps fractions
    // of a threshold.
    const double threshold = desk_.finished().yThreshold();
    if (threshold != std::floor(threshold)) return seen;
    if (!desk_.host.keepTablesWhole().state(*desk_.pageNamed("AFLP"))) return seen;
    seen.table = desk_.visibleTable();
    const std::string file = test::scratch("csv");
    desk_.page().ExportCSV(file);
    seen.csv = test::fileText(file);
    return seen;
  }

  std::mt19937 random_;
  Desk desk_;
  StudyHistory& history_ = desk_.host.keepHistory();
  std::optional<test::RandomUser> user_;
  std::string said_;
  std::vector<Seen> seen_;
  int compared_ = 0;
};

TEST(History, TakesBackAndDoesAgainWhateverAUserDoes) {
  constexpr int kActs = 50;
  for (unsigned seed = 1; seed <= 4; ++seed) {
    SCOPED_TRACE(seed);
    AnyUser user(seed);
    std::string said;
    for (int act = 0; act < kActs; ++act) {
      ASSERT_NO_THROW(user.act()) << user.said();
      said += std::to_string(user.history().position()) + " " + user.said() + "; ";
    }
    const std::size_t last = user.history().position();
    EXPECT_GT(last, 10U);
    SCOPED_TRACE(said);
    for (std::size_t at = last; at-- > 0;) ASSERT_NO_FATAL_FAILURE(user.compareAt(at)) << at;
    for (std::size_t at = 1; at <= last; ++at) ASSERT_NO_FATAL_FAILURE(user.compareAt(at)) << at;
    for (const std::size_t at : {last / 2, last, last / 3, last - 1})
      ASSERT_NO_FATAL_FAILURE(user.compareAt(at)) << at;
    EXPECT_GT(user.compared(), 10);
  }
}

// Of three bins, two of which are there after a run with another width, and one of low peaks.
TEST(History, TakesLostDecisionsToTheBinsThatHoldTheirFragments) {
  std::vector<NewResult> results(4);
  for (std::size_t i = 0; i < results.size(); ++i) {
    results[i].sampleName = "S" + std::to_string(i);
    const double step = 0.05 * static_cast<double>(i);
    results[i].fragments.dyes[0] = {{100 + step, 104 + step, 110 + step}, {500, 500, 60}};
  }
  results[3].fragments.dyes[0] = {{104.9, 120}, {500, 500}};
  Desk desk(results);
  StudyHistory& history = desk.host.keepHistory();
  desk.newAnalysis();
  const auto act = [&](const std::function<void()>& action) {
    desk.host.pages().userEvent(*desk.pageNamed("AFLP"), action);
  };
  const std::vector<int> decided{100, 104, 110};
  for (int row = desk.page().NumRows(); row >= 1; --row) {
    if (std::ranges::find(decided, std::stoi(desk.page().CellText("6", row))) == decided.end()) continue;
    act([&] {
      desk.grid().user().clickCell(row, 1);
      desk.chooseAt(row, 1, "mnuExcludeBin");
    });
  }
  const std::size_t before = history.position();
  EXPECT_EQ(history.lostDecisions(), 0U);
  desk.front.formAnswers.emplace_back(
      [](ui::Form& form) { form.Controls().find<ui::CommandButton>("btnOK")->Click.raise(); });
  act([&] {
    desk.control<ui::TextBox>("txtYThreshold").Text = "100";
    desk.control<ui::TextBox>("txtMaxBinWidth").Text = "0.50";
    desk.control<ui::TextBox>("txtMaxBinWidth").leave();
  });
  ASSERT_GE(history.lostDecisions(), 3U);
  EXPECT_FALSE(desk.page().AnyManualExclusions());
  EXPECT_THAT(desk.host.applyLostDecisions(), testing::ElementsAre(testing::StartsWith("D1-110")));
  std::vector<int> excluded;
  for (int row = 1; row <= desk.page().NumRows(); ++row) {
    if (desk.finished().markOf(row, desk.page().Bin(row)) == BinMark::ExcludedByHand)
      excluded.push_back(std::stoi(desk.page().CellText("6", row)));
  }
  EXPECT_THAT(excluded, testing::ElementsAre(100, 104));
  EXPECT_EQ(history.steps()[history.position()].label, "Apply 2 Decisions to the New Bins");
  EXPECT_EQ(history.lostDecisions(), 0U);
  history.goTo(before);
  EXPECT_TRUE(desk.page().AnyManualExclusions());
}

// What is said of samples and of how an analysis is scored goes with its steps, too.
TEST(StudyStates, ComeBackWithAllThatTheyWereMadeOf) {
  StudyRecord record;
  record.name = "Oaks";
  record.resultStamp = 7;
  record.settings.displayViewIndex = 2;
  record.dyes[3] = {0x102030, true, 'O'};
  record.results = {{3, "a", true, false, {SampleRole::Blank, "North", "Oak 1", "E32", "run twice"}},
                    {4, "b", false, true, {}}};
  record.joined = {{"Both", "most", "_R", {{1, "E32"}, {2, "E35"}}}};
  EXPECT_EQ(unpackedRecord(packed(record, nullptr)), record);

  AnalysisSnapshot analysis;
  analysis.id = 5;
  analysis.name = "First";
  scoring::AnalysisScoring& scoring = analysis.scoring;
  scoring.calculator = {
      SizeRange{100, 500}, Normalisation::Median, 12.5, {{2, 99.5, 100.5, "x"}}, true, true};
  scoring.rules = {scoring::parseRule("height<100"), scoring::parseRule("samples<2")};
  scoring.replicates = "_R";
  scoring.primerPair = "E32";
  scoring.marks = {{"D1-100.25", "height<100"}};
  scoring.kept = {"-3"};
  EXPECT_EQ(unpacked(packed(analysis, nullptr)), analysis);
}

}  // namespace
}  // namespace banddesk::host
