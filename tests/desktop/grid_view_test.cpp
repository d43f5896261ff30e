// The grid's view, driven by mouse and keyboard as the user does it.
#include <QClipboard>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QScreen>
#include <QScrollBar>
#include <QToolTip>
#include <rapidcheck.h>
#include <set>

#include "desktop/base/qt_text.h"
#include "tests/desktop/grid_view_fixture.h"

namespace banddesk::desktop {
namespace {

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
  key(Qt::Key_Space, Qt::ControlModifier);  // a whole column has the menu of its header
  key(Qt::Key_Menu);
  click(at(5, 0));
  key(Qt::Key_F10, Qt::ShiftModifier);
  view.menuCell = [](Axis, Position line) { return CellPlace{line, 1}; };
  key(Qt::Key_Menu);
  EXPECT_EQ(taken(), "right 0 2;down;up;right 5 0;right 5 1;");
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

TEST_F(GridViewTest, ScrollingShowsThePictureThatAFullPaintWouldShow) {
  grid.SetFrozenRows(2, 0);
  grid.SetFrozenCols(1, 0);
  grid.HideRows(9, 20, true);
  grid.user().selectCells(3, 2, 30, 4);
  settle();
  const auto screen = [this] {
    settle();
    return view.screen()->grabWindow(view.winId()).toImage();
  };
  for (const auto& [bar, value] : {std::pair{view.verticalScrollBar(), 3},
                                   {view.horizontalScrollBar(), 2},
                                   {view.verticalScrollBar(), 12},
                                   {view.verticalScrollBar(), 11},
                                   {view.horizontalScrollBar(), 0}}) {
    const QImage before = screen();
    bar->setValue(value);
    const QImage scrolled = screen();
    EXPECT_NE(scrolled, before);
    grid.Redraw(2.0);
    EXPECT_EQ(scrolled, screen()) << value;
  }
  EXPECT_EQ(grid.TopRow(), grid.rowAxis().visibility.nthVisible(2 + 11 + 1))
      << "the grid knows where it stands";
  grid.SetTopRow(5);
  grid.Redraw(2.0);
  settle();
  EXPECT_EQ(view.verticalScrollBar()->value(), 2) << "and code can move it";
}

TEST_F(GridViewTest, OnlyVisibleCellsOfTheSelectionAreCopied) {
  grid.HideRows(3, 3, true);
  grid.HideCols(2, 2, true);
  grid.SetValueRange(2, 1, "<b>&\t", 4);
  grid.Redraw(2.0);
  drag(at(2, 1), at(4, 3));
  key(Qt::Key_C, Qt::ControlModifier);
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  EXPECT_EQ(toText(data->text()), "<b>& \tD2\r\nB4\tD4");
  EXPECT_EQ(toText(data->html()),
            "<table><tr><td>&lt;b&gt;&amp; </td><td>D2</td></tr>\n<tr><td>B4</td><td>D4</td></tr>\n</table>");
  click(at(5, 5));
  key(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(toText(QGuiApplication::clipboard()->text()), "F5");
  drag(at(5, 5), at(5, 6));
  drag(at(6, 6), at(6, 6), Qt::ControlModifier);
  key(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(toText(QGuiApplication::clipboard()->text()), "F5\tG5\r\n\tG6");
}

TEST_F(GridViewTest, AMergedBlockIsOneCell) {
  grid.SetCoveredCells(3, 2, 4, 4);
  grid.Redraw(2.0);
  EXPECT_EQ(view.cellRect(4, 3), view.cellRect(3, 2));
  const QPoint last = view.cellRect(3, 2).bottomRight() - QPoint(3, 3);
  drag(last, last - QPoint(70, 0));
  EXPECT_EQ(current() + selection(), "C3") << "a hand moving within the block selects nothing";
  key(Qt::Key_Right);
  EXPECT_EQ(current(), "F3");
  key(Qt::Key_Left);
  key(Qt::Key_Down);
  EXPECT_EQ(current(), "C5");
}

TEST_F(GridViewTest, KeysMoveOverWhatIsVisibleAndSelectWithShift) {
  grid.HideRows(2, 4, true);
  grid.HideCols(12, 12, true);
  grid.Redraw(2.0);
  const struct {
    Qt::Key key;
    Qt::KeyboardModifiers keys;
    const char* wanted;  // the current cell, then the selection
  } steps[] = {{Qt::Key_Down, {}, "B5"},
               {Qt::Key_End, {}, "L5"},
               {Qt::Key_Right, {}, "L5"},
               {Qt::Key_End, Qt::ControlModifier, "L40"},
               {Qt::Key_Home, Qt::ControlModifier, "B1"},
               {Qt::Key_Down, Qt::ShiftModifier, "B11 1 5 1;"},
               {Qt::Key_Right, Qt::ShiftModifier, "B11 1 5 2;"},
               {Qt::Key_Up, Qt::ShiftModifier, "B11 1 1 2;"},
               {Qt::Key_Space, Qt::ControlModifier, "B11 1 40 1;"},
               {Qt::Key_A, Qt::ControlModifier, "B11 1 40 12;"},
               {Qt::Key_Right, {}, "C1"}};
  for (const auto& step : steps) {
    key(step.key, step.keys);
    EXPECT_EQ(current() + selection(), step.wanted) << step.key;
    EXPECT_FALSE(view.cellRect(grid.currentRow(), grid.currentCol()).isEmpty());
  }
  key(Qt::Key_PageDown);
  key(Qt::Key_PageUp);
  EXPECT_EQ(current(), "C1");
  QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
  QCoreApplication::sendEvent(&view, &enter);
  EXPECT_FALSE(enter.isAccepted()) << "the page wants it";
}

TEST_F(GridViewTest, TypingKeepsOrGivesUpAndNeverTouchesReadOnlyCells) {
  const auto type = [this](const char* text, Qt::Key end) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTest::keyClicks(&view, QString(QLatin1Char(text[0])));
    auto* line = view.findChild<QLineEdit*>();
    if (line == nullptr) return false;
    QTest::keyClicks(line, QString::fromLatin1(text + 1));
    EXPECT_EQ(grid.GetCurrentCellText(2, 2), text) << "whoever asks gets what is being typed";
    QTest::keyClick(line, end);
    return true;
  };
  view.activateWindow();
  view.setFocus();
  click(at(2, 2));
  EXPECT_TRUE(type("lost", Qt::Key_Escape));
  EXPECT_EQ(current() + std::to_string(userActs), "C20");
  EXPECT_TRUE(type("kept", Qt::Key_Return));
  EXPECT_EQ(current() + std::to_string(userActs), "kept1");
  EXPECT_TRUE(type("left", Qt::Key_Shift));
  click(at(5, 5));
  EXPECT_EQ(grid.GetValue(2, 2), "left") << "leaving the cell keeps it";
  GridStyle readOnly;
  readOnly.SetReadOnly(true);
  GridRange range;
  range.SetTable();
  grid.SetStyleRange(range, readOnly, StyleMode::Override);
  EXPECT_FALSE(type("x", Qt::Key_Return));
}

TEST_F(GridViewTest, AToolTipIsNeverMarkup) {
  grid.SetToolTip(0, 3, "<img src=x> & co");
  grid.SetValueRange(1, 1, "a <i>text</i> too long for its cell", 4);
  const auto tipAt = [this](QPoint pixel) {
    QHelpEvent event(QEvent::ToolTip, pixel, view.viewport()->mapToGlobal(pixel));
    QCoreApplication::sendEvent(view.viewport(), &event);
    return toText(QToolTip::text());
  };
  EXPECT_NE(tipAt(at(0, 3)).find("&lt;img src=x&gt; &amp; co"), std::string::npos);
  EXPECT_NE(tipAt(at(1, 1)).find("&lt;i&gt;text"), std::string::npos) << "all of a text that is cut";
  QToolTip::hideText();
}

TEST_F(GridViewTest, AnEmptyTableInATinyViewBearsEveryKeyAndClick) {
  drag(at(2, 2), at(4, 3));
  grid.SetRowCount(0);
  for (const QSize size : {QSize(1, 1), QSize(70, 25), QSize(300, 200)}) {
    view.resize(size);
    grid.Redraw(2.0);
    settle();
    for (const Qt::Key each : {Qt::Key_Down, Qt::Key_End, Qt::Key_PageUp, Qt::Key_A, Qt::Key_C, Qt::Key_F2}) {
      for (const auto keys : {Qt::NoModifier, Qt::ControlModifier, Qt::ShiftModifier}) key(each, keys);
    }
    for (const QPoint pixel : {QPoint(1, 1), QPoint(65, 10), QPoint(200, 100)}) drag(pixel, {280, 190});
    EXPECT_EQ(selection(), "");
    EXPECT_FALSE(grid.user().isEditing());
    grid.SetColCount(0);
  }
}

}  // namespace
}  // namespace banddesk::desktop
