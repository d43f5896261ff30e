#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "plugin/base/numbers.h"
#include "tests/host/fake_component.h"

namespace banddesk::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
  column->ToolTip = "Sample 101";
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
  TestHost test;
  const auto store = test.openStudy();
  const auto saved = test.addAnalysis("First");
  fill(test.host, *saved);
  saved->SampleGrid->Columns.Item("-2")->Header = "S101";  // a label of the moment
  test.addAnalysis("Not chosen");
  test.host.save([](const auto&) { return std::vector<std::string>{"First"}; });
  AnalysisSnapshot before = snapshotOf(*saved);
  test.host.openStudy(store);

  const auto study = test.host.study().Study();
  ASSERT_EQ(study->AFLPs.Count(), 1);
  const auto loaded = study->AFLPs.Item(1);
  EXPECT_NE(loaded, saved);
  EXPECT_EQ(snapshotOf(*loaded), before);
  EXPECT_EQ(loaded->SampleGrid->Columns.Item("-2")->Header.get(), "");
  EXPECT_EQ(loaded->BinGrid->LockedColumn.get(), loaded->BinGrid->Columns.Item("7"));
  EXPECT_TRUE(loaded->BinGrid->Columns.Item("83")->Definition->HasOwnStyle);
  EXPECT_FALSE(loaded->BinGrid->Columns.Item("7")->Definition->HasOwnStyle);
  EXPECT_EQ(loaded->Results.Item(2), study->Results.Item(2));
  EXPECT_THAT(test.host.unsaved(), IsEmpty());
  EXPECT_NE(test.addAnalysis("Later")->ID(), loaded->ID());
  EXPECT_EQ(test.host.objects().Query("AFLPs", "", "", "", false, true).at(0), loaded);
}

TEST(Study, LeavesNoAnalysisHoldingItWhenItCloses) {
  TestHost test;
  test.openStudy();
  const auto kept = test.addAnalysis("Kept by somebody");
  const std::weak_ptr<Study> study = test.host.study().Study();
  test.script.log.clear();
  test.host.closeStudy();
  EXPECT_THAT(test.script.log, ElementsAre("closed"));
  EXPECT_EQ(test.host.study().Study(), nullptr);
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
    TestHost test;
    test.openStudy();
    const auto analysis = test.addAnalysis("First");
    fill(test.host, *analysis);
    test.host.save();
    ASSERT_THAT(test.host.unsaved(), IsEmpty());
    one.change(test.host, *analysis);
    EXPECT_EQ(test.host.unsaved().empty(), !one.isDirty);
    test.host.save();
    EXPECT_FALSE(column(*analysis)->Persistent().IsDirty);
    EXPECT_THAT(test.host.unsaved(), IsEmpty());
  }
}

TEST(Study, LoadsFragmentsWhenAskedAndAgainAfterTheyWereLetGo) {
  TestHost test;
  test.openStudy();
  const auto sample =
      std::dynamic_pointer_cast<HostSample>(test.host.study().Study()->Results.Item(3)->Sample);
  EXPECT_FALSE(sample->isLoaded());
  for (int round = 0; round < 2; ++round) {
    EXPECT_THAT(sample->Data().Fragments().OfDye(0).sizes, ElementsAre(140.25, 160.25));
    EXPECT_THAT(sample->Data().Fragments().OfDye(3).sizes, IsEmpty());
    sample->Unload();
    EXPECT_FALSE(sample->isLoaded());
  }
  EXPECT_EQ(numberOf([&] { sample->Data().Fragments().OfDye(4); }), ErrorNumber::SubscriptOutOfRange);
}

TEST(Study, TellsOfItsChangesAndKeepsThem) {
  TestHost test;
  const auto store = test.openStudy();
  auto study = test.host.study().Study();
  int resultChanges = 0;
  std::vector<std::int32_t> dyes;
  Connections connections;
  connections.push_back(study->ResultChanged.connect([&] { ++resultChanges; }));
  connections.push_back(study->DyeVisibibilityChanged.connect([&](Dye& dye) { dyes.push_back(dye.Index); }));
  const std::int32_t stamp = study->ResultStamp;

  test.host.study().setResultExcluded(2, true);
  test.host.study().deleteResult(3);
  SampleFragments yellow;
  yellow.dyes[2] = {{99}, {500}};
  test.host.study().addResults({{"Late", yellow}});
  test.host.study().setDyeColor(1, 0x123456);
  EXPECT_EQ(numberOf([&] { test.host.study().deleteResult(77); }), ErrorNumber::InvalidArgument);

  EXPECT_EQ(resultChanges, 3);
  EXPECT_THAT(dyes, ElementsAre(2, 1));
  test.host.openStudy(store);
  study = test.host.study().Study();
  EXPECT_EQ(study->ResultStamp, stamp + 3);
  EXPECT_EQ(study->Results.Item("2")->IsExcluded.get(), true);
  EXPECT_EQ(study->Results.Item("3")->IsDeleted.get(), true);
  EXPECT_EQ(study->Results.Item("4")->Sample->Name.get(), "Late");
  EXPECT_EQ(study->Dyes.Item("1")->Color, Colour{0x123456});
  EXPECT_TRUE(study->Dyes.Item("2")->Visible);
  EXPECT_FALSE(study->Dyes.Item("3")->Visible);
}

TEST(Study, AsksAboutAnAnalysisWhoseResultsHaveChanged) {
  TestHost test;
  test.openStudy();
  auto analysis = test.addAnalysis("First");
  analysis->ResultStamp = test.host.study().Study()->ResultStamp.get();
  StaleAnalysis answer = StaleAnalysis::DoNotOpen;
  int asked = 0;
  test.host.study().decideStale = [&](const AFLP&) { return ++asked, answer; };
  EXPECT_EQ(test.host.study().CheckAnalysis(analysis), 1);
  EXPECT_EQ(asked, 0);
  test.host.study().setResultExcluded(1, true);
  EXPECT_EQ(test.host.study().CheckAnalysis(analysis), StudyService::kDoNotOpen);
  answer = StaleAnalysis::OpenAsStored;
  EXPECT_EQ(test.host.study().CheckAnalysis(analysis), 1);
  answer = StaleAnalysis::Redo;
  EXPECT_EQ(test.host.study().CheckAnalysis(analysis), StudyService::kRedo);
  EXPECT_EQ(asked, 3);
  EXPECT_EQ(test.host.study().CheckAnalysis(analysis), 1) << "redone, it is of the present results";
  EXPECT_EQ(asked, 3);
}

TEST(Faults, StrikeOnceAtTheCallTheyWaitForAndLeaveThePutUndone) {
  TestHost test;
  test.openStudy();
  const auto analysis = test.addAnalysis("First");
  auto& faults = test.host.faults();
  const Error full(ErrorNumber::DiskFull, "Store", "The disk is full.");
  const auto column = analysis->BinGrid->Columns.Item("6");
  struct Case {
    const char* type;
    const char* member;
    std::function<void()> use;
  };
  const std::vector<Case> cases = {
      {"GridColumn", "Width", [&] { column->Width = column->Width + 1; }},
      {"AFLP.Results", "Add",
       [&] {
         analysis->Results.Add(test.host.study().Study()->Results.Item(analysis->Results.Count() + 1));
       }},
      {"ObjectManager", "Save", [&] { test.host.objects().Save(analysis, true); }},
      {"Command", "Enabled", [&] { test.host.serviceBase().Commands.Item(1)->Enabled = false; }},
      {"BinCalculator", "Calculate", [&] { test.host.NewBinCalculator()->Calculate(); }},
      {"ServiceRegistry.Instances", "Item", [&] { test.host.registry().Instances.Item(1); }},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(std::string(one.type) + "." + one.member);
    faults.startRecording();
    faults.failAt(one.type, one.member, 2, full);
    EXPECT_EQ(numberOf(one.use), ErrorNumber::None);
    const std::int32_t width = column->Width;
    const std::int32_t results = analysis->Results.Count();
    EXPECT_EQ(numberOf(one.use), ErrorNumber::DiskFull);
    EXPECT_EQ(column->Width, width);
    EXPECT_EQ(analysis->Results.Count(), results);
    EXPECT_EQ(numberOf(one.use), ErrorNumber::None);
    EXPECT_TRUE(faults.hasFailed());
    EXPECT_TRUE(faults.recorded().contains({one.type, one.member}));
    faults.disarm();
  }
}

}  // namespace
}  // namespace banddesk::host
