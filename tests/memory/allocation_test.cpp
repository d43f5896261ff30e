// Memory runs out at each allocation in turn, of the program's own and of SQLite's: what was under way fails
// as a whole, and what follows works. A program of its own, because it replaces the allocation of all that it
// links.
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <sqlite3.h>

#include "host/history/kept_steps.h"
#include "host/store/memory_store.h"
#include "host/store/sqlite_store.h"
#include "plugin/base/error.h"
#include "tests/import/table_folder.h"
#include "tests/store/store_folder.h"

namespace {

long left = -1;  // allocations until one fails; below 0: none does

bool fails() {
  if (left < 0) return false;
  return left-- == 0;
}

}  // namespace

// Inlined, they would look to the compiler like a mismatch of new and free.
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const memory = fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace banddesk::host {
namespace {

namespace fs = std::filesystem;

sqlite3_mem_methods usual;

// Before the first connection of the program.
const bool isSqliteReplaced = [] {
  if (sqlite3_config(SQLITE_CONFIG_GETMALLOC, &usual) != SQLITE_OK) return false;
  sqlite3_mem_methods failing = usual;
  failing.xMalloc = [](int size) { return fails() ? nullptr : usual.xMalloc(size); };
  failing.xRealloc = [](void* memory, int size) { return fails() ? nullptr : usual.xRealloc(memory, size); };
  return sqlite3_config(SQLITE_CONFIG_MALLOC, &failing) == SQLITE_OK;
}();

std::size_t openFiles() {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator("/proc/self/fd")) ++count;
  return count;
}

// Runs the work with one allocation failing, the first one, then the one `stride` later and so on, until it
// does without a failure; how often it failed. `check` sees whether it did.
int failEach(const std::function<void()>& work, const std::function<void(bool failed)>& check,
             int stride = 1) {
  for (int failures = 0;; ++failures) {
    left = long{failures} * stride;
    bool failed = false;
    try {
      work();
    } catch (const std::bad_alloc&) {
      failed = true;
    } catch (const Error& error) {
      failed = true;
      EXPECT_EQ(error.number(), ErrorNumber::OutOfMemory) << error.description();
    }
    const bool isThrough = left >= 0;
    left = -1;
    check(failed);
    if (isThrough || testing::Test::HasFailure()) return failures;
  }
}

TEST(Memory, ThatRunsOutInAReaderCostsNothingButTheRead) {
  const import::TableFolder folder;
  std::string text =
      "\xEF\xBB\xBF"
      "Dye\tSample Name\tSize\tHeight\n";
  for (int i = 0; i < 40; ++i)
    text += "B\tPlant " + std::to_string(i % 8) + "\t" + std::to_string(100 + i) + "\t70\n";
  const std::vector<fs::path> files{folder.write("a.txt", text),
                                    folder.write("b.txt", "B,1\t3\t100.1\t500\n")};
  const std::size_t open = openFiles();
  const int failures = failEach([&] { EXPECT_EQ(import::readFiles(files).samples.size(), 9U); },
                                [&](bool) { EXPECT_EQ(openFiles(), open); });
  std::printf("%d failures\n", failures);
  EXPECT_GT(failures, 100);
}

TEST(Memory, ThatRunsOutInAStudyFileLeavesTheOldStateAndAStoreThatWorks) {
  ASSERT_TRUE(isSqliteReplaced);
  StoreFolder folder;
  const std::string file = folder.file("a.study");
  SqliteStore::create(file, "Study");
  SqliteStore store(file);
  MemoryStore model("Study");
  for (int step = 0; step < 4; ++step) {
    takeStep(store, step);
    takeStep(model, step);
  }
  int failures = 0;
  for (int step = 4; step < 7; ++step) {  // a save of an analysis, marks, an import
    failures += failEach([&] { takeStep(store, step); },
                         [&](bool failed) {
                           if (!failed) takeStep(model, step);
                           ASSERT_TRUE(stateOf(store) == stateOf(model)) << "step " << step;
                         },
                         3);
  }
  std::printf("%d failures\n", failures);
  EXPECT_GT(failures, 500);
}

TEST(Memory, ThatRunsOutWhileAStepIsWrittenDownLeavesTheStepsBefore) {
  StoreFolder folder;
  const std::string file = folder.file("steps");
  MemoryStore study("Study");
  for (int step = 0; step < 6; ++step) takeStep(study, step);
  const StudyState state = storedState(study, {});
  StepLog log(file, {{"", 0, state}});
  std::size_t written = 1;
  int failures = 0;
  for (int step = 6; step < 9; ++step) {
    takeStep(study, step);
    failures += failEach(
        [&] {
          log.append({"a step", 1, storedState(study, state)});
          ++written;
        },
        [&](bool) { EXPECT_EQ(readStepLog(file).steps.size(), written); });
  }
  EXPECT_GT(failures, 50);
}

TEST(Memory, ThatRunsOutInOpeningAStudyLeavesItClosedAndWhole) {
  StoreFolder folder;
  const std::string file = folder.file("a.study");
  SqliteStore::create(file, "Study");
  for (int step = 0; step < 4; ++step) takeStep(*std::make_unique<SqliteStore>(file), step);
  const std::string bytes = bytesOf(file);
  const std::size_t open = openFiles();
  failEach([&] { stateOf(*std::make_unique<SqliteStore>(file)); },
           [&](bool) {
             ASSERT_EQ(openFiles(), open);
             ASSERT_TRUE(bytesOf(file) == bytes);
           },
           5);
  const int failures = failEach(
      [&] { SqliteStore::create(folder.file("b.study"), "b"); },
      [&](bool failed) { ASSERT_EQ(fs::remove(folder.file("b.study")), !failed) << "half a study"; }, 5);
  EXPECT_GT(failures, 50);
  EXPECT_THAT(folder.names(), testing::ElementsAre("a.study"));
}

}  // namespace
}  // namespace banddesk::host
