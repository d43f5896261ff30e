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
       {Settings{.samples = 0}, Settings{.dyes = 5}, Settings{.lostRate = 1.5}, Settings{.sigmaAt100Nt = -1}})
    EXPECT_THROW(simulate(bad), std::invalid_argument);
  Settings settings;
  settings.replicates = settings.samples + 1;
  EXPECT_THROW(simulate(settings), std::invalid_argument);
}

}  // namespace
}  // namespace banddesk::host::simulation
