// Numbers and their texts, the same on every machine: the decimal separator is a point, whatever the locale,
// except in strictNumber, which is told its separator. Integers are 32-bit; rounding to them is ties to even.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace banddesk {

// The decimal number that the text begins with, blanks before it allowed: sign, digits, point, digits, and an
// exponent if digits follow it. The rest is ignored; a text that begins with no number gives 0. Beyond the
// range: infinity.
double leadingNumber(std::string_view text);

// Whether the whole text, blanks around it allowed, is one such number. The empty text is not.
bool isNumeric(std::string_view text);

// The whole text as a number with the given decimal separator. Raises error 13 (type mismatch) if it is none.
double strictNumber(std::string_view text, char separator = '.');

// To a 32-bit integer, ties to even. Raises error 6 (overflow) beyond its range or for no number.
std::int32_t roundToLong(double value);

// The whole text as a 32-bit integer: strictNumber, then roundToLong.
std::int32_t toLong(std::string_view text);

// The sum of two counters, and a value as a 32-bit float. Error 6 where they hold no such number.
std::int32_t addLongs(std::int32_t a, std::int32_t b);
float toFloat(double value);

std::string integerText(std::int64_t value);

// Up to 15 significant digits, no trailing zeros, exponents as 1E-05 and 1E+15.
std::string generalText(double value);

// Exactly two decimals, a leading zero, no grouping; halves go away from zero.
std::string twoDecimals(double value);

}  // namespace banddesk
