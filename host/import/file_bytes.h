// A file's bytes in memory, and a hash that tells whether two files are the same. It knows no encoding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>

namespace banddesk::host::import {

/// The bytes of one file, read at once.
class FileBytes {
 public:
  /// Throws ImportError for a file that is missing, no ordinary file, unreadable or empty.
  explicit FileBytes(const std::filesystem::path& file);

  std::string_view view() const { return {bytes_.get(), size_}; }
  /// No byte above 127 anywhere.
  bool isAscii() const { return ascii_; }

 private:
  void readAll(int descriptor, const std::filesystem::path& file);

  std::unique_ptr<char[]> bytes_;
  std::size_t size_ = 0;
  bool ascii_ = true;
};

/// Equal for equal bytes; no defence against someone who wants two files to collide.
std::uint64_t contentHash(std::string_view bytes);

}  // namespace banddesk::host::import
