// The window: explorer, pages, failures, and the commands that tie them together. It shows what the host has
// and hands the user's commands on; questions and dialogs stand in rooms of their own.
#pragma once

#include <QMainWindow>
#include <memory>

#include "desktop/app/workbench.h"
#include "desktop/base/widget_registry.h"
#include "desktop/dialogs/platform_front.h"
#include "desktop/grid/grid_layout.h"
#include "desktop/help/help_window.h"
#include "desktop/quality/quality_panel.h"
#include "desktop/window/error_panel.h"
#include "desktop/window/explorer_panel.h"
#include "desktop/window/guard.h"
#include "desktop/window/page_area.h"
#include "desktop/window/picture_commands.h"
#include "desktop/window/progress_indicator.h"
#include "desktop/window/recovery_dialog.h"
#include "desktop/window/study_commands.h"
#include "desktop/window/undo_commands.h"

class QActionGroup;
class QLabel;

namespace banddesk::desktop {

inline constexpr int kMessageTime = 8000;  // of a line in the status bar, ms

class MainWindow final : public QMainWindow {
  Q_OBJECT
 public:
  explicit MainWindow(Workbench& workbench);
  ~MainWindow() override;

  // As from a command line or a drop: studies open, other files are imported.
  void openFiles(const QStringList& files);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  using Page = std::shared_ptr<host::HostPage>;

  // ---- making (main_window_menus.cpp)
  void makeDocks();
  void makeFileMenu();
  void makeEditMenu();
  void makeAnalysisMenu();
  void makeWarningOption(QMenu& menu);
  void makeTableMenu();
  void makeViewMenu();
  void makeHelpMenu();
  void makeToolBar();
  QAction* addCommand(QMenu& menu, const QString& text, const QKeySequence& keys, std::function<void()> work);
  void fillRecent();
  void fillReports();
  void fillTable();

  // ---- the host's wishes (main_window_front.cpp)
  class Front;
  void connectHost();
  void connectExplorer();
  void connectPages();
  QWidget* makePageContent(host::HostPage& page, QWidget* parent);
  void noteFailure(const host::FailureReport& report);
  void showHelp(const std::string& topic);

  // ---- commands
  void newAnalysis();
  void runCommand(const ExplorerPanel::Item& item, const std::string& command);
  void deleteAnalysis(const ExplorerPanel::Item& item);
  void showResult(std::int32_t resultId);
  void deleteResult(std::int32_t resultId);
  void chooseDyeColour(std::int32_t dye);
  void acceptPage(const Page& page);
  void closePage(const Page& page);
  void reopenPage(const Page& page);
  // ---- the table in front (main_window_table.cpp)
  Page tableInFront() const;
  void chooseOnPage(const char* menuItem);
  void takeItem(ui::MenuItem& item);
  bool mayChoose(const ui::MenuItem& item);
  static std::function<CellPlace(Axis, std::int32_t)> menuCellOf(const host::HostPage& page);
  void pointAt(Axis axis, std::int32_t line);
  void reviewBin();

  // How the user's acts reach a page.
  UserAction actionOn(const host::HostPage& page);

  // ---- which analysis a command means
  void followFocus(const QWidget* focus);
  ExplorerPanel::Item analysisInFront() const;
  ExplorerPanel::Item meantAnalysis() const;

  void studyChanged();
  void updateState();
  void updateAnalysisCommands();

  Workbench& workbench_;
  Guard guard_;
  WidgetRegistry registry_;
  ProgressIndicator* progress_;
  StudyCommands commands_;
  PictureCommands pictures_;
  ExplorerPanel* explorer_ = nullptr;
  PageArea* pages_ = nullptr;
  ErrorPanel* errors_ = nullptr;
  QualityPanel* quality_ = nullptr;
  QDockWidget* explorerDock_ = nullptr;
  QDockWidget* errorDock_ = nullptr;
  QDockWidget* qualityDock_ = nullptr;
  QLabel* failures_ = nullptr;
  QLabel* summary_ = nullptr;
  QMenu* recentMenu_ = nullptr;
  QMenu* reportMenu_ = nullptr;
  QMenu* tableMenu_ = nullptr;
  QMenu* viewMenu_ = nullptr;
  std::vector<QAction*> needStudy_;
  std::vector<QAction*> needTable_;
  QAction* saveAction_ = nullptr;
  QAction* review_ = nullptr;
  QAction* newAnalysisAction_ = nullptr;
  QAction* openAnalysis_ = nullptr;
  QAction* renameAnalysis_ = nullptr;
  QAction* deleteAnalysis_ = nullptr;
  QAction* closePage_ = nullptr;
  bool isExplorerMeant_ = false;  // else the page in front
  HelpDesk help_;
  std::unique_ptr<PlatformFront> front_;
  RecoveryDialog recovery_{*this};
  std::unique_ptr<UndoCommands> undo_;
  Connections connections_;
};

}  // namespace banddesk::desktop
