// How the analysis of raw runs compares with other programs, on real runs where they are at hand
// (BANDDESK_SHARED, or ../shared beside the source tree), with and without the results that those programs
// left in the files.
#include <CLI/CLI.hpp>
#include <chrono>
#include <ctime>
#include <fmt/format.h>

#include "bench/run_figures.h"
#include "bench/run_stress.h"
#include "host/runs/run_error.h"

namespace banddesk::bench {
namespace {

namespace runs = host::runs;
namespace fs = std::filesystem;

constexpr double kPrinted = 0.0051;  // nt: half a unit of the last printed digit

double percent(std::size_t part, std::size_t whole) {
  return whole == 0 ? 100 : 100 * static_cast<double>(part) / static_cast<double>(whole);
}

void printFigures(const std::string& name, const RunFigures& one, bool details) {
  fmt::print("  {:<18} {:>2} of {:>2} sized, {} right, {} silently wrong\n", name, one.sized, one.files,
             one.laddersRight, one.laddersWrong);
  fmt::print(
      "    sizes  at its scans: {} peaks, largest {:.4f} nt; with own scans: {} peaks, {:.2f} % within {}\n",
      one.sizeErrors.size(), quantile(one.sizeErrors, 1), one.ownSizeErrors.size(),
      100 * shareBelow(one.ownSizeErrors, kPrinted), kPrinted);
  fmt::print(
      "    peaks  {:.2f} % of {} found, {:.2f} % more; same scan {:.2f} %; heights {:.2f} % median, {:.2f} % "
      "of 95 %\n",
      percent(one.found, one.wanted), one.wanted, percent(one.more, one.wanted),
      percent(one.sameScan, one.matched), 100 * quantile(one.heightErrors, 0.5),
      100 * quantile(one.heightErrors, 0.95));
  if (details)
    for (const std::string& line : one.details) fmt::print("      {}\n", line);
}

std::vector<std::string> filesBelow(const fs::path& folder) {
  std::vector<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.path().extension() == ".fsa" || entry.path().extension() == ".ab1")
      files.push_back(entry.path().string());
  std::ranges::sort(files);
  return files;
}

/// Every file with default settings and nothing said: what a user gets.
void printDefaults(const fs::path& folder) {
  for (const auto& outcome : runs::processRuns(filesBelow(folder), {}, 1)) {
    const std::string name = fs::path(outcome.path).filename().string().substr(0, 34);
    if (!outcome.processed) {
      fmt::print("  {:<34} {}\n", name, outcome.error);
      continue;
    }
    const runs::LadderAssignment& ladder = outcome.processed->ladder;
    std::string why;
    for (const auto& reason : ladder.reasons) why += "; " + reason;
    fmt::print("  {:<34} {:<9} {} {:>2}/{:<2} {:<20} score {:.0f}, residuals {:.2f} {:.2f}{}\n", name,
               outcome.processed->run.instrument,
               ladder.quality == runs::LadderQuality::Sized      ? "sized"
               : ladder.quality == runs::LadderQuality::LookAtIt ? "LOOK "
                                                                 : "NOT  ",
               ladder.peaks.size(), ladder.standard.sizes.size(), ladder.standard.name, ladder.score,
               ladder.medianResidual, ladder.worstResidual, why);
  }
}

double secondsOf(const auto& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Of this process, whatever else the machine does.
double processorSecondsOf(const auto& work) {
  const std::clock_t start = std::clock();
  work();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

void printSpeed(const fs::path& folder) {
  std::vector<std::string> files;
  for (const std::string& file : filesBelow(folder))
    if (file.find("biopython") == std::string::npos) files.push_back(file);
  const auto each = [&](const runs::RunSettings& settings) {
    const double seconds = processorSecondsOf([&] {
      for (const std::string& file : files) runs::processRun(runs::readRunFile(file), settings);
    });
    return 1000 * seconds / static_cast<double>(files.size());
  };
  // As a batch does once a run's first files have decided.
  runs::RunSettings known;
  std::erase_if(known.ladder.lists,
                [](const auto& list) { return list.name != "GS600 LIZ" && list.name != "GS500"; });
  runs::RunSettings all;
  for (auto& list : all.ladder.lists) list.dyes.clear();
  fmt::print(
      "  a file on one core, processor time: {:.1f} ms with two lists, {:.1f} ms with those of its dye, "
      "{:.1f} ms with all lists\n",
      each(known), each({}), each(all));
  fmt::print("  all {} files as a batch on two cores: {:.0f} ms\n", files.size(),
             1000 * secondsOf([&] { runs::processRuns(files, {}, 2); }));
}

void printStress(std::size_t runs) {
  fmt::print(
      "simulated ladders, {} each, by themselves | as one run: % right, right but flagged, wrong and "
      "flagged, "
      "SILENTLY WRONG\n",
      runs);
  for (const char* name : {"GS500", "GS600 LIZ", "ILS500 WEN", "GS400HD ROX"})
    for (const Stress& stress : stresses()) {
      fmt::print("  {:<12} {:<20}", name, stress.name);
      for (const bool isOneRun : {false, true}) {
        const auto one =
            stressFigures(stress, *runs::findStandard(runs::knownStandards(), name), runs, isOneRun);
        fmt::print(" {} {:6.1f} {:6.1f} {:6.1f} {:6.1f}", isOneRun ? "|" : " ", percent(one.right, one.runs),
                   percent(one.rightFlagged, one.runs), percent(one.wrongFlagged, one.runs),
                   percent(one.silentlyWrong, one.runs));
      }
      fmt::print("\n");
    }
}

int run(int argc, char** argv) {
  CLI::App app("Compares the analysis of raw runs with other programs");
  bool details = false, defaults = false;
  std::size_t simulated = 0;
  app.add_flag("--details", details, "name the files that are not right");
  app.add_flag("--defaults", defaults, "also list every file with default settings");
  app.add_option("--simulated", simulated, "so many simulated ladders of each kind");
  CLI11_PARSE(app, argc, argv);
  if (simulated > 0) printStress(simulated);
  const fs::path folder = realRuns();
  if (folder.empty()) {
    fmt::print("the real runs are not at hand\n");
    return 0;
  }
  for (const bool withResults : {true, false}) {
    fmt::print("{}\n", withResults ? "files as they are" : "files without the results of other programs");
    for (const OtherProgram& other : otherPrograms())
      printFigures(other.folder, figuresOf(other, folder, withResults), details);
  }
  if (defaults) printDefaults(folder);
  fmt::print("speed\n");
  printSpeed(folder);
  return 0;
}

}  // namespace
}  // namespace banddesk::bench

int main(int argc, char** argv) { return banddesk::bench::run(argc, argv); }
