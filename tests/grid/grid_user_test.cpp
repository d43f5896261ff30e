#include <gtest/gtest.h>

#include "host/grid/grid_control.h"
#include "plugin/base/error.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

// Writes down the events of a grid and refuses those that it is told to.
class EventLog {
 public:
  explicit EventLog(GridControl& grid) {
    const auto keep = [this](Connection connection) { connections_.push_back(std::move(connection)); };
    keep(grid.OnLButtonDown.connect([this] { note("down"); }));
    keep(grid.OnLButtonUp.connect([this] { note("up"); }));
    keep(grid.OnTrackColWidth.connect([this](double col, double& value) { note("track", {col}, &value); }));
    keep(grid.OnTrackColWidthEnd.connect([this, &grid](double col, double width) {
      note("tracked", {col, width, static_cast<double>(grid.colWidth(static_cast<int>(col)))});
    }));
    keep(grid.OnSelDragColsStart.connect([this](double first, double last, double& value) {
      note("start", {first, last}, &value);
    }));
    keep(grid.OnSelDragColsMove.connect([this](double first, double last, double target, double& value) {
      note("move", {first, last, target}, &value);
    }));
    keep(grid.OnSelDragColsDrop.connect([this, &grid](double first, double last, double target) {
      note("drop", {first, last, target});
      HeaderAtDrop = grid.GetValue(0, 1);
    }));
    keep(grid.OnSelDragRowsDrop.connect([this](double first, double last, double target) {
      note("rows", {first, last, target});
    }));
    keep(grid.OnRButtonClickedRowCol.connect([this](double row, double col) { note("right", {row, col}); }));
    keep(grid.OnLButtonDblClkRowCol.connect([this](double row, double col) { note("double", {row, col}); }));
    keep(grid.Repaint.connect([this] { ++Repaints; }));
  }

  std::string taken() { return std::exchange(text_, {}); }
  std::string Refuses;
  std::string HeaderAtDrop;
  int Repaints = 0;

 private:
  void note(const std::string& event, const std::vector<double>& numbers = {}, double* value = nullptr) {
    text_ += event;
    for (const double number : numbers) text_ += ' ' + generalText(number);
    text_ += ';';
    if (value != nullptr && event == Refuses) *value = 0;
  }
  std::string text_;
  Connections connections_;
};

std::string header(const GridControl& grid) {
  std::string texts;
  for (int col = 1; col <= grid.ColCount(); ++col) texts += grid.GetValue(0, col);
  return texts;
}

void letters(GridControl& grid) {
  grid.SetRowCount(3);
  grid.SetColCount(6);
  for (int col = 1; col <= 6; ++col)
    grid.SetValueRange(0, col, std::string(1, static_cast<char>('a' + col - 1)), 4);
  grid.SetAllowDragCols(true);
}

TEST(GridUser, SelectionsCoverCellsOfTheTableOnly) {
  GridControl grid("grid");
  grid.SetRowCount(4);
  grid.SetColCount(3);
  const RangeList& list = grid.GridParam().GetRangeList();
  const auto last = [&] {
    const GridRange range = list.Item(list.GetCount() - 1);
    return Block{range.Top, range.Left, range.Bottom, range.Right};
  };
  EXPECT_EQ(list.GetCount(), 0);
  grid.user().selectCols(2, 1);
  EXPECT_EQ(last(), (Block{1, 1, 4, 2}));
  grid.user().selectRows(0, 2, true);
  EXPECT_EQ(last(), (Block{1, 1, 2, 3}));
  grid.user().selectCells(3, 9, 2, 2, true);
  EXPECT_EQ(last(), (Block{2, 2, 3, 3}));
  EXPECT_EQ(list.GetCount(), 3);
  EXPECT_THROW(list.Item(3), Error);
  grid.RemoveRows(1, 2);
  EXPECT_EQ(list.GetCount(), 2) << "the rows of one range are gone";
  grid.user().rightClick(1, 1);
  EXPECT_EQ(list.GetCount(), 2);
  grid.user().clickCell(1, 1);
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(std::pair(grid.currentRow(), grid.currentCol()), std::pair(1, 1));
}

TEST(GridUser, DraggedColumnsTakeCellsAndWidthsAlongBeforeTheDrop) {
  struct Case {
    int first, last, target;
    const char* wanted;
    int narrowAfter;  // where the narrow column b stands then
  };
  const Case cases[] = {{2, 3, 5, "adbcef", 3}, {5, 6, 2, "aefbcd", 4}, {2, 3, 3, "abcdef", 2}};
  for (const Case& each : cases) {
    GridControl grid("grid");
    letters(grid);
    grid.SetColWidth(2, 2, 22);
    EventLog log(grid);
    grid.user().selectCols(each.first, each.last);
    EXPECT_TRUE(grid.user().dragColumns(each.first, each.last, each.target));
    EXPECT_EQ(header(grid), each.wanted);
    EXPECT_EQ(log.HeaderAtDrop, header(grid).substr(0, 1));
    EXPECT_EQ(grid.colWidth(each.narrowAfter), 22) << each.wanted;
    const std::string span = std::to_string(each.first) + ' ' + std::to_string(each.last);
    const std::string way = span + ' ' + std::to_string(each.target) + ';';
    EXPECT_EQ(log.taken(), "start " + span + ";move " + way + "drop " + way);
  }
}

TEST(GridUser, ADragThatIsNotAllowedMovesNothing) {
  struct Case {
    const char* what;
    bool allowed;
    bool selected;
    int target;
    const char* refused;
    const char* events;
  };
  const Case cases[] = {{"not allowed by the grid", false, true, 5, "", ""},
                        {"not selected", true, false, 5, "", ""},
                        {"before the header", true, true, 0, "", ""},
                        {"behind the end", true, true, 8, "", ""},
                        {"refused at the start", true, true, 5, "start", "start 2 3;"},
                        {"refused on the way", true, true, 5, "move", "start 2 3;move 2 3 5;"}};
  for (const Case& each : cases) {
    GridControl grid("grid");
    letters(grid);
    grid.SetAllowDragCols(each.allowed);
    EventLog log(grid);
    log.Refuses = each.refused;
    each.selected ? grid.user().selectCols(2, 3) : grid.user().selectCells(1, 2, 2, 3);
    EXPECT_FALSE(grid.user().dragColumns(2, 3, each.target)) << each.what;
    EXPECT_EQ(header(grid), "abcdef") << each.what;
    EXPECT_EQ(log.taken(), each.events) << each.what;
  }
}

TEST(GridUser, AWidthDragComesAsPressTrackEndAndRelease) {
  GridControl grid("grid");
  letters(grid);
  EventLog log(grid);
  EXPECT_TRUE(grid.user().trackColumnWidth(2, 71));
  EXPECT_EQ(log.taken(), "down;track 2;tracked 2 71 71;up;");
  log.Refuses = "track";
  EXPECT_FALSE(grid.user().trackColumnWidth(2, 90));
  EXPECT_EQ(log.taken(), "down;track 2;up;");
  EXPECT_EQ(grid.colWidth(2), 71);
  EXPECT_FALSE(grid.GridPressState());
  grid.user().rightClick(0, 4);
  grid.user().doubleClick(3, 0);
  EXPECT_EQ(log.taken(), "right 0 4;double 3 0;");
}

TEST(GridUser, TheLiveTextIsWhatIsTypedThere) {
  GridControl grid("grid");
  letters(grid);
  grid.SetValueRange(1, 1, "old", 4);
  EXPECT_FALSE(grid.user().beginEdit(0, 1)) << "headers are not typed into";
  ASSERT_TRUE(grid.user().beginEdit(1, 1));
  EXPECT_EQ(grid.GetCurrentCellText(1, 1), "old");
  grid.user().type("new");
  EXPECT_EQ(grid.GetCurrentCellText(1, 1) + grid.GetValue(1, 1) + grid.GetCurrentCellText(1, 2), "newold");
  EXPECT_FALSE(grid.user().endEdit(false));
  EXPECT_EQ(grid.GetCurrentCellText(1, 1), "old");

  grid.user().beginEdit(1, 1);
  grid.user().type("kept");
  grid.SetCurrentCell(2, 2);  // leaving the cell keeps what was typed
  EXPECT_EQ(grid.GetValue(1, 1), "kept");

  GridStyle readOnly;
  readOnly.SetReadOnly(true);
  GridRange range;
  range.InitRange(1, 1, 1, 1);
  grid.SetStyleRange(range, readOnly, StyleMode::Override);
  EXPECT_FALSE(grid.LockReadOnly());
  EXPECT_FALSE(grid.user().beginEdit(1, 1)) << "a read-only cell refuses the user whatever the lock";

  grid.user().beginEdit(2, 2);
  grid.user().type("lost");
  grid.RemoveRows(1, 1);  // its line went away under it
  EXPECT_FALSE(grid.user().isEditing());
}

TEST(GridUser, ARedrawHappensOnlyWhenNothingHoldsItBack) {
  GridControl grid("grid");
  EventLog log(grid);
  EXPECT_FALSE(grid.LockUpdate(true));
  EXPECT_TRUE(grid.LockUpdate(true));
  grid.Redraw(2.0);
  EXPECT_TRUE(grid.LockUpdate(false));  // a flag, no counter
  EXPECT_EQ(log.Repaints, 0);
  grid.SetGridEnabledRedraw(false);
  grid.Redraw(2.0);
  EXPECT_EQ(log.Repaints, 0);
  grid.SetGridEnabledRedraw(true);
  EXPECT_EQ(log.Repaints, 0);
  grid.Redraw(2.0);
  EXPECT_EQ(log.Repaints, 1);
}

TEST(GridUser, WhatAPieceOfWorkHidesIsSelectedNoMore) {
  struct Case {
    const char* what;
    Block selected;
    Block hidden;  // its rows, or its columns where it has no row
    std::vector<Block> left;
    Block current;  // of one cell; it was at row 3, column 2
  };
  const Case cases[] = {
      {"in the middle", {2, 1, 6, 5}, {3, 0, 4, 0}, {{2, 1, 2, 5}, {5, 1, 6, 5}}, {5, 2, 5, 2}},
      {"all of it", {2, 1, 3, 5}, {2, 0, 5, 0}, {}, {6, 2, 6, 2}},
      {"up to the end", {3, 1, 8, 5}, {3, 0, 8, 0}, {}, {2, 2, 2, 2}},
      {"beside it", {5, 2, 6, 3}, {7, 0, 8, 0}, {{5, 2, 6, 3}}, {3, 2, 3, 2}},
      {"rows of a whole column", {1, 2, 8, 2}, {4, 0, 6, 0}, {{1, 2, 8, 2}}, {3, 2, 3, 2}},
      {"a column", {1, 2, 8, 3}, {0, 2, 0, 2}, {{1, 3, 8, 3}}, {3, 3, 3, 3}}};
  for (const Case& each : cases) {
    GridControl grid("grid");
    grid.SetRowCount(8);
    grid.SetColCount(5);
    grid.SetCurrentCell(3, 2);
    grid.user().selectCells(each.selected.top, each.selected.left, each.selected.bottom, each.selected.right);
    const bool isLocked = grid.LockUpdate(true);
    // As a sort does it: all are shown and some are hidden again, and only what it leaves counts.
    grid.HideRows(1, 8, true);
    grid.Redraw(2.0);
    grid.HideRows(1, 8, false);
    if (each.hidden.bottom > 0)
      grid.HideRows(each.hidden.top, each.hidden.bottom, true);
    else
      grid.HideCols(each.hidden.left, each.hidden.right, true);
    grid.LockUpdate(isLocked);
    EXPECT_EQ(grid.selection().blocks(), std::vector{each.selected}) << each.what;
    grid.Redraw(2.0);
    EXPECT_EQ(grid.selection().blocks(), each.left) << each.what;
    EXPECT_EQ(std::pair(grid.currentRow(), grid.currentCol()), std::pair(each.current.top, each.current.left))
        << each.what;
  }
}

TEST(GridUser, ANewCurrentCellScrollsIntoTheViewWithoutAnEvent) {
  GridControl grid("grid");
  grid.SetRowCount(1000);
  grid.SetColCount(50);
  grid.setViewSize(30, 10);
  EventLog log(grid);
  grid.SetCurrentCell(500, 20);
  EXPECT_EQ(std::pair(grid.TopRow(), grid.LeftCol()), std::pair(471, 11));
  grid.SetCurrentCell(0, 0);
  EXPECT_EQ(std::pair(grid.TopRow(), grid.LeftCol()), std::pair(471, 11)) << "headers are always in sight";
  grid.SetCurrentCell(2000, 5);
  EXPECT_EQ(std::pair(grid.currentRow(), grid.currentCol()), std::pair(1000, 5)) << "never beyond the table";
  EXPECT_EQ(grid.LeftCol(), 5);
  grid.SetRowCount(0);
  grid.SetRowCount(3000);
  EXPECT_EQ(grid.currentRow(), 2000) << "as in a table that is made anew";
  grid.SetTopRow(7);
  EXPECT_EQ(grid.TopRow(), 7);
  EXPECT_EQ(log.taken(), "");
  EXPECT_EQ(log.Repaints, 0);
}

}  // namespace
}  // namespace banddesk::host
