#include "host/import/text_stream.h"

#include <algorithm>
#include <cstring>

#include "host/import/encodings.h"
#include "host/import/import_error.h"

namespace banddesk::host::import {
namespace {

// Small enough for the processor's cache, large enough that calls do not count.
constexpr std::size_t stretch = 512 * 1024;
constexpr std::size_t npos = std::string_view::npos;

/// Control characters other than tab, line feed, carriage return and form feed in the first stretch say: no
/// text.
bool looksBinary(std::string_view text) {
  const std::string_view start = text.substr(0, 64 * 1024);
  return std::ranges::any_of(start, [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 && c != '\t' && c != '\n' && c != '\r' && c != '\f' && c != 0x1A;
  });
}

}  // namespace

std::string_view TextStream::next() { return state_ == State::Streaming ? nextStretch() : nextOfWhole(); }

std::string_view TextStream::nextStretch() {
  buffer_.resize(stretch);
  std::memmove(buffer_.data(), buffer_.data() + pieceSize_, held_ - pieceSize_);
  held_ -= pieceSize_;
  std::size_t got = file_.read(buffer_.data() + held_, buffer_.size() - held_);
  const bool atEnd = held_ + got < buffer_.size();
  const bool first = bytesRead_ == 0;
  bytesRead_ += got;
  if (first) got -= dropMark(got);
  const std::string_view fresh(buffer_.data() + held_, got);
  held_ += got;
  const std::string_view held(buffer_.data(), held_);
  const std::size_t lastLineFeed = held.rfind('\n');
  // Besides what is not ASCII: a line longer than the buffer, and text whose lines may end otherwise.
  if (!isAscii(fresh) || (lastLineFeed == npos && (!atEnd || first))) {
    readWhole(held_);
    return nextOfWhole();
  }
  if (first && looksBinary(held))
    throw ImportError({file_.path(), 0, {}}, "is a binary file, not a text table");
  pieceSize_ = atEnd ? held_ : lastLineFeed + 1;
  return held.substr(0, pieceSize_);
}

/// Takes the byte-order mark of UTF-8 from the buffer's start, so that what follows may be plain all the
/// same.
std::size_t TextStream::dropMark(std::size_t held) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (!std::string_view(buffer_.data(), held).starts_with(mark)) return 0;
  std::memmove(buffer_.data(), buffer_.data() + mark.size(), held - mark.size());
  return mark.size();
}

/// Takes the bytes held in the buffer and all that follow, and decodes them.
void TextStream::readWhole(std::size_t held) {
  whole_.assign(buffer_.data(), held);
  const std::size_t rest = file_.size() > bytesRead_ ? file_.size() - bytesRead_ : 0;
  whole_.resize(held + rest);
  const std::size_t got = file_.read(whole_.data() + held, rest);
  whole_.resize(held + got);
  bytesRead_ += got;
  state_ = State::Whole;
  decode();
}

void TextStream::decode() {
  const std::string_view raw = whole_;
  const bool atStart = raw.size() == bytesRead_;
  const bool little = atStart && raw.starts_with("\xFF\xFE");
  if (little || (atStart && raw.starts_with("\xFE\xFF"))) {
    encoding_ = little ? "UTF-16 LE" : "UTF-16 BE";
    whole_ = utf8OfUtf16(raw.substr(2), little ? ByteOrder::Little : ByteOrder::Big);
  }
  if (looksBinary(whole_)) throw ImportError({file_.path(), 0, {}}, "is a binary file, not a text table");
  if (!isUtf8(whole_)) {
    encoding_ = "Windows-1252";
    whole_ = utf8OfWindows1252(whole_);
  }
  // Old exporters end lines with a carriage return alone; the rest of the room knows line feeds only.
  if (whole_.find('\n') == npos) std::ranges::replace(whole_, '\r', '\n');
}

std::string_view TextStream::nextOfWhole() {
  const std::string_view rest = std::string_view(whole_).substr(wholeAt_);
  const std::size_t lineFeed = rest.size() <= stretch ? npos : rest.find('\n', stretch);
  pieceSize_ = lineFeed == npos ? rest.size() : lineFeed + 1;
  wholeAt_ += pieceSize_;
  return rest.substr(0, pieceSize_);
}

std::string_view TextStream::joinRest() {
  if (state_ == State::Streaming) {
    readWhole(held_);
  } else {
    wholeAt_ -= pieceSize_;
  }
  const std::string_view rest = std::string_view(whole_).substr(wholeAt_);
  pieceSize_ = rest.size();
  wholeAt_ = whole_.size();
  return rest;
}

std::size_t TextStream::bytesDone() const {
  return state_ == State::Streaming ? bytesRead_
                                    : bytesRead_ - std::min(bytesRead_, whole_.size() - wholeAt_);
}

}  // namespace banddesk::host::import
