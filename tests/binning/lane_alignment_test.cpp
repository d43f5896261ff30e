#include "host/binning/lane_alignment.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace banddesk::host {
namespace {

using Lanes = std::vector<std::vector<double>>;

constexpr std::size_t kLanes = 20;

double shiftOf(std::size_t lane, double size) {
  const double level = 0.05 * static_cast<double>(lane % 5) - 0.1;
  return level + 0.0004 * (lane % 2 == 0 ? size - 275 : 275 - size);
}

Lanes shiftedLanes() {
  Lanes lanes(kLanes);
  for (std::size_t lane = 0; lane < kLanes; ++lane) {
    for (std::size_t locus = 0; locus < 90; ++locus) {
      const double size = 60 + 5 * static_cast<double>(locus);
      if ((locus * 7 + lane * 3) % 5 < 3) lanes[lane].push_back(size + shiftOf(lane, size));
    }
  }
  return lanes;
}

TEST(LaneAlignment, TakesBackWhatALaneIsShiftedBy) {
  const Lanes lanes = shiftedLanes();
  const std::vector<ShiftCurve> curves = alignLanes(lanes);
  ASSERT_EQ(curves.size(), lanes.size());
  double before = 0, after = 0;
  for (std::size_t lane = 0; lane < kLanes; ++lane) {
    for (const double size : lanes[lane]) {
      const double locus = 5 * std::round(size / 5);
      before = std::max(before, std::abs(size - locus));
      after = std::max(after, std::abs(curves[lane].moved(size) - locus));
    }
  }
  EXPECT_GT(before, 0.15);
  EXPECT_LT(after, 0.075);
  const AlignmentFigures figures = figuresOf(lanes, curves);
  EXPECT_NEAR(figures.meanShift, 0.075, 0.03);
  EXPECT_LE(figures.meanShift, figures.largestShift);
  EXPECT_NEAR(figures.largestShift, before, 0.06);
}

TEST(LaneAlignment, LeavesLanesAloneWhereThereIsNothingToCompare) {
  const Lanes alone = {{100, 200}, {}, {}};
  const Lanes absurd = {{100, 1e300}, {100.1, -1e300}};
  const Lanes apart = {{100, 200}, {101, 201}};  // no fragment has another within reach
  for (const Lanes& lanes : {Lanes(), alone, absurd, apart}) {
    const std::vector<ShiftCurve> curves = alignLanes(lanes);
    ASSERT_EQ(curves.size(), lanes.size());
    for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
      for (const double size : lanes[lane]) EXPECT_EQ(curves[lane].moved(size), size);
    }
  }
}

RC_GTEST_PROP(LaneAlignment, DependsNeitherOnTheOrderOfTheLanesNorOfTheirSizes, ()) {
  Lanes lanes = *rc::gen::container<Lanes>(rc::gen::container<std::vector<double>>(
      rc::gen::map(rc::gen::inRange(10000, 13000), [](int hundredths) { return hundredths / 100.0; })));
  const std::vector<ShiftCurve> curves = alignLanes(lanes);
  std::ranges::reverse(lanes);
  for (std::vector<double>& lane : lanes) std::ranges::reverse(lane);
  const std::vector<ShiftCurve> reversed = alignLanes(lanes);
  for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
    RC_ASSERT(curves[lane].shifts() == reversed[lanes.size() - 1 - lane].shifts());
    for (const double shift : curves[lane].shifts()) RC_ASSERT(std::abs(shift) <= 0.5);
  }
}

}  // namespace
}  // namespace banddesk::host
