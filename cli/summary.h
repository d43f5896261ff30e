// What the command line prints of an analysis: a few counts, and the head of the table as the grid shows it.
#pragma once

#include <string>

#include "cli/session.h"
#include "host/framework/table_import.h"

namespace banddesk::cli {

std::string summaryText(const Session& session, const std::string& dyes);
// The first visible rows and columns, aligned.
std::string tableHead(const Session& session, int rows, int columns);

}  // namespace banddesk::cli
