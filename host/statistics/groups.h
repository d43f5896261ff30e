// Groups of a table's samples, told sample by sample or by a pattern of their names.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/statistics/band_matrix.h"

namespace banddesk::host::statistics {

// Of pairs of a sample and its group; groups stand in the order in which samples of the table name them
// first. Answers how many other names there are, each counted once. Raises an Error that names a sample
// without a group or with two, `where` before it. The table is unchanged then.
std::size_t takeGroups(BandMatrix& bands, const std::vector<std::pair<std::string, std::string>>& pairs,
                       const std::string& where);

// The first group of an ECMAScript expression, looked for in each name: "^([A-Z]+)" takes the letters that a
// name begins with. Names without a match, or with an empty one, are in the group "Other". Raises an Error
// for an expression that does not parse, has no group, or matches no name.
void takeGroupsByPattern(BandMatrix& bands, const std::string& pattern);

}  // namespace banddesk::host::statistics
