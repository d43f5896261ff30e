#include "host/runs/process_run.h"

#include <cmath>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/runs/simulated_run.h"
#include "tests/support/temp_folder.h"

namespace banddesk::host::runs {
namespace {

using simulation::TraceSettings;
using test::simulatedRun;
using test::traceSettings;
using testing::HasSubstr;

std::vector<Peak> peaksOf(const ProcessedRun& run, int channel) {
  std::vector<Peak> peaks;
  std::ranges::copy_if(run.peaks, std::back_inserter(peaks),
                       [&](const Peak& peak) { return peak.channel == channel; });
  return peaks;
}

RunSettings leastHeight(double height) {
  RunSettings settings;
  settings.peaks.leastHeight.fill(height);
  return settings;
}

TEST(ProcessRun, FindsEveryFragmentWithItsSizeAndHeight) {
  TraceSettings traces = traceSettings("GS600 LIZ", 11);
  traces.jitterNt = 0.02;
  traces.drift = 1500;
  const auto run = simulatedRun(traces);
  const ProcessedRun processed = processRun(run.file, leastHeight(100));
  for (int channel : {1, 2}) {
    const auto& truth = run.traces.fragments[static_cast<std::size_t>(channel - 1)];
    const auto peaks = peaksOf(processed, channel);
    ASSERT_EQ(peaks.size(), truth.size());
    for (std::size_t i = 0; i < peaks.size(); ++i) {
      EXPECT_NEAR(peaks[i].scan, truth[i].scan, 1);
      EXPECT_NEAR(peaks[i].size, truth[i].size, 0.25);
      EXPECT_NEAR(peaks[i].height / truth[i].height, 1, 0.05);
      // A bell's area is 1.064 heights times widths.
      EXPECT_NEAR(peaks[i].area / (1.064 * peaks[i].height * peaks[i].width), 1, 0.1);
      EXPECT_TRUE(peaks[i].begin < peaks[i].scan && peaks[i].scan < peaks[i].end);
      EXPECT_FALSE(peaks[i].isOffScale || peaks[i].isBroad || peaks[i].isPullUp || peaks[i].isDouble);
    }
  }
}

TEST(ProcessRun, FlagsWhatAUserMustKnowOfAPeak) {
  TraceSettings traces = traceSettings("GS600 LIZ", 12);
  traces.dyes = {{150.0, 300.0}, {300.0}, {210.0, 211.0}};
  traces.sampleHeight = 20000;
  traces.heightSigma = 0;
  traces.saturation = 15000;
  auto run = simulatedRun(traces, {"6-FAM", "VIC", "NED", "LIZ"});
  for (auto& value : run.file.dyes[1].trace)
    value = 50 + (value - 50) / 50;  // a shadow of the first dye's peak
  RunSettings settings = leastHeight(100);
  settings.peaks.keepsUnsized = false;
  const ProcessedRun processed = processRun(run.file, settings);
  const auto strong = peaksOf(processed, 1), shadow = peaksOf(processed, 2);
  ASSERT_EQ(strong.size(), 2U);
  EXPECT_TRUE(strong[0].isOffScale && strong[1].isOffScale);
  EXPECT_FALSE(strong[1].isPullUp);
  ASSERT_EQ(shadow.size(), 1U);
  EXPECT_TRUE(shadow[0].isPullUp);
  traces.widthNt = 1.8;
  const ProcessedRun wide = processRun(simulatedRun(traces, {"6-FAM", "VIC", "NED", "LIZ"}).file, settings);
  ASSERT_FALSE(peaksOf(wide, 1).empty());
  EXPECT_TRUE(std::ranges::all_of(peaksOf(wide, 1), &Peak::isBroad));
}

TEST(ProcessRun, KeepsToItsSettings) {
  TraceSettings traces = traceSettings("GS600 LIZ", 13);
  traces.heightSigma = 0;
  const auto run = simulatedRun(traces);
  RunSettings settings = leastHeight(100);
  settings.peaks.leastHeight[1] = 5000;
  EXPECT_EQ(peaksOf(processRun(run.file, settings), 1).size(), 6U);
  EXPECT_TRUE(peaksOf(processRun(run.file, settings), 2).empty());
  settings.peaks.leastSize = 100;
  settings.peaks.largestSize = 400;
  settings.peaks.keepsUnsized = false;
  EXPECT_EQ(peaksOf(processRun(run.file, settings), 1).size(), 4U);
  settings = leastHeight(100);
  settings.peaks.leastWidth = 20;
  EXPECT_TRUE(peaksOf(processRun(run.file, settings), 1).empty());
  settings = leastHeight(100);
  const auto plain = peaksOf(processRun(run.file, settings), 1);
  settings.peaks.smoothing = Smoothing::Heavy;
  const auto smoothed = peaksOf(processRun(run.file, settings), 1);
  ASSERT_EQ(smoothed.size(), plain.size());
  for (std::size_t i = 0; i < plain.size(); ++i) EXPECT_LT(smoothed[i].height, 0.97 * plain[i].height);
}

TEST(ProcessRun, SizesOutsideTheLadderOnlyByWish) {
  TraceSettings traces = traceSettings("GS600 LIZ (60-600)", 14);
  traces.dyes = {{40.0, 100.0, 640.0}};
  const auto run = simulatedRun(traces, {"6-FAM", "LIZ"});
  RunSettings settings = leastHeight(100);
  auto peaks = peaksOf(processRun(run.file, settings), 1);
  ASSERT_EQ(peaks.size(), 3U);
  EXPECT_FALSE(peaks[0].hasSize() || peaks[2].hasSize());
  settings.outside = OutsideLadder::StraightLine;
  peaks = peaksOf(processRun(run.file, settings), 1);
  EXPECT_NEAR(peaks[0].size, 40, 1.5);
  EXPECT_NEAR(peaks[2].size, 640, 4);
  EXPECT_TRUE(peaks[0].isOutsideLadder && peaks[2].isOutsideLadder && !peaks[1].isOutsideLadder);
}

TEST(ProcessRun, WidensItsWindowForWidePeaks) {
  TraceSettings traces = traceSettings("GS500", 15);
  traces.scansPerNt = 22;
  traces.widthNt = 0.65;
  traces.noise = 25;
  const auto run = simulatedRun(traces);
  const ProcessedRun processed = processRun(run.file, leastHeight(300));
  EXPECT_NEAR(processed.typicalWidth, 14.3, 1.5);
  EXPECT_GT(processed.window, 21);
  EXPECT_EQ(peaksOf(processed, 1).size(), 6U);  // none split by noise
}

TEST(ProcessRun, NormalisesHeightsToTheLadder) {
  TraceSettings traces = traceSettings("GS600 LIZ", 16);
  traces.heightSigma = 0;
  auto run = simulatedRun(traces);
  RunSettings settings = leastHeight(100);
  EXPECT_EQ(processRun(run.file, settings).heightFactor, 1);
  settings.normalisation = Normalisation::Always;
  EXPECT_EQ(processRun(run.file, settings).heightFactor, 3);  // 4500 over 900, but at most 3
  traces.ladderHeight = 3000;
  EXPECT_NEAR(processRun(simulatedRun(traces).file, settings).heightFactor, 1.5, 0.05);
  run.file.isNormalised = true;
  run.file.normalisation = 2;
  settings.normalisation = Normalisation::AsTheFileSays;
  const ProcessedRun processed = processRun(run.file, settings);
  EXPECT_EQ(processed.heightFactor, 2);
  EXPECT_NEAR(peaksOf(processed, 1)[0].height, 2 * run.traces.fragments[0][0].height, 200);
  settings.normalisation = Normalisation::Never;
  EXPECT_EQ(processRun(run.file, settings).heightFactor, 1);
}

class RunFolder : public testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& bytes) {
    std::ofstream(folder_.path() / name, std::ios::binary) << bytes;
    return folder_.file(name);
  }

  test::TempFolder folder_;
};

TEST_F(RunFolder, IsProcessedTheSameOnOneThreadAndMany) {
  std::vector<std::string> paths;
  for (int i = 0; i < 8; ++i) {
    TraceSettings traces = traceSettings("GS600 LIZ", static_cast<std::uint64_t>(20 + i));
    if (i % 3 == 1) traces.falsePeaks = 25, traces.missing = 6;
    paths.push_back(write(std::to_string(i) + ".fsa", simulatedRun(traces).bytes));
  }
  paths.push_back(write("text.fsa", "> not a run"));
  std::size_t calls = 0, last = 0;
  const auto one = processRuns(paths, {}, 1);
  const auto many = processRuns(paths, {}, 4, [&](std::size_t done, std::size_t) { ++calls, last = done; });
  EXPECT_EQ(calls, paths.size());
  EXPECT_EQ(last, paths.size());
  ASSERT_EQ(many.size(), paths.size());
  for (std::size_t i = 0; i < 8; ++i) {
    ASSERT_TRUE(one[i].processed && many[i].processed);
    const ProcessedRun &a = *one[i].processed, &b = *many[i].processed;
    EXPECT_EQ(a.ladder.quality, b.ladder.quality);
    EXPECT_EQ(a.curve.points(), b.curve.points());
    EXPECT_EQ(a.peaks.size(), b.peaks.size());
  }
  EXPECT_FALSE(many[8].processed);
  EXPECT_THAT(many[8].error, HasSubstr("FASTA"));
}

TEST_F(RunFolder, StopsWhenItsProgressThrows) {
  const std::vector<std::string> paths(5, write("a.fsa", simulatedRun(traceSettings("GS500", 30)).bytes));
  EXPECT_THROW(processRuns(paths, {}, 2, [](std::size_t, std::size_t) { throw std::runtime_error("stop"); }),
               std::runtime_error);
}

}  // namespace
}  // namespace banddesk::host::runs
