// The program in front of the user: its window, and where things are in it.
#pragma once

#include <QLineEdit>
#include <QMenu>
#include <memory>

#include "desktop/grid/grid_view.h"
#include "desktop/window/main_window.h"
#include "tests/road/user.h"

namespace banddesk::road {

class DeskAtScreen {
 public:
  DeskAtScreen();
  ~DeskAtScreen();

  // All answers are looked up in the thread of the widgets.
  User user;
  QString folder;  // for what the test writes

  void start();
  // A new study with the peak table, its size standard left out, and an analysis with the defaults.
  void makeStudy(const QString& name, const QString& peakTable);
  void makeAnalysis();
  void untilClosed();

  QWidget* explorer() const;
  std::size_t failures() const { return workbench_->host().framework().reports().size(); }
  desktop::MainWindow& window() const { return *window_; }
  // The first table, be it in front or not.
  desktop::GridView* anyTable() const { return window_->findChild<desktop::GridView*>(); }
  // The table in front; null without one.
  desktop::GridView* table() const;
  std::shared_ptr<host::HostPage> page() const;
  IAFLPResultsPage& results() const;

  QPoint cell(std::int32_t row, std::int32_t col);
  std::string text(std::int32_t row, std::int32_t col);
  std::vector<std::string> line(Axis axis, std::int32_t index, std::int32_t count);
  std::string control(const char* textBox);
  std::int32_t rows();
  std::int32_t cols();
  bool isHidden(Axis axis, std::int32_t line);

  // Of the popup that is open: takes the item with that text, by the arrow keys and Return.
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
