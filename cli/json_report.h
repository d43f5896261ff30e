// The analysis itself as JSON: parameters, bins with statistics and marks, samples with marks, counts and
// heights.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "cli/session.h"
#include "cli/table_reading.h"

namespace banddesk::cli {

// `dyes` are the letters of the table's dyes in the four slots.
void writeJson(std::ostream& out, const Session& session, const std::string& studyName,
               const std::string& dyes);

}  // namespace banddesk::cli
