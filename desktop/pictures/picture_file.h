// Pictures and plots as files of a chosen size.
#pragma once

#include <QFont>
#include <QString>
#include <QWidget>
#include <optional>

#include "desktop/views/plot_export.h"
#include "host/pictures/drawing.h"

namespace banddesk::desktop {

QImage pictureImage(const host::pictures::Drawing& drawing, const QFont& font, const FigureSize& size);

// As PNG, SVG or PDF by the name's end, on white. SVG is what the command line writes. Errors as of
// writeFigure.
void writePicture(const host::pictures::Drawing& drawing, const QFont& font, const QString& fileName,
                  const FigureSize& size);

}  // namespace banddesk::desktop
