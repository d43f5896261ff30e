// The explorer folder and its items: new analyses and their names, opening, renaming and deleting.
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Script kOneBin{{0, {{100, {1, 1, 0}}}}};

std::vector<std::string> names(Desk& desk) {
  std::vector<std::string> all;
  for (const auto& analysis : desk.host.study().Study()->AFLPs) all.push_back(analysis->Name);
  return all;
}

std::vector<std::string> labels(Desk& desk) {
  std::vector<std::string> all;
  for (const auto& node : desk.host.tree().children()) all.push_back(node.base->displayName());
  return all;
}

const AFLP& boundOf(Desk& desk) { return dynamic_cast<AFLP&>(*desk.pageNamed("AFLPParams")->bound()); }

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
    desk.host.faults().startRecording();
    desk.parametersPage();
    EXPECT_EQ((desk.host.faults().recorded().at({"ObjectManager", "Query"})), 1);
    EXPECT_EQ(boundOf(desk).Name.get(), c.next);
  }
}

TEST(Folder, MakesAnAnalysisThatIsInNoCollectionUntilItsParametersAreAccepted) {
  Desk desk(kOneBin);
  desk.openStudy();
  desk.host.study().Study()->OwnerId = 42;
  const auto first = desk.parametersPage();
  EXPECT_TRUE(boundOf(desk).IsPending && boundOf(desk).OwnerId == 42);
  EXPECT_EQ(boundOf(desk).Study.get(), desk.host.study().Study());
  desk.host.runNewAnalysis();
  const auto second = desk.pageNamed("AFLPParams");
  EXPECT_EQ(boundOf(desk).Name.get(), "New AFLP 2") << "the name is held while the parameters are open";
  EXPECT_THAT(names(desk), IsEmpty());
  desk.host.pages().end(first, false);
  EXPECT_THAT(names(desk), IsEmpty());
  EXPECT_THROW(desk.page(), std::logic_error) << "cancelled and opened";
  desk.host.pages().end(second, true);
  EXPECT_THAT(names(desk), ElementsAre("New AFLP 2"));
  EXPECT_THAT(labels(desk), ElementsAre("New AFLP 2"));
  EXPECT_EQ(desk.host.folder()->AFLPExplorerItems().Count(), 1);
  EXPECT_EQ(desk.page().NumRows(), 1);
  desk.host.runNewAnalysis();
  EXPECT_EQ(boundOf(desk).Name.get(), "New AFLP 1") << "Cancel frees the name";
  desk.host.pages().end(desk.pageNamed("AFLPParams"), true);
  desk.analysis().Name = "x";
  desk.host.runNewAnalysis();
  EXPECT_EQ(boundOf(desk).Name.get(), "New AFLP 1") << "so does OK";
}

// The host may open the parameters of an analysis that the study has.
TEST(Folder, OpensAnAnalysisThatItKnowsWithoutAddingIt) {
  Desk desk(kOneBin);
  desk.newAnalysis();
  const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
  desk.host.pages().endAll();
  auto& dyes = analysis->DyeGrid->Columns;
  while (dyes.Count() > 0) dyes.Remove(1);
  const auto open = [&](const char* page) {
    return desk.host.pages().OpenPage(page, analysis, desk.host.tree().folder()->base.get(), true, true, true,
                                      true, true, true, nullptr, false, 0);
  };
  open("aflpPARAMS");
  desk.host.pages().end(desk.pageNamed("AFLPParams"), true);
  EXPECT_THAT(names(desk), ElementsAre("New AFLP 1"));
  EXPECT_THAT(labels(desk), ElementsAre("New AFLP 1"));
  EXPECT_EQ(desk.page().NumRows(), 1);
  desk.host.pages().endAll();
  open("StackedView");
  desk.host.pages().end(desk.pageNamed("StackedView"), true);
  EXPECT_THROW(desk.page(), std::logic_error) << "any page opens the analysis";
}

TEST(Folder, OpensAsTheCheckOfTheAnalysisSaysAndWhatItGivesInstead) {
  struct Case {
    host::StaleAnalysis answer;
    bool opens;
    bool redone;
  };
  using enum host::StaleAnalysis;
  for (const Case& c :
       {Case{DoNotOpen, false, false}, Case{OpenAsStored, true, false}, Case{Redo, true, true}}) {
    SCOPED_TRACE(static_cast<int>(c.answer));
    Desk desk(kOneBin);
    desk.newAnalysis();
    desk.newAnalysis();
    const auto& analyses = desk.host.study().Study()->AFLPs;
    desk.host.pages().endAll();
    desk.front.onDecideStale = [&](std::shared_ptr<AFLP>& analysis) {
      EXPECT_EQ(analysis, analyses.Item(1));
      analysis = analyses.Item(2);
      return c.answer;
    };
    // With a result taken out of the study meanwhile, only a redone analysis follows.
    desk.host.study().setResultExcluded(2, true);
    desk.host.runCommand(desk.host.tree().children().front().item, "OpenAFLP");
    ASSERT_EQ(desk.host.pages().openPages().size(), c.opens ? 1U : 0U);
    if (c.opens) {
      EXPECT_EQ(&desk.analysis(), analyses.Item(2).get());
      EXPECT_TRUE(desk.pageNamed("AFLP")->isShown());
    }
    EXPECT_EQ(analyses.Item(1)->Results.Count(), 3);
    EXPECT_EQ(analyses.Item(2)->Results.Count(), c.redone ? 2 : 3);
    EXPECT_FALSE(analyses.Item(1)->IsPending || analyses.Item(2)->IsPending);
  }
}

TEST(Folder, ShowsItsCaptionAndAnItemForEachAnalysis) {
  Desk desk(kOneBin);
  desk.newAnalysis();
  desk.newAnalysis();
  EXPECT_EQ(desk.host.tree().folder()->base->text(), "AFLP");
  desk.host.save();
  desk.host.closeStudy();
  desk.openStudy();
  EXPECT_THAT(labels(desk), ElementsAre("New AFLP 1", "New AFLP 2"));
  EXPECT_EQ(desk.host.tree().children().front().base->text(), "New AFLP 1");
  desk.host.tree().initialize();
  auto& items = desk.host.folder()->AFLPExplorerItems();
  EXPECT_EQ(items.Count(), 2);
  const auto& analysis = desk.host.study().Study()->AFLPs.Item(2);
  EXPECT_EQ(items.Item(std::to_string(analysis->ID()))->Name(), "New AFLP 2");
}

// In this order: the study, the tree, the folder's own items.
TEST(Folder, DeletesFromTheStudyTheTreeAndItsItemsInTurn) {
  struct Case {
    const char *type, *member;
    std::int32_t inStudy;
    std::size_t inTree;
    std::int32_t items;
  };
  for (const Case& c : {Case{"Study.AFLPs", "Remove", 1, 1, 1}, Case{"ExplorerTree", "RemoveItem", 0, 1, 1},
                        Case{"", "", 0, 0, 0}}) {
    Desk desk(kOneBin);
    desk.newAnalysis();
    const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
    const Error broken(ErrorNumber::Internal, "host", "broken");
    if (*c.type != '\0') desk.host.faults().failAt(c.type, c.member, 1, broken);
    try {
      desk.host.service().DeleteAFLP(analysis);
      EXPECT_EQ(*c.type, '\0');
    } catch (const Error& error) {
      EXPECT_EQ(error, broken);
    }
    EXPECT_EQ(desk.host.study().Study()->AFLPs.Count(), c.inStudy);
    EXPECT_EQ(desk.host.tree().children().size(), c.inTree);
    EXPECT_EQ(desk.host.folder()->AFLPExplorerItems().Count(), c.items);
    EXPECT_THAT(desk.host.pages().openPages(), ::testing::SizeIs(1)) << "its page stays";
    if (c.items == 0) {
      EXPECT_THROW(desk.host.service().DeleteAFLP(analysis), Error);
      EXPECT_THROW(desk.host.service().RenameAFLP(analysis), Error);
    }
  }
}

TEST(Item, TakesNamesOfUpToFiftyCharactersAndRetitlesThePage) {
  std::string fifty;
  for (int i = 0; i < 50; ++i) fifty += "é";  // two bytes each
  Desk desk(kOneBin);
  desk.newAnalysis();
  desk.analysis().Name = "Other";
  desk.newAnalysis();
  const auto item = desk.host.tree().children().at(1).item;
  const auto& node = desk.host.tree().children().at(1);
  struct Case {
    std::string name;
    bool isTaken;
  };
  for (const Case& c : {Case{fifty, true}, Case{fifty + "x", false}, Case{"", true}, Case{"Other", true}}) {
    const std::string before = desk.analysis().Name;
    const std::size_t asked = desk.front.messages.size();
    desk.host.runCommand(item, "RenameAFLP");
    EXPECT_EQ(node.edited, before) << "the edit begins with the stored name";
    node.base->SetText(c.name);  // what was typed stands in the tree
    node.base->OnAfterRename.raise(c.name);
    EXPECT_EQ(desk.analysis().Name.get(), c.isTaken ? c.name : before);
    EXPECT_EQ(desk.pageNamed("AFLP")->Caption(), "AFLP - " + desk.analysis().Name.get());
    EXPECT_EQ(node.base->displayName(), desk.analysis().Name.get());
    ASSERT_EQ(desk.front.messages.size(), asked + (c.isTaken ? 0 : 1));
    if (c.isTaken) continue;
    const auto& shown = desk.front.messages.back();
    EXPECT_TRUE(shown.text == "Maximum length is 50 characters" && shown.title == "Rename" &&
                shown.style == 64);
    EXPECT_EQ(node.base->text(), before);
  }
}

}  // namespace
}  // namespace banddesk::test
