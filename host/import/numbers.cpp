#include "host/import/numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "host/import/text_scan.h"

namespace banddesk::host::import {
namespace {

NumberKind checked(double value) {
  if (!std::isfinite(value)) return NumberKind::NotFinite;
  return value < 0 ? NumberKind::Negative : NumberKind::Number;
}

constexpr std::array powersOfTen{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

/// Digits with at most one decimal point and nothing else, as nearly all cells are. Up to fifteen digits and
/// the power of ten are exact, so one division gives the same nearest number as a full conversion.
bool readPlain(std::string_view cell, double& value, bool& hasPoint) {
  if (cell.size() > powersOfTen.size() || cell.empty()) return false;
  std::uint64_t digits = 0;
  std::size_t pointAt = cell.size();
  for (std::size_t i = 0; i < cell.size(); ++i) {
    if (isDigit(cell[i])) {
      digits = digits * 10 + static_cast<std::uint64_t>(cell[i] - '0');
    } else if (cell[i] == '.' && pointAt == cell.size() && i + 1 < cell.size() && i > 0) {
      pointAt = i;
    } else {
      return false;
    }
  }
  hasPoint = pointAt != cell.size();
  value = static_cast<double>(digits);
  if (hasPoint) value /= powersOfTen[cell.size() - 1 - pointAt];
  return true;
}

/// "2,016", "1,234,567" or "1,234.5": one to three digits, not 0 alone, then groups of three behind commas. A
/// size such as "38,720" looks so too; as thousands it would be far beyond any fragment, so two digits before
/// a single comma are taken for a decimal comma.
bool hasThousands(std::string_view cell, bool isPointKnown) {
  std::size_t at = 0;
  while (at < cell.size() && isDigit(cell[at])) ++at;
  const std::size_t leading = at;
  if (leading == 0 || leading > 3 || cell[0] == '0') return false;
  std::size_t groups = 0;
  for (; at < cell.size() && cell[at] == ','; ++groups, at += 4) {
    for (std::size_t digit = at + 1; digit <= at + 3; ++digit)
      if (digit >= cell.size() || !isDigit(cell[digit])) return false;
  }
  const bool hasPoint = at < cell.size() && cell[at] == '.';
  if (groups == 0 || (at < cell.size() && !hasPoint)) return false;
  return groups > 1 || hasPoint || leading == 1 || isPointKnown;
}

}  // namespace

NumberKind NumberReader::read(std::string_view cell, double& value) {
  bool hasPoint = false;
  if (readPlain(cell, value, hasPoint) && (!hasPoint || mark_ == '.')) return NumberKind::Number;
  cell = trimmed(cell);
  if (cell.empty() || cell == "NA") return NumberKind::Blank;
  if (cell.front() == '*') cell.remove_prefix(1);
  const char* const begin = cell.data();
  const char* const end = begin + cell.size();
  const auto [stop, error] = std::from_chars(begin, end, value);
  if (error == std::errc::result_out_of_range) return NumberKind::NotFinite;
  if (stop == end && error == std::errc{}) {
    if (mark_ != '.' && findOrEnd(begin, end, '.') != end) {
      if (mark_ == ',') return NumberKind::OtherMark;
      mark_ = '.';
    }
    return checked(value);
  }
  if (mark_ != ',' && hasThousands(cell, mark_ == '.')) return NumberKind::Thousands;
  const std::size_t comma = cell.find(',');
  return comma == std::string_view::npos ? NumberKind::NotANumber : readWithComma(cell, comma, value);
}

NumberKind NumberReader::readWithComma(std::string_view cell, std::size_t comma, double& value) {
  std::array<char, 64> copy{};
  if (cell.size() > copy.size() || cell.find('.') != std::string_view::npos) return NumberKind::NotANumber;
  std::memcpy(copy.data(), cell.data(), cell.size());
  copy[comma] = '.';
  const char* end = copy.data() + cell.size();
  const auto [stop, error] = std::from_chars(copy.data(), end, value);
  if (stop != end || error != std::errc{}) return NumberKind::NotANumber;
  if (mark_ == '.') return NumberKind::OtherMark;
  mark_ = ',';
  return checked(value);
}

}  // namespace banddesk::host::import
