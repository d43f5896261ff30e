// Small inline helpers over bytes of text that the readers share. ASCII only: nothing here knows a locale.
#pragma once

#include <cstring>
#include <string_view>

namespace banddesk::host::import {

constexpr char lowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isLetter(char c) { return lowerAscii(c) >= 'a' && lowerAscii(c) <= 'z'; }

constexpr std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// The first `c` in [from, to), or `to`.
inline const char* findOrEnd(const char* from, const char* to, char c) {
  if (from == to) return to;
  const void* found = std::memchr(from, c, static_cast<std::size_t>(to - from));
  return found ? static_cast<const char*>(found) : to;
}

}  // namespace banddesk::host::import
