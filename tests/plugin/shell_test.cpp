// The service, the explorer folder and its items, as the host and the user drive them.
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Script kOneBin{{0, {{100, {1, 1, 0}}}}};

bool commandIsEnabled(Desk& desk) { return desk.host.serviceBase().Commands.Item("NewAFLP1")->Enabled; }

std::vector<std::string> names(Desk& desk) {
  std::vector<std::string> all;
  for (const auto& analysis : desk.host.study().Study()->AFLPs) all.push_back(analysis->Name);
  return all;
}

TEST(Service, EnablesItsCommandByOpeningAStudyAndUnloadsSamplesAfterIt) {
  Desk desk(kOneBin);
  EXPECT_FALSE(commandIsEnabled(desk));
  desk.openStudy();
  EXPECT_TRUE(commandIsEnabled(desk));
  desk.newAnalysis();
  const auto sample = std::dynamic_pointer_cast<host::HostSample>(desk.analysis().Results.Item(1)->Sample);
  EXPECT_TRUE(sample->isLoaded());
  desk.host.closeStudy();
  EXPECT_FALSE(commandIsEnabled(desk));
  EXPECT_FALSE(sample->isLoaded());
  desk.openStudy();
  desk.host.serviceBase().Initialize.raise();
  EXPECT_FALSE(commandIsEnabled(desk)) << "a study that was open already enabled it";
}

// Hundreds of samples are loaded one after the other; only the latest stay.
TEST(Service, NeverHoldsTheFragmentsOfAllSamplesOfALargeStudy) {
  std::vector<std::string> samples;
  samples.reserve(200);
  for (int i = 0; i < 200; ++i) samples.push_back("s" + std::to_string(i));
  Desk desk(kOneBin, samples);
  desk.newAnalysis();
  std::size_t loaded = 0;
  for (const auto& result : desk.analysis().Results)
    loaded += std::dynamic_pointer_cast<host::HostSample>(result->Sample)->isLoaded() ? 1U : 0U;
  EXPECT_EQ(loaded, host::FragmentSource::kMostHolders);
}

// Else its file stays locked until another study is opened.
TEST(Service, LetsTheStoreOfAClosedStudyGo) {
  Desk desk;
  desk.newAnalysis();
  const std::weak_ptr<host::Store> store = desk.store;
  desk.store.reset();
  desk.host.closeStudy();
  EXPECT_TRUE(store.expired());
}

TEST(Service, TellsOnceWhatANewAnalysisLacksAndMakesNothing) {
  for (const auto& [isOpen, text] :
       {std::pair(false, "Please create or open a study before performing an AFLP analysis."),
        {true, "Please add results to the study before performing an AFLP analysis."}}) {
    Desk desk({}, {});
    if (isOpen) desk.openStudy();
    desk.host.service().NewAFLP();
    ASSERT_EQ(desk.host.platform().messages().size(), 1U);
    const auto& shown = desk.host.platform().messages().front();
    EXPECT_EQ(shown.text, text);
    EXPECT_EQ(shown.style, 64);
    EXPECT_EQ(shown.title, "AFLP Analysis");
    EXPECT_THAT(desk.host.pages().openPages(), IsEmpty());
  }
}

TEST(Folder, GivesTheFirstFreeNumberWhateverTheCaseOfNames) {
  struct Case {
    std::vector<std::string> present;
    std::string next;
  };
  for (const Case& c : {Case{{}, "New AFLP 1"}, Case{{"New AFLP 1", "New AFLP 3"}, "New AFLP 2"},
                        Case{{"new aflp 1"}, "New AFLP 2"}, Case{{"NEW AFLP 2", "x"}, "New AFLP 1"}}) {
    Desk desk(kOneBin);
    desk.openStudy();
    for (const std::string& name : c.present) {
      desk.newAnalysis();
      desk.analysis().Name = name;
      desk.host.pages().endAll();
    }
    const auto parameters = desk.parametersPage();
    EXPECT_EQ(dynamic_cast<AFLP&>(*parameters->bound()).Name.get(), c.next);
  }
}

TEST(Folder, HoldsTheNameOfAnAnalysisWhoseParametersAreOpenAndFreesItOnCancel) {
  Desk desk(kOneBin);
  const auto first = desk.parametersPage();
  desk.host.runNewAnalysis();
  const auto second = desk.pageNamed("AFLPParams");
  EXPECT_EQ(dynamic_cast<AFLP&>(*second->bound()).Name.get(), "New AFLP 2");
  desk.host.pages().end(first, false);
  desk.host.pages().end(second, true);
  EXPECT_THAT(names(desk), ElementsAre("New AFLP 2"));
  desk.host.runNewAnalysis();
  EXPECT_EQ(dynamic_cast<AFLP&>(*desk.pageNamed("AFLPParams")->bound()).Name.get(), "New AFLP 1");
}

TEST(Folder, OpensAsTheCheckOfTheAnalysisSays) {
  struct Case {
    std::int32_t answer;
    bool opens;
    bool redone;
  };
  for (const Case& c : {Case{0, false, false}, Case{1, true, false}, Case{2, true, true}}) {
    Desk desk(kOneBin);
    desk.newAnalysis();
    const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
    desk.host.pages().endAll();
    desk.host.study().checkAnalysis = [&](std::shared_ptr<AFLP>&) { return c.answer; };
    std::size_t before = desk.calculators->added.size();
    // With a result taken out of the study meanwhile, only a redone analysis follows.
    desk.host.study().setResultExcluded(2, true);
    desk.host.runCommand(desk.host.tree().children().front().item, "OpenAFLP");
    EXPECT_EQ(desk.calculators->added.size() > before, c.opens) << c.answer;
    EXPECT_EQ(analysis->Results.Count(), c.redone ? 2 : 3) << c.answer;
    EXPECT_FALSE(analysis->IsPending);
  }
}

TEST(Folder, DeletesFromStudyAndTreeAndLeavesTheStoreToTheSaveThatItIsChosenFor) {
  Desk desk(kOneBin);
  desk.newAnalysis();
  desk.host.save();
  const auto item = desk.host.tree().children().front().item;
  desk.host.runCommand(item, "DeleteAFLP");
  EXPECT_THAT(desk.host.tree().children(), IsEmpty());
  EXPECT_EQ(desk.host.study().Study()->AFLPs.Count(), 0);
  EXPECT_EQ(desk.store->analysisIds().size(), 1U);
  desk.host.save([](const std::vector<std::string>&) { return std::vector<std::string>(); });
  EXPECT_THAT(desk.host.unsaved(), ElementsAre("Delete AFLP: New AFLP 1"));
  desk.host.save();
  EXPECT_THAT(desk.store->analysisIds(), IsEmpty());
  EXPECT_THAT(desk.host.unsaved(), IsEmpty());
}

TEST(Item, TakesNamesOfUpToFiftyCharactersAndRetitlesThePage) {
  std::string fifty;
  for (int i = 0; i < 50; ++i) fifty += "é";  // two bytes each
  Desk desk(kOneBin);
  desk.newAnalysis();
  const auto item = desk.host.tree().children().front().item;

  desk.host.runCommand(item, "RenameAFLP");
  desk.host.tree().endRename(item, fifty);
  EXPECT_EQ(desk.analysis().Name.get(), fifty);
  EXPECT_EQ(desk.pageNamed("AFLP")->Caption(), "AFLP - " + fifty);

  desk.host.runCommand(item, "RenameAFLP");
  desk.host.tree().endRename(item, fifty + "x");
  EXPECT_EQ(desk.analysis().Name.get(), fifty);
  EXPECT_EQ(desk.host.platform().messages().back().text, "Maximum length is 50 characters");
  EXPECT_EQ(desk.host.platform().messages().back().title, "Rename");
  EXPECT_EQ(desk.host.tree().children().front().base->text(), fifty);
}

TEST(SaveFlow, ListsWhatIsNewChangedAndDeletedAndRefusesEqualDescriptions) {
  Desk desk(kOneBin);
  desk.newAnalysis();
  EXPECT_THAT(desk.host.unsaved(), ElementsAre("Add AFLP: New AFLP 1"));
  desk.host.save();
  EXPECT_THAT(desk.host.unsaved(), IsEmpty());
  desk.host.pages().userEvent(*desk.pageNamed("AFLP"),
                              [&] { desk.control<ui::CheckBox>("chkShowExcluded").click(); });
  EXPECT_THAT(desk.host.unsaved(), ElementsAre("Update AFLP: New AFLP 1"));
  desk.host.save();
  desk.newAnalysis();
  desk.newAnalysis();
  desk.host.study().Study()->AFLPs.Item(3)->Name = "New AFLP 2";
  EXPECT_THROW(desk.host.unsaved(), Error);
}

TEST(SaveFlow, DoesNotListAStoredAnalysisThatWasOnlyOpened) {
  Desk desk(kOneBin);
  desk.newAnalysis().SetLockedCol(11);
  desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1;
  desk.host.save();
  desk.host.closeStudy();
  desk.openStudy();
  desk.reopen(desk.host.study().Study()->AFLPs.Item(1));
  desk.wait();
  EXPECT_THAT(desk.host.unsaved(), IsEmpty());
  // What the user does there is listed, also where it reaches the analysis only with the save.
  const auto page = desk.pageNamed("AFLP");
  desk.host.pages().userEvent(*page, [&] { desk.control<ui::UpDown>("udYThreshold").up(); });
  EXPECT_THAT(desk.host.unsaved(), ElementsAre("Update AFLP: New AFLP 1"));
}

TEST(Reports, AreMadeOfTheItemsAnalysisAndOfferedUnlessTheCommandIsHidden) {
  Desk desk(kOneBin);
  desk.newAnalysis();
  std::vector<std::string> made;
  desk.host.reports().onReport = [&](const host::ReportRequest& request, const std::string&) {
    made.push_back(request.contextName);
  };
  desk.host.runCommand(desk.host.tree().children().front().item, "NewReport");
  EXPECT_THAT(made, ElementsAre("New AFLP 1"));
  const auto offered = [&] {
    std::vector<std::pair<std::string, std::int32_t>> contexts;
    for (const auto& each : desk.host.reportContexts())
      contexts.emplace_back(each.contextName, each.contextType);
    return contexts;
  };
  EXPECT_THAT(offered(), ElementsAre(std::pair("New AFLP 1", 1013)));
  const auto& definition = desk.host.registry().Definitions.Item("AFLPService")->ExplorerItems.Item("AFLP");
  definition->Commands.Item("NewReport")->Visible = std::optional<bool>();
  EXPECT_THAT(offered(), IsEmpty());
}

}  // namespace
}  // namespace banddesk::test
