#include "host/store/new_study_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <functional>
#include <string_view>
#include <unistd.h>

#include "host/store/sqlite_store.h"
#include "plugin/base/error.h"

namespace banddesk::host {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void refuse(const std::string& file, ErrorNumber number, std::string_view why) {
  raise(number, "Store", fmt::format("{}: {}", file, why));
}

void writeEmptyStudy(const fs::path& place, const std::string& shownAs, const std::string& studyName) {
  sqlite::Database database(place.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, shownAs);
  database.execute("PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON");
  bringUpToDate(database, studySchema());
  sqlite::Transaction transaction(database);
  const StudyRecord empty;
  database
      .prepare(
          "INSERT INTO study(id, name, owner_id, result_stamp, display_view_index) VALUES(1, ?, ?, ?, ?)")
      .run(std::string_view(studyName), empty.ownerId, empty.resultStamp,
           std::int32_t{empty.settings.displayViewIndex});
  sqlite::Statement row =
      database.prepare("INSERT INTO dye(slot, color, is_visible, letter) VALUES(?, ?, ?, ?)");
  std::int32_t slot = 0;
  for (const DyeRecord& dye : defaultDyes())
    row.run(slot++, dye.color, dye.isVisible, std::string_view(&dye.letter, 1));
  transaction.commit();
}

// Not over a file that came meanwhile; file systems that cannot tell get the plain rename.
bool takePlace(const fs::path& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  return std::rename(from.c_str(), to.c_str()) == 0;
}

// The new name is on the disk when this returns.
void syncFolder(const fs::path& folder) {
  const int descriptor = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

// `write` makes the file beside its place.
void makeStudyFile(const std::string& file, const std::function<void(const fs::path& part)>& write) {
  std::error_code trouble;
  if (fs::exists(fs::symlink_status(file, trouble)))
    refuse(file, ErrorNumber::PermissionDenied, "there is such a file already");
  const fs::path folder = fs::path(file).parent_path();
  if (!folder.empty() && !fs::is_directory(folder, trouble))
    refuse(file, ErrorNumber::PathNotFound, "there is no such folder");
  // SQLite tells of this as of a file that is not there.
  if (::faccessat(AT_FDCWD, folder.empty() ? "." : folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
    refuse(file, ErrorNumber::PermissionDenied, "its folder may not be written");
  const fs::path part = folder / fmt::format(".{}.{}.new", fs::path(file).filename().string(), ::getpid());
  fs::remove(part, trouble);
  try {
    write(part);
    if (!takePlace(part, file)) {
      const int cause = errno;
      refuse(file, ErrorNumber::PermissionDenied,
             cause == EEXIST ? "there is such a file already" : std::strerror(cause));
    }
  } catch (...) {
    fs::remove(part, trouble);
    fs::remove(part.string() + "-journal", trouble);
    throw;
  }
  syncFolder(folder);
}

}  // namespace

void SqliteStore::create(const std::string& file, const std::string& studyName) {
  makeStudyFile(file, [&](const fs::path& part) { writeEmptyStudy(part, file, studyName); });
}

void copyStudy(const sqlite::Database& study, const std::string& file) {
  makeStudyFile(file, [&](const fs::path& part) {
    sqlite::Database copy(part.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, file);
    copy.execute("PRAGMA synchronous = FULL");
    study.copyTo(copy);
  });
}

void SqliteStore::copyTo(const std::string& file) const { copyStudy(database_, file); }

std::string keepCopy(const sqlite::Database& study) {
  const std::string first = study.file() + ".bak";
  std::string name = first;
  std::error_code trouble;
  for (int number = 2; fs::exists(fs::symlink_status(name, trouble)); ++number)
    name = fmt::format("{}{}", first, number);
  copyStudy(study, name);
  return name;
}

void SqliteStore::saveAs(const std::string& file) {
  copyTo(file);
  opened_ = Opened(file, Access::Write, studySchema());
}

}  // namespace banddesk::host
