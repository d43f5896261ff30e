#include "fuzz/study_reading.h"

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <unistd.h>

#include "fuzz/bytes.h"
#include "host/store/sqlite_store.h"
#include "tests/plugin/random_user.h"
#include "tests/store/store_folder.h"

namespace banddesk::fuzz {
namespace {

namespace fs = std::filesystem;

// With bins that are there whatever the fragments: how bins are found is not to be tried.
test::Desk& desk() {
  static test::Desk one({{0, {{60, {1, 2, 1, 1}}, {75, {0, 1, 0, 1}}}}, {1, {{70, {1, 1, 1, 1}}}}}, {});
  return one;
}

// What the table of an analysis can keep: a sample and bins excluded by hand, a locked column.
void decide(test::Desk& desk) {
  desk.host.runNewAnalysis();
  desk.host.pages().end(desk.pageNamed("AFLPParams"), true);
  desk.page().ExcludeColumn(11, true);
  desk.page().SetLockedCol(2);
  desk.grid().user().rightClick(2, 1);
  desk.choose("mnuExcludeBin");
  desk.host.pages().end(desk.pageNamed("AFLP"), true);
}

struct Folder {
  Folder() {
    const fs::path shared = "/dev/shm";
    const fs::path place = fs::is_directory(shared) ? shared : fs::temp_directory_path();
    folder = place / ("banddesk-fuzz-" + std::to_string(::getpid()));
    fs::create_directories(folder);
    file = (folder / "s.study").string();
  }
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  }
  fs::path folder;
  std::string file;
};

}  // namespace

const std::string& studyPath() {
  static const Folder folder;
  return folder.file;
}

std::string studyFile() {
  const std::string file = studyPath() + ".made";
  fs::remove(file);
  host::SqliteStore::create(file, "Study");
  desk().host.openStudy(std::make_shared<host::SqliteStore>(file));
  auto results = test::smallPopulation();
  results.resize(4);
  for (auto& result : results) result.fragments.dyes[2] = {};
  desk().host.study().addResults(results,
                                 host::ImportRecord{"2024-05-31 14:20:05", "read", {{"/t.txt", 7, 9}}});
  decide(desk());
  decide(desk());
  desk().host.save();
  desk().host.closeStudy();
  sqlite3* database = nullptr;
  require(sqlite3_open(file.c_str(), &database) == SQLITE_OK, "the study does not open");
  sqlite3_exec(database, "PRAGMA page_size = 512; VACUUM", nullptr, nullptr, nullptr);
  sqlite3_close(database);
  const std::string bytes = host::bytesOf(file);
  fs::remove(file);
  return bytes;
}

void writeStudy(const std::string& bytes) {
  std::error_code ignored;
  fs::remove(studyPath() + "-journal", ignored);
  host::writeBytes(studyPath(), bytes);
}

namespace {

// An Error is the one way in which a bad file may show.
bool succeeds(const std::function<void()>& work) {
  try {
    work();
    return true;
  } catch (const Error&) {
    return false;
  }
}

void readAll() {
  const auto store = std::make_shared<host::SqliteStore>(studyPath());
  const host::StoredStudy state = host::stateOf(*store);
  store->writeStudy(state.study);
  for (const auto& analysis : state.analyses) store->writeAnalysis(analysis);
}

void openAll() {
  desk().host.openStudy(std::make_shared<host::SqliteStore>(studyPath()));
  const auto study = desk().host.study().Study();
  for (const auto& analysis : study->AFLPs) succeeds([&] { desk().host.service().OpenAFLP(analysis); });
  desk().host.save();
}

}  // namespace

void readStudy(bool withPages) {
  succeeds(withPages ? openAll : readAll);
  succeeds([] { desk().host.closeStudy(); });
  desk().forget();
}

}  // namespace banddesk::fuzz
