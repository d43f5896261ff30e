// A disk that loses power: SQLite writes through it to real files, and at the n-th write everything stops.
// What is left then is what was synchronised, and of the writes after that any of them, in any order, each
// whole or torn.
#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace banddesk::host {

// While it lives, every connection that is opened goes through it. One at a time.
class CrashDisk {
 public:
  enum class Loss { Nothing, AllUnsynced, Any };  // the process alone dies; the machine does

  CrashDisk();
  CrashDisk(const CrashDisk&) = delete;
  CrashDisk& operator=(const CrashDisk&) = delete;
  ~CrashDisk();

  // The write with this number, counted from now on from 1, is the first that is not made; 0 for none.
  void crashAt(int write);
  bool hasCrashed() const { return hasCrashed_; }
  // After the crash, with all connections closed: makes the files what the disk holds.
  void loseUnsynced(Loss loss, std::mt19937& random);

 private:
  // A write at its offset, or a cut to a size.
  struct Change {
    bool isCut;
    std::int64_t at;
    std::string bytes;
  };
  struct Content {
    std::string synced;
    std::vector<Change> since;
  };
  struct File;

  static CrashDisk& of(sqlite3_vfs* vfs) { return *static_cast<CrashDisk*>(vfs->pAppData); }
  static int open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags);
  static int remove(sqlite3_vfs* vfs, const char* name, int syncFolder);
  static int close(sqlite3_file* file);
  static int read(sqlite3_file* file, void* bytes, int count, sqlite3_int64 at);
  static int write(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 at);
  static int truncate(sqlite3_file* file, sqlite3_int64 size);
  static int sync(sqlite3_file* file, int flags);

  bool mayChange();
  static void apply(std::string& content, const Change& change);

  sqlite3_vfs* under_;
  sqlite3_vfs vfs_;
  std::map<std::string, Content> contents_;  // by path
  int writesLeft_ = 0;
  bool hasCrashed_ = false;
};

}  // namespace banddesk::host
