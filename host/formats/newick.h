// Newick: a tree as text, for FigTree, R and the like.
#pragma once

#include "host/formats/format.h"
#include "host/statistics/tree.h"

namespace banddesk::host::formats {

// With the lengths of branches; inner nodes bear their support in percent where they have one. With the table
// of names where a name had to be changed.
Parts writeNewick(const std::vector<std::string>& samples, const statistics::Tree& tree);

}  // namespace banddesk::host::formats
