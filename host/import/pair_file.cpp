#include "host/import/pair_file.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <fstream>

#include "plugin/base/error.h"
#include "plugin/base/text.h"

namespace banddesk::host::import {

std::vector<std::pair<std::string, std::string>> readPairs(const std::filesystem::path& file,
                                                           const char* expected) {
  errno = 0;
  std::ifstream in(file);
  std::vector<std::pair<std::string, std::string>> pairs;
  std::size_t number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (number == 1 && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
    if (line.ends_with('\r')) line.pop_back();
    if (trim(line).empty()) continue;
    const std::size_t tab = line.find('\t');
    if (tab == std::string::npos || line.find('\t', tab + 1) != std::string::npos)
      raise(ErrorNumber::InvalidArgument, "Names",
            fmt::format("{}, line {}: expected {} with a tab between them", file.string(), number, expected));
    pairs.emplace_back(trim(line.substr(0, tab)), trim(line.substr(tab + 1)));
  }
  if (!in.is_open() || in.bad())
    raise(ErrorNumber::PathNotFound, "Names",
          fmt::format("{}: it cannot be read{}{}", file.string(), errno != 0 ? ": " : "",
                      errno != 0 ? std::strerror(errno) : ""));
  return pairs;
}

}  // namespace banddesk::host::import
