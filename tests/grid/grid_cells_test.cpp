#include <climits>
#include <gtest/gtest.h>

#include "host/grid/grid_control.h"
#include "plugin/base/error.h"

namespace banddesk::host {
namespace {

GridRange block(int left, int top, int right, int bottom) {
  GridRange range;
  range.InitRange(left, top, right, bottom);
  return range;
}

GridStyle stored(GridControl& grid, int row, int col) {
  GridStyle style;
  grid.GridParam().GetData().GetStyleRowCol(row, col, style, StyleMode::Copy, 1);
  return style;
}

TEST(GridCells, EveryTextComesBackAsItWasWritten) {
  GridControl grid("grid");
  int row = 0;
  for (const std::string& text :
       {std::string("-0"), std::string(" 12"), std::string("-2147483648"), std::string("2147483648"),
        std::string("99999999999"), std::string("1e5"), std::string("a\tb\r\nc"), std::string(100000, 'x')}) {
    EXPECT_TRUE(grid.SetValueRange(row, 3, text, 4));
    EXPECT_EQ(grid.GetValue(row, 3), text);
    EXPECT_EQ(grid.GetCurrentCellText(row++, 3), text);
  }
}

TEST(GridCells, PlacesFarOutsideReadAsNothingAndTakeNothing) {
  GridControl grid("grid");
  for (const auto& [row, col] : {std::pair(INT_MAX, INT_MAX), {-1, 2}, {2, -1}}) {
    EXPECT_EQ(grid.GetValue(row, col) + grid.GetUserAttribute(row, col) + grid.GetToolTip(row, col), "");
    EXPECT_FALSE(grid.IsRowHidden(row) || grid.IsColHidden(col));
    EXPECT_EQ(stored(grid, row, col).attributes(), StyleAttributes{});
  }
  EXPECT_FALSE(grid.SetValueRange(-1, 2, "x", 4) || grid.SetValueRange(2, -1, "x", 4));
}

TEST(GridCells, ALineTooFarOutIsRefusedWithAnErrorAndChangesNothing) {
  GridControl grid("grid");
  EXPECT_THROW(grid.SetValueRange(INT_MAX, 1, "x", 4), Error);
  EXPECT_THROW(grid.HideCols(1, INT_MAX, true), Error);
  EXPECT_THROW(grid.SetStyleRange(block(1, 1, 1, INT_MAX), GridStyle{}, StyleMode::Copy), Error);
  EXPECT_FALSE(grid.IsColHidden(1));
  EXPECT_TRUE(grid.SetStyleRange(block(1, 1, 1, INT_MAX), GridStyle{}, StyleMode::Remove));
  EXPECT_TRUE(grid.RemoveRows(1, INT_MAX));
}

TEST(GridCells, TakingGreyOffUncoversTheRegisteredStyle) {
  GridControl grid("grid");
  GridStyle dye;
  dye.SetInterior(0x00FF00);
  StylesMap& map = grid.GridParam().GetStylesMap();
  const std::int32_t id = map.RegisterStyle("dye", dye, -1);
  EXPECT_EQ(map.RegisterStyle("dye", dye, -1), id + 1);
  dye.SetInterior(0x123456);  // the map has its own copy

  GridStyle base;
  base.SetBaseStyle(id);
  GridStyle grey;
  grey.SetInterior(0xC0C0C0);
  grid.SetStyleRange(block(1, 1, 2, 2), base, StyleMode::Override);
  grid.SetStyleRange(block(1, 1, 1, 1), grey, StyleMode::Override);
  EXPECT_EQ(grid.look(1, 1).interior->color, 0xC0C0C0U);
  grey.SetInterior(0x000001);  // whatever the value
  grid.SetStyleRange(block(1, 1, 2, 2), grey, StyleMode::Remove);
  EXPECT_EQ(grid.look(1, 1).interior->color, 0x00FF00U);

  dye.SetInterior(0xFF0000);
  EXPECT_TRUE(map.ChangeRegisteredStyle(id, dye, 0, 0, 4.0));
  EXPECT_FALSE(map.ChangeRegisteredStyle(99, dye, 0, 0, 4.0));
  EXPECT_EQ(grid.look(1, 1).interior->color, 0xFF0000U);
  EXPECT_EQ(grid.look(2, 2).interior->color, 0xFF0000U);
}

TEST(GridCells, HeadersLookAsTheirBaseStyleSaysAlsoAfterItChanged) {
  GridControl grid("grid");
  grid.ColHeaderStyle().SetTextColor(0x11);
  grid.RowHeaderStyle().SetTextColor(0x22);
  EXPECT_EQ(grid.look(0, 3).textColor, 0x11U);
  EXPECT_EQ(grid.look(3, 0).textColor, 0x22U);
  EXPECT_EQ(grid.look(3, 3).textColor, 0x00U);
  const GridStyle kept = grid.ColHeaderStyle();
  grid.ColHeaderStyle().ChangeStyle(grid.RowHeaderStyle(), StyleMode::Copy);
  grid.RowHeaderStyle().ChangeStyle(kept, StyleMode::Copy);
  EXPECT_EQ(grid.look(0, 3).textColor, 0x22U);
  EXPECT_EQ(grid.look(3, 0).textColor, 0x11U);
  GridStyle own;
  own.SetTextColor(0x33);
  grid.SetStyleRange(block(3, 0, 3, 0), own, StyleMode::Override);
  EXPECT_EQ(grid.look(0, 3).textColor, 0x33U);
}

TEST(GridCells, TheLockRefusesValuesAndStylesOfReadOnlyCellsAndNothingElse) {
  GridControl grid("grid");
  grid.SetRowCount(2);
  grid.SetColCount(2);
  GridStyle readOnly;
  readOnly.SetReadOnly(true);
  GridStyle base;
  base.SetBaseStyle(grid.GridParam().GetStylesMap().RegisterStyle("locked", readOnly, -1));
  grid.SetStyleRange(block(1, 1, 1, 1), base, StyleMode::Override);  // by its registered style
  grid.SetValueRange(1, 1, "kept", 4);
  EXPECT_TRUE(grid.SetValueRange(1, 1, "kept", 4));

  grid.SetLockReadOnly(true);
  GridStyle changed;
  changed.SetValue("new");
  changed.SetTextColor(5);
  const LineCell line[] = {{1, 8, -1}, {2, 8, -1}};
  EXPECT_FALSE(grid.SetValueRange(1, 1, "new", 4));
  EXPECT_FALSE(grid.GridParam().GetData().StoreStyleRowCol(1, 1, changed, StyleMode::Copy, 1));
  EXPECT_FALSE(grid.SetStyleRange(block(1, 1, 2, 1), changed, StyleMode::Override));
  LineStep step{};
  grid.StoreLine(Axis::Rows, 1, line, step);
  EXPECT_EQ(grid.GetValue(1, 1), "kept");
  EXPECT_EQ(grid.look(1, 1).textColor, 0U);
  EXPECT_EQ(grid.GetValue(1, 2), "8");  // its neighbour took all of it
  EXPECT_EQ(grid.look(1, 2).textColor, 5U);
  grid.SetToolTip(1, 1, "tip");
  grid.SetUserAttribute(1, 1, "key");
  EXPECT_EQ(grid.GetToolTip(1, 1) + grid.GetUserAttribute(1, 1), "tipkey");
  EXPECT_TRUE(grid.HideRows(1, 1, true) && grid.SetColWidth(1, 1, 9) && grid.RemoveRows(1, 1));
  EXPECT_EQ(grid.GetValue(1, 1), "");
}

}  // namespace
}  // namespace banddesk::host
