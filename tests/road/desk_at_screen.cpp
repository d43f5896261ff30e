#include "tests/road/desk_at_screen.h"

#include <QApplication>
#include <QDir>
#include <gtest/gtest.h>

#include "desktop/base/qt_text.h"
#include "desktop/window/grid_ports.h"

namespace banddesk::road {
namespace {

QString pictureFolder() {
  const QString folder =
      qEnvironmentVariable("BANDDESK_PICTURES", QString::fromStdString(test::testFolder().string()));
  QDir().mkpath(folder);
  return folder;
}

}  // namespace

DeskAtScreen::DeskAtScreen() : user(pictureFolder()) { start(); }

DeskAtScreen::~DeskAtScreen() {
  User::look([this] {
    window_.reset();
    workbench_.reset();
  });
}

void DeskAtScreen::start() {
  User::look([this] {
    window_.reset();
    workbench_ = std::make_unique<desktop::Workbench>(desktop::desktopGridPorts());
    window_ = std::make_unique<desktop::MainWindow>(*workbench_);
    window_->show();
  });
  user.until("the window in front", [this] { return window_->isActiveWindow(); });
}

void DeskAtScreen::makeStudy(const QString& name, const QString& peakTable) {
  user.key(QStringLiteral("ctrl+n"));
  giveFile(QStringLiteral("New Study"), folder + QLatin1Char('/') + name + QStringLiteral(".study"));
  user.untilNoDialog();
  user.key(QStringLiteral("ctrl+i"));
  giveFile(QStringLiteral("Import Peak Tables"), peakTable);
  user.until("the tables read", [] { return buttonNamed(QStringLiteral("Import")) != nullptr; });
  user.picture(QStringLiteral("import"));
  user.key(QStringLiteral("Return"));
  answer(QStringLiteral("Import"), QStringLiteral("OK"));
  user.untilNoDialog();
}

void DeskAtScreen::makeAnalysis() {
  user.key(QStringLiteral("ctrl+shift+n"));
  user.until("the parameters", [] { return buttonNamed(QStringLiteral("OK")) != nullptr; });
  user.picture(QStringLiteral("parameters"));
  user.click([] { return buttonNamed(QStringLiteral("OK")); });
  user.until("the analysis", [this] { return table() != nullptr && table()->grid().RowCount() > 0; });
  user.picture(QStringLiteral("table"));
}

desktop::GridView* DeskAtScreen::table() const {
  for (auto* view : window_->findChildren<desktop::GridView*>()) {
    if (view->isVisible()) return view;
  }
  return nullptr;
}

IAFLPResultsPage& DeskAtScreen::results() const {
  for (const auto& page : workbench_->host().pages().openPages()) {
    if (page->DefinitionName() == "AFLP") return *cast<IAFLPResultsPage>(page->control(), "AFLPResultsPage");
  }
  throw std::logic_error("no results are open");
}

QPoint DeskAtScreen::cell(std::int32_t row, std::int32_t col) {
  QPoint place;
  user.until("a cell in sight", [&] { return table() != nullptr && !table()->cellRect(row, col).isEmpty(); });
  User::look([&] { place = table()->viewport()->mapToGlobal(table()->cellRect(row, col).center()); });
  return place;
}

void DeskAtScreen::choose(const QString& item) {
  const auto popup = [] { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); };
  user.until("a popup menu", [&] { return popup() != nullptr; });
  const auto place = User::see<QPoint>([&] {
    for (QAction* action : popup()->actions()) {
      if (action->text().remove(QLatin1Char('&')) == item)
        return popup()->mapToGlobal(popup()->actionGeometry(action).center());
    }
    return QPoint();
  });
  ASSERT_FALSE(place.isNull()) << "the menu has no " << item.toStdString();
  user.clickAt(place);
}

void DeskAtScreen::giveFile(const QString& dialog, const QString& path) {
  user.untilDialog(dialog);
  user.key(QStringLiteral("ctrl+a"));
  user.type(path);
  user.key(QStringLiteral("Return"));
}

void DeskAtScreen::answer(const QString& dialog, const QString& button) {
  user.untilDialog(dialog);
  user.click([&]() -> QWidget* { return buttonNamed(button); });
}

}  // namespace banddesk::road
