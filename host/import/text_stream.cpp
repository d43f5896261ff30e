#include "host/import/text_stream.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string>

#include "host/import/encodings.h"
#include "host/import/import_error.h"

namespace banddesk::host::import {
namespace {

constexpr std::size_t npos = std::string_view::npos;

/// Control characters other than tab, line feed, carriage return and form feed in the first stretch say: no
/// text.
bool looksBinary(std::string_view text) {
  const std::string_view start = text.substr(0, std::size_t{64} * 1024);
  return std::ranges::any_of(start, [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 && c != '\t' && c != '\n' && c != '\r' && c != '\f' && c != 0x1A;
  });
}

std::string whatIsBinary(std::string_view start) {
  if (start.starts_with("\xD0\xCF\x11\xE0"))
    return "is a spreadsheet of the old form (.xls): save it as text";
  return "is a binary file, not a text table";
}

}  // namespace

std::string_view TextStream::next() {
  if (buffer_.empty()) buffer_.resize(stretch_);
  held_ -= pieceSize_;
  std::memmove(buffer_.data(), buffer_.data() + pieceSize_, held_);
  pieceSize_ = 0;
  do {
    // A line longer than the buffer makes it grow.
    if (held_ == buffer_.size()) buffer_.resize(2 * buffer_.size());
    readMore();
    pieceSize_ = wholeLines();
  } while (pieceSize_ == 0 && !atEnd_);
  return give();
}

std::string_view TextStream::joinRest() {
  const std::size_t rest = file_.size() > bytesRead_ ? file_.size() - bytesRead_ : 0;
  buffer_.resize(held_ + rest + 1);
  while (!atEnd_) {
    readMore();
    if (!atEnd_) buffer_.resize(2 * buffer_.size());  // the file has grown meanwhile
  }
  pieceSize_ = held_;
  return give();
}

void TextStream::readMore() {
  const std::size_t got = file_.read(buffer_.data() + held_, buffer_.size() - held_);
  const bool plain = isAscii({buffer_.data() + held_, got});
  atEnd_ = held_ + got < buffer_.size();
  held_ += got;
  const bool atStart = bytesRead_ == 0;
  bytesRead_ += got;
  if (atStart && !plain) dropMark();
  if (atStart && !isUtf16()) takeForUtf16();
  if (atStart && !isUtf16()) requireText({buffer_.data(), held_});
  if (!plain && encoding_ == Encoding::Ascii && !isAscii({buffer_.data(), held_}))
    encoding_ = restIsUtf8() ? Encoding::Utf8 : Encoding::Windows1252;
}

/// Takes a byte-order mark from the buffer's start. After that of UTF-8 the text may be plain all the same.
void TextStream::dropMark() {
  const std::string_view held(buffer_.data(), held_);
  std::size_t length = 2;
  if (held.starts_with("\xFF\xFE")) {
    encoding_ = Encoding::Utf16Little;
  } else if (held.starts_with("\xFE\xFF")) {
    encoding_ = Encoding::Utf16Big;
  } else if (held.starts_with("\xEF\xBB\xBF")) {
    length = 3;
  } else {
    return;
  }
  held_ -= length;
  std::memmove(buffer_.data(), buffer_.data() + length, held_);
}

/// By the same bytes of the file, however many are read at a time.
void TextStream::takeForUtf16() {
  std::array<char, 4096> start{};
  const std::size_t count = file_.readAt(0, start.data(), start.size());
  if (const auto order = looksLikeUtf16({start.data(), count}))
    encoding_ = *order == ByteOrder::Big ? Encoding::Utf16Big : Encoding::Utf16Little;
}

/// Looks through what the buffer holds and all that follows in the file.
bool TextStream::restIsUtf8() const {
  std::vector<char> ahead(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(held_));
  std::size_t offset = bytesRead_, kept = held_;
  for (bool more = true; more;) {
    // Any ASCII character ends what came before it, so a cut after one cuts no character.
    std::size_t cut = kept;
    while (cut > 0 && static_cast<unsigned char>(ahead[cut - 1]) >= 0x80) --cut;
    if (!isUtf8({ahead.data(), cut})) return false;
    std::memmove(ahead.data(), ahead.data() + cut, kept - cut);
    kept -= cut;
    ahead.resize(kept + stretch_);
    const std::size_t got = file_.readAt(offset, ahead.data() + kept, stretch_);
    offset += got;
    kept += got;
    more = got != 0;
  }
  return isUtf8({ahead.data(), kept});
}

/// How many bytes of the buffer, from its start, are lines that have ended; all of them at the end of the
/// file.
std::size_t TextStream::wholeLines() const {
  if (atEnd_) return held_;
  const std::string_view held(buffer_.data(), held_);
  if (!isUtf16()) return held.rfind('\n') + 1;
  const std::string_view lineFeed =
      encoding_ == Encoding::Utf16Big ? std::string_view("\0\n", 2) : std::string_view("\n\0", 2);
  std::size_t at = held.rfind(lineFeed);
  while (at != npos && at % 2 != 0) at = held.rfind(lineFeed, at - 1);  // two halves of neighbours look alike
  return at == npos ? 0 : at + 2;
}

std::string_view TextStream::decoded(std::string_view raw) {
  switch (encoding_) {
    case Encoding::Utf16Little:
      return converted_ = utf8OfUtf16(raw, ByteOrder::Little);
    case Encoding::Utf16Big:
      return converted_ = utf8OfUtf16(raw, ByteOrder::Big);
    case Encoding::Windows1252:
      return converted_ = utf8OfWindows1252(raw);
    default:
      return raw;
  }
}

std::string_view TextStream::give() {
  std::string_view text = decoded({buffer_.data(), pieceSize_});
  if (first_) {
    first_ = false;
    requireText(text);
    // Old exporters end lines with a carriage return alone; the rest of the room knows line feeds only.
    loneReturns_ = atEnd_ && text.find('\n') == npos;
  }
  if (!loneReturns_) return text;
  converted_ = std::string(text);
  std::ranges::replace(converted_, '\r', '\n');
  return converted_;
}

void TextStream::requireText(std::string_view start) const {
  if (looksBinary(start)) throw ImportError({file_.path(), 0, {}}, whatIsBinary(start));
}

std::string_view TextStream::encodingName() const {
  switch (encoding_) {
    case Encoding::Utf16Little:
      return "UTF-16 LE";
    case Encoding::Utf16Big:
      return "UTF-16 BE";
    case Encoding::Windows1252:
      return "Windows-1252";
    default:
      return "UTF-8";
  }
}

}  // namespace banddesk::host::import
