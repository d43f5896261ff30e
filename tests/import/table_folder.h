// A folder for peak tables that a test writes and reads.
#pragma once

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "host/import/read_files.h"
#include "tests/support/temp_folder.h"

namespace banddesk::host::import {

class TableFolder : public test::TempFolder {
 public:
  std::filesystem::path write(const std::string& name, std::string_view bytes) const {
    std::ofstream(path() / name, std::ios::binary) << bytes;
    return path() / name;
  }

  PeakTable readOne(std::string_view bytes, const Options& options = {},
                    const std::string& name = "t.txt") const {
    return read({write(name, bytes)}, options);
  }

  static PeakTable read(std::initializer_list<std::filesystem::path> files, const Options& options = {}) {
    return readFiles(std::vector<std::filesystem::path>(files), options);
  }
};

}  // namespace banddesk::host::import
