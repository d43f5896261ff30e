// A clean tab-separated table for statistics programs: one row a sample with its full name, one column a bin
// named by dye and mean size with two decimals, and presence in the cells unless something else is asked for.
// What is hidden is left out.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "cli/analysis_request.h"
#include "cli/session.h"

namespace banddesk::cli {

// A text as a field of such a table, quoted where it must be.
std::string tableField(std::string_view text);

void writeMatrix(std::ostream& out, const Session& session, Cells cells);

}  // namespace banddesk::cli
