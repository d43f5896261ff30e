// A clean tab-separated table for statistics programs: one row a sample with its full name, one column a bin
// named by dye and mean size, and the cells that the analysis shows. What is hidden is left out.
#pragma once

#include <ostream>

#include "cli/session.h"

namespace banddesk::cli {

void writeMatrix(std::ostream& out, const Session& session);

}  // namespace banddesk::cli
