// A file's text as UTF-8 with line feeds, whatever encoding it came in, in pieces of whole lines. It knows no
// tables.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/import/input_file.h"

namespace banddesk::host::import {

/// Plain ASCII, which most tables are, passes through one small buffer; the file as a whole is held in memory
/// only from the first stretch that is not.
class TextStream {
 public:
  /// Throws ImportError as InputFile does.
  explicit TextStream(const std::filesystem::path& file) : file_(file) {}

  /// The next lines, valid until the next call; empty at the end. Throws ImportError for a binary file.
  std::string_view next();
  /// All from the start of the piece given last to the end of the file, as one piece.
  std::string_view joinRest();

  /// "UTF-8", "UTF-16 LE", "UTF-16 BE" or "Windows-1252": what it has turned out to be so far.
  const std::string& encoding() const { return encoding_; }
  /// Of the file, those that the pieces given so far came from.
  std::size_t bytesDone() const;

 private:
  enum class State { Streaming, Whole };

  std::string_view nextStretch();
  std::string_view nextOfWhole();
  std::size_t dropMark(std::size_t held);
  void readWhole(std::size_t held);
  void decode();

  InputFile file_;
  State state_ = State::Streaming;
  std::vector<char> buffer_;
  std::size_t pieceSize_ = 0;  // at the buffer's start
  std::size_t held_ = 0;       // bytes in the buffer: the piece and the begun line after it
  std::size_t bytesRead_ = 0;
  std::string whole_;
  std::size_t wholeAt_ = 0;
  std::string encoding_ = "UTF-8";
};

}  // namespace banddesk::host::import
