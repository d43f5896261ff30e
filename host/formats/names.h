// Names made fit for a file format: what it cannot hold is replaced, what is too long is cut, and what then
// is the same is numbered. It knows no formats.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace banddesk::host::formats {

struct NameRule {
  // Beside ASCII letters and digits; every other character becomes "_".
  std::string_view marks = "_";
  std::size_t longest = 0;  // in characters; 0: as long as it is
  // Any text but control characters instead, for formats that quote.
  bool isAnyText = false;
  // The format has no names but the numbers 1, 2, 3 ...
  bool isNumber = false;
};

// As many names, none empty, none of digits alone unless the rule allows any text, and no two that differ by
// less than more than case: a second "Oak_7" becomes "Oak_7_2", within the rule's length.
std::vector<std::string> fitNames(const std::vector<std::string>& names, const NameRule& rule);

}  // namespace banddesk::host::formats
