// States that long work sets and puts back: the update lock of the grid, its read-only lock, the mouse
// pointer. They are put back only when told, on the way that succeeds; after a failure they stay as they are.
#pragma once

#include "plugin/results/grid_addressing.h"
#include "plugin/ui/platform.h"

namespace banddesk {

class UpdateLock {
 public:
  explicit UpdateLock(Grid& grid) : grid_(grid), before_(grid.LockUpdate(true)) {}

  // Back to the former state; repaints if that is unlocked.
  void restore() {
    if (!release()) grid_.Redraw(2.0);
  }
  // Back to the former state without repainting; says whether it is locked.
  bool release() {
    grid_.LockUpdate(before_);
    return before_;
  }

 private:
  Grid& grid_;
  bool before_;
};

class WriteAccess {
 public:
  explicit WriteAccess(Grid& grid) : grid_(grid), before_(grid.LockReadOnly()) {
    grid.SetLockReadOnly(false);
  }
  void restore() { grid_.SetLockReadOnly(before_); }

 private:
  Grid& grid_;
  bool before_;
};

class Hourglass {
 public:
  explicit Hourglass(ui::Platform& platform) : platform_(platform), before_(platform.MousePointer()) {
    platform.SetMousePointer(ui::kPointerHourglass);
  }
  void restore() { platform_.SetMousePointer(before_); }

 private:
  ui::Platform& platform_;
  std::int32_t before_;
};

}  // namespace banddesk
