// What the keyboard does to a grid: moving, selecting, copying, opening menu and editor. Tab and Enter are
// not the grid's.
#pragma once

#include <QKeyEvent>

#include "desktop/grid/grid_layout.h"

namespace banddesk::desktop {

class GridView;

class GridKeys {
 public:
  explicit GridKeys(GridView& view) : view_(view) {}

  bool press(const QKeyEvent& event);
  // Whether the grid takes a key that may be a shortcut of somebody else, too.
  bool wants(const QKeyEvent& event) const;

 private:
  bool command(const QKeyEvent& event);
  bool move(const QKeyEvent& event);
  bool type(const QKeyEvent& event);
  std::optional<CellPlace> goal(int key, bool isFar, const host::Block& from);
  void goTo(CellPlace cell, bool extends);

  GridView& view_;
};

}  // namespace banddesk::desktop
