// What is left of a user's work when the program is killed, and what becomes of a log that is not whole.
// BANDDESK_KILLS sets how many times it is killed.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <random>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>

#include "host/history/kept_steps.h"
#include "host/store/sqlite_store.h"
#include "tests/plugin/random_user.h"
#include "tests/support/test_folder.h"

namespace banddesk::host {
namespace {

using test::Desk;
using testing::HasSubstr;

std::string textOf(const StudyState& state) {
  std::string text = *state.record;
  for (const AnalysisState& analysis : state.analyses) {
    for (const Part& part : analysis.stored) text += *part;
  }
  return text;
}

// A user at work on a study file, always the same one.
class Work {
 public:
  explicit Work(const std::string& file)
      : file_(file), desk_(test::smallPopulation()), store_(std::make_shared<SqliteStore>(file)) {
    desk_.host.openStudy(store_);
    history_.logTo(file + kUnsavedExtension);
    desk_.newAnalysis();
    user_.emplace(
        desk_, [this](int most) { return static_cast<int>(random_() % (static_cast<unsigned>(most) + 1)); },
        file + ".out");
  }
  void act() {
    desk_.host.pages().userEvent(*desk_.pageNamed("AFLP"), [this] { user_->act(); });
    desk_.wait();
  }
  StudyHistory& history() { return history_; }
  std::string present() { return textOf(history_.steps()[history_.position()].state); }
  std::string stored() { return textOf(storedState(*store_, {})); }

 private:
  std::string file_;
  Desk desk_;
  std::shared_ptr<SqliteStore> store_;
  StudyHistory& history_ = desk_.host.keepHistory();
  std::mt19937 random_{20240531};
  std::optional<test::RandomUser> user_;
};

class Recovery : public testing::Test {
 protected:
  Recovery() {
    SqliteStore::create(study, "Plants");
    {
      SqliteStore store(study);
      store.addResults(store.readStudy(), test::smallPopulation(), std::nullopt);
    }
    std::filesystem::copy_file(study, fresh);
  }
  void startAnew() {
    for (const char* more : {"", "-journal", kUnsavedExtension}) std::filesystem::remove(study + more);
    std::filesystem::copy_file(fresh, study);
  }
  // The log that so many acts leave.
  std::string logAfter(int acts) {
    startAnew();
    Work work(study);
    for (int act = 0; act < acts; ++act) work.act();
    return test::fileText(log);
  }
  void writeLog(const std::string& bytes) { std::ofstream(log, std::ios::binary) << bytes; }

  const std::string folder = test::testFolder().string();
  const std::string study = folder + "/a.study", fresh = folder + "/fresh", log = study + kUnsavedExtension;
};

TEST_F(Recovery, GivesAStateOfTheLastMomentWheneverTheProgramIsKilled) {
  constexpr int kActs = 60;
  const char* const wanted = std::getenv("BANDDESK_KILLS");
  const int kills = wanted == nullptr ? 12 : std::atoi(wanted);
  std::vector<std::string> passed, stored;  // after each act
  {
    Work work(study);
    for (int act = 0; act <= kActs; ++act, work.act()) {
      passed.push_back(work.present());
      stored.push_back(work.stored());
    }
  }
  // How many acts are over, as the one at work says.
  void* const shared =
      ::mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  auto& over = *static_cast<volatile int*>(shared);
  std::mt19937 random(std::random_device{}());
  int recovered = 0, steps = 0;
  for (int kill = 0; kill < kills; ++kill) {
    startAnew();
    over = -1;
    const int until = static_cast<int>(random() % kActs);
    const auto later = std::chrono::microseconds(random() % 8000);
    const pid_t child = ::fork();
    if (child == 0) {
      Work work(study);
      for (int act = 0; act <= kActs; ++act, work.act()) over = act;
      ::_exit(0);
    }
    while (over < until && ::waitpid(child, nullptr, WNOHANG) == 0) std::this_thread::yield();
    std::this_thread::sleep_for(later);
    const int reported = over;
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    SCOPED_TRACE("kill " + std::to_string(kill) + " after act " + std::to_string(reported));

    Desk desk(test::smallPopulation());
    StudyHistory& history = desk.host.keepHistory();
    const auto store = std::make_shared<SqliteStore>(study);
    desk.host.openStudy(store);
    const std::string found = textOf(storedState(*store, {}));
    EXPECT_THAT(stored, testing::Contains(found));
    std::string state = found;
    if (std::filesystem::exists(log)) {
      const StepLogContent content = readStepLog(log);
      ASSERT_EQ(history.whyUnfit(content), "");
      history.recover(content);
      state = textOf(history.steps()[history.position()].state);
      EXPECT_EQ(state, textOf(content.steps.back().state));
      EXPECT_EQ(history.steps().size(), content.steps.size());
      ++recovered;
      steps += static_cast<int>(content.steps.size()) - 1;
    }
    // Nothing that was over is lost, not even what was done in the last second.
    const auto last = passed.begin() + std::max(reported, 0);
    EXPECT_NE(std::find(last, passed.end(), state), passed.end());
  }
  ::munmap(shared, sizeof(int));
  std::printf("%d kills: %d left steps, %d in all\n", kills, recovered, steps);
}

TEST_F(Recovery, ReadsALogUpToItsLastWholeStepAndRefusesADamagedOne) {
  const std::string bytes = logAfter(14);
  startAnew();
  writeLog(bytes);
  const std::size_t all = readStepLog(log).steps.size();
  ASSERT_GT(all, 3U);
  std::size_t before = 0;
  for (std::size_t length = 0; length < bytes.size(); length += 1 + bytes.size() / 400) {
    writeLog(bytes.substr(0, length));
    try {
      const std::size_t count = readStepLog(log).steps.size();
      EXPECT_GE(count, before);
      before = count;
    } catch (const Error&) {
      EXPECT_EQ(before, 0U) << "what was whole is not any more, cut at " << length;
    }
  }
  EXPECT_EQ(before, all - 1);
  for (std::size_t at = 30; at + 4000 < bytes.size(); at += bytes.size() / 60) {
    std::string other = bytes;
    other[at] = static_cast<char>(other[at] + 1);
    writeLog(other);
    EXPECT_THROW(readStepLog(log), Error) << at;
  }
  EXPECT_THROW(readStepLog(folder), Error);
}

TEST_F(Recovery, KnowsALogThatIsNotOfTheStudyAsItWasSaved) {
  const std::string bytes = logAfter(14);
  startAnew();
  writeLog(bytes);
  const StepLogContent content = readStepLog(log);
  const auto why = [&](const std::function<void(SqliteStore&)>& change) {
    startAnew();
    const auto store = std::make_shared<SqliteStore>(study);
    change(*store);
    Desk desk(test::smallPopulation());
    StudyHistory& history = desk.host.keepHistory();
    desk.host.openStudy(store);
    return history.whyUnfit(content);
  };
  EXPECT_THAT(why([](SqliteStore& store) {
                auto record = store.readStudy();
                record.results.front().sampleName = "another";
                store.writeStudy(record);
              }),
              HasSubstr("results"));
  EXPECT_THAT(why([&](SqliteStore& store) {
                store.writeStudy(unpackedRecord(content.steps.back().state.record));
                AnalysisSnapshot other = unpacked(content.steps.back().state.analyses.front());
                other.maxBinWidth = 7;
                store.writeAnalysis(other);
              }),
              HasSubstr("analyses"));
  EXPECT_EQ(
      why([&](SqliteStore& store) { store.writeStudy(unpackedRecord(content.steps.back().state.record)); }),
      "");
}

// The user goes on, is told why, and has his steps in memory.
TEST_F(Recovery, LetsTheUserWorkOnWhereNoLogCanBeWritten) {
  Work work(study);
  work.history().logTo(folder + "/missing/log");
  for (int act = 0; act < 10; ++act) work.act();
  EXPECT_THAT(work.history().logTrouble(), HasSubstr("No such file"));
  rlimit former{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
  const rlimit full{2000, former.rlim_max};  // bytes
  std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &full), 0);
  work.history().logTo(log);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &former), 0);
  EXPECT_THAT(work.history().logTrouble(), HasSubstr("large"));
  EXPECT_FALSE(std::filesystem::exists(log));
  for (int act = 0; act < 10; ++act) work.act();
  const std::size_t last = work.history().position();
  ASSERT_GT(last, 4U);
  work.history().goTo(1);
  work.history().goTo(last);
  work.history().logTo(log);
  EXPECT_EQ(work.history().logTrouble(), "");
  EXPECT_TRUE(std::filesystem::exists(log));
}

}  // namespace
}  // namespace banddesk::host
