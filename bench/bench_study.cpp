#include "bench/bench_study.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>

#include "host/simulation/peak_table_writer.h"
#include "host/simulation/random.h"
#include "host/simulation/simulator.h"

namespace banddesk::bench {
namespace {

namespace simulation = host::simulation;

constexpr std::size_t kDyes = 4;

// As near as chance has them: with a resolution the peaks would be fewer than asked for.
simulation::SimulatedRuns runsOf(std::size_t samples, std::size_t dyes, std::size_t peaks,
                                 std::uint64_t seed) {
  simulation::Settings settings;
  settings.seed = seed;
  settings.samples = samples;
  settings.dyes = dyes;
  settings.peaksPerSample = peaks;
  settings.resolutionNt = 0;
  settings.ladderDye.reset();
  return simulation::simulate(settings);
}

void crowd(simulation::SimulatedRun& run) {
  simulation::Random random(3);
  for (auto& peaks : run.dyes) {
    for (std::size_t more = peaks.size() * (kCrowdedSample - 1); more > 0; --more) {
      const double size = std::round(random.uniform(50, 500) * 100) / 100;
      peaks.push_back({size, std::round(random.uniform(10, 3000)), simulation::spuriousLocus});
    }
    std::ranges::stable_sort(peaks, {}, &simulation::Peak::size);
  }
}

simulation::SimulatedRuns skewedRuns(const StudySize& size) {
  const std::size_t all = kDyes * size.peaks;
  simulation::SimulatedRuns runs = runsOf(size.samples, 1, all * 9 / 10, 1);
  simulation::SimulatedRuns thin = runsOf(size.samples, kDyes - 1, all / 10 / (kDyes - 1), 2);
  runs.dyes = "BGYR";
  for (std::size_t i = 0; i < runs.runs.size(); ++i)
    std::ranges::move(thin.runs[i].dyes, std::back_inserter(runs.runs[i].dyes));
  crowd(runs.runs.front());
  return runs;
}

}  // namespace

void writeStudyTable(const std::filesystem::path& file, const StudySize& size) {
  std::ofstream out(file, std::ios::binary);
  out.exceptions(std::ios::badbit | std::ios::failbit);
  simulation::writePeakTable(out,
                             size.isSkewed ? skewedRuns(size) : runsOf(size.samples, kDyes, size.peaks, 1));
  out.close();
}

}  // namespace banddesk::bench
