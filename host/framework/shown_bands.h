// The table of an analysis as bands there or not: what statistics and the formats of other programs are made
// from.
#pragma once

#include "host/framework/study_service.h"
#include "host/statistics/band_matrix.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

// The bins dye by dye by size and the samples in the order of the results, however the table is sorted; what
// is hidden is left out, and no band is missing. The groups are those that the study knows; a sample of which
// it knows none is in "No group". The table may have no samples or no bins.
statistics::BandMatrix shownBands(const AFLP& analysis, IAFLPResultsPage& page,
                                  const HostStudyService& study);

}  // namespace banddesk::host
