// Statistics at the size of a large table, 1,400 samples by 1,500 bins, and the bootstraps of a smaller one,
// each beside its limit in the processor's time:
//   Distances               50 ms    DistancesWithMissing  150 ms (a tenth of the bands)
//   DistancesPlainly        the counting for any processor
//   Upgma                  200 ms    Pcoa                    5 s
//   BootstrapUpgma           5 s     BootstrapJoining        5 s (1,000 of 200 samples)
//   Joining, Amova          without a limit; 999 permutations
//   PcoaLongestStep         the longest that principal coordinates take to hear of a cancel
//   HeatMap, Gel            the drawings of the whole table; the gel has 100 fragments a sample
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <utility>

#include "host/pictures/gel.h"
#include "host/pictures/heat_map.h"
#include "host/simulation/random.h"
#include "host/statistics/amova.h"
#include "host/statistics/bit_counts.h"
#include "host/statistics/bootstrap.h"
#include "host/statistics/ordination.h"

namespace banddesk::host::statistics {
namespace {

constexpr std::size_t kSamples = 1400;
constexpr std::size_t kFewSamples = 200;
constexpr std::size_t kLoci = 1500;

BandMatrix randomMatrix(std::size_t samples, double missing) {
  simulation::Random random(1);
  BandMatrix matrix;
  for (std::size_t i = 0; i < kLoci; ++i) matrix.loci.push_back({"D1", static_cast<double>(i)});
  for (std::size_t i = 0; i < samples; ++i) {
    matrix.samples.push_back(std::to_string(i));
    for (std::size_t k = 0; k < kLoci; ++k) {
      const Band band = random.chance(0.3) ? Band::Present : Band::Absent;
      matrix.cells.push_back(random.chance(missing) ? Band::Missing : band);
    }
  }
  return matrix;
}

const BandMatrix& large() {
  static const BandMatrix matrix = randomMatrix(kSamples, 0);
  return matrix;
}

const DistanceTable& largeDistances() {
  static const DistanceTable table = distances(large(), Measure::Jaccard);
  return table;
}

void limit(benchmark::State& state, double milliseconds) { state.counters["limit_ms"] = milliseconds; }

void Distances(benchmark::State& state) {
  large();
  for (auto _ : state) benchmark::DoNotOptimize(distances(large(), Measure::Jaccard));
  limit(state, 50);
}

void DistancesWithMissing(benchmark::State& state) {
  const BandMatrix matrix = randomMatrix(kSamples, 0.1);
  for (auto _ : state) benchmark::DoNotOptimize(distances(matrix, Measure::Jaccard));
  limit(state, 150);
}

void DistancesPlainly(benchmark::State& state) {
  const PackedBands bands(large());
  std::vector<PairCounts> counts(kSamples);
  for (auto _ : state) {
    for (std::size_t i = 0; i < kSamples; ++i) {
      countPairsPlainly(bands, i, std::span(counts).first(kSamples - i - 1));
      benchmark::DoNotOptimize(counts.data());
    }
  }
}

void Upgma(benchmark::State& state) {
  largeDistances();
  for (auto _ : state) benchmark::DoNotOptimize(upgma(largeDistances()));
  limit(state, 200);
}

void Joining(benchmark::State& state) {
  largeDistances();
  for (auto _ : state) benchmark::DoNotOptimize(neighbourJoining(largeDistances()));
}

void Pcoa(benchmark::State& state) {
  largeDistances();
  for (auto _ : state) benchmark::DoNotOptimize(principalCoordinates(largeDistances(), Scale::AsIs, 3));
  limit(state, 5000);
}

void PcoaLongestStep(benchmark::State& state) {
  largeDistances();
  for (auto _ : state) {
    using Clock = std::chrono::steady_clock;
    auto last = Clock::now();
    std::chrono::duration<double> longest{0};
    const auto step = [&](double) {
      const auto now = Clock::now();
      longest = std::max<std::chrono::duration<double>>(longest, now - std::exchange(last, now));
      return true;
    };
    principalCoordinates(largeDistances(), Scale::AsIs, 3, step);
    step(1);
    state.SetIterationTime(longest.count());
  }
}

void HeatMap(benchmark::State& state) {
  const Tree tree = upgma(largeDistances());
  for (auto _ : state) benchmark::DoNotOptimize(pictures::heatMapOf(tree, large()));
}

void Gel(benchmark::State& state) {
  simulation::Random random(2);
  pictures::Gel gel;
  pictures::GelLook look;
  for (std::size_t i = 0; i < kLoci; ++i)
    gel.bins.push_back({50 + 0.3 * static_cast<double>(i), 50.2 + 0.3 * static_cast<double>(i), 0});
  for (std::size_t i = 0; i < kSamples; ++i) {
    look.order.push_back(i);
    auto& lane = gel.lanes.emplace_back();
    for (int k = 0; k < 100; ++k) lane.push_back({random.uniform(50, 500), random.uniform(50, 5000), 0});
  }
  for (auto _ : state) benchmark::DoNotOptimize(pictures::gelOf(gel, large(), look));
}

void bootstrap(benchmark::State& state, TreeMethod method) {
  const BandMatrix matrix = randomMatrix(kFewSamples, 0);
  for (auto _ : state) benchmark::DoNotOptimize(treeOf(matrix, {Measure::Jaccard, method, 1000, 1}));
  limit(state, 5000);
}

void BootstrapUpgma(benchmark::State& state) { bootstrap(state, TreeMethod::Upgma); }
void BootstrapJoining(benchmark::State& state) { bootstrap(state, TreeMethod::NeighbourJoining); }

void Amova(benchmark::State& state) {
  std::vector<std::size_t> groups(kSamples);
  for (std::size_t i = 0; i < kSamples; ++i) groups[i] = i % 10;
  for (auto _ : state) benchmark::DoNotOptimize(amova(largeDistances(), groups));
}

BENCHMARK(Distances)->Unit(benchmark::kMillisecond);
BENCHMARK(DistancesWithMissing)->Unit(benchmark::kMillisecond);
BENCHMARK(DistancesPlainly)->Unit(benchmark::kMillisecond);
BENCHMARK(Upgma)->Unit(benchmark::kMillisecond);
BENCHMARK(Joining)->Unit(benchmark::kMillisecond);
BENCHMARK(Pcoa)->Unit(benchmark::kMillisecond);
BENCHMARK(PcoaLongestStep)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(HeatMap)->Unit(benchmark::kMillisecond);
BENCHMARK(Gel)->Unit(benchmark::kMillisecond);
BENCHMARK(BootstrapUpgma)->Unit(benchmark::kMillisecond);
BENCHMARK(BootstrapJoining)->Unit(benchmark::kMillisecond);
BENCHMARK(Amova)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace banddesk::host::statistics

BENCHMARK_MAIN();
