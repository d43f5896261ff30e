// The road of a study through the program, each work measured against what the machine can do, in turns.
//   banddesk_bench [--quick] [--json OUT] [--check FILE | --record FILE] [--only TEXT] [--seconds S]
// --quick takes the two smaller studies and fewer rounds. --check fails if a work's ratio to its reference is
// more than half above the one in FILE; --record writes such a file.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <fmt/format.h>
#include <optional>
#include <unistd.h>

#include "bench/road_lines.h"

namespace banddesk::bench {
namespace {

const StudySize kSmall{"100 x 4 x 150", 100, 150};
const StudySize kLarge{"1500 x 4 x 200", 1500, 200, false, true};
const StudySize kHuge{"10000 x 4 x 200", 10'000, 200};
const StudySize kSkewed{"1500, skewed", 1500, 200, true};

struct Options {
  bool isQuick = false;
  std::string json, check, record, only;
  std::optional<double> seconds;
};

// A folder of this run's own, gone at its end.
class Scratch {
 public:
  Scratch() : path(std::filesystem::temp_directory_path() / fmt::format("banddesk-bench-{}", ::getpid())) {
    std::filesystem::create_directories(path);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  const std::filesystem::path path;
};

void measureStudy(Bench& bench, Road& road) {
  measureArrival(bench, road);
  measurePage(bench, road);
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

int run(const Options& options) {
  Effort effort = options.isQuick ? Effort{3, 15, 0.4} : Effort{3, 41, 2};
  if (options.seconds) effort = {3, 10'000, *options.seconds};
  Bench bench(effort, options.check.empty() ? Recorded{} : readRecorded(options.check), options.only);
  const Scratch scratch;
  printHead();
  measureAll(bench, options.isQuick, scratch.path);
  if (!options.json.empty()) writeJson(options.json, bench.lines());
  if (!options.record.empty()) writeRecorded(options.record, bench.lines());
  for (const std::string& key : bench.worse())
    fmt::print(stderr, "banddesk_bench: more than half above the recorded ratio: {}\n", key);
  return bench.worse().empty() ? 0 : 1;
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
      app.add_option("--check", options.check, "Fails on ratios half above those in this file");
  app.add_option("--record", options.record, "Writes this run's ratios to this file")->excludes(check);
  CLI11_PARSE(app, argc, argv);
  try {
    return banddesk::bench::run(options);
  } catch (const std::exception& error) {
    fmt::print(stderr, "banddesk_bench: {}\n", error.what());
    return 2;
  }
}
