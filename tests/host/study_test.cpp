#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/plugin/desk.h"

namespace banddesk::host {
namespace {

using test::Desk;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::shared_ptr<AFLP> addAnalysis(Desk& desk, const std::string& name) {
  if (!desk.host.study().isOpen()) desk.openStudy();
  const auto study = desk.host.study().Study();
  auto analysis = std::dynamic_pointer_cast<AFLP>(desk.host.objects().Create("AFLP"));
  analysis->Study = study;
  analysis->Name = name;
  study->AFLPs.Add(analysis);
  return analysis;
}

// Puts something of every kind into an analysis, as its pages would.
void fill(Host& host, AFLP& analysis) {
  const auto study = host.study().Study();
  for (const auto& result : study->Results) analysis.Results.Add(result);
  analysis.MaxBinWidth = 1.25;
  analysis.YThreshold = 50;
  analysis.ShowExcluded = true;
  analysis.SampleBinOption = 2;
  auto column = std::dynamic_pointer_cast<GridColumn>(host.objects().Create("GridColumn"));
  column->TypeCode = GridColumn::kSampleColumn;
  column->Key = "-2";
  column->ToolTip = study->Results.Item("2")->Sample->Name.get();
  column->ColumnOrder = 10;
  column->Width = 61;
  column->IsExcluded = true;
  analysis.SampleGrid->Columns.Add(column);
  analysis.BinGrid->Columns.Item("83")->SortPriority = 1;
  analysis.BinGrid->LockedColumn = analysis.BinGrid->Columns.Item("7");
  auto bin = std::dynamic_pointer_cast<AFLPBin>(host.objects().Create("AFLPBin"));
  bin->Key = "D1-100.75";
  bin->ManuallyExcluded = true;
  analysis.AFLPBins.Add(bin);
}

TEST(Study, ComesBackFromItsStoreAsItWasSaved) {
  Desk desk;
  const auto saved = addAnalysis(desk, "First");
  fill(desk.host, *saved);
  saved->SampleGrid->Columns.Item("-2")->Header = "S101";  // a label of the moment
  addAnalysis(desk, "Not chosen");
  desk.host.save([](const auto&) { return std::vector<std::string>{"Add AFLP: First"}; });
  const AnalysisSnapshot before = snapshotOf(*saved);
  desk.openStudy();

  const auto study = desk.host.study().Study();
  ASSERT_EQ(study->AFLPs.Count(), 1);
  const auto loaded = study->AFLPs.Item(1);
  EXPECT_NE(loaded, saved);
  EXPECT_EQ(snapshotOf(*loaded), before);
  EXPECT_EQ(loaded->SampleGrid->Columns.Item("-2")->Header.get(), "");
  EXPECT_EQ(loaded->BinGrid->LockedColumn.get(), loaded->BinGrid->Columns.Item("7"));
  EXPECT_TRUE(loaded->BinGrid->Columns.Item("83")->Definition->HasOwnStyle);
  EXPECT_FALSE(loaded->BinGrid->Columns.Item("7")->Definition->HasOwnStyle);
  EXPECT_EQ(loaded->Results.Item(2), study->Results.Item(2));
  EXPECT_THAT(desk.host.unsaved(), IsEmpty());
  EXPECT_NE(addAnalysis(desk, "Later")->ID(), loaded->ID());
  EXPECT_EQ(desk.host.objects().Query("AFLPs", "", "", "", false, true).at(0), loaded);
}

TEST(Study, IsHeldByNoAnalysisWhenItIsClosed) {
  Desk desk;
  const auto kept = addAnalysis(desk, "Kept by somebody");
  const std::weak_ptr<Study> study = desk.host.study().Study();
  desk.host.closeStudy();
  EXPECT_TRUE(study.expired());
}

// Each line is a change on a saved analysis, and whether it has to be saved again for it.
TEST(Study, CountsAnAnalysisAsChangedForWhatIsStoredAndOnlyForThat) {
  struct Case {
    const char* what;
    bool isDirty;
    std::function<void(Host&, AFLP&)> change;
  };
  const auto column = [](AFLP& analysis) { return analysis.SampleGrid->Columns.Item("-2"); };
  const std::vector<Case> cases = {
      {"an equal put", false, [](Host&, AFLP& a) { a.MaxBinWidth = 1.25; }},
      {"another put", true, [](Host&, AFLP& a) { a.MaxBinWidth = 1.5; }},
      {"the page", false, [](Host&, AFLP& a) { a.ResultsPage = &a; }},
      {"a result removed", true, [](Host&, AFLP& a) { a.Results.Remove("1"); }},
      {"a column's width", true, [&](Host&, AFLP& a) { column(a)->Width = 5; }},
      {"a sample's header", false, [&](Host&, AFLP& a) { column(a)->Header = "S"; }},
      {"a bin column's header", true, [](Host&, AFLP& a) { a.BinGrid->Columns.Item("8")->Header = "N"; }},
      {"a mark of the filters", false, [&](Host&, AFLP& a) { column(a)->IsAutoExcluded = true; }},
      {"the locked column", true, [](Host&, AFLP& a) { a.BinGrid->LockedColumn = nullptr; }},
      {"a decision", true, [](Host&, AFLP& a) { a.AFLPBins.Item(1)->ManuallyIncluded = true; }},
      {"the mark of a decision", false, [](Host&, AFLP& a) { a.AFLPBins.Item(1)->Saved = true; }},
      {"a decision removed", true, [](Host&, AFLP& a) { a.AFLPBins.Remove(1); }},
      {"a mark on a study's result", false, [](Host& h, AFLP&) { h.study().setResultExcluded(1, true); }},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.what);
    Desk desk;
    const auto analysis = addAnalysis(desk, "First");
    fill(desk.host, *analysis);
    desk.host.save();
    ASSERT_THAT(desk.host.unsaved(), IsEmpty());
    one.change(desk.host, *analysis);
    EXPECT_EQ(desk.host.unsaved().empty(), !one.isDirty);
    desk.host.save();
    EXPECT_FALSE(column(*analysis)->Persistent().IsDirty);
    EXPECT_THAT(desk.host.unsaved(), IsEmpty());
  }
}

TEST(Study, TellsOfItsChangesAndKeepsThem) {
  std::vector<NewResult> blue(3);
  for (NewResult& result : blue) result.fragments.dyes[0] = {{100.5}, {150}};
  Desk desk(blue);
  desk.openStudy();
  HostStudyService& service = desk.host.study();
  auto study = service.Study();
  int resultChanges = 0;
  std::vector<std::int32_t> dyes;
  Connections connections;
  connections.push_back(study->ResultChanged.connect([&] { ++resultChanges; }));
  connections.push_back(study->DyeVisibibilityChanged.connect([&](Dye& dye) { dyes.push_back(dye.Index); }));
  const std::int32_t stamp = study->ResultStamp;

  service.setResultExcluded(2, true);
  service.deleteResult(3);
  SampleFragments yellow;
  yellow.dyes[2] = {{99}, {500}};
  service.addResults({{"Late", yellow}});
  service.setDyeColor(1, 0x123456);
  service.setDisplayViewIndex(2);
  EXPECT_THROW(service.deleteResult(77), Error);

  EXPECT_EQ(resultChanges, 3);
  EXPECT_THAT(dyes, ElementsAre(2, 1));
  desk.host.openStudy(std::make_shared<MemoryStore>("Other"));
  EXPECT_EQ(service.DisplayViewIndex(), 0);
  desk.openStudy();
  EXPECT_EQ(service.DisplayViewIndex(), 2);
  study = service.Study();
  EXPECT_EQ(study->ResultStamp, stamp + 3);
  EXPECT_EQ(study->Results.Item("2")->IsExcluded.get(), true);
  EXPECT_FALSE(study->Results.holdsKey("3"));
  EXPECT_EQ(study->Results.Item("4")->Sample->Name.get(), "Late");
  EXPECT_EQ(study->Dyes.Item("1")->Color, Colour{0x123456});
  EXPECT_TRUE(study->Dyes.Item("2")->Visible);
  EXPECT_FALSE(study->Dyes.Item("3")->Visible);
}

TEST(Study, CountsDeletedResultsNoMoreAndKeepsThemForTheirAnalyses) {
  Desk desk;
  desk.newAnalysis();
  desk.host.save();
  for (const std::int32_t id : {1, 2, 3}) desk.host.study().deleteResult(id);
  for (const bool isOpenedAgain : {false, true}) {
    SCOPED_TRACE(isOpenedAgain);
    if (isOpenedAgain) desk.openStudy();
    const auto study = desk.host.study().Study();
    EXPECT_EQ(study->Results.Count(), 0);
    desk.reopen(study->AFLPs.Item(1));
    EXPECT_EQ(desk.analysis().Results.Count(), 3);
    desk.host.pages().endAll();
    desk.host.runNewAnalysis();
    EXPECT_THAT(desk.host.pages().openPages(), IsEmpty());
    EXPECT_THAT(desk.front.messages.back().text, HasSubstr("Please add results"));
    desk.host.closeStudy();
  }
  EXPECT_EQ(desk.store->readStudy().results.size(), 3U);
}

TEST(Study, AsksAboutAnAnalysisWhoseResultsHaveChanged) {
  Desk desk;
  auto analysis = addAnalysis(desk, "First");
  HostStudyService& service = desk.host.study();
  analysis->ResultStamp = service.Study()->ResultStamp.get();
  StaleAnalysis answer = StaleAnalysis::DoNotOpen;
  int asked = 0;
  desk.front.onDecideStale = [&](std::shared_ptr<AFLP>&) { return ++asked, answer; };
  EXPECT_EQ(service.CheckAnalysis(analysis), 1);
  EXPECT_EQ(asked, 0);
  service.setResultExcluded(1, true);
  EXPECT_EQ(service.CheckAnalysis(analysis), StudyService::kDoNotOpen);
  answer = StaleAnalysis::OpenAsStored;
  EXPECT_EQ(service.CheckAnalysis(analysis), 1);
  answer = StaleAnalysis::Redo;
  EXPECT_EQ(service.CheckAnalysis(analysis), StudyService::kRedo);
  EXPECT_EQ(asked, 3);
  EXPECT_EQ(service.CheckAnalysis(analysis), 1) << "redone, it is of the present results";
  EXPECT_EQ(asked, 3);
}

// The sweep over all calls of the host counts on this.
TEST(Faults, StrikeOnceAtTheCallTheyWaitForAndLeaveThePutUndone) {
  Desk desk;
  const auto analysis = addAnalysis(desk, "First");
  const auto column = analysis->BinGrid->Columns.Item("6");
  const std::int32_t width = column->Width;
  const Error full(ErrorNumber::DiskFull, "Store", "The disk is full.");
  desk.host.faults().failAt("GridColumn", "Width", 2, full);
  column->Width = width + 1;
  EXPECT_THROW(column->Width = width + 2, Error);
  EXPECT_EQ(column->Width, width + 1);
  column->Width = width + 2;
  desk.host.faults().failAt("AFLP.Results", "Add", 1, full);
  EXPECT_THROW(analysis->Results.Add(desk.host.study().Study()->Results.Item(1)), Error);
  EXPECT_EQ(analysis->Results.Count(), 0);
}

}  // namespace
}  // namespace banddesk::host
