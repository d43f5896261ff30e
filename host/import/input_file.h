// A file's bytes, stretch by stretch, and a hash that tells whether two files are the same. It knows no
// encoding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace banddesk::host::import {

class InputFile {
 public:
  /// Throws ImportError for a file that is missing, no ordinary file, not readable or empty.
  explicit InputFile(std::filesystem::path file);
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  const std::filesystem::path& path() const { return path_; }
  std::size_t size() const { return size_; }

  /// Fills `to` as far as the file goes; fewer than `count` bytes only at its end.
  std::size_t read(char* to, std::size_t count);
  /// The same from a place of its own, for a look ahead; where read() goes on stays as it was.
  std::size_t readAt(std::size_t offset, char* to, std::size_t count) const;

 private:
  void checkKind();

  std::filesystem::path path_;
  int descriptor_ = -1;
  std::size_t size_ = 0;
  std::size_t position_ = 0;
};

/// Equal for equal bytes; no defence against someone who wants two files to collide.
std::uint64_t contentHash(const std::filesystem::path& file);

}  // namespace banddesk::host::import
