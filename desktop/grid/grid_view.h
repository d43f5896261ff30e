// The widget that shows a grid control and hands the user's acts to it. It draws by hand and keeps nothing of
// the table: cells, selection, current cell and scroll position are the grid's. The grid outlives the view.
#pragma once

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <functional>

#include "desktop/grid/cell_texts.h"
#include "desktop/grid/grid_editor.h"
#include "desktop/grid/grid_layout.h"
#include "desktop/grid/grid_mouse.h"
#include "desktop/grid/selection_pull.h"
#include "plugin/base/error.h"

namespace banddesk::desktop {

class GridView final : public QAbstractScrollArea {
  Q_OBJECT

 public:
  explicit GridView(host::GridControl& grid, QWidget* parent = nullptr);
  ~GridView() override;

  // Around every act of the user that may change what the grid stands for: width and line drags, double
  // clicks, typing. It must not destroy the view.
  std::function<void(const std::function<void()>&)> userAction = [](const auto& action) { action(); };
  // The cell whose menu is that of a whole line; absent: its header.
  std::function<CellPlace(Axis axis, Position line)> menuCell;
  // Shows an error that an act ended with.
  std::function<void(const Error&)> onError;

  host::GridControl& grid() const { return grid_; }
  // Where a menu of the latest right click, or of the menu key, belongs on the screen.
  QPoint menuPosition() const { return menuPosition_; }
  // In the viewport; empty if no part of the cell is in sight.
  QRect cellRect(std::int32_t row, std::int32_t col);
  // What stands in the current cell, headers included, for those who hear it.
  QString currentText() const;

  // ---- for the view's own parts
  const GridLayout& geometry();
  Hit hit(QPoint pixel);
  SelectionPull& pull() { return pull_; }
  void perform(const std::function<void()>& action) { userAction(action); }
  void openMenu(CellPlace cell, QPoint pixel);
  // Of the lines selected last, where whole lines are selected; else of the current cell.
  void openMenuOfSelected();
  bool beginEdit(const QString& typed) { return editor_.begin(typed); }
  void endEdit(bool keep) { editor_.end(keep); }
  void showCell(CellPlace cell);  // scrolls no farther than it must
  void tellCurrent();
  void startScrolling();
  void stopScrolling() { scrolling_.stop(); }
  bool cancelMouse();
  // Reads the grid anew before the next paint.
  void refresh();

  // The scroll position stays while this lives, whatever the grid makes of a new current cell.
  class KeepScroll {
   public:
    explicit KeepScroll(GridView& view) : grid_(view.grid_), row_(grid_.TopRow()), col_(grid_.LeftCol()) {}
    KeepScroll(const KeepScroll&) = delete;
    KeepScroll& operator=(const KeepScroll&) = delete;
    ~KeepScroll() {
      grid_.SetTopRow(row_);
      grid_.SetLeftCol(col_);
    }

   private:
    host::GridControl& grid_;
    std::int32_t row_;
    std::int32_t col_;
  };

 protected:
  bool event(QEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override { mouse_.press(*event); }
  void mouseDoubleClickEvent(QMouseEvent* event) override { mouse_.doubleClick(*event); }
  void mouseMoveEvent(QMouseEvent* event) override { mouse_.move(*event); }
  void mouseReleaseEvent(QMouseEvent* event) override { mouse_.release(*event); }
  // Right clicks and the menu key have come as such.
  void contextMenuEvent(QContextMenuEvent* event) override { event->accept(); }
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void timerEvent(QTimerEvent* event) override;

 private:
  void arrange();
  CellPlace cellOfMenu() const;
  int rowHeight();
  void followGrid();
  void blit(const GridLayout& before);
  bool isScrollable(const GridLayout& layout) const;
  bool showToolTip(const QPoint& pixel, const QPoint& onScreen);
  bool guarded(const std::function<bool()>& handle);

  host::GridControl& grid_;
  GridLayout layout_;
  CellFonts fonts_;
  SelectionPull pull_;
  GridMouse mouse_;
  GridEditor editor_;
  QBasicTimer scrolling_;
  QPoint menuPosition_;
  bool isOutdated_ = true;
  bool isFollowing_ = false;
  QSize paintedSize_;
  bool isFollowPosted_ = false;
  Connection repaint_;
};

}  // namespace banddesk::desktop
