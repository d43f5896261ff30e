#include "host/framework/text_files.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

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

}  // namespace

DiskTextFiles::~DiskTextFiles() {
  for (const auto& [number, file] : files_) ::close(file.descriptor);
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
  const int descriptor = ::open(fileName.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor < 0) raiseCause("open", fileName, errno);
  files_.emplace(number, File{fileName, descriptor, {}});
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
  try {
    flush(file);
  } catch (const Error& error) {
    if (error.number() != ErrorNumber::PermissionDenied) {
      ::close(file.descriptor);
      files_.erase(number);
    }
    throw;
  }
  const std::string name = file.name;
  const int status = ::close(file.descriptor);
  const int cause = errno;
  files_.erase(number);
  if (status != 0) raiseCause("close", name, cause);
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
