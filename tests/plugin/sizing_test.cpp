// The widths of columns: stored, fitted, dragged.
#include <gtest/gtest.h>

#include "tests/plugin/desk.h"
#include "tests/plugin/guarded_grid.h"

namespace banddesk::test {
namespace {

const Script kScript{{0, {{100, {1, 0, 2}}, {200, {0, 1, 0}}}}, {1, {{300, {0, 5, 1}}}}};
constexpr std::int32_t kDefault = 40;

struct Widths {
  explicit Widths(bool isGuarded = false)
      : page((isGuarded ? desk.guardGrids() : void(), desk.newAnalysis())) {
    auto definition = std::make_shared<GridColumnDefinition>();
    definition->DefaultWidth = kDefault;
    column("6").Definition = definition;
  }
  GridColumn& column(const std::string& key) { return *page.ColumnSet(key)->Columns.Item(key); }

  Desk desk{kScript};
  IAFLPResultsPage& page;
  host::GridControl& grid = desk.grid();
};

TEST(Widths, AreThoseStoredOrFitTheLongestText) {
  Widths w;
  const std::int32_t fitted = w.grid.colWidth(10);
  w.column("9").Width = 77;
  w.column("-2").Width = 88;
  w.column("10").Width = 99;
  w.column("10").IsVisible = false;
  for (const char* key : {"7", "-1", "-3"}) w.page.SetCellText(key, 2, "a text of some length");
  const std::int32_t hidden = w.grid.colWidth(6);
  w.page.UserControl_Resize(600, 400);
  EXPECT_EQ(w.grid.colWidth(5), 77);
  EXPECT_EQ(w.grid.colWidth(11), 88);
  EXPECT_EQ(w.grid.colWidth(6), hidden) << "a column that is not visible is left alone";
  const std::int32_t wide = w.grid.colWidth(10);
  EXPECT_GT(wide, 2 * fitted);
  EXPECT_EQ(w.grid.colWidth(12), wide);
  EXPECT_EQ(w.grid.colWidth(2), wide);
  w.page.SetTranspose(true);
  EXPECT_EQ(w.grid.colWidth(2), wide) << "the whole table fits";
  EXPECT_LT(w.grid.colWidth(1), wide);
}

TEST(Widths, OfADragAreThoseOfTheColumnsKindAndTheNextStartIsRefused) {
  Widths w;
  for (const std::int32_t col : {1, 10}) {
    const std::int32_t before = w.grid.colWidth(col);
    w.grid.user().pressLeft();
    EXPECT_TRUE(w.grid.user().startColumnTrack(col)) << col;
    w.grid.user().endColumnTrack(col, 300);
    EXPECT_EQ(w.page.ColumnSet(w.page.Key(col))->Columns.Item(w.page.Key(col))->Width, 300)
        << "not stored at once";
    w.grid.user().doubleClick(0, col);
    EXPECT_EQ(w.page.Bin(1), 1) << "the double click that ended the drag sorted";
    w.grid.user().releaseLeft();
    EXPECT_EQ(w.grid.colWidth(col), col == 1 ? kDefault : before);
    EXPECT_EQ(w.column("6").Width, kDefault);
    EXPECT_EQ(w.column("-1").Width, -1);
    w.grid.user().releaseLeft();
    EXPECT_EQ(w.grid.colWidth(col), col == 1 ? kDefault : before);
    w.grid.user().pressLeft();
    EXPECT_FALSE(w.grid.user().startColumnTrack(5)) << "whatever column it concerns";
    EXPECT_TRUE(w.grid.user().startColumnTrack(5)) << "only one start";
  }
  w.grid.user().pressLeft();
  w.grid.user().doubleClick(0, 12);
  EXPECT_EQ(w.page.Bin(1), 2) << "the press ended what the drag had blocked";
}

TEST(Widths, CannotBeDraggedOfAHiddenColumnOrWhileTheGridSelects) {
  Widths w(true);
  bool& selectsOrDrags = w.desk.control<GuardedGrid>("grdAFLP").selectsOrDrags;
  w.page.HideCols(4, 4, true);
  w.grid.user().pressLeft();
  EXPECT_FALSE(w.grid.user().startColumnTrack(4));
  EXPECT_TRUE(w.grid.user().startColumnTrack(5));
  selectsOrDrags = true;
  w.grid.user().pressLeft();
  selectsOrDrags = false;
  EXPECT_FALSE(w.grid.user().startColumnTrack(5));
  EXPECT_TRUE(w.grid.user().startColumnTrack(5));
  // A press forgets a drag that never ended.
  w.grid.user().endColumnTrack(5, 300);
  w.grid.user().pressLeft();
  w.grid.user().releaseLeft();
  EXPECT_EQ(w.column("9").Width, 300);
}

TEST(Widths, OfATransposedGridAreFittedAndNotStored) {
  Widths w;
  w.page.SetTranspose(true);
  const std::int32_t before = w.grid.colWidth(1);
  w.grid.user().pressLeft();
  w.grid.user().startColumnTrack(1);
  w.grid.user().endColumnTrack(1, 300);
  w.grid.user().releaseLeft();
  EXPECT_EQ(w.grid.colWidth(1), before);
  EXPECT_EQ(w.column("6").Width, -1);
}

}  // namespace
}  // namespace banddesk::test
