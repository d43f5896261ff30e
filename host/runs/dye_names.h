// What names of dyes tell: which of them usually carries a size standard, and where it glows. Names are
// compared without case, blanks and signs, since files spell them in many ways.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace banddesk::host::runs {

/// "6-FAM" becomes "6FAM", " liz " becomes "LIZ".
std::string plainDyeName(std::string_view name);

/// Whether the dye is sold with size standards.
bool isLadderDyeName(std::string_view name);

/// nm; nothing for a dye that is not known.
std::optional<int> usualWavelength(std::string_view name);

}  // namespace banddesk::host::runs
