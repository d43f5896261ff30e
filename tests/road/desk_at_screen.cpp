#include "tests/road/desk_at_screen.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "desktop/base/qt_text.h"
#include "desktop/window/grid_ports.h"

namespace banddesk::road {
namespace {

QString pictureFolder() {
  const QString folder =
      qEnvironmentVariable("BANDDESK_PICTURES", QDir::tempPath() + QStringLiteral("/banddesk-road"));
  QDir().mkpath(folder);
  return folder;
}

}  // namespace

DeskAtScreen::DeskAtScreen() : user(pictureFolder()) {
  QTemporaryDir made;
  made.setAutoRemove(false);
  folder = made.path();
  start();
}

DeskAtScreen::~DeskAtScreen() {
  User::look([this] {
    window_.reset();
    workbench_.reset();
  });
  QDir(folder).removeRecursively();
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

void DeskAtScreen::untilClosed() {
  user.until("the end of the window", [this] { return !window_->isVisible(); });
}

QWidget* DeskAtScreen::explorer() const { return window_->findChild<desktop::ExplorerPanel*>(); }

desktop::GridView* DeskAtScreen::table() const {
  for (auto* view : window_->findChildren<desktop::GridView*>()) {
    if (view->isVisible()) return view;
  }
  return nullptr;
}

std::shared_ptr<host::HostPage> DeskAtScreen::page() const {
  const auto& open = workbench_->host().pages().openPages();
  for (const auto& each : open) {
    if (each->DefinitionName() == "AFLP") return each;
  }
  return nullptr;
}

IAFLPResultsPage& DeskAtScreen::results() const {
  return *cast<IAFLPResultsPage>(required(page(), "Page").control(), "AFLPResultsPage");
}

QPoint DeskAtScreen::cell(std::int32_t row, std::int32_t col) {
  QPoint place;
  user.until("a cell in sight", [&] { return table() != nullptr && !table()->cellRect(row, col).isEmpty(); });
  User::look([&] { place = table()->viewport()->mapToGlobal(table()->cellRect(row, col).center()); });
  return place;
}

std::string DeskAtScreen::text(std::int32_t row, std::int32_t col) {
  return User::see<std::string>([&] { return table()->grid().GetValue(row, col); });
}

std::vector<std::string> DeskAtScreen::line(Axis axis, std::int32_t index, std::int32_t count) {
  return User::see<std::vector<std::string>>([&] {
    std::vector<std::string> texts;
    const host::GridControl& grid = table()->grid();
    for (std::int32_t i = 0; i <= count; ++i)
      texts.push_back(axis == Axis::Rows ? grid.GetValue(index, i) : grid.GetValue(i, index));
    return texts;
  });
}

std::string DeskAtScreen::control(const char* textBox) {
  return User::see<std::string>(
      [&] { return required(results().Controls().find<ui::TextBox>(textBox), "TextBox").Text.get(); });
}

std::int32_t DeskAtScreen::rows() {
  return User::see<std::int32_t>([&] { return table()->grid().RowCount(); });
}

std::int32_t DeskAtScreen::cols() {
  return User::see<std::int32_t>([&] { return table()->grid().ColCount(); });
}

bool DeskAtScreen::isHidden(Axis axis, std::int32_t line) {
  return User::see<bool>([&] {
    const host::GridControl& grid = table()->grid();
    return axis == Axis::Rows ? grid.IsRowHidden(line) : grid.IsColHidden(line);
  });
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
