#include "plugin/base/numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "plugin/base/error.h"
#include "plugin/base/text.h"

namespace banddesk {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::size_t digitsAt(std::string_view text, std::size_t from) {
  std::size_t end = from;
  while (end < text.size() && isDigit(text[end])) ++end;
  return end - from;
}

// The length of the number at the start of the text (no blanks before it); 0 if none stands there.
std::size_t numberLength(std::string_view text, char separator) {
  std::size_t at = !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
  const std::size_t whole = digitsAt(text, at);
  at += whole;
  std::size_t fraction = 0;
  if (at < text.size() && text[at] == separator) {
    fraction = digitsAt(text, at + 1);
    if (whole + fraction > 0) at += 1 + fraction;
  }
  if (whole + fraction == 0) return 0;
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    std::size_t digits = at + 1;
    if (digits < text.size() && (text[digits] == '+' || text[digits] == '-')) ++digits;
    const std::size_t exponent = digitsAt(text, digits);
    if (exponent > 0) at = digits + exponent;
  }
  return at;
}

// Whether a number beyond the range of doubles is too small for it, not too large.
bool isTiny(std::string_view number) {
  const std::size_t exponent = number.find_first_of("eE");
  if (exponent != std::string_view::npos) return number.find('-', exponent) != std::string_view::npos;
  return number.find_first_of("123456789") > number.find('.');
}

// The value of a text that numberLength has measured.
double valueOf(std::string_view number, char separator) {
  if (number.front() == '+') number.remove_prefix(1);
  std::string plain(number);
  if (separator != '.') {
    if (const auto at = plain.find(separator); at != std::string::npos) plain[at] = '.';
  }
  double value = 0;
  const auto result = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    const double magnitude = isTiny(plain) ? 0.0 : std::numeric_limits<double>::infinity();
    return plain.front() == '-' ? -magnitude : magnitude;
  }
  return value;
}

// Most numbers in texts are keys and counts: a few digits, after a minus perhaps. Nothing for all other
// texts.
std::optional<double> shortWhole(std::string_view text) {
  constexpr std::size_t kMostDigits = 9;
  const bool isNegative = !text.empty() && text.front() == '-';
  if (isNegative) text.remove_prefix(1);
  if (text.empty() || text.size() > kMostDigits) return {};
  std::int32_t value = 0;
  for (const char c : text) {
    if (!isDigit(c)) return {};
    value = value * 10 + (c - '0');
  }
  if (isNegative && value == 0) return {};
  return isNegative ? -value : value;
}

}  // namespace

double leadingNumber(std::string_view text) {
  if (const auto whole = shortWhole(text)) return *whole;
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return 0;
  text.remove_prefix(first);
  const std::size_t length = numberLength(text, '.');
  return length == 0 ? 0 : valueOf(text.substr(0, length), '.');
}

bool isNumeric(std::string_view text) {
  if (shortWhole(text)) return true;
  const std::string_view number = trim(text);
  return !number.empty() && numberLength(number, '.') == number.size();
}

double strictNumber(std::string_view text, char separator) {
  if (const auto whole = shortWhole(text)) return *whole;
  const std::string_view number = trim(text);
  if (number.empty() || numberLength(number, separator) != number.size()) {
    raise(ErrorNumber::TypeMismatch, "Numbers", "The text \"" + std::string(text) + "\" is not a number.");
  }
  return valueOf(number, separator);
}

std::int32_t roundToLong(double value) {
  constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
  constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
  const double rounded = std::nearbyint(value);  // the default rounding mode is ties to even
  if (!(rounded >= kLowest && rounded <= kHighest)) {
    raise(ErrorNumber::Overflow, "Numbers",
          "The number " + generalText(value) + " is too large for an integer.");
  }
  return static_cast<std::int32_t>(rounded);
}

std::int32_t toLong(std::string_view text) { return roundToLong(strictNumber(text)); }

std::int32_t addLongs(std::int32_t a, std::int32_t b) {
  return roundToLong(static_cast<double>(a) + static_cast<double>(b));
}

float toFloat(double value) {
  const auto narrowed = static_cast<float>(value);
  if (!std::isfinite(narrowed)) {
    raise(ErrorNumber::Overflow, "numbers", "The number " + generalText(value) + " is too large.");
  }
  return narrowed;
}

std::string integerText(std::int64_t value) {
  std::array<char, 24> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return {buffer.data(), result.ptr};
}

std::string generalText(double value) {
  std::array<char, 40> buffer{};
  const auto result =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, 15);
  std::string text(buffer.data(), result.ptr);
  if (const auto at = text.find('e'); at != std::string::npos) text[at] = 'E';
  return text == "-0" ? "0" : text;
}

std::string twoDecimals(double value) {
  // Rounds the decimal number that the reader sees, not its binary neighbour: 1.005 is a half.
  const double hundredths = std::round(leadingNumber(generalText(value * 100)));
  std::array<char, 340> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), hundredths / 100,
                                    std::chars_format::fixed, 2);
  return {buffer.data(), result.ptr};
}

}  // namespace banddesk
