// Text as the whole system counts and compares it: UTF-8 inside, characters counted as code points, names
// compared without regard to case. No locale plays a part.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace banddesk {

// Blanks (U+0020 only) off both ends, or off the right end.
std::string_view trim(std::string_view text);
std::string_view trimRight(std::string_view text);

// The characters of a text in order; a byte that is no UTF-8 counts as one character.
std::vector<std::string_view> characters(std::string_view text);
std::size_t characterCount(std::string_view text);

// Lower case of letters in the Latin, Greek and Cyrillic ranges; other characters stay.
std::string foldCase(std::string_view text);
bool equalsIgnoringCase(std::string_view a, std::string_view b);

std::string replaceAll(std::string_view text, std::string_view what, std::string_view with);

}  // namespace banddesk
