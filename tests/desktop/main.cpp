// The tests of widgets run without a display unless one is asked for.
#include <QApplication>
#include <QSettings>
#include <clocale>
#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  // What the user who runs the tests has set is neither read nor written.
  const banddesk::test::TempFolder settings;
  for (const QSettings::Format format : {QSettings::NativeFormat, QSettings::IniFormat})
    QSettings::setPath(format, QSettings::UserScope, QString::fromStdString(settings.path().string()));
  qputenv("XDG_RUNTIME_DIR", settings.path().string().c_str());
  const QApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  return RUN_ALL_TESTS();
}
