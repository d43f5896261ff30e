#include "host/store/study_lock.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "plugin/base/error.h"

namespace banddesk::host {
namespace {

namespace fs = std::filesystem;

// A reader that ends has the lock alone for a moment, to take the file away.
constexpr int kTries = 20;
constexpr std::chrono::milliseconds kPause{5};

[[noreturn]] void refuse(const std::string& file, const std::string& why) {
  raise(ErrorNumber::PermissionDenied, "Store", fmt::format("{}: {}", file, why));
}

bool mayWrite(const fs::path& path, int rights) {
  return ::faccessat(AT_FDCWD, path.c_str(), rights, AT_EACCESS) == 0;
}

// The journal of a save would lie beside one of the names, and lock and journal be unknown at the other.
std::string whyNotWritten(const fs::path& real, nlink_t names) {
  if (!mayWrite(real, W_OK)) return "the file may not be written";
  if (!mayWrite(real.parent_path(), W_OK | X_OK)) return "its folder may not be written";
  if (names > 1) return "the file has more than one name (a hard link); save a copy under a name of its own";
  return {};
}

bool isWithoutLocksAllowed() {
  const char* const value = std::getenv(kWithoutLocks);
  return value != nullptr && std::string_view(value) == "1";
}

}  // namespace

StudyLock::StudyLock(const std::string& file, bool writes) {
  struct stat status {};
  std::error_code trouble;
  const fs::path real = fs::canonical(file, trouble);
  if (trouble) refuse(file, trouble.message());
  if (::stat(real.c_str(), &status) != 0) refuse(file, std::strerror(errno));
  device_ = status.st_dev;
  inode_ = status.st_ino;
  mode_ = status.st_mode & 0666;
  whyReadOnly_ = writes ? whyNotWritten(real, status.st_nlink) : "it was opened for reading";
  name_ = fmt::format(".banddesk-{}.lock", inode_);
  folder_ = ::open(real.parent_path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  try {
    take(file, whyReadOnly_.empty());
  } catch (...) {
    closeFile();
    throw;
  }
}

// Unlinked only by who has it alone: whoever has opened it meanwhile sees that it is not in its place.
StudyLock::~StudyLock() {
  if (descriptor_ >= 0 && ::flock(descriptor_, LOCK_EX | LOCK_NB) == 0 && isInPlace())
    ::unlinkat(folder_, name_.c_str(), 0);
  closeFile();
}

void StudyLock::closeFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (folder_ >= 0) ::close(folder_);
  descriptor_ = folder_ = -1;
}

// It has the rights of the study, so that all who share the study share the lock.
void StudyLock::open(const std::string& file) {
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = ::openat(folder_, name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
  if (descriptor_ >= 0) ::fchmod(descriptor_, mode_);
  for (const int rights : {O_RDWR, O_RDONLY}) {
    if (descriptor_ < 0)
      descriptor_ = ::openat(folder_, name_.c_str(), rights | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  }
  // A reader who may not make one has SQLite's own lock.
  if (descriptor_ < 0 && whyReadOnly_.empty())
    refuse(file, fmt::format("its lock file {} cannot be opened: {}", name_, std::strerror(errno)));
}

// False: another has it.
bool StudyLock::tryToTake(bool alone) {
  if (::flock(descriptor_, (alone ? LOCK_EX : LOCK_SH) | LOCK_NB) == 0) return true;
  if (errno == EWOULDBLOCK || errno == EINTR) return false;
  hasLocks_ = false;
  ::unlinkat(folder_, name_.c_str(), 0);
  if (whyReadOnly_.empty() && !isWithoutLocksAllowed())
    whyReadOnly_ = fmt::format(
        "its file system gives no locks, so that another program could save into it at the same time (where "
        "nobody else does, {}=1 in the environment allows it)",
        kWithoutLocks);
  return true;
}

void StudyLock::take(const std::string& file, bool alone) {
  for (int tries = 0; tries < kTries; ++tries) {
    if (tries > 0) std::this_thread::sleep_for(kPause);
    open(file);
    if (descriptor_ < 0) return;
    if (!tryToTake(alone)) continue;
    if (hasLocks_ && !isInPlace()) continue;  // its last holder has just taken it away
    if (alone) note();
    return;
  }
  refuse(file, "it is open in another program" + holder());
}

void StudyLock::note() const {
  std::array<char, 256> host{};
  ::gethostname(host.data(), host.size() - 1);
  const std::string text =
      fmt::format("study {} {}\nprocess {} on {}\n", device_, inode_, ::getpid(), host.data());
  // For people alone: the lock holds without it.
  if (::ftruncate(descriptor_, 0) != 0) return;
  [[maybe_unused]] const ssize_t written = ::pwrite(descriptor_, text.data(), text.size(), 0);
}

std::string StudyLock::holder() const {
  std::array<char, 512> text{};
  const ssize_t count = ::pread(descriptor_, text.data(), text.size(), 0);
  const std::string_view all(text.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
  const std::size_t start = all.find("process ");
  if (start == std::string_view::npos) return {};
  return fmt::format(" ({})", all.substr(start, all.find('\n', start) - start));
}

bool StudyLock::isInPlace() const {
  struct stat held {};
  struct stat named {};
  return ::fstat(descriptor_, &held) == 0 &&
         ::fstatat(folder_, name_.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 && held.st_ino == named.st_ino &&
         held.st_dev == named.st_dev;
}

bool StudyLock::isOf(const std::string& file) const {
  struct stat status {};
  return ::stat(file.c_str(), &status) == 0 && status.st_dev == device_ && status.st_ino == inode_;
}

}  // namespace banddesk::host
