#include "plugin/base/text.h"

#include <algorithm>
#include <cstdint>

namespace banddesk {
namespace {

struct Character {
  char32_t code;
  std::size_t length;  // in bytes
};

std::size_t sequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

// The character at the start of a text that is not empty. Bytes that are no UTF-8 stand for themselves.
Character firstCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = sequenceLength(lead);
  if (length == 1) return {lead, 1};
  if (length == 0 || length > text.size()) return {lead, 1};
  char32_t code = lead & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0U) != 0x80U) return {lead, 1};
    code = (code << 6U) | (next & 0x3FU);
  }
  return {code, length};
}

bool inRange(char32_t code, char32_t first, char32_t last) { return code >= first && code <= last; }

char32_t lowerCase(char32_t code) {
  if (inRange(code, U'A', U'Z')) return code + 32;
  if (inRange(code, 0xC0, 0xDE) && code != 0xD7) return code + 32;                           // Latin-1
  if (inRange(code, 0x139, 0x148) || inRange(code, 0x179, 0x17E)) return code + (code % 2);  // odd capitals
  if (code == 0x178) return 0xFF;
  if (inRange(code, 0x100, 0x177) && code != 0x130 && code != 0x138) return code | 1U;  // even capitals
  if (inRange(code, 0x391, 0x3A9) && code != 0x3A2) return code + 32;                   // Greek
  if (inRange(code, 0x410, 0x42F)) return code + 32;                                    // Cyrillic
  if (inRange(code, 0x400, 0x40F)) return code + 80;
  return code;
}

// All folded characters lie below U+0800, so one or two bytes hold them.
void appendFolded(std::string& out, char32_t code) {
  if (code < 0x80) {
    out.push_back(static_cast<char>(code));
    return;
  }
  out.push_back(static_cast<char>(0xC0U | (code >> 6U)));
  out.push_back(static_cast<char>(0x80U | (code & 0x3FU)));
}

}  // namespace

std::string_view trimRight(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return last == std::string_view::npos ? std::string_view{} : text.substr(0, last + 1);
}

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string_view{} : trimRight(text.substr(first));
}

std::vector<std::string_view> characters(std::string_view text) {
  std::vector<std::string_view> result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = firstCharacter(text).length;
    result.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return result;
}

std::size_t characterCount(std::string_view text) {
  std::size_t count = 0;
  for (; !text.empty(); ++count) text.remove_prefix(firstCharacter(text).length);
  return count;
}

std::string foldCase(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    const char32_t lower = lowerCase(character.code);
    if (lower == character.code) {
      out.append(text.substr(0, character.length));
    } else {
      appendFolded(out, lower);
    }
    text.remove_prefix(character.length);
  }
  return out;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return a == b || foldCase(a) == foldCase(b);
}

std::string replaceAll(std::string_view text, std::string_view what, std::string_view with) {
  std::string out;
  for (std::size_t at = text.find(what); at != std::string_view::npos; at = text.find(what)) {
    out.append(text.substr(0, at)).append(with);
    text.remove_prefix(at + what.size());
  }
  return out.append(text);
}

}  // namespace banddesk
