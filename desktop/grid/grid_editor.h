// The line in which the user types into a cell. The grid holds what is typed; this only shows it.
#pragma once

#include <QLineEdit>
#include <QPointer>
#include <string>

#include "desktop/grid/grid_layout.h"

namespace banddesk::desktop {

class GridView;

class GridEditor final : public QObject {
 public:
  explicit GridEditor(GridView& view) : view_(view) {}

  // Opens over the current cell, if that may be typed into, with its text or with what was typed already.
  bool begin(const QString& typed);
  void end(bool keep);
  // Goes where the cell is now, and closes if the grid has ended the typing by itself.
  void place();

  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void close();

  GridView& view_;
  QPointer<QLineEdit> line_;
  CellPlace cell_;
};

}  // namespace banddesk::desktop
