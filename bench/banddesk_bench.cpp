// The road of a study through the program, each work measured against what the machine can do, in turns.
//   banddesk_bench [--quick] [--json OUT] [--only TEXT] [--seconds S]
//   banddesk_bench --check FILE | --record FILE [--only TEXT]
// --quick takes the two smaller studies and fewer rounds. --check counts instructions and bytes of two small
// studies and fails if one is above what stands in FILE, by more than machines differ; --record writes such a
// file.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <fmt/format.h>
#include <optional>

#include "bench/counted_run.h"
#include "bench/road_lines.h"
#include "tests/support/temp_folder.h"

namespace banddesk::bench {
namespace {

const StudySize kSmall{"100 x 4 x 150", 100, 150};
const StudySize kLarge{"1500 x 4 x 200", 1500, 200, false, true};
const StudySize kHuge{"10000 x 4 x 200", 10'000, 200};
const StudySize kSkewed{"1500, skewed", 1500, 200, true};

// Growth that is no longer proportional shows in the second.
const StudySize kMiddle{"400 x 4 x 150", 400, 150};

struct Options {
  bool isQuick = false;
  std::string json, check, record, count, only;
  std::optional<double> seconds;
};

void measureStudy(Bench& bench, Road& road) {
  measureArrival(bench, road);
  measurePage(bench, road);
  measureHistory(bench, road);
}

// The small study's road stays open: the others' growth is measured against it.
void measureAll(Bench& bench, bool isQuick, const std::filesystem::path& folder) {
  Road small(kSmall, folder);
  measureStudy(bench, small);
  const std::vector<StudySize> larger = isQuick ? std::vector{kLarge} : std::vector{kLarge, kHuge, kSkewed};
  for (const StudySize& size : larger) {
    Road road(size, folder);
    measureStudy(bench, road);
    if (!size.isSkewed) measureGrowth(bench, small, road);
  }
}

// What valgrind runs: the works once each, and the bytes into a file.
void countAll(const Options& options, const std::filesystem::path& folder) {
  Bench bench(std::nullopt, options.only);
  for (const StudySize& size : {kSmall, kMiddle}) {
    Road road(size, folder);
    measureStudy(bench, road);
  }
  Counts bytes;
  for (const Line& line : bench.lines()) bytes[line.key()] = line.value;
  writeCounts(options.count, bytes);
}

int checkOrRecord(const Options& options, const std::filesystem::path& folder) {
  const Counts counts = countedRun(folder, options.only);
  if (!options.record.empty()) {
    writeCounts(options.record, counts);
    return 0;
  }
  if (judge(counts, readCounts(options.check))) return 0;
  fmt::print(stderr, "banddesk_bench: some counts are more than {:g} % above the recorded ones\n",
             kTolerance * 100);
  return 1;
}

int run(const Options& options) {
  const test::TempFolder scratch;
  if (!options.count.empty()) {
    countAll(options, scratch.path());
    return 0;
  }
  if (!options.check.empty() || !options.record.empty()) return checkOrRecord(options, scratch.path());
  Effort effort = options.isQuick ? Effort{3, 15, 0.4} : Effort{3, 41, 2};
  if (options.seconds) effort = {3, 10'000, *options.seconds};
  Bench bench(effort, options.only);
  printHead();
  measureAll(bench, options.isQuick, scratch.path());
  if (!options.json.empty()) writeJson(options.json, bench.lines());
  return 0;
}

}  // namespace
}  // namespace banddesk::bench

int main(int argc, char** argv) {
  CLI::App app("Measures the road of a study through the program");
  banddesk::bench::Options options;
  app.add_flag("--quick", options.isQuick, "The two smaller studies, fewer rounds");
  app.add_option("--json", options.json, "Writes the figures to this file too");
  app.add_option("--only", options.only, "Only lines whose study and work contain this text");
  app.add_option("--seconds", options.seconds, "Of rounds for each line, as many as fit in; for profiles");
  auto* const check =
      app.add_option("--check", options.check, "Counts, and fails on counts above those in this file");
  app.add_option("--record", options.record, "Counts, and writes the counts to this file")->excludes(check);
  app.add_option("--count", options.count, "What these run under valgrind; writes bytes to this file")
      ->group("");
  CLI11_PARSE(app, argc, argv);
  try {
    return banddesk::bench::run(options);
  } catch (const std::exception& error) {
    fmt::print(stderr, "banddesk_bench: {}\n", error.what());
    return 2;
  }
}
