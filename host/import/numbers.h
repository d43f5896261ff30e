// Reads the numbers of a peak table: digits with a decimal point or a decimal comma, whichever the table
// uses. No thousands marks: "1,234.5" is no number here, since guessing would change data.
#pragma once

#include <string_view>

namespace banddesk::host::import {

enum class NumberKind { Number, Blank, NotANumber, OtherMark, NotFinite, Negative };

/// Learns the decimal mark from the first number that has one and holds every later number to it.
class NumberReader {
 public:
  /// Blank is an empty cell or "NA". `value` is set for Number only.
  NumberKind read(std::string_view cell, double& value);

 private:
  NumberKind readWithComma(std::string_view cell, std::size_t comma, double& value);

  char mark_ = 0;  // '.' or ',' once known
};

}  // namespace banddesk::host::import
