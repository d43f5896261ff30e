// The colours of a cell: those of its look, with the palette's where the look leaves it to the platform, and
// always a text that can be read on its ground.
#pragma once

#include <QPalette>

#include "plugin/results/grid_addressing.h"

namespace banddesk::desktop {

struct CellColours {
  QColor ground;
  QColor text;
};

CellColours cellColours(const StyleAttributes& look, const QPalette& palette, bool isSelected);

// From 1, the same, to 21, black on white.
double contrast(const QColor& a, const QColor& b);

}  // namespace banddesk::desktop
