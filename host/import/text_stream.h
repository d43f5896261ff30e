// A file's text as UTF-8 with line feeds, whatever encoding it came in, in pieces of whole lines. It knows no
// tables.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/import/input_file.h"

namespace banddesk::host::import {

/// Holds about one piece in memory, not the file. A byte-order mark decides the encoding; without one it is
/// UTF-16 where every second byte of the start is zero, UTF-8 where the whole file is, else Windows-1252.
class TextStream {
 public:
  /// Small enough for the processor's cache, large enough that calls do not count.
  static constexpr std::size_t usualStretch = 512 * 1024;

  /// Throws ImportError as InputFile does. `stretch` bytes are read at a time; a byte-order mark must fit.
  explicit TextStream(const std::filesystem::path& file, std::size_t stretch = usualStretch)
      : file_(file), stretch_(stretch) {}

  /// The next lines, valid until the next call; empty at the end. Throws ImportError for a binary file.
  std::string_view next();
  /// All from the start of the piece given last to the end of the file, as one piece.
  std::string_view joinRest();

  /// "UTF-8", "UTF-16 LE", "UTF-16 BE" or "Windows-1252": what it has turned out to be so far.
  std::string_view encodingName() const;
  /// Of the file, those read for the pieces given so far.
  std::size_t bytesDone() const { return bytesRead_; }

 private:
  enum class Encoding { Ascii, Utf8, Windows1252, Utf16Little, Utf16Big };

  bool isUtf16() const { return encoding_ == Encoding::Utf16Little || encoding_ == Encoding::Utf16Big; }
  void requireText(std::string_view start) const;
  void readMore();
  void dropMark();
  void takeForUtf16();
  bool restIsUtf8() const;
  std::size_t wholeLines() const;
  std::string_view decoded(std::string_view raw);
  std::string_view give();

  InputFile file_;
  std::size_t stretch_;
  Encoding encoding_ = Encoding::Ascii;
  std::vector<char> buffer_;
  std::size_t held_ = 0;       // bytes in the buffer: the piece given last and what follows it
  std::size_t pieceSize_ = 0;  // of these, the piece
  std::size_t bytesRead_ = 0;
  bool atEnd_ = false;
  bool first_ = true;
  bool loneReturns_ = false;
  std::string converted_;
};

}  // namespace banddesk::host::import
