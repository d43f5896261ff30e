// The one error of the import room: what is wrong and where. Rows that are only left out are no errors, they
// are counted.
#pragma once

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace banddesk::host::import {

struct ImportPlace {
  std::filesystem::path file;
  std::size_t line = 0;  // 1-based, 0 when the whole file is meant
  std::string column;    // the header's text or "column 3"; empty when the whole line is meant
};

/// what() is one line: file, line and column as far as they are known, then the message.
struct ImportError : std::runtime_error {
  ImportError(ImportPlace where, const std::string& text);

  ImportPlace place;
  std::string message;
};

}  // namespace banddesk::host::import
