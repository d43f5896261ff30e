// Shows a form of the plug-in as a modal dialog.
#pragma once

#include <QWidget>

#include "plugin/ui/dialogs.h"

namespace banddesk::desktop {

// Returns when the form has unloaded itself, or the user has closed its frame.
void runForm(ui::Form& form, QWidget* parent);

}  // namespace banddesk::desktop
