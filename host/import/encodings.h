// Conversions of whole texts to UTF-8. Which encoding a text has is for others to say.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace banddesk::host::import {

enum class ByteOrder { Little, Big };

/// Halves of a pair that stand alone become the replacement character.
std::string utf8OfUtf16(std::string_view bytes, ByteOrder order);
std::string utf8OfWindows1252(std::string_view bytes);
/// The byte order of text that is UTF-16 without a mark: Latin text has a zero in every second byte.
std::optional<ByteOrder> looksLikeUtf16(std::string_view start);
bool isUtf8(std::string_view text);
bool isAscii(std::string_view text);

}  // namespace banddesk::host::import
