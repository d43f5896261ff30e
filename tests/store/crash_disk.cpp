#include "tests/store/crash_disk.h"

#include <algorithm>
#include <filesystem>

#include "tests/store/store_folder.h"

namespace banddesk::host {

struct CrashDisk::File {
  sqlite3_file base;
  CrashDisk* disk;
  Content* content;  // null for a file that has no name
  sqlite3_file* under() { return reinterpret_cast<sqlite3_file*>(this + 1); }
  static File& of(sqlite3_file* file) { return *reinterpret_cast<File*>(file); }
};

namespace {

// Hands a call to the file below.
template <auto Method, class... Arguments>
int pass(sqlite3_file* file, Arguments... arguments) {
  struct Layout {
    sqlite3_file base;
    void* disk;
    void* content;
  };
  auto* const under = reinterpret_cast<sqlite3_file*>(reinterpret_cast<Layout*>(file) + 1);
  return (under->pMethods->*Method)(under, arguments...);
}

}  // namespace

CrashDisk::CrashDisk() : under_(sqlite3_vfs_find(nullptr)), vfs_(*under_) {
  vfs_.zName = "crash-disk";
  vfs_.pAppData = this;
  vfs_.szOsFile = static_cast<int>(sizeof(File)) + under_->szOsFile;
  vfs_.xOpen = &open;
  vfs_.xDelete = &remove;
  // The file system below expects itself as its first argument.
  vfs_.xAccess = [](sqlite3_vfs* vfs, const char* name, int flags, int* answer) {
    return of(vfs).under_->xAccess(of(vfs).under_, name, flags, answer);
  };
  vfs_.xFullPathname = [](sqlite3_vfs* vfs, const char* name, int size, char* out) {
    return of(vfs).under_->xFullPathname(of(vfs).under_, name, size, out);
  };
  sqlite3_vfs_register(&vfs_, 1);
}

CrashDisk::~CrashDisk() {
  sqlite3_vfs_unregister(&vfs_);
  sqlite3_vfs_register(under_, 1);
}

void CrashDisk::crashAt(int write) {
  writesLeft_ = write;
  hasCrashed_ = false;
}

// Writes, cuts and removals count; after the crash nothing more reaches the disk.
bool CrashDisk::mayChange() {
  if (writesLeft_ > 0 && --writesLeft_ == 0) hasCrashed_ = true;
  return !hasCrashed_;
}

int CrashDisk::open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  static const sqlite3_io_methods methods{1,
                                          &CrashDisk::close,
                                          &CrashDisk::read,
                                          &CrashDisk::write,
                                          &CrashDisk::truncate,
                                          &CrashDisk::sync,
                                          &pass<&sqlite3_io_methods::xFileSize, sqlite3_int64*>,
                                          &pass<&sqlite3_io_methods::xLock, int>,
                                          &pass<&sqlite3_io_methods::xUnlock, int>,
                                          &pass<&sqlite3_io_methods::xCheckReservedLock, int*>,
                                          &pass<&sqlite3_io_methods::xFileControl, int, void*>,
                                          &pass<&sqlite3_io_methods::xSectorSize>,
                                          &pass<&sqlite3_io_methods::xDeviceCharacteristics>,
                                          nullptr,
                                          nullptr,
                                          nullptr,
                                          nullptr,
                                          nullptr,
                                          nullptr};
  CrashDisk& disk = of(vfs);
  File& opened = File::of(file);
  opened.base.pMethods = nullptr;
  if (disk.hasCrashed_) return SQLITE_IOERR;
  const int code = disk.under_->xOpen(disk.under_, name, opened.under(), flags, outFlags);
  if (code != SQLITE_OK) return code;
  opened.base.pMethods = &methods;
  opened.disk = &disk;
  opened.content = nullptr;
  if (name != nullptr) {
    opened.content = &disk.contents_[name];
    if (opened.content->since.empty()) opened.content->synced = bytesOf(name);
  }
  return SQLITE_OK;
}

int CrashDisk::remove(sqlite3_vfs* vfs, const char* name, int syncFolder) {
  CrashDisk& disk = of(vfs);
  if (!disk.mayChange()) return SQLITE_IOERR;
  disk.contents_.erase(name);
  return disk.under_->xDelete(disk.under_, name, syncFolder);
}

int CrashDisk::close(sqlite3_file* file) { return pass<&sqlite3_io_methods::xClose>(file); }

int CrashDisk::read(sqlite3_file* file, void* bytes, int count, sqlite3_int64 at) {
  return pass<&sqlite3_io_methods::xRead>(file, bytes, count, at);
}

int CrashDisk::write(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 at) {
  const File& written = File::of(file);
  if (written.content == nullptr) return pass<&sqlite3_io_methods::xWrite>(file, bytes, count, at);
  // The write that the crash cuts off may have reached the disk, in part or whole.
  if (!written.disk->hasCrashed_) {
    written.content->since.push_back(
        {false, at, {static_cast<const char*>(bytes), static_cast<std::size_t>(count)}});
  }
  if (!written.disk->mayChange()) return SQLITE_IOERR;
  return pass<&sqlite3_io_methods::xWrite>(file, bytes, count, at);
}

int CrashDisk::truncate(sqlite3_file* file, sqlite3_int64 size) {
  const File& cut = File::of(file);
  if (cut.content != nullptr && !cut.disk->hasCrashed_) cut.content->since.push_back({true, size, {}});
  if (!cut.disk->mayChange()) return SQLITE_IOERR;
  return pass<&sqlite3_io_methods::xTruncate>(file, size);
}

// Only the account of the disk is kept; the real one is not waited for.
int CrashDisk::sync(sqlite3_file* file, int) {
  const File& synced = File::of(file);
  if (synced.disk->hasCrashed_) return SQLITE_IOERR;
  if (synced.content == nullptr) return SQLITE_OK;
  for (const Change& change : synced.content->since) apply(synced.content->synced, change);
  synced.content->since.clear();
  return SQLITE_OK;
}

void CrashDisk::apply(std::string& content, const Change& change) {
  const auto at = static_cast<std::size_t>(change.at);
  if (change.isCut) {
    content.resize(at);
    return;
  }
  if (content.size() < at + change.bytes.size()) content.resize(at + change.bytes.size());
  content.replace(at, change.bytes.size(), change.bytes);
}

void CrashDisk::loseUnsynced(Loss loss, std::mt19937& random) {
  for (auto& [path, content] : contents_) {
    if (loss == Loss::Any) std::ranges::shuffle(content.since, random);
    for (Change& change : content.since) {
      if (loss == Loss::AllUnsynced || (loss == Loss::Any && random() % 3 == 0)) continue;
      if (loss == Loss::Any && random() % 3 == 0) change.bytes.resize(random() % (change.bytes.size() + 1));
      apply(content.synced, change);
    }
    if (std::filesystem::exists(path)) writeBytes(path, content.synced);
  }
  contents_.clear();
}

}  // namespace banddesk::host
