#include "host/framework/text_files.h"

#include <cerrno>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace banddesk::host {
namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 16;

ErrorNumber numberOf(int cause) {
  switch (cause) {
    case EACCES:
    case EPERM:
    case EBUSY:
    case ETXTBSY:
    case EROFS:
      return ErrorNumber::PermissionDenied;
    case ENOENT:
      return ErrorNumber::PathNotFound;
    case ENOSPC:
      return ErrorNumber::DiskFull;
    default:
      return ErrorNumber::DeviceIo;
  }
}

[[noreturn]] void raiseCause(const char* action, const std::string& fileName, int cause) {
  raise(numberOf(cause), "File", fmt::format("Cannot {} {}: {}.", action, fileName, std::strerror(cause)));
}

// What a link leads to is replaced, never the link.
std::string placeOf(const std::string& fileName) {
  std::error_code trouble;
  const auto real = std::filesystem::canonical(fileName, trouble);
  return trouble ? fileName : real.string();
}

// The cause, or 0.
int causeOfRefusal(const std::string& place) {
  const int descriptor = ::open(place.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor >= 0) return ::close(descriptor), 0;
  if (errno != ENOENT) return errno == ENXIO ? 0 : errno;  // a pipe that nobody reads yet
  const auto folder = std::filesystem::path(place).parent_path();
  return ::faccessat(AT_FDCWD, folder.empty() ? "." : folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0 ? 0
                                                                                                    : errno;
}

// A new file beside the place, with the rights of the one that stands there; -1 where there can be none.
int openBeside(const std::string& place, const struct stat* before, std::int32_t number, std::string& part) {
  const auto folder = std::filesystem::path(place).parent_path();
  part = (folder / fmt::format(".banddesk-{}-{}.part", ::getpid(), number)).string();
  ::unlink(part.c_str());
  const int descriptor = ::open(part.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (descriptor >= 0 && before != nullptr) {
    ::fchmod(descriptor, before->st_mode & 07777);
    [[maybe_unused]] const int owner = ::fchown(descriptor, before->st_uid, before->st_gid);
  }
  return descriptor;
}

}  // namespace

std::string whyNotWritable(const std::string& fileName) {
  const int cause = causeOfRefusal(placeOf(fileName));
  return cause == 0 ? std::string() : std::strerror(cause);
}

DiskTextFiles::~DiskTextFiles() {
  while (!files_.empty()) giveUp(files_.begin()->first);
}

void DiskTextFiles::giveUp(std::int32_t number) {
  const auto file = files_.find(number);
  ::close(file->second.descriptor);
  if (!file->second.part.empty()) ::unlink(file->second.part.c_str());
  files_.erase(file);
}

std::int32_t DiskTextFiles::FreeFile() {
  faults_.check("TextFiles", "FreeFile");
  std::int32_t number = 1;
  while (files_.contains(number)) ++number;
  return number;
}

void DiskTextFiles::OpenForOutput(const std::string& fileName, std::int32_t number) {
  faults_.check("TextFiles", "OpenForOutput");
  if (files_.contains(number)) {
    raise(ErrorNumber::InvalidArgument, "File", fmt::format("The file number {} is in use.", number));
  }
  File file{fileName, {}, placeOf(fileName), -1, {}};
  if (const int cause = causeOfRefusal(file.place); cause != 0) raiseCause("open", fileName, cause);
  struct stat before {};
  const bool exists = ::stat(file.place.c_str(), &before) == 0;
  if (!exists || S_ISREG(before.st_mode))
    file.descriptor = openBeside(file.place, exists ? &before : nullptr, number, file.part);
  if (file.descriptor < 0) {
    file.part.clear();
    file.descriptor = ::open(file.place.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  }
  if (file.descriptor < 0) raiseCause("open", fileName, errno);
  files_.emplace(number, std::move(file));
}

void DiskTextFiles::Print(std::int32_t number, std::string_view line) {
  faults_.check("TextFiles", "Print");
  File& file = at(number);
  if (file.waiting.size() >= kBufferSize) flush(file);
  encoder_.append(line, file.waiting);
  encoder_.append("\r\n", file.waiting);
}

// A denied write leaves the file open, to be closed again; after any other failure it is given up.
void DiskTextFiles::Close(std::int32_t number) {
  faults_.check("TextFiles", "Close");
  File& file = at(number);
  if (std::current_exception() != nullptr && !file.part.empty()) return giveUp(number);
  try {
    flush(file);
    takePlace(file);
  } catch (const Error& error) {
    if (error.number() != ErrorNumber::PermissionDenied) giveUp(number);
    throw;
  }
  const std::string name = file.name;
  const int status = ::close(file.descriptor);
  const int cause = errno;
  files_.erase(number);
  if (status != 0) raiseCause("close", name, cause);
}

// Its content is on the disk before its name is.
void DiskTextFiles::takePlace(File& file) {
  if (file.part.empty()) return;
  if (::fsync(file.descriptor) != 0) raiseCause("write", file.name, errno);
  if (::rename(file.part.c_str(), file.place.c_str()) != 0) raiseCause("write", file.name, errno);
  file.part.clear();
}

DiskTextFiles::File& DiskTextFiles::at(std::int32_t number) {
  const auto found = files_.find(number);
  if (found == files_.end()) {
    raise(ErrorNumber::InvalidArgument, "File", fmt::format("No file is open as number {}.", number));
  }
  return found->second;
}

void DiskTextFiles::flush(File& file) {
  std::size_t written = 0;
  while (written < file.waiting.size()) {
    const ssize_t count =
        ::write(file.descriptor, file.waiting.data() + written, file.waiting.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      const int cause = errno;
      file.waiting.erase(0, written);
      raiseCause("write", file.name, cause);
    }
    written += static_cast<std::size_t>(count);
  }
  file.waiting.clear();
}

}  // namespace banddesk::host
