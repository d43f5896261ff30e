// A text file of two names a line with a tab between them: replicates, or samples and their groups.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace banddesk::host::import {

// Blanks around a name and empty lines do not count. Raises an Error that names the line that is not two
// names; `expected` says in words what they are.
std::vector<std::pair<std::string, std::string>> readPairs(const std::filesystem::path& file,
                                                           const char* expected);

}  // namespace banddesk::host::import
