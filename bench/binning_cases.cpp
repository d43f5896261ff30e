#include "bench/binning_cases.h"

#include <algorithm>
#include <cmath>

#include "host/import/read_files.h"
#include "host/simulation/simulator.h"

namespace banddesk::bench {
namespace {

constexpr double kShortest = 50, kLongest = 500, kThreshold = 50;

void sortBySize(Pool& pool) { std::ranges::stable_sort(pool, {}, &PooledPeak::size); }

struct Source {
  const char* file;  // or a folder of them
  const char* name;
  std::string dyes;
  const char* replicateSuffix;
};

Case caseOfDye(const Source& source, const host::import::PeakTable& table, host::import::Dye dye) {
  Case one{std::string(source.name) + " " + host::import::letterOf(dye), {}, table.samples.size(), {}};
  std::vector<std::string> names;
  for (const host::import::Sample& sample : table.samples) {
    const host::import::DyePeaks& peaks = sample.peaks(dye);
    for (std::size_t i = 0; i < peaks.sizes.size(); ++i) {
      if (peaks.sizes[i] < kShortest || peaks.sizes[i] > kLongest || peaks.heights[i] < kThreshold) continue;
      one.pool.push_back({peaks.sizes[i], peaks.heights[i], static_cast<std::int32_t>(names.size()), -1});
    }
    names.push_back(sample.name);
  }
  sortBySize(one.pool);
  one.replicates = host::replicatesBySuffix(names, source.replicateSuffix).pairs;
  return one;
}

host::simulation::Settings usualSettings(std::size_t loci, std::uint64_t seed, std::size_t samples) {
  host::simulation::Settings settings;
  settings.seed = seed;
  settings.samples = samples;
  settings.replicates = samples / 4;
  settings.dyes = 1;
  settings.ladderDye.reset();
  settings.lociPerDye = loci;
  return settings;
}

/// Of the noise, from 100 nt to the middle of the size range.
double growthToMiddle(const host::simulation::Settings& settings) {
  return 1 + settings.sigmaGrowth * ((settings.shortestNt + settings.longestNt) / 2 - 100) / 100;
}

Case caseOf(const host::simulation::Settings& settings) {
  const host::simulation::SimulatedRuns runs = host::simulation::simulate(settings);
  Case one{"simulated", {}, runs.runs.size(), {}};
  for (std::size_t run = 0; run < runs.runs.size(); ++run) {
    for (const host::simulation::Peak& peak : runs.runs[run].dyes[0]) {
      if (peak.height < kThreshold) continue;
      one.pool.push_back({peak.size, peak.height, static_cast<std::int32_t>(run), peak.locus});
    }
    if (run >= settings.samples) one.replicates.push_back({run - settings.samples, run});
  }
  sortBySize(one.pool);
  return one;
}

}  // namespace

double usualWidth(double noise) { return std::max(0.5, std::round(60 * noise) / 10); }

Case simulatedCase(double noise, std::size_t loci, std::uint64_t seed, std::size_t samples) {
  host::simulation::Settings settings = usualSettings(loci, seed, samples);
  const double part = noise / std::sqrt(2.0);
  settings.sigmaAt100Nt = part / growthToMiddle(settings);
  settings.laneDriftNt = part;
  return caseOf(settings);
}

Case realisticCase(const RealConditions& conditions, std::uint64_t seed) {
  host::simulation::Settings settings = usualSettings(conditions.loci, seed, kUsualSamples);
  const double difference = conditions.difference;
  settings.sigmaAt100Nt = 0.38 * difference / growthToMiddle(settings);
  settings.tailDegrees = 3;
  settings.laneDriftNt = 0;
  settings.laneCurveNt = 0.42 * difference;
  settings.lanesPerRun = kUsualSamples / 2;
  settings.runShiftNt = 0.45 * difference;
  settings.runSlopeNt = 0.35 * difference;
  settings.sizeDecimals = conditions.sizeDecimals;
  settings.lostRate = 0.005;
  settings.medianHeightRfu = 500;
  settings.locusHeightSigma = 0.9;
  settings.laneHeightSigma = 0.25;
  settings.detectionRfu = kThreshold;
  settings.splitRate = 0.01;
  settings.stutterShare = 0.1;
  settings.populations = 3;
  settings.privateShare = 0.3;
  settings.variantShare = 0.1;
  return caseOf(settings);
}

Case alignedCase(const Case& one, host::AlignmentFigures& figures) {
  std::vector<std::vector<double>> lanes(one.samples);
  for (const PooledPeak& peak : one.pool) lanes[static_cast<std::size_t>(peak.sample)].push_back(peak.size);
  const std::vector<host::ShiftCurve> curves = host::alignLanes(lanes);
  figures = host::figuresOf(lanes, curves);
  Case aligned = one;
  for (PooledPeak& peak : aligned.pool)
    peak.size = curves[static_cast<std::size_t>(peak.sample)].moved(peak.size);
  sortBySize(aligned.pool);
  return aligned;
}

std::vector<Case> realCases(const std::filesystem::path& shared) {
  const std::vector<Source> sources = {{"data/peak-scanner/eaacmcat.txt", "AFLP, 31 samples", "BGY", "b"},
                                       {"data/rawgeno/genescan", "AFLP, 22 samples", "BG", "x"},
                                       {"data/rawgeno/genemarker.txt", "AFLP, 112 samples", "BGY", "b"},
                                       {"data/genemapper/demo_samples_abi.txt", "T-RFLP", "BGY", "b"},
                                       {"data/genemapper/example_data.txt", "repeats", "B", "b"}};
  std::vector<Case> cases;
  for (const Source& source : sources) {
    const std::filesystem::path file = shared / source.file;
    if (!std::filesystem::exists(file)) continue;
    const auto table = host::import::readFiles({&file, 1});
    for (const char letter : source.dyes)
      cases.push_back(caseOfDye(source, table, host::import::dyeOf({&letter, 1}).value()));
  }
  return cases;
}

}  // namespace banddesk::bench
