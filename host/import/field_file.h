// The lines of a text file as fields with tabs between them.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace banddesk::host::import {

struct FieldLine {
  std::size_t number = 0;  // from 1
  std::vector<std::string> fields;
};

// Without empty lines and without the blanks around fields. Raises an Error when the file cannot be read.
std::vector<FieldLine> readFields(const std::filesystem::path& file);

}  // namespace banddesk::host::import
