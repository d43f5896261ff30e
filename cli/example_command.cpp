#include "cli/example_command.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <ostream>

#include "cli/analyze_command.h"
#include "cli/output_file.h"
#include "cli/say.h"
#include "cli/session.h"
#include "host/framework/study_import.h"
#include "host/runs/size_standard.h"
#include "host/simulation/abif_writer.h"
#include "host/simulation/peak_table_writer.h"
#include "host/simulation/simulator.h"
#include "host/store/sqlite_store.h"
#include "plugin/base/error.h"

namespace banddesk::cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kThreshold = "50";
constexpr double kLadderJitterNt = 0.08;
const std::vector<std::string> kDyeNames{"6-FAM", "VIC", "NED", "ROX"};

host::simulation::SimulatedRuns exampleRuns(std::uint64_t seed) {
  host::simulation::Settings settings;
  settings.seed = seed;
  settings.samples = 24;
  settings.replicates = 3;
  return host::simulation::simulate(settings);
}

// The same samples as an instrument records them, each a file.
void writeExampleRuns(const fs::path& folder, const host::simulation::SimulatedRuns& simulated,
                      std::uint64_t seed) {
  using namespace host::simulation;
  const auto& standard = *host::runs::findStandard(host::runs::knownStandards(), "GS500");
  fs::create_directories(folder);
  for (const SimulatedRun& run : simulated.runs) {
    TraceSettings settings;
    settings.seed = ++seed;
    settings.ladderSizes = standard.sizes;
    settings.strayingSizes = standard.unreliable;
    settings.jitterNt = kLadderJitterNt;
    for (const auto& dye : run.dyes) {
      auto& sizes = settings.dyes.emplace_back();
      auto& heights = settings.heights.emplace_back();
      for (const Peak& peak : dye) {
        sizes.push_back(peak.size);
        heights.push_back(peak.height);
      }
    }
    const std::string name = run.name.substr(0, run.name.find('.'));
    const auto tags = runTags(simulateTraces(settings), {name, "", "Example", "GS500", kDyeNames});
    writeWholeText(folder / (run.name + ".fsa"), [&](std::ostream& out) { out << abifFile(tags); });
  }
}

// The same runs and analysis as a study, for the desktop. One that is there already may hold decisions of the
// user's own and stays.
void writeExampleStudy(const fs::path& path, const fs::path& files, std::optional<host::import::Dye> ladder) {
  if (fs::exists(path)) return;
  host::SqliteStore::create(path.string(), "Example");
  Session session;
  session.openStudy(std::make_shared<host::SqliteStore>(path.string()));
  host::importIntoStudy(session.host().study(), {{files}, {ladder}});
  AnalysisRequest request;
  request.yThreshold = kThreshold;
  session.analyze(request);
  session.analysis().Name = "Example";
  session.save();
}

}  // namespace

CLI::App& addExampleCommand(CLI::App& app, ExampleArguments& arguments) {
  CLI::App& command = *app.add_subcommand("example", "Simulate a study and analyse it");
  command.add_option("--out", arguments.out, "The folder for the table and its exports")
      ->type_name("FOLDER")
      ->capture_default_str();
  command.add_option("--seed", arguments.seed, "Another seed, another study")->capture_default_str();
  command.footer("Example:\n  banddesk example --out example");
  return command;
}

void runExample(const ExampleArguments& arguments) {
  std::error_code trouble;
  const fs::path mark = arguments.out / ".banddesk-example";
  if (fs::exists(arguments.out, trouble) && !fs::exists(mark, trouble) &&
      !(fs::is_directory(arguments.out, trouble) && fs::is_empty(arguments.out, trouble))) {
    raise(ErrorNumber::InvalidArgument, "Example",
          fmt::format("{}: something else is there already; name a new folder", arguments.out.string()));
  }
  fs::create_directories(arguments.out, trouble);
  if (trouble) {
    raise(ErrorNumber::PathNotFound, "Example",
          fmt::format("{}: {}", arguments.out.string(), trouble.message()));
  }
  writeWholeText(mark, [](std::ostream& out) { out << "Made by banddesk example, which may replace it.\n"; });
  AnalyzeArguments analyze;
  const fs::path table = arguments.out / "peaks.txt";
  const auto runs = exampleRuns(arguments.seed);
  writeWholeText(table, [&](std::ostream& out) { host::simulation::writePeakTable(out, runs); });
  analyze.files = {table};
  analyze.reading.ladder = host::import::Dye::R;
  analyze.request.yThreshold = kThreshold;
  analyze.outputs.csv = arguments.out / "table.csv";
  analyze.outputs.nts = arguments.out / "table.nts";
  analyze.outputs.matrix = arguments.out / "matrix.tsv";
  analyze.outputs.json = arguments.out / "analysis.json";
  analyze.outputs.xlsx = arguments.out / "table.xlsx";
  analyze.printHead = true;
  runAnalyze(analyze);
  const fs::path study = arguments.out / "example.study";
  writeExampleStudy(study, table, host::import::Dye::R);
  const fs::path runFolder = arguments.out / "runs", runStudy = arguments.out / "runs.study";
  writeExampleRuns(runFolder, runs, arguments.seed);
  writeExampleStudy(runStudy, runFolder, {});
  const Outputs& made = analyze.outputs;
  say("\nThe simulated peak table: {}\nIts AFLP table:           {}\nas a spreadsheet:         {}\n"
      "for NTSYSpc:              {}\nfor statistics:           {}\nThe analysis as JSON:     {}\n"
      "As a study:               {}\nThe instrument's files:   {}\nand a study of them:      {}\n",
      table.string(), made.csv->string(), made.xlsx->string(), made.nts->string(), made.matrix->string(),
      made.json->string(), study.string(), runFolder.string(), runStudy.string());
}

}  // namespace banddesk::cli
