// Asks in which format and how large a picture is written.
#pragma once

#include <QWidget>
#include <optional>

#include "desktop/views/plot_export.h"

namespace banddesk::desktop {

// Of a picture of so many units of 1/96 inch. Nothing when the user gives up. What was chosen last is
// proposed.
std::optional<FigureSize> askFigureSize(QWidget* parent, double width, double height);

}  // namespace banddesk::desktop
