#include "host/import/input_file.h"

#include <bit>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "host/import/import_error.h"

namespace banddesk::host::import {

InputFile::InputFile(std::filesystem::path file)
    : path_(std::move(file)), descriptor_(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
  if (descriptor_ < 0) {
    const int why = errno;
    throw ImportError({path_, 0, {}}, why == ENOENT ? "there is no such file"
                                                    : std::string("cannot be opened: ") + std::strerror(why));
  }
  try {
    checkKind();
  } catch (...) {
    ::close(descriptor_);
    throw;
  }
}

InputFile::~InputFile() { ::close(descriptor_); }

void InputFile::checkKind() {
  struct stat status {};
  if (::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode))
    throw ImportError({path_, 0, {}},
                      S_ISDIR(status.st_mode) ? "is a folder, not a file" : "is not an ordinary file");
  if (status.st_size == 0) throw ImportError({path_, 0, {}}, "the file is empty");
  size_ = static_cast<std::size_t>(status.st_size);
}

std::size_t InputFile::read(char* to, std::size_t count) {
  const std::size_t got = readAt(position_, to, count);
  position_ += got;
  return got;
}

std::size_t InputFile::readAt(std::size_t offset, char* to, std::size_t count) const {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got = ::pread(descriptor_, to + done, count - done, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw ImportError({path_, 0, {}}, std::string("cannot be read: ") + std::strerror(errno));
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

std::uint64_t contentHash(const std::filesystem::path& path) {
  constexpr std::uint64_t factor = 0x9E3779B97F4A7C15;
  InputFile file(path);
  std::vector<std::uint64_t> words(64 * 1024 / sizeof(std::uint64_t));
  std::uint64_t hash = file.size() * factor;
  for (;;) {
    words.back() = 0;
    const std::size_t got =
        file.read(reinterpret_cast<char*>(words.data()), words.size() * sizeof(std::uint64_t));
    if (got == 0) return hash;
    std::memset(reinterpret_cast<char*>(words.data()) + got, 0, words.size() * sizeof(std::uint64_t) - got);
    for (const std::uint64_t word : words) hash = std::rotl((hash ^ word) * factor, 29);
  }
}

}  // namespace banddesk::host::import
