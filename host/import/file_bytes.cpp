#include "host/import/file_bytes.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "host/import/import_error.h"

namespace banddesk::host::import {
namespace {

/// Closes the descriptor at the end of the scope.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  int number() const { return number_; }

 private:
  int number_;
};

bool allAscii(const char* from, std::size_t size) {
  unsigned char seen = 0;
  for (std::size_t i = 0; i < size; ++i)
    seen = static_cast<unsigned char>(seen | static_cast<unsigned char>(from[i]));
  return seen < 0x80;
}

}  // namespace

FileBytes::FileBytes(const std::filesystem::path& file) {
  const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (descriptor.number() < 0) {
    const std::string why =
        errno == ENOENT ? "there is no such file" : std::string("cannot be opened: ") + std::strerror(errno);
    throw ImportError({file, 0, {}}, why);
  }
  struct stat status {};
  if (::fstat(descriptor.number(), &status) != 0 || !S_ISREG(status.st_mode))
    throw ImportError({file, 0, {}},
                      S_ISDIR(status.st_mode) ? "is a folder, not a file" : "is not an ordinary file");
  if (status.st_size == 0) throw ImportError({file, 0, {}}, "the file is empty");
  size_ = static_cast<std::size_t>(status.st_size);
  bytes_ = std::make_unique_for_overwrite<char[]>(size_);
  readAll(descriptor.number(), file);
}

void FileBytes::readAll(int descriptor, const std::filesystem::path& file) {
  // In stretches that stay in the processor's cache until they have been looked through.
  constexpr std::size_t stretch = 256 * 1024;
  std::size_t at = 0;
  while (at < size_) {
    const ssize_t got = ::read(descriptor, bytes_.get() + at, std::min(stretch, size_ - at));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw ImportError({file, 0, {}}, std::string("cannot be read: ") + std::strerror(errno));
    if (got == 0) throw ImportError({file, 0, {}}, "became shorter while it was read");
    ascii_ = ascii_ && allAscii(bytes_.get() + at, static_cast<std::size_t>(got));
    at += static_cast<std::size_t>(got);
  }
}

std::uint64_t contentHash(std::string_view bytes) {
  constexpr std::uint64_t factor = 0x9E3779B97F4A7C15;
  std::uint64_t hash = bytes.size() * factor;
  const auto mix = [&hash](std::uint64_t word) { hash = std::rotl((hash ^ word) * factor, 29); };
  for (; bytes.size() >= sizeof(std::uint64_t); bytes.remove_prefix(sizeof(std::uint64_t))) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data(), sizeof word);
    mix(word);
  }
  for (const char c : bytes) mix(static_cast<unsigned char>(c));
  return hash;
}

}  // namespace banddesk::host::import
