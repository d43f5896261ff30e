#include "host/import/pair_file.h"

#include <fmt/format.h>

#include "host/import/field_file.h"
#include "plugin/base/error.h"

namespace banddesk::host::import {

std::vector<std::pair<std::string, std::string>> readPairs(const std::filesystem::path& file,
                                                           const char* expected) {
  std::vector<std::pair<std::string, std::string>> pairs;
  for (const FieldLine& line : readFields(file)) {
    if (line.fields.size() != 2)
      raise(ErrorNumber::InvalidArgument, "Names",
            fmt::format("{}, line {}: expected {} with a tab between them", file.string(), line.number,
                        expected));
    pairs.emplace_back(line.fields[0], line.fields[1]);
  }
  return pairs;
}

}  // namespace banddesk::host::import
