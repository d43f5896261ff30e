// What a report says of an analysis: its parameters, counts, bins, excluded elements and the head of its
// table, read from its results page as it stands. How that looks is the HTML page's business.
#pragma once

#include <string>

#include "host/framework/html_page.h"
#include "host/framework/study_service.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

ReportDocument reportOf(const AFLP& analysis, IAFLPResultsPage& page, const HostStudyService& study);

}  // namespace banddesk::host
