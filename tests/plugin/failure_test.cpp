// Failures of the host, one at a time, in everything that the plug-in does with it: each level of the call
// chain reports the same error once, the caller gets it, or the event ends there, and nothing crashes.
#include <functional>
#include <gmock/gmock.h>
#include <set>

#include "tests/plugin/desk.h"

namespace banddesk {
void PrintTo(const Error& error, std::ostream* out) { *out << error.source() << ": " << error.description(); }
}  // namespace banddesk

namespace banddesk::test {
namespace {

const Script kScript{{0, {{100, {1, 0, 2}}, {200, {0, 1, 0}}, {250, {1, 1, 1}}}}, {1, {{300, {0, 5, 1}}}}};

using Action = std::function<void(Desk&)>;

struct Road {
  const char* name;
  Action prepare;
  Action act;
  bool endsAtEvents;  // the failure stops in a handler; else it reaches the caller
};

void openAnalysis(Desk& desk) { desk.newAnalysis(); }

void rightClickRow(Desk& desk, std::int32_t row) {
  desk.host.platform().popupAnswers.push_back([](ui::MenuItem&, ui::MenuItem*) {});
  desk.grid().rightClick(row, 1);
}

const std::vector<Road>& roads() {
  static const std::vector<Road> all{
      {"new analysis", [](Desk& d) { d.openStudy(); }, [](Desk& d) { d.newAnalysis(); }, false},
      {"redo",
       [](Desk& d) {
         openAnalysis(d);
         d.host.pages().endAll();
         d.host.study().setResultExcluded(2, true);
         d.host.study().checkAnalysis = [](std::shared_ptr<AFLP>&) { return 2; };
       },
       [](Desk& d) { d.host.service().OpenAFLP(d.host.study().Study()->AFLPs.Item(1)); }, false},
      {"analyse again", openAnalysis, [](Desk& d) { d.page().Analyze(true); }, false},
      {"display mode", openAnalysis,
       [](Desk& d) {
         d.control<ui::OptionButton>("optSampleBin(1)").Value = true;
         d.wait();
       },
       true},
      {"exclude bin", openAnalysis,
       [](Desk& d) {
         rightClickRow(d, 2);
         d.choose("mnuExcludeBin");
       },
       true},
      {"select columns", openAnalysis,
       [](Desk& d) {
         d.host.pages().selectColumns = [](host::ColumnSelection&) { return true; };
         rightClickRow(d, 1);
         d.choose("mnuSelectColumns");
       },
       true},
      {"sort by bin", openAnalysis, [](Desk& d) { d.grid().doubleClick(1, 1); }, true},
      {"transpose", openAnalysis, [](Desk& d) { d.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1; },
       true},
      {"csv", openAnalysis, [](Desk& d) { d.page().ExportCSV(scratch("t.csv")); }, false},
      {"matrix", openAnalysis, [](Desk& d) { d.page().ExportNTSYSpc(scratch("t.nts")); }, false},
      {"copy", openAnalysis, [](Desk& d) { d.page().CopyGrid(); }, false},
      {"views", openAnalysis,
       [](Desk& d) {
         d.grid().selectCols(10, 11);
         d.choose("mnuSingleCell");
       },
       true},
      {"rename and delete", openAnalysis,
       [](Desk& d) {
         const auto analysis = d.host.study().Study()->AFLPs.Item(1);
         d.host.service().RenameAFLP(analysis);
         d.host.service().DeleteAFLP(analysis);
       },
       false},
      {"save", openAnalysis, [](Desk& d) { d.host.save(); }, false},
  };
  return all;
}

std::set<host::FaultInjector::Operation> operationsOf(const Road& road) {
  Desk desk(kScript);
  road.prepare(desk);
  desk.host.faults().startRecording();
  road.act(desk);
  return desk.host.faults().recorded();
}

const std::set<std::string> kModules{"AFLPService",    "AFLPExplorerFolder", "AFLPExplorerItem", "MGlobals",
                                     "AFLPParamsPage", "AFLPResultsPage",    "AFLPWarning"};

// Runs a road with one failing call; returns how many levels reported.
std::size_t failOnce(const Road& road, const host::FaultInjector::Operation& operation) {
  const Error injected(ErrorNumber::DeviceIo, operation.first, "injected", "help.chm", 7);
  const std::string where = std::string(road.name) + ": " + operation.first + "." + operation.second;
  Desk desk(kScript);
  road.prepare(desk);
  desk.host.framework().clearReports();
  desk.host.faults().failAt(operation.first, operation.second, 1, injected);
  const auto& reports = desk.host.framework().reports();
  // Where a page cannot even be made, the failure ends with its report, and what follows is the host's own.
  const auto isFollowed = [&] {
    return !reports.empty() && reports.front().procedure == "UserControl_Initialize";
  };
  bool raised = false;
  try {
    road.act(desk);
  } catch (const Error& error) {
    raised = true;
    EXPECT_TRUE(isFollowed() || error == injected) << where << ": " << error.description();
  }
  EXPECT_TRUE(desk.host.faults().hasFailed()) << where;
  // A new page measures its controls' edges and minds no failure in that.
  const bool isMinded = operation != host::FaultInjector::Operation{"Framework", "Max"};
  EXPECT_TRUE(raised || !reports.empty() || !isMinded) << where << ": nobody was told";
  for (const auto& report : reports) {
    EXPECT_EQ(report.title, "AFLP Analysis") << where;
    EXPECT_TRUE(kModules.contains(report.module)) << where << ": " << report.module;
    const bool isConsequence = isFollowed() && &report != &reports.front();
    EXPECT_TRUE(isConsequence || report.error == injected) << where << ": " << report.procedure;
  }
  EXPECT_FALSE(road.endsAtEvents && raised && !reports.empty()) << where;
  // What is open can still be ended, and a new analysis made.
  desk.host.faults().disarm();
  desk.host.pages().endAll();
  desk.newAnalysis();
  EXPECT_EQ(desk.page().NumRows(), 4) << where;
  return reports.size();
}

TEST(Failures, OfEveryHostOperationAreReportedUpTheCallChain) {
  std::size_t pairs = 0;
  std::size_t reported = 0;
  for (const Road& road : roads()) {
    for (const auto& operation : operationsOf(road)) {
      ++pairs;
      reported += failOnce(road, operation) > 0 ? 1U : 0U;
    }
  }
  RecordProperty("pairs", static_cast<int>(pairs));
  std::printf("%zu pairs of a road and a failing call, %zu of them reported by the component\n", pairs,
              reported);
  EXPECT_GT(pairs, 250U);
}

std::vector<std::string> chain(Desk& desk) {
  std::vector<std::string> procedures;
  for (const auto& report : desk.host.framework().reports()) procedures.push_back(report.procedure);
  return procedures;
}

TEST(Failures, ReportEachLevelOnceAndRestoreNothing) {
  Desk desk(kScript);
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
}

TEST(Failures, AskTheDeveloperInDebugModeAndGoOnTheirWay) {
  Desk desk(kScript);
  desk.openStudy();
  int asked = 0;
  int stopped = 0;
  desk.host.framework().isDebugging = true;
  desk.host.framework().confirmDebugStop = [&](std::intptr_t) { return ++asked == 1; };
  desk.host.framework().debugBreak = [&] { ++stopped; };
  desk.host.faults().failAt("ObjectManager", "Query", 1, Error(ErrorNumber::Internal, "store", "broken"));
  EXPECT_THROW(desk.host.service().NewAFLP(), Error);
  EXPECT_EQ(asked, 3);  // GenerateNewAFLPName, NewAFLP of the folder, NewAFLP of the service
  EXPECT_EQ(stopped, 1);
  EXPECT_EQ(desk.host.framework().reports().size(), 3U);
}

}  // namespace
}  // namespace banddesk::test
