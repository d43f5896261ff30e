// Lets a test answer the dialogs that the next calls open, and gives what they write and remember its place
// in the folder of the test.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QSettings>
#include <QTimer>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

#include "tests/support/test_folder.h"

namespace banddesk::desktop {

// Runs `act` on the dialog once it is open. An act that does not close the dialog ends it as cancelled.
template <class Dialog, class Act>
void onNextDialog(Act act) {
  QTimer::singleShot(0, [act] {
    QWidget* modal = QApplication::activeModalWidget();
    auto* dialog = qobject_cast<Dialog*>(modal);
    EXPECT_NE(dialog, nullptr) << "another dialog, or none, is open";
    if (dialog != nullptr) act(*dialog);
    if (modal != nullptr && modal->isVisible()) modal->close();
  });
}

inline QAbstractButton& buttonCalled(const QWidget& dialog, const char* text) {
  for (auto* button : dialog.findChildren<QAbstractButton*>()) {
    if (button->text().remove(QLatin1Char('&')) == QLatin1String(text)) return *button;
  }
  throw std::logic_error(std::string("no button ") + text);
}

class OwnFolder : public testing::Test {
 protected:
  OwnFolder() {
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QCoreApplication::setOrganizationName(QStringLiteral("banddesk-tests"));
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
  }

  QString path(const char* name) const { return folder.filePath(QLatin1String(name)); }

  const QDir folder{QString::fromStdString(test::testFolder().string())};
};

}  // namespace banddesk::desktop
