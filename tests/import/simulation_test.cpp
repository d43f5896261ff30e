#include <cmath>
#include <gmock/gmock.h>
#include <sstream>
#include <stdexcept>

#include "host/simulation/peak_table_writer.h"
#include "host/simulation/random.h"
#include "tests/import/table_folder.h"

namespace banddesk::host::simulation {
namespace {

TEST(Simulation, ASeedGivesTheSameRunsOnEveryMachine) {
  Settings settings;
  settings.samples = 3;
  settings.replicates = 1;
  const std::string table = peakTable(simulate(settings));
  EXPECT_EQ(table, peakTable(simulate(settings)));
  std::uint64_t hash = 14695981039346656037U;
  for (const char c : table) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  EXPECT_EQ(hash, 10511448300113603017U) << "the generator changed, or this machine computes otherwise";
  settings.seed = 2;
  EXPECT_NE(table, peakTable(simulate(settings)));
}

TEST(Simulation, PeaksLieAtTheLociTheyCameFrom) {
  Settings settings;
  settings.samples = 200;
  settings.replicates = 20;
  settings.dyes = 4;
  const SimulatedRuns simulated = simulate(settings);
  EXPECT_EQ(simulated.dyes, "BGYO");
  ASSERT_EQ(simulated.runs.size(), 220U);
  double squares = 0;
  std::size_t peaks = 0, spurious = 0, shared = 0, ofReplicates = 0;
  for (const SimulatedRun& run : simulated.runs)
    for (std::size_t dye = 0; dye < 4; ++dye)
      for (const Peak& peak : run.dyes[dye]) {
        ++peaks;
        if (peak.locus == spuriousLocus && ++spurious) continue;
        const double off = peak.size - simulated.loci[dye][static_cast<std::size_t>(peak.locus)].sizeNt;
        EXPECT_LT(std::abs(off), 1.5);
        squares += off * off;
      }
  for (std::size_t i = 0; i < 20; ++i) {
    const SimulatedRun &first = simulated.runs[i], &second = simulated.runs[200 + i];
    EXPECT_EQ(first.genotype, second.genotype);
    for (const Peak& peak : second.dyes[0]) {
      if (peak.locus == spuriousLocus) continue;
      ++ofReplicates;
      shared += std::ranges::count(first.dyes[0], peak.locus, &Peak::locus) == 1;
    }
  }
  const double typical = std::sqrt(squares / static_cast<double>(peaks - spurious));
  EXPECT_NEAR(typical, 0.13, 0.04) << "noise and drift together";
  EXPECT_NEAR(static_cast<double>(spurious) / static_cast<double>(peaks), settings.spuriousRate, 0.01);
  EXPECT_GT(static_cast<double>(shared) / static_cast<double>(ofReplicates), 0.9)
      << "a replicate has its sample's loci";
}

TEST(Simulation, WithoutNoiseEveryFixedLocusIsInEveryRunAtItsSize) {
  Settings settings;
  settings.fixedShare = 1;
  settings.lostRate = settings.spuriousRate = settings.sigmaAt100Nt = settings.laneDriftNt = 0;
  settings.resolutionNt = 0;
  settings.roundSizes = false;
  const SimulatedRuns simulated = simulate(settings);
  for (const SimulatedRun& run : simulated.runs)
    for (std::size_t i = 0; i < settings.lociPerDye; ++i) {
      ASSERT_EQ(run.dyes[0].size(), settings.lociPerDye);
      ASSERT_EQ(run.dyes[0][i].size, simulated.loci[0][i].sizeNt);
    }
  const auto& loci = simulated.loci[0];
  const auto half = std::ranges::count_if(loci, [](const Locus& locus) { return locus.sizeNt < 275; });
  EXPECT_GT(half, 80) << "more short loci than long ones";
}

double meanOffset(const SimulatedRuns& simulated, std::size_t firstRun, std::size_t runs) {
  double sum = 0, count = 0;
  for (std::size_t run = firstRun; run < firstRun + runs; ++run)
    for (const Peak& peak : simulated.runs[run].dyes[0])
      if (peak.locus != spuriousLocus) {
        sum += peak.size - simulated.loci[0][static_cast<std::size_t>(peak.locus)].sizeNt;
        ++count;
      }
  return sum / count;
}

TEST(Simulation, LanesOfARunAreShiftedAlikeAndRunsDifferently) {
  Settings settings{.samples = 60, .laneDriftNt = 0, .lanesPerRun = 20, .runShiftNt = 1};
  settings.spuriousRate = settings.resolutionNt = 0;
  const SimulatedRuns simulated = simulate(settings);
  for (const std::size_t run : {0U, 20U, 40U})
    EXPECT_NEAR(meanOffset(simulated, run, 10), meanOffset(simulated, run + 10, 10), 0.02);
  EXPECT_GT(std::abs(meanOffset(simulated, 0, 20) - meanOffset(simulated, 20, 20)), 0.05);
  EXPECT_GT(std::abs(meanOffset(simulated, 20, 20) - meanOffset(simulated, 40, 20)), 0.05);
}

TEST(Simulation, VariantsExcludeOneAnotherBetweenPopulationsAndStutterFollowsItsFragment) {
  Settings settings{
      .samples = 90, .detectionRfu = 100, .populations = 3, .privateShare = 1, .variantShare = 0.3};
  settings.stutterShare = 0.5;
  settings.fixedShare = 1;
  settings.sigmaAt100Nt = settings.laneDriftNt = settings.lostRate = settings.resolutionNt = 0;
  settings.sizeDecimals = 1;
  const SimulatedRuns simulated = simulate(settings);
  const auto& loci = simulated.loci[0];
  std::size_t stutters = 0;
  for (std::size_t run = 0; run < simulated.runs.size(); ++run) {
    std::vector<bool> seen(loci.size(), false);
    for (const Peak& peak : simulated.runs[run].dyes[0]) {
      EXPECT_GE(peak.height, 100);
      EXPECT_NEAR(peak.size * 10, std::round(peak.size * 10), 1e-9);
      if (peak.locus != spuriousLocus) seen[static_cast<std::size_t>(peak.locus)] = true;
    }
    for (std::size_t i = 0; i < loci.size(); ++i) {
      if (!seen[i]) continue;
      EXPECT_NE(loci[i].populations & (1U << (run % 3)), 0U) << "a population without the locus shows it";
      if (!loci[i].shadowOf) continue;
      ++stutters;
      EXPECT_TRUE(seen[*loci[i].shadowOf]) << "stutter without its fragment";
      EXPECT_NEAR(loci[i].sizeNt, loci[*loci[i].shadowOf].sizeNt - 1, 1e-9);
    }
  }
  EXPECT_GT(stutters, 50U);
  EXPECT_TRUE(std::ranges::any_of(loci, [&](const Locus& one) {
    return std::ranges::any_of(loci,
                               [&](const Locus& other) { return one.populations == ~other.populations; });
  }));
}

TEST(Simulation, WhatIsWrittenReadsBackPeakForPeak) {
  for (const bool rounded : {true, false}) {
    Settings settings;
    settings.replicates = 5;
    settings.dyes = 4;
    settings.roundSizes = settings.roundHeights = settings.runSuffix = rounded;
    const SimulatedRuns simulated = simulate(settings);
    std::ostringstream out;
    writePeakTable(out, simulated);
    ASSERT_EQ(out.str(), peakTable(simulated));
    const import::PeakTable table = import::TableFolder().readOne(out.str());
    ASSERT_TRUE(table.report.ladder.has_value());
    EXPECT_EQ(table.report.ladder->dye, import::Dye::R);
    ASSERT_EQ(table.samples.size(), simulated.runs.size());
    for (std::size_t i = 0; i < simulated.runs.size(); ++i) {
      EXPECT_EQ(table.samples[i].name, simulated.runs[i].name);
      EXPECT_EQ(table.samples[i].peaks(import::Dye::R).sizes.size(), simulated.runs[i].ladder.size());
      for (std::size_t dye = 0; dye < 4; ++dye) {
        const import::DyePeaks& read = table.samples[i].peaks(*import::dyeOf(simulated.dyes.substr(dye, 1)));
        ASSERT_EQ(read.sizes.size(), simulated.runs[i].dyes[dye].size());
        for (std::size_t k = 0; k < read.sizes.size(); ++k) {
          ASSERT_EQ(read.sizes[k], simulated.runs[i].dyes[dye][k].size);
          ASSERT_EQ(read.heights[k], simulated.runs[i].dyes[dye][k].height);
        }
      }
    }
  }
}

TEST(Simulation, OnlyALadderIsTakenForOne) {
  struct Case {
    std::optional<char> ladder;
    double fixedShare;
  };
  for (const Case& at : {Case{'R', 0.1}, Case{{}, 0.1}, Case{'O', 1}, Case{{}, 1}}) {
    Settings settings;
    settings.ladderDye = at.ladder;
    settings.fixedShare = at.fixedShare;
    const auto proposal = import::TableFolder().readOne(peakTable(simulate(settings))).report.ladder;
    ASSERT_EQ(proposal.has_value(), at.ladder.has_value())
        << "with " << at.fixedShare << " of the loci fixed";
    EXPECT_EQ(proposal ? letterOf(proposal->dye) : ' ', at.ladder.value_or(' '));
  }
}

TEST(Simulation, SettingsThatMakeNoSenseAreRefused) {
  for (const Settings& bad :
       {Settings{.samples = 0}, Settings{.dyes = 5}, Settings{.lostRate = 1.5}, Settings{.sigmaAt100Nt = -1},
        Settings{.populations = 0}, Settings{.splitRate = 0.1, .splitNt = 0.1}})
    EXPECT_THROW(simulate(bad), std::invalid_argument);
  Settings settings;
  settings.replicates = settings.samples + 1;
  EXPECT_THROW(simulate(settings), std::invalid_argument);
}

}  // namespace
}  // namespace banddesk::host::simulation
