// PHYLIP's table of distances, which neighbor and fitch read. Its characters are a format of the list in
// format.h.
#pragma once

#include "host/formats/format.h"
#include "host/statistics/distance.h"

namespace banddesk::host::formats {

// A square table, with the table of names where a name had to be changed.
Parts writePhylipDistances(const std::vector<std::string>& samples,
                           const statistics::DistanceTable& distances);

}  // namespace banddesk::host::formats
