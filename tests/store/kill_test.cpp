// Kills a process that saves and imports, at random moments, and looks at the file that it leaves.
// BANDDESK_KILLS says how often; a few dozen kills fit the daily tests.
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <memory>
#include <poll.h>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

#include "host/store/memory_store.h"
#include "host/store/sqlite_store.h"
#include "tests/store/store_folder.h"

namespace banddesk::host {
namespace {

using std::chrono::steady_clock;

class Writer {
 public:
  explicit Writer(const std::string& file) {
    int ends[2];
    if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
    child_ = ::fork();
    if (child_ == 0) {
      ::dup2(ends[1], STDOUT_FILENO);
      ::close(ends[0]);
      ::close(ends[1]);
      ::execl(BANDDESK_STORE_WRITER, BANDDESK_STORE_WRITER, file.c_str(), nullptr);
      ::_exit(127);
    }
    ::close(ends[1]);
    reports_ = ends[0];
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  ~Writer() { ::close(reports_); }

  // Lets it run until it has reported `reports` steps and then for `more`, and kills it. The answer is the
  // last step that it reported, or `taken` if it reported none.
  int killAfter(int reports, std::chrono::microseconds more, int taken) {
    for (int i = 0; i < reports && read(taken); ++i) {
    }
    const auto end = steady_clock::now() + more;
    while (steady_clock::now() < end) {
      pollfd waiting{reports_, POLLIN, 0};
      if (::poll(&waiting, 1, 0) == 1 && !read(taken)) break;
    }
    ::kill(child_, SIGKILL);
    while (read(taken)) {
    }
    int status = 0;
    ::waitpid(child_, &status, 0);
    wasKilled_ = WIFSIGNALED(status);
    return taken;
  }
  bool wasKilled() const { return wasKilled_; }

 private:
  bool read(int& taken) const {
    int reported = 0;
    if (::read(reports_, &reported, sizeof reported) != sizeof reported) return false;
    taken = reported;
    return true;
  }

  pid_t child_ = 0;
  int reports_ = -1;
  bool wasKilled_ = false;
};

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

TEST(StudyFile, HoldsAReportedStateOrTheNextOneWheneverItsWriterIsKilled) {
  const char* const wanted = std::getenv("BANDDESK_KILLS");
  const int kills = wanted == nullptr ? 40 : std::atoi(wanted);
  constexpr int kKillsPerFile = 20;  // a study does not grow for ever
  std::mt19937 random(20240531);
  StoreFolder folder;
  int afterReport = 0, oneMore = 0, hotJournals = 0, steps = 0;
  for (int kill = 0; kill < kills;) {
    const std::string file = folder.file(fmt::format("{}.study", kill));
    SqliteStore::create(file, "Study");
    Model model;
    for (int i = 0; i < kKillsPerFile && kill < kills; ++i, ++kill) {
      SCOPED_TRACE(fmt::format("kill {}", kill));
      Writer writer(file);
      const int reported = writer.killAfter(static_cast<int>(random() % 4),
                                            std::chrono::microseconds(random() % 12'000), model.taken);
      ASSERT_TRUE(writer.wasKilled());
      const auto journal = bytesOf(file + "-journal");
      hotJournals += !journal.empty() && journal.front() != '\0' ? 1 : 0;

      auto store = std::make_unique<SqliteStore>(file);
      const int found = stepsTaken(*store);
      ASSERT_TRUE(found == reported || found == reported + 1) << found << " after " << reported;
      (found == reported ? afterReport : oneMore) += 1;
      steps += found - model.taken;
      model.advance(found);
      ASSERT_TRUE(stateOf(*store) == stateOf(model.store)) << "not the state of step " << found;
      store.reset();
      expectSound(file);
    }
  }
  fmt::print(
      "{} kills over {} steps: {} files held the reported state, {} the next; {} journals played back\n",
      kills, steps, afterReport, oneMore, hotJournals);
}

}  // namespace
}  // namespace banddesk::host
