#include "host/quality/table_quality.h"

#include <cmath>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <vector>

namespace banddesk::host {
namespace {

// Three bins (lines) of four samples; the fourth is empty.
const std::vector<std::int32_t> counts = {1, 0, 2, 0,  //
                                          1, 1, 1, 0,  //
                                          0, 1, 0, 0};
const std::vector<BinExtent> bins = {{100, 100.5}, {200, 201}, {300, 300}};
const TableView table{counts, bins, 4};

TEST(TableQuality, CountsFragmentsCellsAndWidths) {
  const TableQuality quality = qualityOf(table);
  EXPECT_EQ(quality.samples, 4U);
  EXPECT_EQ(quality.bins, 3U);
  EXPECT_EQ(quality.singleFragmentBins, 1U);
  EXPECT_EQ(quality.fragments, 7U);
  EXPECT_EQ(quality.filledCells, 6U);
  EXPECT_DOUBLE_EQ(quality.fragmentsPerFilledCell.value(), 7.0 / 6);
  EXPECT_DOUBLE_EQ(quality.meanWidth.value(), 0.5);
  EXPECT_DOUBLE_EQ(quality.largestWidth.value(), 1.0);
  EXPECT_FALSE(quality.replicates);
}

// Distances: 0-1 2, 0-2 0, 0-3 2, 1-2 2, 1-3 2, 2-3 2. Sums to the others: 4, 6, 4, 6.
TEST(TableQuality, TakesTheMedianOfTheSamplesMeanDistancesAsInformation) {
  EXPECT_DOUBLE_EQ(qualityOf(table).informationContent.value(), 5.0 / 3 / 3);
  const std::vector<std::int32_t> ofThree = {1, 0, 0};  // sums 2, 1, 1
  EXPECT_DOUBLE_EQ(qualityOf({ofThree, {bins.data(), 1}, 3}).informationContent.value(), 0.5);
}

TEST(TableQuality, OfReplicatesNamesTheWorstPairAndBinFirstAndDropsNone) {
  const std::vector<ReplicatePair> pairs = {{3, 3}, {0, 2}, {0, 1}};  // the first fills no cell
  const ReplicateQuality quality = qualityOf(table, pairs).replicates.value();
  EXPECT_EQ(quality.overall.both, 3U);
  EXPECT_EQ(quality.overall.differing, 2U);
  EXPECT_DOUBLE_EQ(quality.overall.mismatchError().value(), 2.0 / 9);
  EXPECT_DOUBLE_EQ(quality.overall.jaccardError().value(), 2.0 / 5);
  // Of 2/3 and 0; the third pair has no value.
  EXPECT_DOUBLE_EQ(quality.jaccardError.mean.value(), 1.0 / 3);
  EXPECT_DOUBLE_EQ(quality.jaccardError.deviation.value(), std::sqrt(2.0) / 3);
  EXPECT_FALSE(qualityOf(table, {pairs.data(), 1}).replicates.value().jaccardError.mean);

  ASSERT_EQ(quality.pairs.size(), 3U);
  EXPECT_EQ(quality.pairs[0].samples, (ReplicatePair{0, 1}));
  EXPECT_DOUBLE_EQ(quality.pairs[0].agreement.jaccardError().value(), 2.0 / 3);
  EXPECT_EQ(quality.pairs[1].agreement.jaccardError(), 0.0);
  EXPECT_EQ(quality.pairs[2].samples, (ReplicatePair{3, 3}));
  EXPECT_EQ(quality.pairs[2].agreement.jaccardError(), std::nullopt);
  EXPECT_EQ(quality.pairs[2].agreement.mismatchError(), 0.0);

  ASSERT_EQ(quality.bins.size(), 3U);
  EXPECT_EQ(quality.bins[0].bin, 2U);  // 1 of 1 differs
  EXPECT_EQ(quality.bins[1].bin, 0U);  // 1 of 2
  EXPECT_EQ(quality.bins[2].agreement.jaccardError(), 0.0);
}

TEST(TableQuality, HasNoRatesWhereThereIsNothingToShare) {
  const TableQuality none = qualityOf({{}, {}, 4});
  EXPECT_EQ(none.bins, 0U);
  EXPECT_FALSE(none.fragmentsPerFilledCell || none.meanWidth || none.informationContent);
  const std::vector<std::int32_t> one = {1};
  EXPECT_FALSE(qualityOf({one, {bins.data(), 1}, 1}).informationContent);
}

TEST(TableQuality, RefusesPartsThatDoNotFit) {
  EXPECT_THROW(qualityOf({counts, bins, 3}), std::invalid_argument);
  const std::vector<ReplicatePair> beyond = {{0, 4}};
  EXPECT_THROW(qualityOf(table, beyond), std::invalid_argument);
}

}  // namespace
}  // namespace banddesk::host
