// A grid in a view, and the user's hands: presses, drags, keys, and what the grid told of them.
#pragma once

#include <QTest>
#include <gtest/gtest.h>

#include "desktop/grid/grid_view.h"
#include "desktop/grid/table_copy.h"
#include "plugin/base/numbers.h"

namespace banddesk::desktop {

inline host::GridPorts portsOfDesktop() {
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

}  // namespace banddesk::desktop
