// The three menus of the grid, what each of their items does, and the windows over results that they open.
#include <filesystem>
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Script kScript{{0, {{100, {1, 0, 2}}, {200, {0, 1, 0}}}}, {1, {{300, {0, 5, 1}}}}};

std::string captionsOf(const ui::MenuItem& menu) {
  std::string text;
  for (const ui::MenuItem* item : menu.items()) {
    text += item == nullptr
                ? "-|"
                : item->Caption.get() + (item->items().empty() ? "|" : "[" + captionsOf(*item) + "]|");
  }
  return text;
}

TEST(Menus, HoldTheirItemsInOrder) {
  Desk desk(kScript);
  desk.newAnalysis();
  const std::string views = "Show Single &Result...|Show Stacked &Graph...|Show &Overlay Graph...|-|";
  const std::string rest =
      "&Transpose|&Format Cells...|-|Copy Grid|Export Grid...|&Print Grid...[Black && "
      "White|Color/Grayscale|]|";
  EXPECT_EQ(captionsOf(desk.control<ui::MenuItem>("mnuCell")), views + rest);
  EXPECT_EQ(
      captionsOf(desk.control<ui::MenuItem>("mnuColumn")),
      "Sort Column|&Exclude Column|&Lock Column|-|&Sort Columns...|Select &Columns...|-|" + views + rest);
  EXPECT_EQ(captionsOf(desk.control<ui::MenuItem>("mnuRow")), "Sort Bin|&Exclude Bin|-|" + rest);
}

TEST(Menus, PopUpByPlaceWithTheirItemsPrepared) {
  struct Case {
    std::int32_t row, col;
    const char *menu, *items;
  };
  // Checked items, the caption of the item that excludes a column, "views" where a sample is selected.
  for (const bool transposed : {false, true}) {
    Desk desk({{0, {{100, {1, 1, 1}}, {200, {1, 0, 0}}, {300, {0, 1, 1}}}}});
    desk.newAnalysis();
    desk.control<ui::CheckBox>("chkShowExcluded").click();
    desk.control<ui::CheckBox>("chkExcludeEmptySamples").click();
    desk.wait();
    desk.chooseAt(0, 11, "mnuExcludeColumn");
    desk.chooseAt(0, 4, "mnuExcludeColumn");
    desk.chooseAt(3, 1, "mnuExcludeBin");
    desk.page().SetLockedCol(12);
    if (transposed) desk.choose("mnuTransposeCell");
    for (const Case& c : {Case{0, 0, "mnuColumn mnuSortColumn", "&Hide Column"},
                          Case{0, 1, "mnuColumn mnuSortColumn", "&Hide Column"},
                          Case{0, 4, "mnuColumn mnuSortColumn", "&Hide Column"},
                          Case{0, 10, "mnuColumn mnuSortColumn", "&Exclude Column views"},
                          Case{0, 11, "mnuColumn mnuSortColumn", "&Exclude Column column views"},
                          Case{0, 12, "mnuColumn mnuSortColumn", "&Exclude Column lock views"},
                          Case{1, 1, "mnuRow mnuSortBin", "&Hide Column bin"},
                          Case{2, 1, "mnuRow mnuSortBin", "&Hide Column"},
                          Case{3, 1, "mnuRow mnuSortBin", "&Hide Column bin"},
                          Case{2, 2, "mnuCell", "&Hide Column"}, Case{2, 9, "mnuCell", "&Hide Column"},
                          Case{2, 10, "mnuCell", "&Exclude Column views"}, Case{2, 0, "", "&Hide Column"}}) {
      std::string shown;
      desk.front.onShowPopup = [&](ui::MenuItem& menu, ui::MenuItem* usual) {
        shown = menu.Name() + (usual == nullptr ? "" : " " + usual->Name());
      };
      transposed ? desk.grid().user().rightClick(c.col, c.row) : desk.grid().user().rightClick(c.row, c.col);
      const std::string at =
          std::to_string(c.row) + "," + std::to_string(c.col) + (transposed ? " transposed" : "");
      EXPECT_EQ(shown, c.menu) << at;
      const auto isChecked = [&](const char* item) { return desk.control<ui::MenuItem>(item).Checked.get(); };
      std::string items = desk.control<ui::MenuItem>("mnuExcludeColumn").Caption;
      if (isChecked("mnuExcludeColumn")) items += " column";
      if (isChecked("mnuLockColumn")) items += " lock";
      if (shown.starts_with("mnuRow") && isChecked("mnuExcludeBin")) items += " bin";
      int views = 0;
      for (const char* item : {"mnuSingleCell", "mnuSingleColumn", "mnuEgramCell", "mnuEgramColumn",
                               "mnuOverlayCell", "mnuOverlayColumn"}) {
        views += desk.control<ui::MenuItem>(item).Enabled ? 1 : 0;
      }
      EXPECT_TRUE(views == 0 || views == 6) << at;
      EXPECT_EQ(items + (views > 0 ? " views" : ""), c.items) << at;
    }
    EXPECT_THAT(desk.host.framework().reports(), IsEmpty());
  }
}

TEST(Menus, DoTheSameFromCellColumnAndRow) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  bool rows = false;
  for (const char* item : {"mnuTransposeCell", "mnuTransposeColumn", "mnuTransposeRow", "mnuTransposeRow"}) {
    desk.choose(item);
    EXPECT_EQ(page.Transpose(), rows = !rows) << item;
  }
  for (const std::string number : {"1", "2", "3"}) {
    auto& clipboard = dynamic_cast<host::KeptClipboard&>(*desk.grid().ports().clipboard);
    clipboard.Text.clear();
    desk.choose("mnuCopy" + number);
    EXPECT_NE(clipboard.Text, "");
    auto& printer = dynamic_cast<host::KeptPrinter&>(*desk.grid().ports().printer);
    for (const auto& [item, blackWhite] : {std::pair("mnuPrintBW", true), {"mnuPrintColor", false}}) {
      printer.Last = {};
      desk.choose(item + number);
      EXPECT_FALSE(printer.Last.rows.empty());
      EXPECT_EQ(printer.Last.isBlackWhite, blackWhite);
    }
    const std::string path = scratch("t" + number);
    desk.front.saveAnswers.emplace_back(host::SaveAnswer{path, 1});
    desk.choose("mnuExport" + number);
    EXPECT_TRUE(std::filesystem::exists(path));
  }
  class Dialog final : public host::StyleDialogPort {
   public:
    void run(host::Looks&) override { ++runs; }
    int runs = 0;
  };
  const auto dialog = std::make_shared<Dialog>();
  desk.grid().ports().styleDialog = dialog;
  for (const char* item : {"mnuFormatCell", "mnuFormatColumn", "mnuFormatRow"}) desk.choose(item);
  EXPECT_EQ(dialog->runs, 3);
  EXPECT_EQ(page.NumRows(), 3);
  EXPECT_THAT(desk.host.framework().reports(), IsEmpty());
}

TEST(Menus, SortWhereTheRightClickWas) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  desk.chooseAt(0, 12, "mnuSortColumn");
  EXPECT_EQ(page.CellText("-3", 1), "0");
  desk.chooseAt(3, 1, "mnuSortBin");
  EXPECT_EQ(page.Key(10), "-3");
}

// The windows that an item opened: definition, and for a sample its caption and what it is shown of.
std::vector<std::string> opened(Desk& desk, const std::string& item) {
  const std::size_t before = desk.host.pages().openPages().size();
  std::vector<std::string> shown;
  const auto listens = desk.host.pages().watch.Shown.connect(
      [&](const host::HostPage& page) { shown.push_back(page.Caption()); });
  desk.choose(item);
  std::vector<std::string> windows;
  for (std::size_t i = before; i < desk.host.pages().openPages().size(); ++i) {
    const auto& page = desk.host.pages().openPages()[i];
    EXPECT_TRUE(page->isShown());
    EXPECT_EQ(shown.at(i - before), page->Caption()) << "shown before it was ready";
    const auto bound = std::dynamic_pointer_cast<KeyedLookup>(page->BoundObject());
    std::string held;
    for (const char* key : {"Result", "SampleData", "1", "2", "3"})
      held += bound->holdsKey(key) ? std::string(" ") + key : "";
    windows.push_back(page->DefinitionName() + held +
                      (page->DefinitionName() == "SingleSample" ? page->Caption() : ""));
    if (page->DefinitionName() == "SingleSample") {
      EXPECT_EQ(page->viewIndex(), 3);
    }
  }
  EXPECT_EQ(shown.size(), windows.size());
  return windows;
}

TEST(Views, OpenForTheSelectedSamples) {
  Desk desk(kScript, {"a", "b  ", "c"});
  desk.newAnalysis();
  desk.host.study().setDisplayViewIndex(2);
  for (const std::string place : {"Cell", "Column"}) {
    desk.grid().user().selectCols(9, 11);
    const auto single = opened(desk, "mnuSingle" + place);
    ASSERT_EQ(single.size(), 2U);
    EXPECT_THAT(single[0], ::testing::MatchesRegex("SingleSample Result SampleData.* - a"));
    EXPECT_THAT(single[1], ::testing::MatchesRegex("SingleSample Result SampleData.* - b"));
    EXPECT_THAT(opened(desk, "mnuEgram" + place), ElementsAre("StackedView 1 2"));
    EXPECT_THAT(opened(desk, "mnuOverlay" + place), ElementsAre("OverlayGraphView 1 2"));
    desk.grid().user().selectCols(1, 3);
    EXPECT_THAT(opened(desk, "mnuSingle" + place), IsEmpty());
    EXPECT_THAT(opened(desk, "mnuEgram" + place), ElementsAre("StackedView"));
    desk.page().HideCols(12, 12, true);
    desk.grid().Redraw(2.0);  // or its going would take it out of the selection
    desk.grid().user().selectCols(12, 12);
    for (const std::string view : {"mnuSingle", "mnuEgram", "mnuOverlay"})
      EXPECT_THAT(opened(desk, view + place), IsEmpty());
    desk.page().HideCols(12, 12, false);
  }
  EXPECT_THAT(desk.host.framework().reports(), IsEmpty());
}

}  // namespace
}  // namespace banddesk::test
