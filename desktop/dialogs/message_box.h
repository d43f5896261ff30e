// A message box as a page asks for it, by text and style value. It never takes its text for rich text.
#pragma once

#include <QWidget>

#include "host/framework/platform.h"

namespace banddesk::desktop {

// What a dialog of the moment belongs to: the topmost modal window, else the window itself.
QWidget* dialogParent(QWidget* window);

// Modal. Closing the box by its frame or Escape is a cancel where there is one, else OK.
ui::BoxAnswer showMessage(const host::MessageShown& message, QWidget* parent);

// A message of the desktop itself.
void showWarning(const QString& text, QWidget* parent);

}  // namespace banddesk::desktop
