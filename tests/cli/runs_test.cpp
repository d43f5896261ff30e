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

TEST(Runs, AreSizedAgainAndTheirPeaksReadBackAsTheyAre) {
  for (std::uint64_t seed = 1; seed <= 3; ++seed) writeRun(std::to_string(seed) + ".fsa", seed);
  ok({"new", in("s.study")});
  ok({"import", in("s.study"), in("runs"), "--least-height", "100"});
  ok({"analyze", in("s.study"), "--name", "First", "--keep-full-bins"});
  const std::string before = ok({"results", in("s.study")}).out;
  EXPECT_THAT(ok({"runs", in("s.study")}).out, HasSubstr("Plant 2\t2.fsa\tA1\tsized\tGS600 LIZ\t36 of 36\t"));
  // The same settings are no change; others are one, and what is not given stays.
  EXPECT_THAT(ok({"size", in("s.study"), "--jobs", "1"}).out,
              HasSubstr("sized 3 runs; 0 results have other"));
  EXPECT_THAT(ok({"size", in("s.study"), "--standard",
                  "60 80 100 114 120 140 160 180 200 214 220 240 250 260 280 300 314 320 340 360 380 400",
                  "--sample", "Plant 2"})
                  .out,
              ::testing::AllOf(HasSubstr("sized 1 runs; 1 results"), HasSubstr("\"First\" is out of date")));
  EXPECT_THAT(ok({"runs", in("s.study")}).out, HasSubstr("own sizes\t22 of 22"));
  ok({"size", in("s.study"), "--standard", "found"});
  EXPECT_EQ(ok({"results", in("s.study")}).out, before);
  ok({"peaks", in("s.study"), in("peaks.txt")});
  ok({"new", in("t.study")});
  ok({"import", in("t.study"), in("peaks.txt")});
  for (const char* name : {"s", "t"})
    ok({"analyze", in(std::string(name) + ".study"), "--name", "Again", "--keep-full-bins", "--cells",
        "height", "--matrix", in(std::string(name) + ".tsv")});
  EXPECT_EQ(readFile(in("s.tsv")), readFile(in("t.tsv")));
  EXPECT_THAT(ok({"size", in("s.study"), "--standard", "GS1000 ROX"}).out, HasSubstr("NOT SIZED"));
  EXPECT_THAT(ok({"size", in("s.study"), "--standard", "found"}).out,
              HasSubstr("Plant 3: sized, and included again"));
  EXPECT_EQ(ok({"results", in("s.study")}).out, before);
  expectError({"size", in("s.study"), "--sample", "Oak"}, "no run of a sample named \"Oak\"");
  expectError({"size", in("t.study")}, "no runs of instruments");
}

TEST(Runs, OfMoreThanFourDyesAskWhichFourAndKeepTheOthers) {
  auto settings = traceSettings("GS600 LIZ", 1);
  settings.dyes = {{70, 90}, {75, 95}, {80, 105}, {85, 115}, {88, 125}};
  auto traces = simulateTraces(settings);
  std::swap(traces.dyes[4], traces.dyes[5]);  // the size standard is the fifth of six
  std::filesystem::create_directories(in("runs"));
  writeFile(
      in("runs/1.fsa"),
      abifFile(runTags(traces, {"Plant", "A1", "run", "", {"6-FAM", "VIC", "NED", "TAZ", "LIZ", "SID"}})));
  ok({"new", in("s.study")});
  expectError({"import", in("s.study"), in("runs")}, "5 dyes beside the size standard");
  EXPECT_THAT(ok({"import", in("s.study"), in("runs"), "--dyes", "B,G,R,P"}).out,
              HasSubstr("the dye Y was left out: the study's dyes are B, G, R, P"));
  EXPECT_THAT(ok({"results", in("s.study")}).out, HasSubstr("B 2, G 2, R 2, P 2"));
  EXPECT_THAT(ok({"peaks", in("s.study")}).out, HasSubstr("Y,2\tPlant\t"));
  writeFile(
      in("runs/2.fsa"),
      abifFile(runTags(traces, {"Other", "A1", "run", "", {"6-FAM", "VIC", "NED", "TAZ", "LIZ", "SID"}})));
  expectError({"import", in("s.study"), in("runs"), "--dyes", "B,G,Y,P"}, "dyes are B,G,R,P and stay so");
  ok({"import", in("s.study"), in("runs")});
  EXPECT_THAT(ok({"list", in("s.study")}).out, HasSubstr("2 results, 0 excluded, 0 deleted; dyes BGRP"));
}

TEST(Runs, AreSizedByAStandardOfTheUsersOwn) {
  writeRun("1.fsa", 1);
  const std::string settings = "XDG_CONFIG_HOME=" + in("settings");
  ok({"standards", "--add", "Mine", "60 80 100 120 140 160 180 200 220 240 260", "--dyes", "LIZ"}, settings);
  ok({"new", in("s.study")});
  ok({"import", in("s.study"), in("runs"), "--standard", "Mine"}, settings);
  // The study knows it where the user's settings do not.
  EXPECT_THAT(ok({"size", in("s.study"), "--standard", "mine"}, "XDG_CONFIG_HOME=" + in("none")).out,
              HasSubstr("0 results have other fragments"));
  EXPECT_THAT(ok({"runs", in("s.study")}).out, HasSubstr("\tMine\t11 of 11"));
  ok({"standards", "--remove", "Mine"}, settings);
  expectError({"standards", "--remove", "Mine"}, "no standard of your own", settings);
}

// The study is as before, or has the whole import.
TEST(Runs, LeaveAStudyWholeWhereAnImportIsKilled) {
  for (std::uint64_t seed = 1; seed <= 12; ++seed) writeRun(std::to_string(seed) + ".fsa", seed);
  ok({"new", in("s.study")});
  const std::string none = ok({"list", in("s.study")}).out;
  for (int part = 0; part < 8; ++part) {
    writeFile(in("before"), readFile(in("s.study")));
    shell("timeout -s KILL 0." + std::to_string(part) + "5 " BANDDESK_BINARY " import " + in("s.study") +
          " " + in("runs"));
    const std::string after = ok({"list", in("s.study")}).out;
    EXPECT_TRUE(after == none || after.find("12 results") != std::string::npos) << after;
    EXPECT_EQ(ok({"runs", in("s.study")}).out.find("12.fsa") != std::string::npos, after != none);
    writeFile(in("s.study"), readFile(in("before")));
  }
  ok({"import", in("s.study"), in("runs")});
}

}  // namespace
}  // namespace banddesk::test
