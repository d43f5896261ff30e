// What the host does to pages, to the tree and in a save, and in which order; the component's own pages are
// watched from outside.
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::host {
namespace {

using test::Desk;
using testing::ElementsAre;
using testing::IsEmpty;

// Hears what pages and their owner, the folder, hear, after them, and fails where it is told to.
class PageLog {
 public:
  explicit PageLog(Desk& desk) {
    connections_.push_back(desk.host.folder()->ExplorerItem()->OnExit.connect(
        [this](banddesk::Page&, bool cancelled) { note(cancelled ? "exit cancelled" : "exit accepted"); }));
  }
  void watch(HostPage& page) {
    PageBase& base = *page.base();
    connections_.push_back(base.Validate.connect([this](bool& isValid) {
      note("validate");
      isValid = isValid && pagesAreValid;
    }));
    connections_.push_back(base.Save.connect([this] { note("save"); }));
    connections_.push_back(base.Terminate.connect([this] { note("terminate"); }));
  }
  void note(const std::string& step) {
    steps.push_back(step);
    if (step == failingStep) raise(ErrorNumber::Internal, "PageLog", step + " failed");
  }

  std::vector<std::string> steps;
  bool pagesAreValid = true;
  std::string failingStep;

 private:
  Connections connections_;
};

std::shared_ptr<HostPage> open(Desk& desk, const std::string& page, const ObjectRef& bound,
                               PageOwner* owner) {
  return std::dynamic_pointer_cast<HostPage>(
      desk.host.pages().OpenPage(page, bound, owner, true, true, true, true, true, true, nullptr, false, 0));
}

TEST(Pages, EndInOrderUnlessTheyAreNotValid) {
  struct Case {
    const char* what;
    bool isValid;
    bool accept;
    bool ends;
    std::vector<std::string> steps;
  };
  const std::vector<Case> cases = {
      {"accepted", true, true, true, {"validate", "save", "exit accepted", "terminate"}},
      {"not valid", false, true, false, {"validate"}},
      {"cancelled", false, false, true, {"exit cancelled", "terminate"}},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.what);
    Desk desk;
    const auto page = desk.parametersPage();
    PageLog log(desk);
    log.watch(*page);
    log.pagesAreValid = one.isValid;
    EXPECT_EQ(desk.host.pages().end(page, one.accept), one.ends);
    EXPECT_EQ(log.steps, one.steps);
    EXPECT_EQ(desk.host.pages().find("AFLPParams", page->bound()) == nullptr, one.ends);
  }
}

// What they told others of themselves before they failed is taken back.
TEST(Pages, ThatFailAtTheirStartAreTerminatedAndNotOpen) {
  Desk desk;
  desk.newAnalysis();
  const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
  desk.host.pages().endAll();
  desk.host.faults().failAt("Progress", "Start", 1, Error(ErrorNumber::Internal, "bar", "broken"));
  bool show = true;
  EXPECT_THROW(analysis->Open(show), Error);
  EXPECT_EQ(analysis->ResultsPage.get(), nullptr);
  EXPECT_THAT(desk.host.pages().openPages(), IsEmpty());
}

TEST(Pages, AllEndWithTheirStudyThoughTheyOrTheirOwnerFail) {
  for (const char* failing : {"exit cancelled", "terminate"}) {
    Desk desk;
    PageLog log(desk);
    log.watch(*desk.parametersPage());
    log.watch(*desk.parametersPage());
    log.failingStep = failing;
    EXPECT_THROW(desk.host.closeStudy(), Error);
    EXPECT_THAT(log.steps, ElementsAre("exit cancelled", "terminate", "exit cancelled", "terminate"));
    EXPECT_FALSE(desk.host.study().isOpen());
    EXPECT_THAT(desk.host.pages().openPages(), IsEmpty());
  }
}

TEST(Pages, OutliveAnOwnerThatIsGone) {
  Desk desk;
  desk.openStudy();
  auto owner = desk.host.NewExplorerItemBase();
  const auto page = open(desk, "AFLPParams", desk.host.objects().Create("AFLP"), owner.get());
  owner.reset();
  EXPECT_TRUE(desk.host.pages().end(page, false));
}

TEST(Pages, AreOpenedOncePerAnalysisUnlessItIsToBeRedone) {
  Desk desk;
  desk.newAnalysis();
  const auto first = desk.pageNamed("AFLP");
  PageLog log(desk);
  log.watch(*first);
  AFLP& analysis = desk.analysis();
  bool show = true;
  EXPECT_EQ(analysis.Open(show), first);
  EXPECT_THAT(log.steps, IsEmpty());
  analysis.IsPending = true;
  EXPECT_NE(analysis.Open(show), first);
  EXPECT_THAT(log.steps, ElementsAre("validate", "save", "terminate"));
}

TEST(ColumnSort, GivesItsKeysPrioritiesAndUnsortsTheRest) {
  Desk desk;
  desk.newAnalysis();
  const auto layout = desk.analysis().BinGrid;
  const auto columns = [&](const char* key) { return layout->Columns.Item(key); };
  columns("7")->SortPriority = 1;
  columns("7")->SortOrder = 0;
  columns("8")->Header = "";
  desk.front.onSortColumns = [&](ColumnSorting& draft) {
    EXPECT_EQ(draft.keys.at(0).column, columns("7"));
    EXPECT_EQ(draft.columns()[2].label, columns("8")->ToolTip.get()) << "for want of a header";
    draft.keys = {{columns("83"), true}, {columns("8"), false}};
    return true;
  };
  open(desk, "ColumnSort", layout, nullptr);
  const auto sorting = [&](const char* key) {
    return std::pair<int, int>(columns(key)->SortPriority, columns(key)->SortOrder);
  };
  EXPECT_EQ(sorting("83"), std::pair(1, 1));
  EXPECT_EQ(sorting("8"), std::pair(2, 0));
  EXPECT_EQ(sorting("7"), std::pair(0, 2));
}

TEST(Tree, TakesOneNewNameForEachBeginningAndNoItemTwice) {
  Desk desk;
  desk.newAnalysis();
  auto& tree = desk.host.tree();
  const auto item = tree.children().at(0).item;
  tree.BeginRename(item);
  EXPECT_EQ(tree.children()[0].edited, "New AFLP 1");
  tree.endRename(item, "Second");
  EXPECT_EQ(tree.children()[0].base->displayName(), "Second");
  EXPECT_THROW(tree.endRename(item, "Third"), Error);
  tree.RemoveItem(item);
  EXPECT_THROW(tree.RemoveItem(item), Error);
  tree.AddItem(item, "AFLP", *desk.host.folder());
  desk.host.closeStudy();
  EXPECT_THAT(tree.children(), IsEmpty());
}

// What the item itself does with such names is its own: they would be stored.
TEST(Tree, RefusesANameThatASaveCouldNotTellApart) {
  Desk desk;
  desk.newAnalysis();
  desk.newAnalysis();
  auto& tree = desk.host.tree();
  const auto item = tree.children().at(1).item;
  const auto rename = [&](const std::string& text) {
    tree.BeginRename(item);
    tree.endRename(item, text);
  };
  for (const char* const text : {"", "  ", "New AFLP 1", "new aflp 1"}) {
    EXPECT_THROW(rename(text), Error) << text;
    EXPECT_EQ(tree.children()[1].base->displayName(), "New AFLP 2");
    EXPECT_FALSE(tree.children()[1].edited);
  }
  rename("NEW aflp 2");
  EXPECT_EQ(tree.children()[1].base->displayName(), "NEW aflp 2");
  rename(std::string(51, 'x'));
  EXPECT_EQ(desk.front.messages.size(), 1U);
}

TEST(SaveFlow, NamesTheAnalysesThatItCannotTellApart) {
  Desk desk;
  desk.newAnalysis();
  desk.newAnalysis();
  auto& analyses = desk.host.study().Study()->AFLPs;
  const auto second = analyses.Item(2);
  second->Name = "New AFLP 1";
  EXPECT_THROW(desk.host.save(), Error);
  EXPECT_EQ(namesakes(*desk.host.study().Study()), (std::vector{analyses.Item(1), second}));
  second->Name = "Other";
  EXPECT_EQ(desk.host.save().saved.size(), 2U);
  desk.host.pages().endAll();
  for (const auto& analysis : {analyses.Item(1), second}) {
    analysis->Name = "Gone";
    desk.host.service().DeleteAFLP(analysis);
  }
  EXPECT_EQ(desk.host.save().saved.size(), 2U);
  EXPECT_THAT(desk.store->analysisIds(), IsEmpty());
}

TEST(SaveFlow, StoresThePageOfEachChosenItemBeforeItIsSaved) {
  Desk desk;
  desk.newAnalysis();
  desk.host.pages().endAll();
  desk.newAnalysis();
  PageLog log(desk);
  log.watch(*desk.pageNamed("AFLP"));
  const auto onSave = desk.host.serviceBase().Save.connect(
      [&](const ObjectRef& saved) { log.note("service save " + dynamic_cast<AFLP&>(*saved).Name.get()); });
  const auto onComplete = desk.host.serviceBase().SaveComplete.connect([&] { log.note("complete"); });
  EXPECT_THAT(desk.host.save().refused, IsEmpty());
  EXPECT_THAT(log.steps, ElementsAre("service save New AFLP 1", "validate", "save", "service save New AFLP 2",
                                     "complete"));
  log.steps.clear();
  log.pagesAreValid = false;
  desk.analysis().YThreshold = 7;
  EXPECT_THAT(desk.host.save().refused, ElementsAre("Update AFLP: New AFLP 2"));
  EXPECT_THAT(log.steps, ElementsAre("validate", "complete"));

  // What was deleted has no page to be stored from.
  desk.host.study().Study()->AFLPs.Remove(desk.analysis().collectionKey());
  EXPECT_THAT(desk.host.save().saved, ElementsAre("Delete AFLP: New AFLP 2"));
  EXPECT_EQ(desk.store->analysisIds().size(), 1U);
}

// A save takes the labels off the columns, and the page writes them into its table when columns are selected.
TEST(Pages, KeepTheSamplesLabelsWhenColumnsAreSelectedAfterASave) {
  for (const bool isTransposed : {false, true}) {
    Desk desk;
    desk.front.onSelectColumns = [](ColumnSelection& draft) {
      std::ranges::reverse(draft.entries);
      return true;
    };
    IAFLPResultsPage& page = desk.newAnalysis();
    page.Controls().find<ui::ComboBox>("cbxSampleAxis")->ListIndex = isTransposed ? 1 : 0;
    const auto labels = [&] {
      std::map<std::string, std::string> byKey;
      for (std::int32_t col = 1; col <= page.NumCols(); ++col)
        byKey[page.Key(col)] = page.CellText(page.Key(col), 0);
      return byKey;
    };
    const auto before = labels();
    desk.host.save();
    const auto& analysis = desk.analysis();
    desk.chooseAt(0, page.NumCols(), "mnuSelectColumns");
    EXPECT_EQ(labels(), before) << isTransposed;
    EXPECT_EQ(page.Key(page.NumCols()), "-1");
    EXPECT_FALSE(analysis.SampleGrid->Columns.Item("-1")->Header.get().empty());
  }
}

}  // namespace
}  // namespace banddesk::host
