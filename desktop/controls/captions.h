// Captions as people read them aloud, and colours that can be read on a given ground.
#pragma once

#include <QColor>
#include <QString>

namespace banddesk::desktop {

// The caption without the ampersands that mark accelerators; a double one stands for itself.
QString plainCaption(const QString& caption);
bool hasAccelerator(const QString& caption);

// `wanted` if it stands out from `ground`, else black or white, whichever does so better.
QColor readableOn(const QColor& ground, const QColor& wanted);

}  // namespace banddesk::desktop
