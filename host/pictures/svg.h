// A drawing as an SVG file that needs no other file. Names that markup would read as its own are escaped.
#pragma once

#include <string>

#include "host/pictures/drawing.h"

namespace banddesk::host::pictures {

// So many millimetres wide; 0: in the drawing's own units.
std::string svgOf(const Drawing& drawing, double millimetres = 0);

}  // namespace banddesk::host::pictures
