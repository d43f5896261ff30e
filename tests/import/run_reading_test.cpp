#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/import/import_error.h"
#include "tests/import/table_folder.h"
#include "tests/runs/simulated_run.h"

namespace banddesk::host::import {
namespace {

using test::traceSettings;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

std::string runOf(std::uint64_t seed, const std::string& sample, const char* standard = "GS600 LIZ") {
  const auto traces = simulateTraces(traceSettings(standard, seed));
  return abifFile(runTags(traces, {sample, "A1", "run", "", {"6-FAM", "VIC", "LIZ"}}));
}

std::vector<std::string> namesOf(const PeakTable& table) {
  std::vector<std::string> names;
  for (const Sample& sample : table.samples) names.push_back(sample.name);
  return names;
}

class RunReading : public testing::Test {
 protected:
  PeakTable readFolder(const Options& options = {}) { return TableFolder::read({folder_.path()}, options); }
  std::string errorOf(const Options& options = {}) {
    try {
      readFolder(options);
      return "";
    } catch (const ImportError& error) {
      return error.what();
    }
  }

  TableFolder folder_;
};

TEST_F(RunReading, TakesRunsAndTablesOfOneFolder) {
  folder_.write("a.fsa", runOf(1, "Plant 1"));
  folder_.write("b", runOf(2, "Plant 2"));  // by content, whatever its name
  folder_.write("c.txt", "Dye/Sample Peak\tSample File Name\tSize\tHeight\nB,1\tPlant 1.fsa\t100\t500\n");
  folder_.write("notes.md", "no table");
  const PeakTable table = readFolder();
  EXPECT_THAT(namesOf(table), ElementsAre("Plant 1", "Plant 1 (2)", "Plant 2"));
  const Sample& run = table.samples[2];
  EXPECT_EQ(run.peaks(Dye::B).sizes.size(), 6U);
  EXPECT_EQ(run.peaks(Dye::G).sizes.size(), 3U);
  EXPECT_NEAR(run.peaks(Dye::B).sizes[0], 88.3, 0.7);
  EXPECT_TRUE(run.peaks(Dye::Y).sizes.empty());  // the size standard's
  EXPECT_THAT(table.report.files[0].notes, Contains(HasSubstr("size standard GS600 LIZ, 36 of 36")));
}

TEST_F(RunReading, IsAllOrNothingUnlessUnreadableFilesAreLeftOut) {
  folder_.write("a.fsa", runOf(1, "Plant 1"));
  folder_.write("b.fsa", ">a\nACGT");
  folder_.write("c.fsa", runOf(2, "Plant 2").substr(0, 5000));
  EXPECT_THAT(errorOf(), testing::AllOf(HasSubstr("b.fsa: is a FASTA"), HasSubstr("2 of 3 runs")));
  Options options;
  options.runs.leavesOutUnreadable = true;
  const PeakTable table = readFolder(options);
  EXPECT_THAT(namesOf(table), ElementsAre("Plant 1"));
  EXPECT_THAT(table.report.files[2].notes, Contains(HasSubstr("cut short")));
}

TEST_F(RunReading, LeavesOutWhatCouldNotBeSized) {
  folder_.write("a.fsa", runOf(1, "Plant 1"));
  auto traces = traceSettings("GS500", 3);
  traces.ladderSizes.clear();
  folder_.write("b.fsa", abifFile(runTags(simulateTraces(traces),
                                          {"Blank", "A2", "run", "", {"6-FAM", "VIC", "LIZ"}})));
  const PeakTable table = readFolder();
  EXPECT_THAT(namesOf(table), ElementsAre("Plant 1"));
  EXPECT_THAT(table.report.files[1].notes, Contains(HasSubstr("NOT SIZED")));
}

TEST_F(RunReading, TellsRunsOfOneNameApartByTheirFiles) {
  folder_.write("plate_A1.fsa", runOf(1, "Primula"));
  folder_.write("plate_A2.fsa", runOf(2, "Primula"));
  folder_.write("plate_A3.fsa", runOf(1, "Primula"));  // the same content once more
  EXPECT_THAT(namesOf(readFolder()), ElementsAre("plate_A1", "plate_A2"));
  Options options;
  options.isKnown = [](std::uint64_t, std::uint64_t) { return true; };
  EXPECT_TRUE(readFolder(options).samples.empty());
}

}  // namespace
}  // namespace banddesk::host::import
