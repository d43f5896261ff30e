// Real runs against the tables that commercial programs made of them, where they are at hand.
#include <gtest/gtest.h>

#include "bench/run_figures.h"
#include "host/runs/run_error.h"

namespace banddesk::bench {
namespace {

constexpr double kPrinted = 0.0051;  // nt: half a unit of the last printed digit

class OtherPrograms : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    if (realRuns().empty()) GTEST_SKIP() << "the real runs are not at hand";
  }
};

TEST_P(OtherPrograms, AreReproduced) {
  for (const OtherProgram& other : otherPrograms()) {
    SCOPED_TRACE(other.folder);
    const RunFigures figures = figuresOf(other, realRuns(), GetParam());
    EXPECT_EQ(figures.sized, figures.files);
    EXPECT_EQ(figures.laddersRight, figures.files);
    if (other.folder == "peakscanner1_3730") continue;  // its smoothing is not known
    EXPECT_GT(figures.sizeErrors.size(), 400U);
    EXPECT_LE(quantile(figures.sizeErrors, 1), kPrinted);
    EXPECT_GE(shareBelow(figures.ownSizeErrors, kPrinted), 0.99);
    EXPECT_GE(static_cast<double>(figures.sameScan), 0.99 * static_cast<double>(figures.matched));
    EXPECT_LE(quantile(figures.heightErrors, 0.5), 0.005);
    if (other.folder == "sizecaller_3500") continue;  // one kit has a table made with other settings
    EXPECT_GE(static_cast<double>(figures.found), 0.99 * static_cast<double>(figures.wanted));
    EXPECT_LE(static_cast<double>(figures.more), 0.05 * static_cast<double>(figures.wanted));
    EXPECT_LE(quantile(figures.heightErrors, 0.95), 0.04);
  }
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutTheirResults, OtherPrograms, testing::Bool());

TEST(RealRuns, AreSizedByDefaultOrSayWhyNot) {
  if (realRuns().empty()) GTEST_SKIP() << "the real runs are not at hand";
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(realRuns()))
    if (entry.path().extension() == ".fsa" || entry.path().extension() == ".ab1")
      files.push_back(entry.path());
  std::size_t sized = 0, refused = 0;
  for (const auto& outcome : host::runs::processRuns(files, {}, 2)) {
    if (outcome.processed)
      sized += outcome.processed->ladder.quality == host::runs::LadderQuality::Sized ? 1U : 0U;
    else
      refused += outcome.error.find("sequencing run") != std::string::npos ||
                         outcome.error.find("does not begin with ABIF") != std::string::npos
                     ? 1U
                     : 0U;
  }
  EXPECT_EQ(sized, 33U);
  EXPECT_EQ(refused, 8U);
}

}  // namespace
}  // namespace banddesk::bench
