#include "bench/run_stress.h"

#include <algorithm>
#include <cmath>
#include <deque>

#include "host/runs/process_run.h"
#include "host/runs/run_work.h"
#include "host/simulation/abif_writer.h"

namespace banddesk::bench {
namespace {

namespace runs = host::runs;
namespace simulation = host::simulation;

simulation::SimulatedTraces tracesOf(const Stress& stress, const runs::SizeStandard& standard,
                                     std::uint64_t seed) {
  simulation::TraceSettings settings;
  settings.seed = seed;
  settings.ladderSizes = standard.sizes;
  settings.strayingSizes = standard.unreliable;
  settings.dyes = {{}};
  settings.scansPerNt = stress.scansPerNt;
  settings.firstScan = 100 * stress.scansPerNt;
  settings.falsePeaks = stress.falsePeaks;
  settings.missing = stress.missing;
  return simulateTraces(settings);
}

bool isRight(const runs::LadderAssignment& ladder, const std::vector<simulation::TrueFragment>& truth,
             double scansPerNt) {
  return !ladder.peaks.empty() && std::ranges::all_of(ladder.peaks, [&](const runs::LadderPeak& peak) {
    if (peak.isDoubtful) return true;  // said to be left out
    const auto found = std::ranges::find(truth, peak.size, &simulation::TrueFragment::size);
    // A false peak may stand so near that both are one.
    return found != truth.end() && std::abs(found->scan - peak.scan) <= std::max(1.5, 0.3 * scansPerNt);
  });
}

void count(StressFigures& figures, const runs::LadderAssignment& ladder, bool right) {
  const bool isSized = ladder.quality == runs::LadderQuality::Sized;
  ++figures.runs;
  if (right)
    ++(isSized ? figures.right : figures.rightFlagged);
  else
    ++(isSized ? figures.silentlyWrong : figures.wrongFlagged);
}

}  // namespace

std::vector<Stress> stresses() {
  return {{"clean", 0, 0, 9},
          {"10 false peaks", 10, 0, 9},
          {"2 sizes missing", 0, 2, 9},
          {"4 sizes missing", 0, 4, 9},
          {"10 false, 2 missing", 10, 2, 9},
          {"10 false, 4 missing", 10, 4, 9},
          {"narrow, 10 false", 10, 0, 5},
          {"wide, 10 false", 10, 0, 22},
          {"30 false peaks", 30, 0, 9}};
}

StressFigures stressFigures(const Stress& stress, const runs::SizeStandard& standard, std::size_t runs,
                            bool isOneRun, std::uint64_t seed) {
  StressFigures figures;
  runs::RunSettings settings;
  settings.ladder.standard = standard;
  std::vector<simulation::SimulatedTraces> traces;
  std::deque<runs::RunWork> works;
  std::vector<const runs::LadderAssignment*> good;
  for (std::size_t i = 0; i < runs; ++i) {
    traces.push_back(tracesOf(stress, standard, seed + i));
    runs::RunFile run;
    run.fileName = "simulated";
    run.dyes.push_back({1, 'B', "6-FAM", {}, false, traces[i].dyes[0]});
    run.dyes.push_back(
        {2, 'R', standard.dyes.empty() ? "LIZ" : standard.dyes[0], {}, true, traces[i].dyes[1]});
    works.emplace_back(std::move(run), settings).findLadder();
  }
  std::vector<runs::LadderAssignment> ladders;
  for (const auto& work : works)
    if (work.ladder().quality == runs::LadderQuality::Sized) ladders.push_back(work.ladder());
  good.reserve(ladders.size());
  for (const auto& ladder : ladders) good.push_back(&ladder);
  for (std::size_t i = 0; i < runs; ++i) {
    if (isOneRun && works[i].ladder().quality != runs::LadderQuality::Sized) works[i].askNeighbours(good);
    count(figures, works[i].ladder(), isRight(works[i].ladder(), traces[i].ladder, stress.scansPerNt));
  }
  return figures;
}

}  // namespace banddesk::bench
