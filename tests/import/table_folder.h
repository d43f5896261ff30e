// A folder for the tables of one test, removed at its end.
#pragma once

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "host/import/read_files.h"

namespace banddesk::host::import {

class TableFolder {
 public:
  TableFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "banddesk-import-XXXXXX").string();
    folder_ = ::mkdtemp(pattern.data());
  }
  TableFolder(const TableFolder&) = delete;
  TableFolder& operator=(const TableFolder&) = delete;
  ~TableFolder() { std::filesystem::remove_all(folder_); }

  const std::filesystem::path& path() const { return folder_; }

  std::filesystem::path write(const std::string& name, std::string_view bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
    return folder_ / name;
  }

  PeakTable readOne(std::string_view bytes, const Options& options = {},
                    const std::string& name = "t.txt") const {
    return read({write(name, bytes)}, options);
  }

  static PeakTable read(std::initializer_list<std::filesystem::path> files, const Options& options = {}) {
    return readFiles(std::vector<std::filesystem::path>(files), options);
  }

 private:
  std::filesystem::path folder_;
};

}  // namespace banddesk::host::import
