// The size standards that a user keeps: a text file in the folder of the user's settings, a line a standard.
#pragma once

#include <string>
#include <vector>

#include "host/runs/size_standard.h"

namespace banddesk::host::runs {

/// In $XDG_CONFIG_HOME/banddesk, else .config/banddesk below the user's folder; empty where there is neither.
std::string ownStandardsFile();

/// Columns between tabs: name, dyes, sizes and unreliable sizes, the last three as lists between blanks. None
/// where there is no such file. Throws std::runtime_error naming file and line for what is no standard.
std::vector<SizeStandard> readOwnStandards(const std::string& file);

/// Takes the place of the file whole or not at all. Throws std::runtime_error.
void writeOwnStandards(const std::string& file, const std::vector<SizeStandard>& standards);

/// The known standards and the user's own, those first.
std::vector<SizeStandard> allStandards();

}  // namespace banddesk::host::runs
