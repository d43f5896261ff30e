// The command line from an instrument's files to the table.
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

#include "tests/cli/command.h"
#include "tests/runs/simulated_run.h"

namespace banddesk::test {
namespace {

using ::testing::HasSubstr;

void writeRun(const std::string& name, std::uint64_t seed) {
  std::filesystem::create_directories(in("runs"));
  std::ofstream(in("runs/" + name), std::ios::binary)
      << abifFile(runTags(simulateTraces(traceSettings("GS600 LIZ", seed)),
                          {"Plant " + std::to_string(seed), "A1", "run", "", {"6-FAM", "VIC", "LIZ"}}));
}

TEST(Runs, BecomeATableByOneCommand) {
  for (std::uint64_t seed = 1; seed <= 4; ++seed) writeRun(std::to_string(seed) + ".fsa", seed);
  const Outcome done = ok({"analyze", in("runs"), "--csv", in("t.csv"), "--keep-full-bins", "--least-height",
                           "B=200,G=300", "--standard", "GS600"});
  EXPECT_THAT(done.out, ::testing::AllOf(HasSubstr("4 samples\nD1 (B): 24 fragments in "),
                                         HasSubstr("D2 (G): 12 fragments in ")));
  EXPECT_THAT(readFile(in("t.csv")), HasSubstr("Plant 3"));
}

TEST(Runs, ComeIntoAStudyAllOrNothing) {
  writeRun("1.fsa", 1);
  ok({"new", in("s.study")});
  writeFile(in("runs/2.fsa"), "cut");
  expectError({"import", in("s.study"), in("runs")}, "does not begin with ABIF");
  EXPECT_THAT(ok({"list", in("s.study")}).out, ::testing::Not(HasSubstr("Plant 1")));
  ok({"import", in("s.study"), in("runs"), "--leave-out-unreadable", "--jobs", "2"});
  EXPECT_THAT(ok({"results", in("s.study")}).out, HasSubstr("Plant 1"));
  expectError({"analyze", in("runs"), "--standard", "50 40"}, "--standard");
  expectError({"analyze", in("runs"), "--least-height", "Q=5"}, "--least-height");
}

}  // namespace
}  // namespace banddesk::test
