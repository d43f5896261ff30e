// Reads the numbers of a peak table: digits with a decimal point or a decimal comma, whichever the table
// uses. No thousands separators: "1,234.5" is refused, since guessing would change data.
#pragma once

#include <string_view>

namespace banddesk::host::import {

enum class NumberKind { Number, Blank, NotANumber, Thousands, OtherMark, NotFinite, Negative };

/// Learns the decimal mark from the first number that has one and holds every later number to it. "2,016" is
/// a number only where a decimal comma has been seen before; as the first of its kind it may as well be two
/// thousand.
class NumberReader {
 public:
  /// Blank is an empty cell or "NA". `value` is set for Number only. A star before it, by which Peak Scanner
  /// marks the sizes of the standard's own peaks, is passed over.
  NumberKind read(std::string_view cell, double& value);

 private:
  NumberKind readWithComma(std::string_view cell, std::size_t comma, double& value);

  char mark_ = 0;  // '.' or ',' once known
};

}  // namespace banddesk::host::import
