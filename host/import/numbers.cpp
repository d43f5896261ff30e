#include "host/import/numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include "host/import/text_scan.h"

namespace banddesk::host::import {
namespace {

NumberKind checked(double value) {
  if (!std::isfinite(value)) return NumberKind::NotFinite;
  return value < 0 ? NumberKind::Negative : NumberKind::Number;
}

}  // namespace

NumberKind NumberReader::read(std::string_view cell, double& value) {
  cell = trimmed(cell);
  if (cell.empty() || cell == "NA") return NumberKind::Blank;
  const char* end = cell.data() + cell.size();
  const auto [stop, error] = std::from_chars(cell.data(), end, value);
  if (error == std::errc::result_out_of_range) return NumberKind::NotFinite;
  if (stop == end && error == std::errc{}) {
    if (mark_ != '.' && findOrEnd(cell.data(), end, '.') != end) {
      if (mark_ == ',') return NumberKind::OtherMark;
      mark_ = '.';
    }
    return checked(value);
  }
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
