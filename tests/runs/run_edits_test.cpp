#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/runs/simulated_run.h"

namespace banddesk::host::runs {
namespace {

using testing::Contains;
using testing::HasSubstr;

TEST(RunEdits, AreAppliedToWhateverIsFound) {
  const RunFile file = test::simulatedRun(test::traceSettings("GS600 LIZ", 5)).file;
  RunSettings settings;
  const ProcessedRun found = processRun(file, settings);
  const Peak first = found.peaks.front();
  ASSERT_EQ(first.channel, 1);
  const int scanOf200 = found.ladder.peakOf(200)->scan;

  // A peak is added that is too low to be found.
  settings.peaks.leastHeight[0] = first.height + 1;
  const ProcessedRun edited =
      processRun(file, settings, {{{1, first.scan, true}}, {{200, {}}, {214, scanOf200}}});
  ASSERT_FALSE(edited.peaks.empty());
  EXPECT_EQ(edited.peaks.front().scan, first.scan);
  EXPECT_EQ(edited.peaks.front().height, first.height);
  EXPECT_TRUE(edited.ladder.isByHand);
  EXPECT_THAT(edited.ladder.missing, Contains(200));
  EXPECT_EQ(edited.ladder.peakOf(214)->scan, scanOf200);
  const auto called = edited.curve.at(scanOf200, OutsideLadder::NoSize);
  EXPECT_NEAR(called->size, 214, 1e-6);
  const ProcessedRun without = processRun(file, {}, {{{1, first.scan + 1, false}}, {}});
  EXPECT_EQ(without.peaks.size(), found.peaks.size() - 1);
  EXPECT_GT(without.peaks.front().scan, first.scan);

  // Labels that cross others change nothing but the trust in it.
  const ProcessedRun crossed = processRun(file, {}, {{}, {{100, scanOf200 + 300}}});
  EXPECT_EQ(crossed.ladder.quality, LadderQuality::LookAtIt);
  EXPECT_THAT(crossed.ladder.reasons, Contains(HasSubstr("do not fit it")));
  EXPECT_TRUE(agree(crossed.ladder, found.ladder));
}

}  // namespace
}  // namespace banddesk::host::runs
