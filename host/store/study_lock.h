// Who may have a study file: one writer alone, or any number of readers. The lock lies on a file of its own
// beside the study, so that reading the study's file by other means in the same process (a file dialog, an
// import) does not end it, as it ends the locks of SQLite. It knows nothing of what a study holds.
#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>

namespace banddesk::host {

// The lock file lies in the folder that links lead to and is named by the study's inode: a study that is
// renamed while it is open, or has two names there, keeps its lock. Inside stand the study's device and
// inode, and the process and machine of the writer. It goes when the last holder does; one that a dead
// process left behind holds nothing.
class StudyLock {
 public:
  // Where the study cannot be written it is locked for reading, and whyReadOnly() tells the reason. Error 70
  // while it is open elsewhere in a way that excludes this one.
  StudyLock(const std::string& file, bool writes);
  StudyLock(const StudyLock&) = delete;
  StudyLock& operator=(const StudyLock&) = delete;
  ~StudyLock();

  const std::string& whyReadOnly() const { return whyReadOnly_; }
  // Whether the file system has locks at all; without them SQLite must not ask for any.
  bool hasLocks() const { return hasLocks_; }
  // Whether the name still leads to the file that was locked.
  bool isOf(const std::string& file) const;

 private:
  void open(const std::string& file);
  bool tryToTake(bool alone);
  void take(const std::string& file, bool alone);
  void note() const;
  std::string holder() const;
  bool isInPlace() const;
  void closeFile();

  std::string whyReadOnly_;
  bool hasLocks_ = true;
  dev_t device_ = 0;
  ino_t inode_ = 0;
  mode_t mode_ = 0;
  std::string name_;
  int folder_ = -1;
  int descriptor_ = -1;
};

// Set in the environment to 1, studies are written where the file system gives no locks.
inline constexpr const char* kWithoutLocks = "BANDDESK_WITHOUT_LOCKS";

}  // namespace banddesk::host
