// The whole program under what happens to programs: it is killed, the disk is full, its files are cut.
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <set>

#include "host/store/sqlite_store.h"
#include "tests/cli/command.h"

namespace banddesk::test {
namespace {

namespace fs = std::filesystem;

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

TEST(TheProgram, LeavesAStudyAsItWasOrAsItIsToBeWheneverItIsKilled) {
  const char* const wanted = std::getenv("BANDDESK_KILLS");
  const int kills = wanted == nullptr ? 30 : std::atoi(wanted);
  const std::string table = largeTable();
  const std::string study = in("s.study");
  ok({"new", study});
  const auto start = steady_clock::now();
  ok({"import", study, table});
  std::chrono::duration<double> whole = steady_clock::now() - start;
  const std::string sound = readFile(study);
  std::mt19937 random(20240531);
  int killed = 0, before = 0, after = 0;
  for (int kill = 0; kill < kills; ++kill) {
    writeFile(study, sound);
    const std::vector<Arguments> works{{"import", study, table, "--again"},
                                       {"analyze", study, "--name", "A"},
                                       {"results", study, "--exclude", "s7"}};
    const std::size_t work = static_cast<std::size_t>(kill) % works.size();
    const double seconds = whole.count() * static_cast<double>(random() % 1000) / 1000;
    const std::string timer = "timeout --foreground -s KILL " + std::to_string(seconds + 0.0001);
    // However busy the machine, the next one is likely to be hit in the midst of its work.
    const bool isSurvivor = banddesk(works[work], timer).status == 0;
    whole *= isSurvivor ? 0.7 : 1.1;
    killed += isSurvivor ? 0 : 1;
    const Contents found = contentsOf(study);
    const bool isDone = work == 0   ? found.results == 80
                        : work == 1 ? found.analyses == 1
                                    : found.excluded == 1;
    const bool isAsBefore = found.results == 40 && found.analyses == 0 && found.excluded == 0;
    ASSERT_TRUE(isDone || isAsBefore) << "kill " << kill << ": " << found.results << " results";
    (isDone ? after : before) += 1;
    ok({"list", study});
  }
  std::printf("%d of %d runs killed; %d studies as before, %d as after\n", killed, kills, before, after);
  EXPECT_GT(killed, kills / 4);
}

TEST(TheProgram, LosesNothingWhereAFileMayGrowNoFurther) {
  const std::string table = largeTable();
  const std::string study = in("s.study");
  ok({"new", study});
  ok({"import", study, table});
  ok({"analyze", study, "--name", "A"});
  const std::string before = ok({"list", study}).out;
  const auto names = [] {
    std::set<std::string> all;
    for (const auto& entry : fs::directory_iterator(folder())) {
      if (!entry.path().filename().string().starts_with('.')) all.insert(entry.path().filename());
    }
    return all;
  };
  const auto namesBefore = names();
  const std::string limit = "prlimit --fsize=4096";
  expectError({"import", study, table, "--again"}, "File too large", limit);
  expectError({"export", study, "--name", "A", "--csv", in("t.csv")}, "t.csv", limit);
  expectError({"export", study, "--name", "A", "--xlsx", in("t.xlsx")}, "t.xlsx", limit);
  EXPECT_EQ(names(), namesBefore);
  EXPECT_EQ(ok({"list", study}).out, before);
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
    ok({"new", study}, environment);
    ok({"import", study, table}, environment);
    Arguments arguments{"analyze", study, "--name", "A", "--max-bin-width", "1.25"};
    for (const std::string& output : outputs) {
      arguments.push_back(output);
      arguments.push_back(in(name + output));
    }
    ok(arguments, environment);
  }
  for (const std::string& output : outputs)
    EXPECT_TRUE(readFile(in("plain" + output)) == readFile(in("comma" + output))) << output;
}

}  // namespace
}  // namespace banddesk::test
