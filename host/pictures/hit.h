// What of a picture is at a point, and which of its samples are within an outline.
#pragma once

#include <set>
#include <span>

#include "host/pictures/drawing.h"

namespace banddesk::host::pictures {

struct Hit {
  std::optional<std::size_t> sample, locus, node;
  std::string name;  // what a part says of itself; empty where the indices tell all
};

// Of parts that lie over one another the uppermost tells, up to the first that has a name. Marks and names of
// samples answer a little beyond their edge. Nothing but empty fields where nothing is.
Hit hitAt(const Drawing& drawing, Point at);

// Samples whose marks, names or boxes have their middle within; of an image those of the lines that the
// outline goes along.
std::set<std::size_t> samplesWithin(const Drawing& drawing, std::span<const Point> outline);

}  // namespace banddesk::host::pictures
