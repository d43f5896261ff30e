// Tests in one thread, widgets in the other.
#include <QApplication>
#include <clocale>
#include <gtest/gtest.h>
#include <thread>

#include "desktop/base/appearance.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  QApplication::setOrganizationName(QStringLiteral("Banddesk"));
  QApplication::setApplicationName(QStringLiteral("Banddesk"));
  QApplication::setQuitOnLastWindowClosed(false);
  banddesk::desktop::rememberSystemAppearance();
  int failures = 0;
  std::thread tests([&] {
    failures = RUN_ALL_TESTS();
    QMetaObject::invokeMethod(
        qApp, [] { QApplication::quit(); }, Qt::QueuedConnection);
  });
  QApplication::exec();
  tests.join();
  return failures;
}
