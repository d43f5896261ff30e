#include "host/runs/ladder.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>
#include <stdexcept>

#include "tests/runs/simulated_run.h"

namespace banddesk::host::runs {
namespace {

using simulation::TraceSettings;
using test::simulatedRun;
using test::traceSettings;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

struct Tally {
  int sized = 0, toLookAt = 0, notSized = 0, silentlyWrong = 0;
};

/// A ladder is wrong when a peak that takes part is not the fragment it is said to be.
bool isWrong(const LadderAssignment& ladder, const simulation::SimulatedTraces& traces, double scansPerNt) {
  return std::ranges::any_of(ladder.peaks, [&](const LadderPeak& peak) {
    const auto truth = std::ranges::find(traces.ladder, peak.size, &simulation::TrueFragment::size);
    return !peak.isDoubtful &&
           (truth == traces.ladder.end() || std::abs(truth->scan - peak.scan) > 0.5 * scansPerNt);
  });
}

Tally tallyOf(const char* standard, int runs, const std::function<void(TraceSettings&)>& change,
              const RunSettings& settings = {}) {
  Tally tally;
  for (int i = 0; i < runs; ++i) {
    TraceSettings traces = traceSettings(standard, static_cast<std::uint64_t>(100 + i));
    change(traces);
    const auto run = simulatedRun(traces);
    const LadderAssignment ladder = processRun(run.file, settings).ladder;
    const bool isSized = ladder.quality == LadderQuality::Sized;
    ++(isSized ? tally.sized : ladder.quality == LadderQuality::LookAtIt ? tally.toLookAt : tally.notSized);
    if (isSized && isWrong(ladder, run.traces, traces.scansPerNt)) ++tally.silentlyWrong;
  }
  return tally;
}

// How many of twenty must be sized without a word; none may be silently wrong where no false peak stands
// beside the ladder.
TEST(Ladder, IsFoundInGoodAndBadRuns) {
  struct Case {
    std::string name;
    const char* standard;
    std::function<void(TraceSettings&)> change;
    int leastSized;
    int mostWrong;
  };
  const std::vector<Case> cases = {
      {"clean", "GS500", [](auto&) {}, 19, 0},
      {"clean, dense", "GS600 LIZ", [](auto&) {}, 20, 0},
      {"drift and noise", "GS600 LIZ", [](auto& one) { one.drift = 3000, one.noise = 15; }, 19, 0},
      {"slow run, wide peaks", "GS500", [](auto& one) { one.scansPerNt = 22, one.widthNt = 0.65; }, 19, 0},
      {"fast run", "GS600 LIZ", [](auto& one) { one.scansPerNt = 5; }, 19, 0},
      {"pull-up of other dyes", "GS600 LIZ", [](auto& one) { one.sampleHeight = 9000, one.pullUp = 0.05; },
       18, 0},
      {"saturated sample", "GS600 LIZ", [](auto& one) { one.sampleHeight = 60000, one.pullUp = 0.02; }, 18,
       0},
      {"two sizes missing", "GS600 LIZ", [](auto& one) { one.missing = 2; }, 19, 0},
      {"four sizes missing", "GS600 LIZ", [](auto& one) { one.missing = 4; }, 18, 0},
      {"two sizes missing of few", "GS500", [](auto& one) { one.missing = 2; }, 8, 0},
      {"four sizes missing of few", "GS500", [](auto& one) { one.missing = 4; }, 1, 0},
      {"ten false peaks", "GS600 LIZ", [](auto& one) { one.falsePeaks = 10; }, 15, 1},
      {"ten false peaks beside few", "GS500", [](auto& one) { one.falsePeaks = 10; }, 10, 1},
  };
  for (const Case& one : cases) {
    const Tally tally = tallyOf(one.standard, 20, one.change);
    EXPECT_GE(tally.sized, one.leastSized) << one.name;
    EXPECT_LE(tally.silentlyWrong, one.mostWrong) << one.name;
  }
}

TEST(Ladder, IsNotFoundWhereThereIsNone) {
  const Tally noise = tallyOf("GS500", 10, [](auto& one) {
    one.ladderSizes.clear(), one.dyes = {{300.0}, {}};
  });
  EXPECT_EQ(noise.notSized, 10);
  const Tally falseOnly = tallyOf("GS500", 20, [](auto& one) {
    one.ladderSizes = {500};
    one.falsePeaks = 30;
  });
  EXPECT_EQ(falseOnly.sized, 0);
}

TEST(Ladder, TellsTheListsApart) {
  for (const char* name : {"GS500", "GS600 LIZ", "GS1200 LIZ", "BV500 LIZ"}) {
    const auto run = simulatedRun(traceSettings(name, 3));
    const LadderAssignment ladder = processRun(run.file, {}).ladder;
    EXPECT_EQ(ladder.standard.name, name);
    EXPECT_EQ(ladder.quality, LadderQuality::Sized) << name;
  }
}

// Of two lists that fit the trace alike the operator's word decides; a word that is wrong changes nothing.
TEST(Ladder, TakesTheOperatorsWordAsAHintOnly) {
  auto run = simulatedRun(traceSettings("GS600 LIZ", 4));
  run.file.standardName = "GS600LIZ(60-600)+Normalization";
  EXPECT_EQ(processRun(run.file, {}).ladder.standard.name, "GS600 LIZ (60-600)");
  run.file.standardName = "GS500";
  EXPECT_EQ(processRun(run.file, {}).ladder.standard.name, "GS600 LIZ");
}

TEST(Ladder, IsSoughtInTheDyeThatHasIt) {
  struct Case {
    std::vector<std::string> names;
    int marked;
    LadderQuality quality;
  };
  // By name, by mark, and by the trace alone: then the user is asked to look.
  const std::vector<Case> cases = {{{"6-FAM", "VIC", "LIZ"}, 0, LadderQuality::Sized},
                                   {{"x", "y", "z"}, 3, LadderQuality::Sized},
                                   {{"LIZ", "VIC", "z"}, 0, LadderQuality::Sized}};
  for (const Case& one : cases) {
    auto run = simulatedRun(traceSettings("GS500", 5), one.names);
    if (one.marked > 0) run.file.dyes[static_cast<std::size_t>(one.marked - 1)].isMarkedAsLadder = true;
    const LadderAssignment ladder = processRun(run.file, {}).ladder;
    EXPECT_EQ(ladder.channel, 3) << one.names[0];
    EXPECT_EQ(ladder.quality, one.quality) << one.names[0];
  }
  auto run = simulatedRun(traceSettings("GS500", 5));
  std::swap(run.file.dyes[0].trace, run.file.dyes[2].trace);
  const LadderAssignment ladder = processRun(run.file, {}).ladder;
  EXPECT_EQ(ladder.channel, 1);
  EXPECT_EQ(ladder.quality, LadderQuality::LookAtIt);
  EXPECT_THAT(ladder.reasons, Contains(HasSubstr("dye 1")));
}

TEST(Ladder, LeavesUnreliableFragmentsOutUnlessWanted) {
  const auto run = simulatedRun(traceSettings("GS500", 6));
  RunSettings settings;
  for (const bool uses : {false, true}) {
    settings.ladder.usesUnreliable = uses;
    const LadderAssignment ladder = processRun(run.file, settings).ladder;
    ASSERT_NE(ladder.peakOf(250), nullptr);
    EXPECT_EQ(ladder.peakOf(250)->takesPart, uses);
    EXPECT_TRUE(ladder.peakOf(300)->takesPart);
  }
}

TEST(Ladder, OfTheUsersOwnListIsFound) {
  TraceSettings traces = traceSettings("GS500", 7);
  RunSettings settings;
  settings.ladder.standard = standardOfSizes("mine", "61 90 133 161 190 222 248 301 333 377 420 480");
  traces.ladderSizes = settings.ladder.standard->sizes;
  traces.strayingSizes.clear();
  const LadderAssignment ladder = processRun(simulatedRun(traces).file, settings).ladder;
  EXPECT_EQ(ladder.quality, LadderQuality::Sized);
  EXPECT_EQ(ladder.peaks.size(), 12U);
  EXPECT_THAT(ladder.missing, IsEmpty());
}

TEST(Ladder, ByHandIsTakenAsGiven) {
  const auto run = simulatedRun(traceSettings("GS500", 8));
  const LadderAssignment found = processRun(run.file, {}).ladder;
  std::vector<LadderPeak> peaks{found.peaks[1], found.peaks[4], found.peaks[9], found.peaks[12]};
  const auto hand = ladderByHand(found.standard, 3, peaks, false);
  const ProcessedRun processed = processRunWithLadder(run.file, {}, hand);
  EXPECT_TRUE(processed.ladder.isByHand);
  EXPECT_EQ(processed.curve.points().size(), 4U);
  std::swap(peaks[0].scan, peaks[1].scan);
  EXPECT_THROW(ladderByHand(found.standard, 3, peaks, false), std::invalid_argument);
}

// The same capillary, somewhat slower, half of its ladder lost among false peaks: by itself it cannot be
// sized.
TEST(Ladder, IsFoundByTheRunsOtherCapillaries) {
  const auto run = simulatedRun(traceSettings("GS500", 9));
  const LadderAssignment good = processRun(run.file, {}).ladder;
  std::vector<LadderCandidate> candidates;
  for (std::size_t i = 0; i < good.peaks.size(); ++i)
    if (i % 5 != 2) candidates.push_back({std::round(1.03 * good.peaks[i].scan + 25), 900, 4});
  for (const double scan : {1111.0, 1777.0, 2345.0, 3210.0, 4141.0}) candidates.push_back({scan, 1000, 4});
  std::ranges::sort(candidates, {}, &LadderCandidate::scan);
  const auto found = assignLikeNeighbour(candidates, good, false);
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->isByOtherCapillaries);
  EXPECT_GE(found->peaks.size(), 12U);
  for (const LadderPeak& peak : found->peaks)
    EXPECT_NEAR(peak.scan, 1.03 * good.peakOf(peak.size)->scan + 25, 1) << peak.size;
  EXPECT_FALSE(assignLikeNeighbour(std::span(candidates).first(4), good, false));
}

}  // namespace
}  // namespace banddesk::host::runs
