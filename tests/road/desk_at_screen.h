// The program in front of the user: its window, and where things are in it.
#pragma once

#include <QMenu>
#include <memory>

#include "desktop/grid/grid_view.h"
#include "desktop/window/main_window.h"
#include "tests/road/user.h"
#include "tests/support/test_folder.h"

namespace banddesk::road {

class DeskAtScreen {
 public:
  DeskAtScreen();
  ~DeskAtScreen();

  // All answers are looked up in the thread of the widgets.
  User user;
  const QString folder = QString::fromStdString(test::testFolder().string());  // for what the test writes

  void start();
  // A new study with the peak table, and then an analysis with the defaults.
  void makeStudy(const QString& name, const QString& peakTable);
  void makeAnalysis();

  bool hasNoFailure() const { return workbench_->host().framework().reports().empty(); }
  desktop::MainWindow& window() const { return *window_; }
  // The first table, be it in front or not.
  desktop::GridView* anyTable() const { return window_->findChild<desktop::GridView*>(); }
  // The table in front; null without one.
  desktop::GridView* table() const;
  IAFLPResultsPage& results() const;

  QPoint cell(std::int32_t row, std::int32_t col);

  // Of the popup that is open: clicks the item with that text.
  void choose(const QString& item);
  // Types the path into a dialog for files and takes it.
  void giveFile(const QString& dialog, const QString& path);
  // Waits for the dialog and presses its button.
  void answer(const QString& dialog, const QString& button);

 private:
  std::unique_ptr<desktop::Workbench> workbench_;
  std::unique_ptr<desktop::MainWindow> window_;
};

}  // namespace banddesk::road
