// The report of an import in words, for a screen or a terminal. It judges nothing.
#pragma once

#include <string>

#include "host/import/peak_table.h"

namespace banddesk::host::import {

/// Why rows were left out, with the cells for which they were.
std::string reasonText(const LeftOut& leftOut);

/// A line a file, further lines indented by two blanks; ends with a line feed.
std::string reportText(const Report& report);

}  // namespace banddesk::host::import
