// Cuts the power at every write of a save and of an import in turn, and looks at the file that is left.
// BANDDESK_KILLS sets how many crashes there are at least.
#include <array>
#include <cstdlib>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <random>

#include "host/store/memory_store.h"
#include "host/store/sqlite_store.h"
#include "tests/store/crash_disk.h"
#include "tests/store/store_folder.h"

namespace banddesk::host {
namespace {

void expectSound(const std::string& file) {
  sqlite::Database database(file, SQLITE_OPEN_READWRITE, file);
  sqlite::Statement check = database.prepare("PRAGMA integrity_check");
  ASSERT_TRUE(check.next());
  EXPECT_EQ(check.text(0), "ok");
  EXPECT_FALSE(database.prepare("PRAGMA foreign_key_check").next());
}

// The steps in memory, as far as they are known to have been taken.
struct Model {
  MemoryStore store{"Study"};
  int taken = 0;
  void advance(int to) {
    while (taken < to) takeStep(store, taken++);
  }
};

// Takes steps until the disk crashes, or `most` of them; how many the store has taken in all.
int takeSteps(const std::string& file, int taken, int most) {
  try {
    SqliteStore store(file);
    for (int step = 0; step < most; ++step) {
      takeStep(store, taken);
      ++taken;
    }
  } catch (const Error&) {
    // The crash: nobody is left to be told.
  }
  return taken;
}

TEST(StudyFile, HoldsAReportedStateOrTheNextOneWhereverTheDiskStops) {
  const char* const wanted = std::getenv("BANDDESK_KILLS");
  const int crashes = wanted == nullptr ? 150 : std::atoi(wanted);
  constexpr int kMost = 3;  // steps before the file is closed, which is cut off in its turn
  std::mt19937 random(20240531);
  StoreFolder folder;
  const std::string file = folder.file("a.study");
  SqliteStore::create(file, "Study");
  Model model;
  std::array<int, 3> playedBack{};  // by loss
  int done = 0, afterReport = 0;
  for (int write = 1; done < crashes; ++write) {
    const auto loss = static_cast<CrashDisk::Loss>(done % 3);
    SCOPED_TRACE(fmt::format("crash {} at write {}, loss {}", done, write, done % 3));
    int reported = 0;
    {
      CrashDisk disk;
      disk.crashAt(write);
      reported = takeSteps(file, model.taken, kMost);
      if (!disk.hasCrashed()) {
        // All writes of these steps have been cut off once: on to the next ones.
        model.advance(reported);
        write = 0;
        continue;
      }
      disk.loseUnsynced(loss, random);
    }
    ++done;
    const auto journal = bytesOf(file + "-journal");
    playedBack[static_cast<std::size_t>(loss)] += !journal.empty() && journal.front() != '\0' ? 1 : 0;
    {
      SqliteStore store(file);
      const int found = stepsTaken(store);
      ASSERT_TRUE(found == reported || found == reported + 1) << found << " after " << reported;
      afterReport += found == reported ? 1 : 0;
      model.advance(found);
      ASSERT_TRUE(stateOf(store) == stateOf(model.store)) << "not the state of step " << found;
    }
    expectSound(file);
  }
  fmt::print(
      "{} crashes over {} steps: {} files held the reported state, {} the next; journals played back: {} "
      "with all "
      "writes made, {} with none since the last synchronisation, {} with some of them\n",
      done, model.taken, afterReport, done - afterReport, playedBack[0], playedBack[1], playedBack[2]);
  for (const int played : playedBack)
    EXPECT_GT(played, done / 30) << "hardly a crash left a save to take back";
}

}  // namespace
}  // namespace banddesk::host
