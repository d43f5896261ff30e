// A drawing as an SVG file that needs no other file. Names that markup would read as its own are escaped.
#pragma once

#include <string>

#include "host/pictures/drawing.h"

namespace banddesk::host::pictures {

std::string svgOf(const Drawing& drawing);

}  // namespace banddesk::host::pictures
