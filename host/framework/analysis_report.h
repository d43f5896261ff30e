// What a report says of an analysis: its parameters, counts, bins, excluded elements and the head of its
// table, read from its results page as it stands. How that looks is the HTML page's business.
#pragma once

#include <string>

#include "host/framework/html_page.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

// `dyeLetters` are the letters of the tables' dyes in the four slots.
ReportDocument reportOf(const AFLP& analysis, IAFLPResultsPage& page, const std::string& dyeLetters);

}  // namespace banddesk::host
