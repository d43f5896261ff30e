// Failures of the host, one at a time, in everything that the plug-in does with it: each level of the call
// chain reports the same error once, the caller gets it, or the event ends there, and nothing crashes.
#include <gmock/gmock.h>
#include <limits>
#include <set>

#include "tests/plugin/failure_roads.h"

namespace banddesk {
void PrintTo(const Error& error, std::ostream* out) { *out << error.source() << ": " << error.description(); }
}  // namespace banddesk

namespace banddesk::test {
namespace {

const std::set<std::string> kModules{"AFLPService",    "AFLPExplorerFolder", "AFLPExplorerItem", "MGlobals",
                                     "AFLPParamsPage", "AFLPResultsPage",    "AFLPWarning"};

using Operation = host::FaultInjector::Operation;

struct Pair {
  const Road& road;
  Operation operation;
  int call;  // which of its uses on the road fails
  std::string name() const {
    return road.name + ": " + operation.first + "." + operation.second + " at call " + std::to_string(call);
  }
};

// Every operation that the road uses, at its first use, one in the middle and its last.
std::vector<Pair> pairsOf(const Road& road) {
  Desk desk(sweptScript());
  desk.guardGrids();
  road.prepare(desk);
  desk.host.faults().startRecording();
  road.act(desk);
  EXPECT_TRUE(desk.host.framework().reports().empty()) << road.name << " fails by itself";
  std::vector<Pair> pairs;
  for (const auto& [operation, uses] : desk.host.faults().recorded()) {
    for (const int call : std::set<int>{1, (uses + 1) / 2, uses}) pairs.push_back({road, operation, call});
  }
  return pairs;
}

// A failure that the plug-in stops in plain sight: a page that measures its own controls minds none, an
// export whose dialog fails is as one cancelled, and a file that fails to close is closed once more in vain.
bool isSwallowed(const Pair& pair) {
  const auto& [type, member] = pair.operation;
  const bool isDialog = member == "ShowSave" || member == "JoinPath" || member == "ApplicationPath";
  return pair.operation == Operation{"Framework", "Max"} || isDialog;
}

// Each level of the call chain has reported the same error once.
void expectChain(const Pair& pair, const Error& injected, const std::vector<host::FailureReport>& reports) {
  // Where a page cannot even be made, the failure ends with its report, and what follows is the host's own.
  const bool isFollowed = !reports.empty() && reports.front().procedure == "UserControl_Initialize";
  std::set<std::pair<std::string, std::string>> levels;
  for (const auto& report : reports) {
    EXPECT_EQ(report.title, "AFLP Analysis") << pair.name();
    EXPECT_TRUE(kModules.contains(report.module)) << pair.name() << ": " << report.module;
    EXPECT_TRUE(report.error == injected || (isFollowed && &report != &reports.front()))
        << pair.name() << ": " << report.procedure << ": " << report.error.description();
    EXPECT_TRUE(levels.emplace(report.module, report.procedure).second)
        << pair.name() << ": " << report.procedure << " reports twice";
  }
}

// What is there after the failure can be used: the page goes on, or it stays locked until it is opened again.
void expectUsable(const Pair& pair, Desk& desk) {
  auto& pages = desk.host.pages();
  auto& reports = desk.host.framework();
  desk.host.faults().disarm();
  desk.front.onRunModal = [](ui::Form& form) {
    form.Controls().find<ui::CommandButton>("btnOK")->Click.raise();
  };
  // The command of new analyses waits for the next study where the opening of this one has failed; and a
  // result that left its analysis without its column can only be read anew.
  const bool isHalfOpen = !desk.host.serviceBase().Commands.Item(host::kNewAnalysisCommand)->Enabled;
  const bool isHalfGone =
      pair.road.name == "redo" && pair.operation == Operation{"GridLayout.Columns", "Remove"};
  if (!desk.host.study().isOpen() || isHalfOpen || isHalfGone) desk.openStudy();
  const auto analysis = [&]() -> std::shared_ptr<AFLP> {
    const auto& all = desk.host.study().Study()->AFLPs;
    return all.Count() > 0 ? all.Item(1) : nullptr;
  }();
  const auto open = analysis ? pages.find("AFLP", analysis) : nullptr;
  if (open && !desk.grid().LockUpdate(desk.grid().LockUpdate(true))) {
    reports.clearReports();
    desk.grid().LockUpdate(false);
    desk.control<ui::CheckBox>("chkShowExcluded").click();
    desk.wait();
    desk.control<ui::TextBox>("txtYThreshold").Text = "3";
    desk.control<ui::TextBox>("txtYThreshold").leave();
    EXPECT_TRUE(reports.reports().empty()) << pair.name() << ": then " << reports.reports().front().procedure;
  }
  pages.endAll();
  reports.clearReports();
  if (analysis) {
    desk.host.service().OpenAFLP(analysis);
    EXPECT_EQ(desk.page().NumRows(), 4) << pair.name() << ": opened again";
  }
  pages.endAll();
  desk.newAnalysis();
  EXPECT_EQ(desk.page().NumRows(), 4) << pair.name() << ": a new analysis";
  EXPECT_EQ(desk.host.platform().MousePointer(), ui::kPointerDefault) << pair.name();
  EXPECT_TRUE(reports.reports().empty()) << pair.name();
}

// Walks a road with one failing call; whether the component reported it.
bool walk(const Pair& pair) {
  const Error injected(ErrorNumber::DeviceIo, pair.operation.first, "injected", "help.chm", 7);
  Desk desk(sweptScript());
  desk.guardGrids();
  pair.road.prepare(desk);
  desk.host.framework().clearReports();
  desk.host.faults().failAt(pair.operation.first, pair.operation.second, pair.call, injected);
  bool raised = false;
  const auto& reports = desk.host.framework().reports();
  try {
    pair.road.act(desk);
  } catch (const Error& error) {
    raised = true;
    const bool isFollowed = !reports.empty() && reports.front().procedure == "UserControl_Initialize";
    EXPECT_TRUE(isFollowed || error == injected) << pair.name() << ": " << error.description();
  }
  EXPECT_TRUE(desk.host.faults().hasFailed()) << pair.name();
  EXPECT_TRUE(raised || !reports.empty() || isSwallowed(pair)) << pair.name() << ": nobody was told";
  EXPECT_FALSE(pair.road.endsAtEvents && raised && !reports.empty()) << pair.name() << ": left its event";
  expectChain(pair, injected, reports);
  const bool reported = !reports.empty();
  expectUsable(pair, desk);
  return reported;
}

TEST(Failures, OfEveryHostOperationOnEveryRoadAreReportedAndLeaveTheProgramUsable) {
  std::size_t pairs = 0, reported = 0;
  for (const Road& road : roads()) {
    for (const Pair& pair : pairsOf(road)) {
      ++pairs;
      try {
        if (walk(pair)) ++reported;
      } catch (const std::exception& error) {
        ADD_FAILURE() << pair.name() << ": not usable any more: " << error.what();
      }
    }
  }
  std::printf("%zu roads, %zu pairs of a road and a failing call, %zu of them reported by the component\n",
              roads().size(), pairs, reported);
  EXPECT_GT(pairs, 5'000U);
}

std::vector<std::string> chain(Desk& desk) {
  std::vector<std::string> procedures;
  for (const auto& report : desk.host.framework().reports()) procedures.push_back(report.procedure);
  return procedures;
}

TEST(Failures, ReportEachLevelOnceAndRestoreNothing) {
  Desk desk(sweptScript());
  desk.newAnalysis();
  desk.host.faults().failAt("ObjectManager", "Create", 1, Error(ErrorNumber::DiskFull, "store", "full"));
  EXPECT_THROW(desk.host.service().NewAFLP(), Error);
  EXPECT_THAT(chain(desk), ::testing::ElementsAre("NewAFLP", "NewAFLP"));
  EXPECT_EQ(desk.host.framework().reports().front().module, "AFLPExplorerFolder");

  desk.host.framework().clearReports();
  desk.host.faults().failAt("Progress", "Finish", 1, Error(ErrorNumber::Internal, "bar", "broken"));
  EXPECT_THROW(desk.page().Analyze(true), Error);
  EXPECT_THAT(chain(desk), ::testing::ElementsAre("Analyze"));
  EXPECT_EQ(desk.host.platform().MousePointer(), 11);

  Desk other(sweptScript());
  other.newAnalysis();
  other.host.faults().failAt("TextFiles", "Print", 3, Error(ErrorNumber::DiskFull, "file", "full"));
  other.front.saveAnswers.emplace_back(host::SaveAnswer{scratch("t.csv"), 1});
  EXPECT_THROW(other.page().Export(), Error);
  EXPECT_THAT(chain(other), ::testing::ElementsAre("ExportCSV", "Export"));
  EXPECT_FALSE(other.grid().GridEnabledRedraw());
  EXPECT_TRUE(other.grid().LockUpdate(true));
  EXPECT_GT(other.grid().RowCount(), 4);
}

TEST(Failures, OfARunNameTheStatementTheyCameFrom) {
  struct Case {
    std::function<void(Desk&)> breakIt;
    ErrorNumber number;
    std::vector<std::string> chain;
  };
  const Error broken(ErrorNumber::DeviceIo, "Grid", "broken");
  const std::vector<Case> cases = {
      {[&](Desk& desk) { desk.host.faults().failAt("Grid", "StoreStyleRowCol", 1, broken); },
       ErrorNumber::DeviceIo,
       {"StoreStyleRowCol", "CalcBin", "Analyze"}},
      {[](Desk& desk) { desk.analysis().BinGrid->Columns.Remove("9"); },
       ErrorNumber::InvalidArgument,
       {"CellText (Let)", "Analyze"}},
      {[](Desk& desk) { desk.calculators->omitsLastResult = true; },
       ErrorNumber::SubscriptOutOfRange,
       {"CalcBin", "Analyze"}},
      {[](Desk& desk) { desk.calculators->claimedBins = std::numeric_limits<std::int32_t>::max(); },
       ErrorNumber::Overflow,
       {"Analyze"}},
  };
  for (const Case& each : cases) {
    Desk desk(sweptScript());
    desk.guardGrids();
    IAFLPResultsPage& page = desk.newAnalysis();
    desk.forget();
    each.breakIt(desk);
    EXPECT_THROW(page.Analyze(true), Error);
    EXPECT_EQ(chain(desk), each.chain);
    for (const auto& report : desk.host.framework().reports()) EXPECT_EQ(report.error.number(), each.number);
  }
}

TEST(Failures, AskTheDeveloperInDebugModeAndGoOnTheirWay) {
  Desk desk(sweptScript());
  desk.openStudy();
  desk.host.framework().isDebugging = true;
  desk.host.faults().failAt("ObjectManager", "Query", 1, Error(ErrorNumber::Internal, "store", "broken"));
  EXPECT_THROW(desk.host.service().NewAFLP(), Error);
  // GenerateNewAFLPName, NewAFLP of the folder, NewAFLP of the service
  EXPECT_EQ(desk.front.debugQuestions, 3);
  EXPECT_EQ(desk.front.debugBreaks, 1) << "for the first only";
  EXPECT_EQ(desk.host.framework().reports().size(), 3U);
}

}  // namespace
}  // namespace banddesk::test
