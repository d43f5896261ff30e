// Tells why a study was not saved and asks what to do about it.
#pragma once

#include <QString>
#include <QWidget>

#include "desktop/dialogs/save_choice.h"

namespace banddesk::desktop {

enum class AfterFailedSave { Retry, SaveAs, Rename, DontSave, Stay };

// Modal. Where two analyses have one name the way out is to rename one, else to try again or to save another
// file; when the study closes its changes can be dropped instead.
AfterFailedSave askAfterFailedSave(const QString& reason, bool isOfNames, SaveOccasion occasion,
                                   QWidget* parent);

}  // namespace banddesk::desktop
