// The grid's view, driven by mouse and keyboard as the user does it.
#include "desktop/grid/grid_view.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <set>

#include "desktop/grid/cell_colours.h"
#include "desktop/grid/qt_text_measure.h"
#include "desktop/grid/table_copy.h"
#include "plugin/base/numbers.h"

namespace banddesk::desktop {
namespace {

host::GridPorts portsOfDesktop() {
  host::GridPorts ports;
  ports.clipboard = std::make_shared<QtClipboard>();
  return ports;
}

// A table of 40 rows and 12 columns, each cell named after its place, in a view of 500 x 300.
class GridViewTest : public testing::Test {
 protected:
  GridViewTest() {
    grid.SetRowCount(40);
    grid.SetColCount(12);
    grid.SetColWidth(0, 12, 60);
    for (int row = 0; row <= 40; ++row) {
      for (int col = 0; col <= 12; ++col) {
        grid.SetValueRange(row, col, std::string(1, static_cast<char>('A' + col)) + std::to_string(row), 4);
      }
    }
    const auto note = [this](const char* what) {
      return [this, what] { events += std::string(what) + ';'; };
    };
    connections.push_back(grid.OnLButtonDown.connect(note("down")));
    connections.push_back(grid.OnLButtonUp.connect(note("up")));
    connections.push_back(grid.OnTrackColWidth.connect([this](double col, double& value) {
      events += "track " + generalText(col) + ';';
      if (refusesTrack) value = 0;
    }));
    connections.push_back(grid.OnTrackColWidthEnd.connect([this](double col, double width) {
      events += "tracked " + generalText(col) + ' ' + generalText(width) + ';';
    }));
    connections.push_back(grid.OnSelDragColsStart.connect([this](double first, double last, double&) {
      events += "start " + generalText(first) + ' ' + generalText(last) + ';';
    }));
    connections.push_back(
        grid.OnSelDragColsMove.connect([this](double, double, double target, double& value) {
          events += "move " + generalText(target) + ';';
          if (target > boundary) value = 0;
        }));
    connections.push_back(grid.OnSelDragColsDrop.connect(
        [this](double, double, double target) { events += "drop " + generalText(target) + ';'; }));
    connections.push_back(grid.OnRButtonClickedRowCol.connect([this](double row, double col) {
      events += "right " + generalText(row) + ' ' + generalText(col) + ';';
    }));
    connections.push_back(grid.OnLButtonDblClkRowCol.connect([this](double row, double col) {
      events += "double " + generalText(row) + ' ' + generalText(col) + ';';
    }));
    view.userAction = [this](const auto& action) {
      ++userActs;
      action();
    };
    view.resize(500, 300);
    view.show();
    settle();
    events.clear();
  }

  static void settle() { QCoreApplication::processEvents(); }
  QPoint at(int row, int col) { return view.cellRect(row, col).center(); }
  QPoint behind(int row, int col) { return at(row, col) + QPoint(5, 0); }
  QPoint borderOf(int col) { return {view.cellRect(0, col).right(), view.cellRect(0, col).center().y()}; }
  void press(QPoint pixel, Qt::KeyboardModifiers keys = {}) {
    QTest::mousePress(view.viewport(), Qt::LeftButton, keys, pixel);
  }
  void move(QPoint pixel) {
    QMouseEvent event(QEvent::MouseMove, pixel, view.viewport()->mapToGlobal(pixel), Qt::NoButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view.viewport(), &event);
  }
  void release(QPoint pixel) { QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, pixel); }
  void drag(QPoint from, QPoint to, Qt::KeyboardModifiers keys = {}) {
    press(from, keys);
    move((from + to) / 2);
    move(to);
    release(to);
  }
  void doubleClick(QPoint pixel) {
    press(pixel);
    release(pixel);
    QMouseEvent event(QEvent::MouseButtonDblClick, pixel, view.viewport()->mapToGlobal(pixel), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view.viewport(), &event);
    release(pixel);
  }
  void click(QPoint pixel, Qt::KeyboardModifiers keys = {}) { drag(pixel, pixel, keys); }
  void key(Qt::Key code, Qt::KeyboardModifiers keys = {}) { QTest::keyClick(&view, code, keys); }

  std::string selection() const {
    std::string text;
    for (const host::Block& block : grid.selection().blocks()) {
      for (const int number : {block.top, block.left, block.bottom, block.right})
        text += std::to_string(number) + ' ';
      text.back() = ';';
    }
    return text;
  }
  std::string current() const { return grid.GetValue(grid.currentRow(), grid.currentCol()); }
  std::string taken() { return std::exchange(events, {}); }

  host::GridControl grid{"grid", portsOfDesktop()};
  GridView view{grid};
  std::string events;
  bool refusesTrack = false;
  double boundary = 100;
  int userActs = 0;
  Connections connections;
};

TEST_F(GridViewTest, DraggingSelectsWhatItPassesAndAPlainClickSelectsNothing) {
  drag(at(2, 1), at(4, 3));
  EXPECT_EQ(selection(), "2 1 4 3;");
  drag(at(7, 4), at(6, 2), Qt::ControlModifier);
  EXPECT_EQ(selection(), "2 1 4 3;6 2 7 4;");
  click(at(8, 5), Qt::ShiftModifier);
  EXPECT_EQ(selection(), "2 1 4 3;7 4 8 5;") << "the block begun last is pulled on";
  click(at(3, 3));
  EXPECT_EQ(selection() + current(), "D3");
  EXPECT_EQ(userActs, 0);
}

TEST_F(GridViewTest, HeadersSelectWholeLines) {
  drag(at(0, 2), at(0, 4));
  EXPECT_EQ(selection(), "1 2 40 4;");
  click(at(0, 5), Qt::ControlModifier);
  EXPECT_EQ(selection(), "1 2 40 4;1 5 40 5;");
  click(at(3, 0));
  drag(at(3, 0), at(5, 0));
  EXPECT_EQ(selection(), "3 1 5 12;");
  click(at(2, 0), Qt::ShiftModifier);
  EXPECT_EQ(selection(), "2 1 3 12;");
  click(at(0, 0));
  EXPECT_EQ(selection(), "1 1 40 12;");
  EXPECT_EQ(current(), "B1") << "headers leave the current cell alone";
}

TEST_F(GridViewTest, AWidthDragComesInOrderAndCanBeRefused) {
  const QPoint from = borderOf(2);
  drag(from, from + QPoint(25, 0));
  EXPECT_EQ(taken(), "down;track 2;tracked 2 85;up;");
  EXPECT_EQ(std::pair(grid.colWidth(2), userActs), std::pair(85, 1));
  click(borderOf(2));
  EXPECT_EQ(taken(), "down;track 2;up;") << "nothing was sized";
  doubleClick(borderOf(2));
  EXPECT_TRUE(taken().ends_with("down;track 2;tracked 2 85;up;")) << "a double click sizes, it does not sort";
  refusesTrack = true;
  drag(borderOf(2), borderOf(2) + QPoint(40, 0));
  EXPECT_EQ(taken(), "down;track 2;up;");
  EXPECT_EQ(grid.colWidth(2), 85);
  EXPECT_EQ(selection(), "");

  grid.SetColHeadersVisible(false);
  grid.Redraw(2.0);
  refusesTrack = false;
  const QRect topmost = view.cellRect(1, 3);
  drag({topmost.right(), topmost.center().y()}, {topmost.right() - 10, topmost.center().y()});
  EXPECT_EQ(taken(), "down;track 3;tracked 3 50;up;") << "without headers the topmost row serves";
}

TEST_F(GridViewTest, SelectedColumnsAreDraggedStepByStepAsFarAsTheyMay) {
  grid.SetAllowDragCols(true);
  boundary = 5;
  drag(at(0, 2), at(0, 3));
  taken();
  press(at(0, 2));
  EXPECT_EQ(taken(), "down;");
  move(behind(0, 4));
  EXPECT_EQ(taken(), "start 2 3;move 5;") << "told when it happens, not at the end";
  move(behind(0, 6));
  EXPECT_EQ(view.viewport()->cursor().shape(), Qt::ForbiddenCursor);
  release(behind(0, 6));
  EXPECT_EQ(taken(), "move 7;up;");
  EXPECT_EQ(grid.GetValue(0, 2), "C0");
  drag(at(0, 3), at(0, 1));
  EXPECT_EQ(taken(), "down;start 2 3;move 2;move 1;drop 1;up;");
  EXPECT_EQ(grid.GetValue(0, 1) + grid.GetValue(0, 2) + selection(), "C0D01 1 40 2;");
  EXPECT_EQ(userActs, 1);
  press(at(0, 1));
  move(at(0, 4));
  key(Qt::Key_Escape);
  release(at(0, 4));
  EXPECT_EQ(grid.GetValue(0, 1), "C0") << "given up";
  click(at(0, 2));
  EXPECT_EQ(selection(), "1 2 40 2;") << "a click without a drag selects the one column";
}

TEST_F(GridViewTest, ARightClickAndTheMenuKeyLeaveSelectionAndCurrentCellAlone) {
  drag(at(2, 2), at(4, 3));
  taken();
  QTest::mouseClick(view.viewport(), Qt::RightButton, {}, at(0, 4));
  EXPECT_EQ(view.menuPosition(), view.viewport()->mapToGlobal(at(0, 4)));
  key(Qt::Key_Menu);
  EXPECT_EQ(taken(), "right 0 4;right 2 2;");
  EXPECT_EQ(selection() + current(), "2 2 4 3;C2");
  doubleClick(at(0, 4));
  EXPECT_TRUE(taken().ends_with("down;double 0 4;up;"));
  EXPECT_EQ(userActs, 1);
}

TEST_F(GridViewTest, WhateverIsFrozenHiddenOrScrolledEveryPixelLeadsToItsCellAndBack) {
  const auto holds = [this] {
    const auto small = [](int end) { return *rc::gen::inRange(0, end); };
    grid.SetFrozenRows(small(6), 0);
    grid.SetFrozenCols(small(5), 0);
    grid.HideRows(1, 40, false);
    grid.HideCols(1, 12, false);
    for (int i = small(8); i > 0; --i) {
      grid.HideRows(1 + small(40), 1 + small(40), true);
      grid.HideCols(1 + small(12), 1 + small(6), true);
    }
    grid.SetColHeadersVisible(*rc::gen::arbitrary<bool>());
    grid.SetColWidth(1, 12, 30 + small(60));
    grid.SetTopRow(1 + small(40));
    grid.SetLeftCol(1 + small(12));
    grid.Redraw(2.0);
    settle();
    const GridLayout& layout = view.geometry();
    int next = 0;
    for (const ShownLine& row : layout.rows.lines()) {
      RC_ASSERT(row.start == next);
      RC_ASSERT(!grid.IsRowHidden(row.position));
      next = row.end();
      for (const ShownLine& col : layout.cols.lines()) {
        RC_ASSERT(!grid.IsColHidden(col.position));
        const QRect rect = layout.rectOf(CellPlace{row.position, col.position});
        for (const QPoint corner : {rect.topLeft(), rect.bottomRight()}) {
          RC_ASSERT(layout.hit(corner, 0).cell == (CellPlace{row.position, col.position}));
        }
      }
    }
    // Everything that is visible is in sight from some scroll position.
    std::set<Position> seen;
    for (int value = 0; value <= view.geometry().rows.scrollMaximum(); ++value) {
      view.verticalScrollBar()->setValue(value);
      const LineLayout& rows = view.geometry().rows;
      for (const ShownLine& line : rows.lines()) {
        if (line.position > 0 && rows.isInSight(line)) seen.insert(line.position);
      }
    }
    RC_ASSERT(static_cast<int>(seen.size()) == grid.rowAxis().visibility.visibleUpTo(40));
  };
  EXPECT_TRUE(rc::check(holds));
}

}  // namespace
}  // namespace banddesk::desktop
