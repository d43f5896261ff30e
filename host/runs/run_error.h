// The one error of the runs module: which file cannot be used as a run, and why, in one line. A run whose
// ladder is not found is no error; its quality says so.
#pragma once

#include <stdexcept>
#include <string>

namespace banddesk::host::runs {

struct RunError : std::runtime_error {
  // what() is "file: message".
  RunError(std::string fileName, const std::string& text)
      : std::runtime_error(fileName.empty() ? text : fileName + ": " + text),
        file(std::move(fileName)),
        message(text) {}

  std::string file;
  std::string message;
};

}  // namespace banddesk::host::runs
