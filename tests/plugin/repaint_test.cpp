// What every work on the grid leaves behind: repainted once where nobody had locked it, not at all where
// somebody had, and lock, write protection and mouse pointer as they were.
#include <gtest/gtest.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

const Script kScript{{0, {{100, {1, 0, 2}}, {200, {0, 1, 0}}, {250, {1, 1, 1}}}}, {1, {{300, {0, 5, 1}}}}};

enum class Pointer { Stays, Hourglass };

struct Work {
  const char* name;
  std::function<void(Desk&)> run;
  int repaints;  // of an unlocked grid
  Pointer pointer;
};

std::vector<Work> works() {
  const auto click = [](const char* box) {
    return [box](Desk& desk) { desk.control<ui::CheckBox>(box).click(), desk.wait(); };
  };
  const auto menu = [](std::int32_t row, std::int32_t col, const char* item) {
    return [=](Desk& desk) { desk.chooseAt(row, col, item); };
  };
  const auto sortPage = [](bool accepts) {
    return [accepts](Desk& desk) {
      desk.front.onSortColumns = [=](host::ColumnSorting&) { return accepts; };
      desk.choose("mnuSortColumns");
    };
  };
  const auto exportTable = [](Desk& desk) {
    desk.front.saveAnswers.emplace_back(host::SaveAnswer{scratch("t.csv"), 1});
    desk.page().Export();
  };
  const auto selectColumns = [](Desk& desk) {
    desk.front.onSelectColumns = [](host::ColumnSelection&) { return true; };
    desk.chooseAt(0, 10, "mnuSelectColumns");
  };
  return {
      {"timer", click("chkShowExcluded"), 1, Pointer::Hourglass},
      {"Analyze", [](Desk& desk) { desk.page().Analyze(true); }, 1, Pointer::Hourglass},
      {"Transpose", [](Desk& desk) { desk.page().SetTranspose(true); }, 1, Pointer::Hourglass},
      {"sample axis", [](Desk& desk) { desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1; }, 1,
       Pointer::Hourglass},
      {"SortCol", [](Desk& desk) { desk.page().SortCol(1); }, 1, Pointer::Stays},
      {"SortRow", [](Desk& desk) { desk.page().SortRow(1); }, 1, Pointer::Stays},
      {"resize", [](Desk& desk) { desk.page().UserControl_Resize(500, 700); }, 1, Pointer::Stays},
      {"sort page", sortPage(true), 1, Pointer::Stays},
      {"sort page cancelled", sortPage(false), 0, Pointer::Stays},
      {"column page", selectColumns, 2, Pointer::Hourglass},
      {"exclude bin", menu(2, 1, "mnuExcludeBin"), 1, Pointer::Hourglass},
      {"exclude column", menu(0, 11, "mnuExcludeColumn"), 1, Pointer::Hourglass},
      {"styles", menu(2, 11, "mnuFormatCell"), 1, Pointer::Stays},
      {"copy", [](Desk& desk) { desk.page().CopyGrid(); }, 1, Pointer::Hourglass},
      {"print", [](Desk& desk) { desk.page().PrintGrid(true); }, 1, Pointer::Hourglass},
      {"export", exportTable, 1, Pointer::Hourglass},
      {"spreadsheet", [](Desk& desk) { desk.page().ExportExcel(scratch("t.xlsx")); }, 2, Pointer::Hourglass},
      {"Init", [](Desk& desk) { desk.page().Init(desk.analysis().SampleGrid); }, 1, Pointer::Stays},
      {"Bins", [](Desk& desk) { desk.page().Bins(); }, 0, Pointer::Stays},
      {"locked column", [](Desk& desk) { desk.page().SetLockedCol(2); }, 0, Pointer::Stays},
      {"unlocked column", [](Desk& desk) { desk.page().SetLockedCol(0); }, 0, Pointer::Stays},
      {"text", [](Desk& desk) { desk.page().SetCellText("6", 1, "x"); }, 0, Pointer::Stays},
      {"dye", [](Desk& desk) { desk.host.study().setDyeColor(1, 0x123456); }, 0, Pointer::Stays},
  };
}

TEST(Repainting, EndsEveryWorkOnceAndPutsLockProtectionAndPointerBack) {
  for (const Work& work : works()) {
    for (const bool locked : {false, true}) {
      Desk desk(kScript);
      desk.newAnalysis();
      SCOPED_TRACE(std::string(work.name) + (locked ? " locked" : ""));
      int repaints = 0, pointers = 0;
      const auto counts = desk.grid().Repaint.connect([&] { ++repaints; });
      desk.host.platform().SetMousePointer(5);
      const auto hourglasses = desk.host.platform().PointerChanged.connect(
          [&](std::int32_t pointer) { pointers += pointer == 11 ? 1 : 0; });
      desk.grid().LockUpdate(locked);
      desk.grid().SetLockReadOnly(!locked);
      work.run(desk);
      EXPECT_EQ(repaints, locked ? 0 : work.repaints);
      EXPECT_EQ(desk.grid().isLocked(), locked);
      EXPECT_EQ(desk.grid().LockReadOnly(), !locked);
      EXPECT_TRUE(desk.grid().GridEnabledRedraw());
      EXPECT_EQ(desk.host.platform().MousePointer(), 5);
      EXPECT_EQ(pointers > 0, work.pointer == Pointer::Hourglass);
      EXPECT_TRUE(desk.host.framework().reports().empty());
    }
  }
}

// What the progress indicator sees of long work: the grid is locked for painting and open for writing, and
// the pointer is the hourglass. Where it ends, the indicator ends too.
TEST(Repainting, KeepsTheGridLockedWhileItWorks) {
  for (const Work& work : works()) {
    Desk desk(kScript);
    desk.newAnalysis();
    desk.grid().SetLockReadOnly(true);
    std::vector<double> seen;
    const auto follows = desk.host.progress().Changed.connect([&](const host::HostProgress& progress) {
      seen.push_back(progress.Position());
      EXPECT_TRUE(progress.Position() == 0 || desk.grid().isLocked()) << work.name;
    });
    work.run(desk);
    EXPECT_TRUE(seen.empty() || seen.back() == 0) << work.name;
  }
}

TEST(Repainting, LeavesAPageThatOpensUnlockedUnderItsFormerPointer) {
  Desk desk(kScript);
  desk.newAnalysis();
  const auto analysis = desk.host.study().Study()->AFLPs.Item(1);
  desk.host.pages().endAll();
  desk.host.platform().SetMousePointer(5);
  desk.host.service().OpenAFLP(analysis);
  EXPECT_FALSE(desk.grid().isLocked());
  EXPECT_TRUE(desk.grid().LockReadOnly() && desk.grid().AllowDragCols() && !desk.grid().AllowDragRows());
  EXPECT_FALSE(desk.grid().RowHeadersVisible());
  EXPECT_EQ(desk.host.platform().MousePointer(), 5);
}

}  // namespace
}  // namespace banddesk::test
