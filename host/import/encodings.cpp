#include "host/import/encodings.h"

#include <array>
#include <cstddef>

namespace banddesk::host::import {
namespace {

void appendUtf8(std::string& to, char32_t code) {
  const auto put = [&to](char32_t byte) {
    to.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
  };
  if (code < 0x80) return put(code);
  if (code < 0x800) {
    put(0xC0 | (code >> 6));
  } else if (code < 0x10000) {
    put(0xE0 | (code >> 12));
    put(0x80 | ((code >> 6) & 0x3F));
  } else {
    put(0xF0 | (code >> 18));
    put(0x80 | ((code >> 12) & 0x3F));
    put(0x80 | ((code >> 6) & 0x3F));
  }
  put(0x80 | (code & 0x3F));
}

constexpr char32_t replacement = 0xFFFD;

// 0x80 to 0x9F of Windows-1252; the five that it leaves open stand for themselves.
constexpr std::array<char32_t, 32> windows1252{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

std::string utf8OfUtf16(std::string_view bytes, ByteOrder order) {
  const auto unit = [&](std::size_t i) -> char32_t {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    return order == ByteOrder::Big ? static_cast<char32_t>(first << 8 | second)
                                   : static_cast<char32_t>(second << 8 | first);
  };
  std::string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    char32_t code = unit(i);
    const bool high = code >= 0xD800 && code < 0xDC00;
    const char32_t low = high && i + 3 < bytes.size() ? unit(i + 2) : 0;
    if (low >= 0xDC00 && low < 0xE000) {
      code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
      i += 2;
    } else if (code >= 0xD800 && code < 0xE000) {
      code = replacement;
    }
    appendUtf8(text, code);
  }
  return text;
}

std::string utf8OfWindows1252(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 16);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    appendUtf8(text, byte >= 0x80 && byte < 0xA0 ? windows1252[byte - 0x80U] : byte);
  }
  return text;
}

std::optional<ByteOrder> looksLikeUtf16(std::string_view start) {
  constexpr std::size_t kFewest = 8;
  if (start.size() < kFewest) return std::nullopt;
  std::size_t zeros[2] = {0, 0};
  for (std::size_t i = 0; i < start.size(); ++i) zeros[i % 2] += start[i] == '\0' ? 1U : 0U;
  const auto isHigh = [&](std::size_t half) {
    return zeros[1 - half] == 0 && zeros[half] * 8 > start.size() * 3;
  };
  if (isHigh(1)) return ByteOrder::Little;
  return isHigh(0) ? std::optional(ByteOrder::Big) : std::nullopt;
}

bool isUtf8(std::string_view text) {
  const auto byteAt = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
  };
  for (std::size_t i = 0; i < text.size();) {
    const unsigned lead = byteAt(i);
    const unsigned second = byteAt(i + 1);
    std::size_t length = 1;
    if (lead >= 0x80) {
      if (lead < 0xC2 || lead > 0xF4) return false;
      length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
      // Overlong forms, surrogates and codes past the last one show in the second byte.
      if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
          (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
        return false;
      for (std::size_t k = 1; k < length; ++k)
        if ((byteAt(i + k) & 0xC0U) != 0x80U) return false;
    }
    i += length;
  }
  return true;
}

bool isAscii(std::string_view text) {
  unsigned char seen = 0;
  for (const char c : text) seen = static_cast<unsigned char>(seen | static_cast<unsigned char>(c));
  return seen < 0x80;
}

}  // namespace banddesk::host::import
