// What an analysis was made with, for people: the settings of scoring line by line, and two or three
// sentences that a methods section can take over.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/framework/study_service.h"
#include "host/scoring/analysis_scoring.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

// What is set, with its name; nothing where all is as it is at first.
std::vector<std::pair<std::string, std::string>> settingsOf(const scoring::AnalysisScoring& scoring);

// Of the table as it stands on its page.
std::string methodsText(const AFLP& analysis, IAFLPResultsPage& page, const HostStudyService& study);

}  // namespace banddesk::host
