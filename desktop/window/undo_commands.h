// Undo and redo in the window: the two commands with the step they mean, the list of all steps, and the line
// that offers lost decisions back.
#pragma once

#include <QAction>
#include <QDockWidget>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <functional>

#include "desktop/app/workbench.h"
#include "desktop/window/guard.h"
#include "desktop/window/history_panel.h"

namespace banddesk::desktop {

class UndoCommands final : public QObject {
  Q_OBJECT
 public:
  // Fills the menu, and adds the list and the line to the window. All outlive the commands; `onDone` hears of
  // each step that was gone.
  UndoCommands(Workbench& workbench, const Guard& guard, QMainWindow& window, QMenu& menu,
               std::function<void()> onDone);

  QDockWidget& dock() { return *dock_; }

 private:
  void goTo(std::size_t position);
  void applyLost();
  void refresh();
  void showChanged(const host::StudyState& before);

  Workbench& workbench_;
  const Guard& guard_;
  QMainWindow& window_;
  std::function<void()> onDone_;
  QAction* undo_;
  QAction* redo_;
  QDockWidget* dock_;
  HistoryPanel* panel_;
  QLabel* lost_;
  std::string trouble_;  // with the log, as it was told last
  Connection changes_;
};

}  // namespace banddesk::desktop
