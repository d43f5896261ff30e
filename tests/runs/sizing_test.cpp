#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <stdexcept>

#include "host/runs/dye_names.h"
#include "host/runs/size_standard.h"
#include "host/runs/sizing_curve.h"

namespace banddesk::host::runs {
namespace {

/// The law that the method assumes, so that it must come back exactly.
double mobilityLaw(double scan) { return -900'000 / (scan + 2500) + 420; }

std::vector<LadderPoint> pointsByLaw() {
  std::vector<LadderPoint> points;
  for (const double scan : {1000.0, 1250.0, 1700.0, 2600.0, 4000.0})
    points.push_back({scan, mobilityLaw(scan)});
  return points;
}

TEST(SizingCurve, GivesBackTheLawOfLocalSouthern) {
  const SizingCurve curve(pointsByLaw(), SizeMethod::LocalSouthern);
  for (double scan = 1000; scan <= 4000; scan += 50) {
    const auto called = curve.at(scan, OutsideLadder::NoSize);
    ASSERT_TRUE(called) << scan;
    EXPECT_NEAR(called->size, mobilityLaw(scan), 1e-9);
    EXPECT_NEAR(curve.scanOf(called->size), scan, 1e-3);
  }
}

// Worked by hand: the curve of the first three points is 12000 / (500 - scan) - 20, that of the last three
// 80 - 12000 / scan.
TEST(SizingCurve, AveragesTheTwoCurvesAroundAnInterval) {
  const SizingCurve curve({{100, 10}, {200, 20}, {300, 40}, {400, 50}}, SizeMethod::LocalSouthern);
  const double left = 12000.0 / 280 - 20, right = 80 - 12000.0 / 220;
  EXPECT_NEAR(curve.at(220, OutsideLadder::NoSize)->size, (left + right) / 2, 1e-9);
  EXPECT_NEAR(curve.at(150, OutsideLadder::NoSize)->size, 12000.0 / 350 - 20, 1e-9);
  EXPECT_NEAR(curve.at(350, OutsideLadder::NoSize)->size, 80 - 12000.0 / 350, 1e-9);
}

TEST(SizingCurve, SizesOutsideTheLadderOnlyByWishAndMarksIt) {
  for (const SizeMethod method : {SizeMethod::LocalSouthern, SizeMethod::ThirdOrder}) {
    const SizingCurve curve({{100, 50}, {200, 60}, {300, 70}, {400, 80}, {500, 90}}, method);
    EXPECT_FALSE(curve.at(99, OutsideLadder::NoSize));
    EXPECT_FALSE(curve.at(501, OutsideLadder::NoSize));
    EXPECT_FALSE(curve.at(500, OutsideLadder::NoSize)->isOutsideLadder);
    const auto below = curve.at(50, OutsideLadder::StraightLine),
               above = curve.at(600, OutsideLadder::StraightLine);
    EXPECT_DOUBLE_EQ(below->size, 45);
    EXPECT_DOUBLE_EQ(above->size, 100);
    EXPECT_TRUE(below->isOutsideLadder && above->isOutsideLadder);
    EXPECT_NEAR(curve.at(250, OutsideLadder::NoSize)->size, 65, 1e-9);
  }
}

TEST(SizingCurve, FitsACubicThroughAllPoints) {
  const auto cubic = [](double scan) {
    const double x = scan / 1000;
    return 20 + 90 * x + 12 * x * x - 3 * x * x * x;
  };
  std::vector<LadderPoint> points;
  for (double scan = 1000; scan <= 4000; scan += 300) points.push_back({scan, cubic(scan)});
  const SizingCurve curve(points, SizeMethod::ThirdOrder);
  EXPECT_NEAR(curve.at(2222, OutsideLadder::NoSize)->size, cubic(2222), 1e-8);
}

TEST(SizingCurve, IsFiniteHoweverWildTheLadder) {
  const SizingCurve curve({{10, 10}, {11, 400}, {12, 401}, {900, 402}, {901, 900}},
                          SizeMethod::LocalSouthern);
  for (double scan = 10; scan <= 901; scan += 0.5)
    EXPECT_TRUE(std::isfinite(curve.at(scan, OutsideLadder::NoSize)->size)) << scan;
  EXPECT_THROW(SizingCurve({{10, 10}, {10, 20}, {30, 30}}, SizeMethod::LocalSouthern), std::invalid_argument);
  EXPECT_THROW(SizingCurve({{10, 10}, {20, 9}, {30, 30}}, SizeMethod::LocalSouthern), std::invalid_argument);
  EXPECT_FALSE(
      SizingCurve({{10, 10}, {20, 20}}, SizeMethod::LocalSouthern).at(15, OutsideLadder::StraightLine));
}

TEST(SizeStandards, AreThirtyAscendingLists) {
  EXPECT_EQ(knownStandards().size(), 30U);
  for (const SizeStandard& standard : knownStandards()) {
    EXPECT_GE(standard.sizes.size(), 12U) << standard.name;
    EXPECT_TRUE(std::ranges::is_sorted(standard.sizes, std::less_equal<>{})) << standard.name;
    EXPECT_EQ(findStandard(knownStandards(), standard.name), &standard);
  }
}

TEST(SizeStandards, AreFoundByName) {
  const auto nameOf = [](std::string_view name) {
    const SizeStandard* found = findStandard(knownStandards(), name);
    return found == nullptr ? std::string("none") : found->name;
  };
  EXPECT_EQ(nameOf("gs500"), "GS500");
  EXPECT_EQ(nameOf("GS600"), "GS600 LIZ");
  EXPECT_EQ(nameOf("gs-600 liz (60-600)"), "GS600 LIZ (60-600)");
  EXPECT_EQ(nameOf("GS9"), "none");
  EXPECT_EQ(nameOf(""), "none");
  EXPECT_TRUE(findStandard(knownStandards(), "GS500")->isUnreliable(250));
  EXPECT_FALSE(findStandard(knownStandards(), "GS600")->isUnreliable(250));
  EXPECT_TRUE(findStandard(knownStandards(), "GS500")->fitsDye(" liz "));
  EXPECT_FALSE(findStandard(knownStandards(), "GS500")->fitsDye("WEN"));
}

TEST(SizeStandards, OfTheUsersOwnAreChecked) {
  EXPECT_EQ(standardOfSizes("mine", "50 75,100;125\t150.5").sizes,
            (std::vector<double>{50, 75, 100, 125, 150.5}));
  for (const char* wrong : {"", "50 75 100 125", "50 75 100 125 125", "50 75 x 125 150", "0 75 100 125 150",
                            "50 75 100 125 1e9", "50 75 100 125 nan"})
    EXPECT_THROW(standardOfSizes("mine", wrong), std::invalid_argument) << wrong;
}

TEST(SizeStandards, KnowTheOperatorsWord) {
  const auto match = [](std::string_view word, std::string_view name) {
    return hintMatch(word, *findStandard(knownStandards(), name));
  };
  EXPECT_GT(match("GS600LIZ(60-600)+Normalization", "GS600 LIZ (60-600)"),
            match("GS600LIZ(60-600)+Normalization", "GS600 LIZ"));
  EXPECT_GT(match("GS600LIZ", "GS600 LIZ"), match("GS600LIZ", "GS500"));
  EXPECT_EQ(match("", "GS500"), 0);
}

}  // namespace
}  // namespace banddesk::host::runs
