// Lets a test answer the dialog that the next call opens.
#pragma once

#include <QApplication>
#include <QTimer>
#include <gtest/gtest.h>

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

}  // namespace banddesk::desktop
