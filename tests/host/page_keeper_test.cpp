// Results pages whose procedures end half way: what stands there afterwards, and what taking the state leaves
// behind.
#include "host/framework/page_keeper.h"

#include <filesystem>
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"
#include "tests/support/test_folder.h"

namespace banddesk::host {
namespace {

using test::Desk;
using test::testFolder;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// A page of six samples with one bin excluded by hand and another brought back, one sample moved out of
// sight, a sort, and the view scrolled; what happens to it goes through the keeper.
class Kept : public testing::Test {
 protected:
  Kept() : desk({{0, bins()}}, {"a", "b", "c", "d", "e", "f"}) {
    for (auto* told : {&keeper.Reopened, &keeper.LeftHalfMade})
      connections.push_back(
          told->connect([this](HostPage&, const std::string& line) { lines.push_back(line); }));
    desk.newAnalysis();
    desk.host.save();
    act([&] { desk.page().SortCol(desk.page().Col("83")); });
    act([&] { desk.page().ExcludeColumn(12, true); });
    for (const int row : {2, 4}) {
      act([&] {
        desk.grid().user().clickCell(row, 1);
        desk.chooseAt(row, 1, "mnuExcludeBin");
      });
    }
    desk.wait();
  }

  void lookAround() {
    desk.grid().user().selectRows(3, 5);
    desk.grid().SetCurrentCell(5, 11);
    desk.grid().SetTopRow(3);
    desk.grid().SetLeftCol(2);
  }

  static std::vector<test::ScriptedBin> bins() {
    std::vector<test::ScriptedBin> bins;
    for (int i = 0; i < 8; ++i) {
      test::ScriptedBin& bin = bins.emplace_back();
      bin.mean = 100.25 + 1.5 * i;
      for (int sample = 0; sample < 6; ++sample)
        bin.counts.push_back((i + sample) % (sample + 2) == 0 ? 1 : 0);
    }
    return bins;
  }

  void act(const std::function<void()>& action) {
    desk.host.pages().userEvent(*desk.pageNamed("AFLP"), action);
  }
  void answerWarning(const char* button) {
    desk.front.formAnswers.emplace_back(
        [=](ui::Form& form) { form.Controls().find<ui::CommandButton>(button)->Click.raise(); });
  }
  std::string csv() {
    const auto path = (std::filesystem::path(folder) / "table.csv").string();
    desk.front.saveAnswers.emplace_back(SaveAnswer{path, 1});
    act([&] { desk.page().Export(); });
    return test::fileText(path);
  }
  std::vector<std::string> headers() {
    std::vector<std::string> headers;
    for (const auto& column : desk.analysis().SampleGrid->Columns) headers.push_back(column->Header);
    return headers;
  }

  Desk desk;
  PageKeeper& keeper = desk.host.keepTablesWhole();
  std::vector<std::string> lines;
  Connections connections;
  std::string folder = testFolder().string();
};

TEST_F(Kept, TakesTheStateAndLeavesTheAnalysisAsItStood) {
  AFLP& analysis = desk.analysis();
  const AnalysisSnapshot before = snapshotOf(analysis);
  const auto labels = headers();
  for (const bool isDirty : {false, true}) {
    analysis.Persistent().IsDirty = isDirty;
    const auto state = keeper.state(*desk.pageNamed("AFLP"));
    ASSERT_TRUE(state);
    EXPECT_THAT(state->analysis->bins, SizeIs(2)) << "the page's decisions, which are not stored yet";
    EXPECT_EQ(state->flags.IsDirty, isDirty);
    EXPECT_EQ(analysis.Persistent().IsDirty, isDirty);
    EXPECT_TRUE(snapshotOf(analysis) == before);
    EXPECT_EQ(headers(), labels);
    EXPECT_THAT(analysis.AFLPBins.DeletedItems().Count(), 0);
  }
  EXPECT_THAT(desk.host.framework().reports(), IsEmpty());
}

struct HalfWay {
  const char* name;
  std::function<void()> act;
  const char* said;
};

void failNext(Desk& desk, const char* type, const char* member, int call) {
  desk.host.faults().failAt(type, member, call, Error(ErrorNumber::Internal, "Test", "The disk is away."));
}

TEST_F(Kept, OpensThePageAnewWhereAProcedureEndedHalfWay) {
  const std::string missing = folder + "/missing/table.csv";
  const std::vector<HalfWay> cases = {
      {"columns, cancelled",
       [&] {
         answerWarning("btnCancel");
         desk.front.onSelectColumns = [](ColumnSelection& draft) {
           for (std::size_t i = 0; i < draft.entries.size(); i += 2) draft.entries[i].isVisible = false;
           return true;
         };
         desk.chooseAt(0, 11, "mnuSelectColumns");
       },
       "cancelled half way"},
      {"columns over a width that is not valid",
       [&] {
         desk.control<ui::TextBox>("txtMaxBinWidth").Text = "no number";
         desk.chooseAt(0, 11, "mnuSelectColumns");
       },
       "not made to its end"},
      {"copy", [&] { answerWarning("btnCancel"), desk.page().CopyGrid(); }, "cancelled"},
      {"copy over a width that is not valid",
       [&] {
         desk.control<ui::TextBox>("txtMaxBinWidth").Text = "99";
         desk.page().CopyGrid();
       },
       "not made to its end"},
      {"print", [&] { answerWarning("btnCancel"), desk.page().PrintGrid(true); }, "cancelled"},
      {"spreadsheet",
       [&] {
         answerWarning("btnCancel");
         desk.page().ExportExcel(folder + "/table.xlsx");
       },
       "cancelled"},
      {"a file that cannot be written",
       [&] {
         desk.front.saveAnswers.emplace_back(SaveAnswer{missing, 1});
         desk.choose("mnuExport1");
       },
       "No such file"},
      {"a run that fails",
       [&] {
         answerWarning("btnOK");
         failNext(desk, "BinCalculator", "GetResultData", 3);
         auto& box = desk.control<ui::TextBox>("txtYThreshold");
         box.Text = "7";
         box.leave();
       },
       "The disk is away."},
      {"an act of the page's own that raises its error",
       [&] {
         failNext(desk, "GridUtilities", "BuildSortInfo", 1);
         desk.page().SortCol(1);
       },
       "The disk is away."},
  };
  const std::string table = desk.visibleTable();
  const std::string file = csv();
  AFLP& analysis = desk.analysis();
  for (const HalfWay& one : cases) {
    SCOPED_TRACE(one.name);
    lines.clear();
    lookAround();
    analysis.Persistent().IsDirty = false;
    const auto former = desk.pageNamed("AFLP");
    try {
      act([&] { one.act(); });
    } catch (const Error&) {
      // Whoever called hears of it too.
    }
    desk.host.faults().disarm();
    desk.front.formAnswers.clear();
    EXPECT_NE(desk.pageNamed("AFLP"), former);
    EXPECT_EQ(former->control(), nullptr);
    EXPECT_EQ(analysis.ResultsPage.get(), static_cast<Object*>(desk.pageNamed("AFLP")->control().get()));
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_THAT(lines.front(), HasSubstr(one.said));
    EXPECT_FALSE(analysis.persistentState().IsDirty);
    EXPECT_EQ(desk.grid().TopRow(), 3);
    EXPECT_EQ(desk.grid().LeftCol(), 2);
    EXPECT_EQ(desk.grid().currentRow(), 5);
    EXPECT_EQ(desk.grid().currentCol(), 11);
    ASSERT_EQ(desk.grid().selection().GetCount(), 1);
    EXPECT_EQ(desk.grid().selection().Item(0).Top, 3);
    EXPECT_EQ(desk.visibleTable(), table);
    EXPECT_EQ(csv(), file);
  }
  desk.host.save();
  EXPECT_THAT(desk.store->readAnalysis(analysis.ID()).bins, SizeIs(2));
}

// The table is whole: nothing of it was touched before the question.
TEST_F(Kept, LeavesAPageAloneWhoseTableIsWhole) {
  const auto page = desk.pageNamed("AFLP");
  const auto change = [&](const char* button) {
    answerWarning(button);
    act([&] {
      auto& box = desk.control<ui::TextBox>("txtYThreshold");
      box.Text = "7";
      box.leave();
    });
  };
  change("btnCancel");
  csv();
  act([&] { desk.chooseAt(0, 11, "mnuSelectColumns"); });
  act([&] { desk.choose("mnuTransposeCell"); });
  desk.wait();
  answerWarning("btnOK");
  act([&] { desk.page().CopyGrid(); });
  change("btnOK");
  EXPECT_EQ(desk.pageNamed("AFLP"), page);
  EXPECT_THAT(lines, IsEmpty());
}

TEST_F(Kept, NeitherSavesNorWorksOnAPageThatCouldNotBeOpenedAnew) {
  act([] {});
  const auto page = desk.pageNamed("AFLP");
  const std::string file = csv();
  answerWarning("btnCancel");
  act([&] {
    desk.page().CopyGrid();
    failNext(desk, "StudyService", "Study", 1);
  });
  desk.host.faults().disarm();
  ASSERT_EQ(desk.pageNamed("AFLP"), page);
  EXPECT_TRUE(page->isHalfMade());
  EXPECT_THAT(lines.back(), HasSubstr("could not be opened anew"));
  EXPECT_THROW(csv(), Error);
  desk.front.saveAnswers.clear();
  desk.analysis().Persistent().IsDirty = true;
  EXPECT_THAT(desk.host.save().saved, SizeIs(1));
  const auto analysis = std::dynamic_pointer_cast<AFLP>(page->bound());
  EXPECT_THAT(desk.store->readAnalysis(analysis->ID()).bins, SizeIs(2));
  desk.reopen(analysis);
  EXPECT_EQ(csv(), file);
}

}  // namespace
}  // namespace banddesk::host
