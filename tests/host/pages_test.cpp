#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/fake_component.h"

namespace banddesk::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Pages, AreMadeBoundInitialisedAndEndedInOrder) {
  struct Case {
    const char* what;
    bool isValid;
    bool accept;
    bool ends;
    std::vector<std::string> steps;
  };
  const std::vector<Case> cases = {
      {"accepted", true, true, true, {"validate", "save", "exit AFLPParams accepted", "terminate"}},
      {"not valid", false, true, false, {"validate"}},
      {"cancelled", false, false, true, {"exit AFLPParams cancelled", "terminate"}},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.what);
    TestHost test;
    test.openStudy();
    const auto analysis = test.addAnalysis("First");
    ObjectRef boundAtInitialize;
    test.script.onInitialize = [&](PageBase& base) { boundAtInitialize = base.BoundObject(); };
    const auto page = test.open("AFLPParams", analysis, test.host.folder()->ExplorerItem().get());
    EXPECT_EQ(boundAtInitialize, analysis);
    EXPECT_THAT(test.script.log, ElementsAre("made", "initialize"));
    EXPECT_TRUE(page->isShown());

    test.script.log.clear();
    test.script.pagesAreValid = one.isValid;
    EXPECT_EQ(test.host.pages().end(page, one.accept), one.ends);
    EXPECT_EQ(test.script.log, one.steps);
    EXPECT_EQ(test.host.pages().openPages().empty(), one.ends);
  }
}

TEST(Pages, ThatFailAtTheirStartAreTerminatedAndNotOpen) {
  TestHost test;
  test.openStudy();
  test.script.failingStep = "initialize";
  EXPECT_EQ(numberOf([&] { test.open("AFLP", test.addAnalysis("First")); }), ErrorNumber::Internal);
  EXPECT_THAT(test.script.log, ElementsAre("made", "initialize", "terminate"));
  EXPECT_THAT(test.host.pages().openPages(), IsEmpty());
}

TEST(Pages, EndEvenIfTheirOwnerFails) {
  TestHost test;
  test.openStudy();
  const auto page =
      test.open("AFLPParams", test.addAnalysis("First"), test.host.folder()->ExplorerItem().get());
  test.script.failingStep = "exit AFLPParams accepted";
  EXPECT_EQ(numberOf([&] { test.host.pages().end(page, true); }), ErrorNumber::Internal);
  EXPECT_EQ(test.script.log.back(), "terminate");
  EXPECT_THAT(test.host.pages().openPages(), IsEmpty());
}

TEST(Pages, ThatFailAtTheirEndDoNotKeepTheStudyOpen) {
  TestHost test;
  test.openStudy();
  test.open("AFLP", test.addAnalysis("First"));
  test.open("AFLP", test.addAnalysis("Second"));
  test.script.log.clear();
  test.script.failingStep = "terminate";
  EXPECT_EQ(numberOf([&] { test.host.closeStudy(); }), ErrorNumber::Internal);
  EXPECT_THAT(test.script.log, ElementsAre("terminate", "terminate", "closed"));
  EXPECT_FALSE(test.host.study().isOpen());
  EXPECT_THAT(test.host.pages().openPages(), IsEmpty());
}

TEST(Pages, OutliveAnOwnerThatIsGone) {
  TestHost test;
  test.openStudy();
  auto owner = test.host.NewExplorerItemBase();
  const auto page = test.open("AFLPParams", test.addAnalysis("First"), owner.get());
  owner.reset();
  EXPECT_TRUE(test.host.pages().end(page, true));
}

TEST(Pages, AreOpenedOncePerAnalysisUnlessItIsToBeRedone) {
  TestHost test;
  test.openStudy();
  const auto analysis = test.addAnalysis("First");
  const auto openAnalysis = [&] {
    bool show = true;
    return analysis->Open(show);
  };
  const auto first = openAnalysis();
  EXPECT_EQ(openAnalysis(), first);
  EXPECT_EQ(std::dynamic_pointer_cast<Page>(first)->Caption(), "AFLP - First");
  analysis->IsPending = true;
  test.script.log.clear();
  EXPECT_NE(openAnalysis(), first);
  EXPECT_THAT(test.script.log, ElementsAre("validate", "save", "terminate", "made", "initialize"));
}

TEST(Pages, MarkTheirAnalysisChangedByUsersAndNotByTheirStart) {
  TestHost test;
  test.openStudy();
  const auto analysis = test.addAnalysis("First");
  test.host.save();
  test.script.onInitialize = [](PageBase& base) { base.MarkChanged(); };
  const auto page = test.open("AFLP", analysis);
  EXPECT_FALSE(analysis->Persistent().IsDirty);
  page->base()->MarkChanged();
  EXPECT_TRUE(analysis->Persistent().IsDirty);
  test.host.save();
  bool done = false;
  test.host.pages().userEvent(*page, [&] { done = true; });
  EXPECT_TRUE(done);
  EXPECT_TRUE(analysis->Persistent().IsDirty);
}

TEST(Pages, HaveTheirTimersFiredByHand) {
  TestHost test;
  test.openStudy();
  const auto page = test.open("AFLP", test.addAnalysis("First"));
  EXPECT_FALSE(test.host.pages().fireTimers());
  page->control()->Controls().find<ui::Timer>("ctlTimer")->Enabled = true;
  EXPECT_TRUE(test.host.pages().fireTimers());
  EXPECT_EQ(test.script.log.back(), "tick");
  EXPECT_FALSE(test.host.pages().fireTimers());
}

std::vector<std::string> keysInOrder(const GridLayout& layout) {
  std::vector<std::string> keys;
  for (const auto& entry : ColumnSelection(layout).entries) keys.push_back(entry.column->Key);
  return keys;
}

TEST(ColumnSelector, NumbersTheVisibleColumnsFirstAndOnlyWhenAccepted) {
  TestHost test;
  test.openStudy();
  const auto analysis = test.addAnalysis("First");
  const auto page = test.open("AFLP", analysis);
  const auto layout = analysis->BinGrid;
  layout->Columns.Item("8")->Header = "";
  bool accept = false;
  test.host.pages().selectColumns = [&](ColumnSelection& draft) {
    EXPECT_EQ(draft.entries[2].label, layout->Columns.Item("8")->ToolTip.get());
    std::swap(draft.entries[0], draft.entries[2]);
    draft.entries[1].isVisible = false;
    return accept;
  };
  const auto before = keysInOrder(*layout);
  test.open("ColumnSelector", layout, page->base().get());
  EXPECT_EQ(test.script.log.back(), "child ColumnSelector cancelled");
  EXPECT_EQ(keysInOrder(*layout), before);
  EXPECT_TRUE(layout->Columns.Item("7")->IsVisible);

  accept = true;
  test.open("ColumnSelector", layout, page->base().get());
  EXPECT_EQ(test.script.log.back(), "child ColumnSelector accepted");
  EXPECT_THAT(keysInOrder(*layout), ElementsAre("8", "6", "119", "9", "10", "83", "84", "85", "7"));
  EXPECT_EQ(layout->Columns.Item("7")->ColumnOrder, 9);
  EXPECT_FALSE(layout->Columns.Item("7")->IsVisible);
}

TEST(ColumnSort, GivesItsKeysPrioritiesAndUnsortsTheRest) {
  TestHost test;
  test.openStudy();
  const auto analysis = test.addAnalysis("First");
  const auto columns = [&](const char* key) { return analysis->BinGrid->Columns.Item(key); };
  columns("7")->SortPriority = 1;
  columns("7")->SortOrder = 0;
  test.host.pages().sortColumns = [&](ColumnSorting& draft) {
    EXPECT_EQ(draft.keys.at(0).column, columns("7"));
    draft.keys = {{columns("83"), true}, {columns("8"), false}};
    return true;
  };
  test.open("ColumnSort", analysis->BinGrid);
  EXPECT_THAT((std::vector<int>{columns("83")->SortPriority, columns("83")->SortOrder}), ElementsAre(1, 1));
  EXPECT_THAT((std::vector<int>{columns("8")->SortPriority, columns("8")->SortOrder}), ElementsAre(2, 0));
  EXPECT_THAT((std::vector<int>{columns("7")->SortPriority, columns("7")->SortOrder}), ElementsAre(0, 2));
}

TEST(Tree, RenamesInTwoStepsAndAsksForLabels) {
  TestHost test;
  const auto store = test.openStudy();
  test.addAnalysis("First");
  test.host.save();
  test.host.openStudy(store);
  auto& tree = test.host.tree();
  ASSERT_EQ(tree.children().size(), 1U);
  EXPECT_EQ(tree.folder()->base->text(), "AFLP");
  const auto item = tree.children()[0].item;

  tree.BeginRename(item);
  EXPECT_EQ(tree.children()[0].edited, "First");
  EXPECT_EQ(test.host.unsaved().size(), 0U);
  tree.endRename(item, "Second");
  EXPECT_EQ(tree.children()[0].base->displayName(), "Second");
  EXPECT_EQ(tree.children()[0].base->text(), "First") << "the text stays until somebody sets it";
  EXPECT_EQ(numberOf([&] { tree.endRename(item, "Third"); }), ErrorNumber::InvalidArgument);

  tree.RemoveItem(item);
  EXPECT_EQ(numberOf([&] { tree.RemoveItem(item); }), ErrorNumber::InvalidArgument);
  tree.AddItem(item, "AFLP", *test.host.folder());
  EXPECT_EQ(tree.children().size(), 1U);
  test.host.closeStudy();
  EXPECT_THAT(tree.children(), IsEmpty());
}

TEST(SaveFlow, StoresThePageOfEachChosenItemBeforeItIsSaved) {
  TestHost test;
  const auto store = test.openStudy();
  const auto first = test.addAnalysis("First");
  const auto second = test.addAnalysis("Second");
  test.open("AFLP", second);
  test.script.log.clear();
  EXPECT_THAT(test.host.save().saved, ElementsAre("First", "Second"));
  EXPECT_THAT(test.script.log,
              ElementsAre("service save First", "validate", "save", "service save Second", "save complete"));
  test.script.log.clear();
  test.script.pagesAreValid = false;
  second->YThreshold = 7;
  EXPECT_THAT(test.host.save().refused, ElementsAre("Second"));
  EXPECT_THAT(test.script.log, ElementsAre("validate", "save complete"));
  EXPECT_THAT(test.host.unsaved(), ElementsAre("Second"));

  // What was deleted has no page to be stored from, and leaves the store.
  test.host.study().Study()->AFLPs.Remove(second->collectionKey());
  EXPECT_THAT(test.host.save().saved, ElementsAre("Second"));
  EXPECT_THAT(store->analysisIds(), ElementsAre(first->ID()));
}

}  // namespace
}  // namespace banddesk::host
