// The whole program under what happens to programs: it is killed, the disk is full, its files are cut.
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

#include "host/store/sqlite_store.h"
#include "tests/cli/command.h"

namespace banddesk::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using Arguments = std::vector<std::string>;

std::string in(const std::string& name) { return folder() + "/" + name; }

// A table of 40 samples, large enough that reading and saving take a while.
std::string largeTable() {
  std::string text = "Dye\tSample Name\tSize\tHeight\n";
  std::mt19937 random(7);
  for (int sample = 0; sample < 40; ++sample) {
    for (int peak = 0; peak < 200; ++peak) {
      text += "B\ts" + std::to_string(sample) + "\t" + std::to_string(50 + peak * 2) + "." +
              std::to_string(random() % 100) + "\t" + std::to_string(random() % 5000) + "\n";
    }
  }
  writeFile(in("t.txt"), text);
  return in("t.txt");
}

struct Contents {
  std::size_t results = 0, analyses = 0, excluded = 0;
};
// Reads all of a study; a part that is missing is an error.
Contents contentsOf(const std::string& study) {
  host::SqliteStore store(study);
  Contents contents;
  for (const auto& result : store.readStudy().results) {
    store.readFragments(result.id);
    ++contents.results;
    contents.excluded += result.isExcluded ? 1U : 0U;
  }
  for (const std::int32_t id : store.analysisIds()) {
    store.readAnalysis(id);
    ++contents.analyses;
  }
  return contents;
}

using std::chrono::steady_clock;

// Starts the program, and kills it after a while unless it is done before.
bool killAfter(const Arguments& arguments, std::chrono::microseconds wait) {
  const pid_t child = ::fork();
  if (child == 0) {
    if (std::freopen("/dev/null", "w", stdout) == nullptr ||
        std::freopen("/dev/null", "w", stderr) == nullptr)
      ::_exit(126);
    std::vector<char*> all{const_cast<char*>(BANDDESK_BINARY)};
    for (const std::string& argument : arguments) all.push_back(const_cast<char*>(argument.c_str()));
    all.push_back(nullptr);
    ::execv(BANDDESK_BINARY, all.data());
    ::_exit(127);
  }
  int status = 0;
  for (const auto end = steady_clock::now() + wait; steady_clock::now() < end;) {
    if (::waitpid(child, &status, WNOHANG) == child) return false;
  }
  ::kill(child, SIGKILL);
  ::waitpid(child, &status, 0);
  return WIFSIGNALED(status);
}

TEST(TheProgram, LeavesAStudyAsItWasOrAsItIsToBeWheneverItIsKilled) {
  const char* const wanted = std::getenv("BANDDESK_KILLS");
  const int kills = wanted == nullptr ? 30 : std::atoi(wanted);
  const std::string table = largeTable();
  const std::string study = in("s.study");
  ASSERT_EQ(banddesk({"new", study}).status, 0);
  const auto start = steady_clock::now();
  ASSERT_EQ(banddesk({"import", study, table}).status, 0);
  const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(steady_clock::now() - start);
  const std::string sound = readFile(study);
  std::mt19937 random(20240531);
  int killed = 0, before = 0, after = 0;
  for (int kill = 0; kill < kills; ++kill) {
    writeFile(study, sound);
    const std::vector<Arguments> works{{"import", study, table, "--again"},
                                       {"analyze", study, "--name", "A"},
                                       {"results", study, "--exclude", "s7"}};
    const std::size_t work = static_cast<std::size_t>(kill) % works.size();
    killed +=
        killAfter(works[work], std::chrono::microseconds(random() % static_cast<unsigned>(whole.count())))
            ? 1
            : 0;
    const Contents found = contentsOf(study);
    const bool isDone = work == 0   ? found.results == 80
                        : work == 1 ? found.analyses == 1
                                    : found.excluded == 1;
    const bool isAsBefore = found.results == 40 && found.analyses == 0 && found.excluded == 0;
    ASSERT_TRUE(isDone || isAsBefore) << "kill " << kill << ": " << found.results << " results";
    (isDone ? after : before) += 1;
    ASSERT_EQ(banddesk({"list", study}).status, 0);
  }
  std::printf("%d of %d runs killed; %d studies as before, %d as after\n", killed, kills, before, after);
  EXPECT_GT(killed, kills / 4);
}

void expectOneLine(const Outcome& outcome, const std::string& message) {
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr(message));
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
}

// `limit` is what the shell does before; all that follows must fail, and leave nothing and change nothing.
void expectNothingLost(const std::string& limit, const std::string& message) {
  const std::string table = largeTable();
  const std::string study = in("s.study");
  ASSERT_EQ(banddesk({"new", study}).status, 0);
  ASSERT_EQ(banddesk({"import", study, table}).status, 0);
  ASSERT_EQ(banddesk({"analyze", study, "--name", "A"}).status, 0);
  const std::string before = banddesk({"list", study}).out;
  const auto names = [] {
    std::set<std::string> all;
    for (const auto& entry : fs::directory_iterator(folder())) {
      if (!entry.path().filename().string().starts_with('.')) all.insert(entry.path().filename());
    }
    return all;
  };
  const auto namesBefore = names();
  const std::string program = limit + " '" BANDDESK_BINARY "' ";
  expectOneLine(shell("sh -c \"" + program + "import '" + study + "' '" + table + "' --again\""), message);
  expectOneLine(shell("sh -c \"" + program + "export '" + study + "' --name A --csv '" + in("t.csv") + "'\""),
                "t.csv");
  expectOneLine(
      shell("sh -c \"" + program + "export '" + study + "' --name A --xlsx '" + in("t.xlsx") + "'\""),
      "t.xlsx");
  EXPECT_EQ(names(), namesBefore);
  EXPECT_EQ(banddesk({"list", study}).out, before);
}

TEST(TheProgram, SaysInOneLineThatAFileMayGrowNoFurther) {
  expectNothingLost("ulimit -f 8;", "File too large");
}

TEST(TheProgram, SaysInOneLineThatAStudyIsCut) {
  const std::string study = in("s.study");
  ASSERT_EQ(banddesk({"new", study}).status, 0);
  ASSERT_EQ(banddesk({"import", study, largeTable()}).status, 0);
  const std::string whole = readFile(study);
  for (std::size_t part = 1; part < 20; ++part) {
    const std::string cut = whole.substr(0, whole.size() * part / 20);
    writeFile(study, cut);
    for (const Arguments& arguments :
         {Arguments{"list", study}, {"import", study, in("t.txt")}, {"analyze", study, "--name", "A"}})
      expectOneLine(banddesk(arguments), study + ": ");
    EXPECT_TRUE(readFile(study) == cut);
  }
}

TEST(TheProgram, WritesTheSameBytesWhereTheSystemHasADecimalComma) {
  const std::string comma = in("de_DE.UTF-8");
  if (shell("localedef -i de_DE -f UTF-8 '" + comma + "'").status != 0)
    GTEST_SKIP() << "the locale cannot be made here";
  const std::string german = "LOCPATH='" + folder() + "' LC_ALL=de_DE.UTF-8";
  ASSERT_EQ(shell(german + " locale decimal_point").out, ",\n");
  const std::string table = largeTable();
  const Arguments outputs{"--csv", "--nts", "--matrix", "--json"};
  for (const auto& [name, environment] :
       {std::pair<std::string, std::string>("plain", "LC_ALL=C.UTF-8"), {"comma", german}}) {
    fs::create_directory(in(name));
    const std::string study = in(name + "/S.study");
    ASSERT_EQ(
        banddesk({"new", study}, environment).status + banddesk({"import", study, table}, environment).status,
        0);
    Arguments arguments{"analyze", study, "--name", "A", "--max-bin-width", "1.25"};
    for (const std::string& output : outputs) {
      arguments.push_back(output);
      arguments.push_back(in(name + output));
    }
    const Outcome done = banddesk(arguments, environment);
    ASSERT_EQ(done.status, 0) << done.err;
  }
  for (const std::string& output : outputs)
    EXPECT_TRUE(readFile(in("plain" + output)) == readFile(in("comma" + output))) << output;
}

}  // namespace
}  // namespace banddesk::test
