// Turns a file's bytes into UTF-8 text with line feeds, whatever encoding they came in. It knows no tables.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "host/import/file_bytes.h"

namespace banddesk::host::import {

/// Stays where it is filled: `text` may point into `converted`.
struct DecodedText {
  DecodedText() = default;
  DecodedText(const DecodedText&) = delete;
  DecodedText& operator=(const DecodedText&) = delete;

  std::string_view text;  // into the file's bytes where they are usable as they are, else into `converted`
  std::string converted;
  std::string encoding;  // "UTF-8", "UTF-16 LE", "UTF-16 BE", "Windows-1252"
};

/// Decodes by byte-order mark, else as UTF-8, else as Windows-1252. Throws ImportError for a binary file.
void decode(const FileBytes& bytes, const std::filesystem::path& file, DecodedText& decoded);

bool isUtf8(std::string_view text);

}  // namespace banddesk::host::import
