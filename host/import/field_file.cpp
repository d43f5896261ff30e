#include "host/import/field_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <fstream>

#include "plugin/base/error.h"
#include "plugin/base/text.h"

namespace banddesk::host::import {
namespace {

std::vector<std::string> fieldsOf(const std::string& line) {
  std::vector<std::string> fields;
  for (std::size_t begin = 0; begin <= line.size();) {
    const std::size_t end = std::min(line.find('\t', begin), line.size());
    fields.emplace_back(trim(line.substr(begin, end - begin)));
    begin = end + 1;
  }
  return fields;
}

}  // namespace

std::vector<FieldLine> readFields(const std::filesystem::path& file) {
  errno = 0;
  std::ifstream in(file);
  std::vector<FieldLine> lines;
  std::size_t number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (number == 1 && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
    if (line.ends_with('\r')) line.pop_back();
    if (!trim(line).empty()) lines.push_back({number, fieldsOf(line)});
  }
  if (!in.is_open() || in.bad())
    raise(ErrorNumber::PathNotFound, "Names",
          fmt::format("{}: it cannot be read{}{}", file.string(), errno != 0 ? ": " : "",
                      errno != 0 ? std::strerror(errno) : ""));
  return lines;
}

}  // namespace banddesk::host::import
