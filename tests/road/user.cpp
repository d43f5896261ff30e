#include "tests/road/user.h"

#include <QAbstractButton>
#include <QApplication>
#include <QProcess>
#include <QScreen>
#include <QThread>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace banddesk::road {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 60s;
constexpr auto kGlance = 30ms;

}  // namespace

void User::look(const std::function<void()>& work) {
  QMetaObject::invokeMethod(qApp, work, Qt::BlockingQueuedConnection);
}

void User::until(const char* what, const std::function<bool()>& holds) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (!see<bool>(holds)) {
    if (std::chrono::steady_clock::now() > end) {
      picture(QStringLiteral("waited-in-vain"));
      FAIL() << "waited in vain for " << what;
    }
    std::this_thread::sleep_for(kGlance);
  }
}

void User::send(const QStringList& arguments) {
  ASSERT_EQ(QProcess::execute(QStringLiteral("xdotool"), arguments), 0)
      << arguments.join(QLatin1Char(' ')).toStdString();
  // The events reach the widgets through the server.
  std::this_thread::sleep_for(kGlance * 3);
  look([] {});
}

void User::key(const QString& keys) {
  send({QStringLiteral("key"), QStringLiteral("--clearmodifiers"), keys});
}

void User::type(const QString& text) {
  send({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("4"), text});
}

void User::clickAt(QPoint where, int button, int times, const QString& held) {
  QStringList arguments{QStringLiteral("mousemove"), QString::number(where.x()), QString::number(where.y())};
  if (!held.isEmpty()) arguments << QStringLiteral("keydown") << held;
  arguments << QStringLiteral("click") << QStringLiteral("--repeat") << QString::number(times)
            << QStringLiteral("--delay") << QStringLiteral("40") << QString::number(button);
  if (!held.isEmpty()) arguments << QStringLiteral("keyup") << held;
  send(arguments);
}

void User::click(const std::function<QWidget*()>& widget) {
  until("a widget to click", [&] { return widget() != nullptr; });
  clickAt(see<QPoint>([&] {
    const QWidget* found = widget();
    return found->mapToGlobal(found->rect().center());
  }));
}

void User::pause() {
  std::this_thread::sleep_for(
      std::chrono::milliseconds(see<int>([] { return QApplication::doubleClickInterval(); }) * 3 / 2));
}

void User::drag(QPoint from, QPoint to) {
  const auto move = [](QPoint point) {
    send({QStringLiteral("mousemove"), QString::number(point.x()), QString::number(point.y())});
  };
  move(from);
  send({QStringLiteral("mousedown"), QStringLiteral("1")});
  for (int step = 1; step <= 4; ++step) move(from + (to - from) * step / 4);
  send({QStringLiteral("mouseup"), QStringLiteral("1")});
}

void User::picture(const QString& name) {
  const QString file =
      QStringLiteral("%1/%2-%3.png").arg(pictures_).arg(++taken_, 2, 10, QLatin1Char('0')).arg(name);
  look([&] { QApplication::primaryScreen()->grabWindow().save(file); });
}

void User::untilDialog(const QString& title) {
  until(("the dialog " + title.toStdString()).c_str(), [&] {
    const QWidget* dialog = QApplication::activeModalWidget();
    return dialog != nullptr && dialog->isVisible() && dialog->isActiveWindow() &&
           dialog->windowTitle() == title;
  });
}

void User::untilNoDialog() {
  until("the end of all dialogs", [] { return QApplication::activeModalWidget() == nullptr; });
}

QWidget* buttonNamed(const QString& text) {
  const QWidget* modal = QApplication::activeModalWidget();
  for (QWidget* widget : QApplication::allWidgets()) {
    if (modal != nullptr && widget->window() != modal) continue;
    const auto* button = qobject_cast<QAbstractButton*>(widget);
    if (button == nullptr || !button->isVisible() || !button->isEnabled()) continue;
    if (button->text().remove(QLatin1Char('&')) == text) return widget;
  }
  return nullptr;
}

}  // namespace banddesk::road
