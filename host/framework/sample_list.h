// The samples of an analysis with what the study says of them, and the individuals that they are runs of.
#pragma once

#include <string>
#include <vector>

#include "host/framework/study_service.h"
#include "host/scoring/individuals.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

struct SampleList {
  std::vector<std::string> names;
  std::vector<SampleFacts> facts;
};

// In the order of the results; the shown ones are those of shownTable and shownBands.
SampleList allSamples(const AFLP& analysis, const HostStudyService& study);
SampleList shownSamples(const AFLP& analysis, IAFLPResultsPage& page, const HostStudyService& study);
// The shown ones without blanks.
SampleList countedSamples(const AFLP& analysis, IAFLPResultsPage& page, const HostStudyService& study);

// By a pattern, as individualsByPattern reads it; an empty one goes by what the study says of each sample, and
// then runs of one individual with different primer pairs are no replicates.
// Throws std::invalid_argument where that does not fit the samples.
scoring::Individuals individualsOf(const SampleList& samples, const std::string& pattern);

}  // namespace banddesk::host
