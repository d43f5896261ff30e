// Distances, ordination, trees, diversity and variance against what R computed of the same tables
// (tools/statistics-fixtures.R), and by hand where no package has them.
#include <algorithm>
#include <cmath>
#include <fstream>
#include <gmock/gmock.h>
#include <map>
#include <sstream>

#include "host/simulation/random.h"
#include "host/statistics/amova.h"
#include "host/statistics/bit_counts.h"
#include "host/statistics/bootstrap.h"
#include "host/statistics/diversity.h"
#include "host/statistics/ordination.h"
#include "plugin/base/error.h"

namespace banddesk::host::statistics {
namespace {

constexpr double kNear = 1e-10;

using Values = std::vector<double>;
using Words = std::vector<std::string>;

BandMatrix matrixOf(const Words& lines, const std::vector<std::size_t>& groups = {}) {
  BandMatrix matrix;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    matrix.samples.push_back("s" + std::to_string(i + 1));
    for (const char cell : lines[i])
      matrix.cells.push_back(cell == '1' ? Band::Present : cell == '0' ? Band::Absent : Band::Missing);
  }
  for (std::size_t i = 0; i < lines.front().size(); ++i)
    matrix.loci.push_back({"D1", 50.0 + static_cast<double>(i)});
  matrix.groupOf = groups;
  for (const std::size_t group : groups) {
    while (matrix.groups.size() <= group) matrix.groups.push_back("G" + std::to_string(matrix.groups.size()));
  }
  return matrix;
}

DistanceTable tableOf(std::size_t samples, const Values& values) {
  DistanceTable table(samples);
  std::size_t at = 0;
  for (std::size_t i = 0; i < samples; ++i) {
    for (std::size_t j = i + 1; j < samples; ++j) table.upper(i, j) = values[at++];
  }
  return table;
}

// What R computed, by key; a key may stand on several lines.
class OfR : public testing::TestWithParam<const char*> {
 protected:
  OfR() {
    std::ifstream file(BANDDESK_SOURCE_DIR "/tests/statistics/fixtures/r.txt");
    for (std::string line; std::getline(file, line);) {
      std::istringstream words(line);
      std::string key, word;
      words >> key;
      auto& stored = lines_[key].emplace_back();
      while (words >> word) stored.push_back(word);
    }
    std::vector<std::size_t> groups;
    for (const double group : values("groups")) groups.push_back(static_cast<std::size_t>(group));
    matrix = matrixOf(line("bands"), groups);
  }

  const std::vector<Words>& lines(const std::string& key) const {
    return lines_.at(GetParam() + ("." + key));
  }
  const Words& line(const std::string& key) const { return lines(key).front(); }
  Values values(const std::string& key) const {
    Values values;
    for (const std::string& word : line(key)) values.push_back(std::stod(word));
    return values;
  }
  DistanceTable jaccard() const { return distances(matrix, Measure::Jaccard); }

  BandMatrix matrix;

 private:
  std::map<std::string, std::vector<Words>> lines_;
};

// What R computes of tables without missing bands alone.
class OfRWithoutMissing : public OfR {};

auto isNear(const Values& expected) { return testing::Pointwise(testing::DoubleNear(kNear), expected); }

Values valuesOf(const DistanceTable& table) { return {table.values().begin(), table.values().end()}; }

TEST_P(OfR, DistancesAreThoseOfVeganAndDist) {
  const std::pair<Measure, const char*> measures[] = {{Measure::Jaccard, "jaccard"},
                                                      {Measure::Dice, "dice"},
                                                      {Measure::SimpleMatching, "simple"},
                                                      {Measure::Euclidean, "euclidean"}};
  for (const auto& [measure, key] : measures)
    EXPECT_THAT(valuesOf(distances(matrix, measure)), isNear(values(key))) << key;
}

TEST_P(OfR, EigenvaluesAreThoseOfCmdscaleAndAxesUpToTheirSign) {
  const std::pair<Scale, std::string> scales[] = {{Scale::AsIs, "pcoa"}, {Scale::SquareRoot, "rootPcoa"}};
  for (const auto& [scale, key] : scales) {
    const Ordination found = principalCoordinates(jaccard(), scale, 3);
    EXPECT_THAT(found.eigenvalues, isNear(values(key + ".eigenvalues")));
    ASSERT_EQ(found.axes.size(), 3U);
    EXPECT_EQ(found.negative, 0U);
    double share = 0;
    for (std::size_t axis = 0; axis < found.positive; ++axis) share += found.percent(axis);
    EXPECT_NEAR(share, 100, kNear);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      Values expected = values(key + ".axis" + std::to_string(axis + 1));
      const double largest = std::ranges::max(expected, {}, [](double value) { return std::abs(value); });
      for (double& value : expected) value *= largest < 0 ? -1 : 1;
      EXPECT_THAT(found.axes[axis], isNear(expected)) << key << axis;
    }
  }
}

TEST_P(OfR, TreesAreThoseOfHclustAndApe) {
  const Tree average = upgma(jaccard());
  EXPECT_THAT(valuesOf(pathDistances(average)), isNear(values("upgma")));
  EXPECT_NEAR(*copheneticCorrelation(jaccard(), average), values("cophenetic").front(), kNear);
  EXPECT_THAT(valuesOf(pathDistances(neighbourJoining(jaccard()))), isNear(values("nj")));
}

// The samples below each inner node but the root as R's script writes them, with the support.
std::map<std::string, double> supportsOf(const Tree& tree) {
  std::map<std::string, double> supports;
  std::vector<std::string> members(tree.nodes.size(), std::string(tree.samples, '0'));
  for (std::size_t node = 0; node < tree.root(); ++node) {
    std::string& set = members[node];
    if (node < tree.samples) set[node] = '1';
    for (const std::size_t child : tree.nodes[node].children) {
      for (std::size_t i = 0; i < set.size(); ++i) set[i] = std::max(set[i], members[child][i]);
    }
    if (node < tree.samples) continue;
    std::string shown = set;
    if (!tree.isRooted && shown[0] == '1')
      for (char& digit : shown) digit = digit == '1' ? '0' : '1';
    supports[shown] = *tree.nodes[node].support;
  }
  return supports;
}

// Both draw 10,000 times, with other random numbers: three standard deviations of the difference are 2.1
// points.
TEST_P(OfRWithoutMissing, BootstrapsSupportTheNodesThatThoseOfApeSupport) {
  const std::pair<TreeMethod, const char*> methods[] = {{TreeMethod::Upgma, "upgmaSupport"},
                                                        {TreeMethod::NeighbourJoining, "njSupport"}};
  for (const auto& [method, key] : methods) {
    const auto found = supportsOf(treeOf(matrix, {Measure::Jaccard, method, 10'000, 7}));
    EXPECT_EQ(found.size(), lines(key).size());
    for (const Words& node : lines(key)) {
      ASSERT_TRUE(found.contains(node[0])) << key << node[0];
      EXPECT_NEAR(found.at(node[0]), std::stod(node[1]), 3) << key << node[0];
    }
  }
}

TEST_P(OfRWithoutMissing, VarianceIsThatOfAde4) {
  const Amova found = amova(distances(matrix, Measure::Euclidean), matrix.groupOf);
  const Values figures = {static_cast<double>(found.among.degrees),
                          static_cast<double>(found.within.degrees),
                          found.among.squares,
                          found.within.squares,
                          found.among.variance,
                          found.within.variance,
                          found.phi};
  EXPECT_THAT(figures, isNear(values("amova")));
  EXPECT_DOUBLE_EQ(*found.probability, 0.001) << "the groups differ as no permutation's do";
}

TEST_P(OfR, DiversityIsThatOfItsFormulasAndVegan) {
  const Diversity found = diversityOf(matrix);
  for (std::size_t group = 0; group < found.groups.size(); ++group) {
    const GroupDiversity& figures = found.groups[group];
    EXPECT_THAT((Values{static_cast<double>(figures.bands), figures.polymorphicPercent, figures.geneDiversity,
                        figures.shannon}),
                isNear(values("diversity" + std::to_string(group))));
  }
}

TEST(Ordination, TellsNegativeEigenvaluesAndLeavesThemOutOfThePercentages) {
  // Sides of 2, 2 and 3 between three samples, and a fourth at 1 from each: no such points exist.
  const DistanceTable impossible = tableOf(4, {2, 2, 1, 3, 1, 1});
  const Ordination found = principalCoordinates(impossible, Scale::AsIs, 9);
  EXPECT_EQ(found.negative, 1U);
  EXPECT_EQ(found.axes.size(), found.positive);
  double share = 0;
  for (std::size_t axis = 0; axis < found.positive; ++axis) share += found.percent(axis);
  EXPECT_NEAR(share, 100, kNear);
  EXPECT_EQ(principalCoordinates(impossible, Scale::SquareRoot, 9).negative, 0U);
}

// Bands are corners of a cube: all axes together hold the distances as they are, however many eigenvalues are
// equal.
TEST(Ordination, KeepsEuclideanDistancesOnAllItsAxesAndIsCancelledInTheMidst) {
  simulation::Random random(5);
  Words equal, pairs, any;
  for (std::size_t i = 0; i < 40; ++i) {
    equal.push_back(std::string(40, '0'));
    equal.back()[i] = '1';
    pairs.push_back(std::string(i / 2, '1') + std::string(40 - i / 2, '0'));
    any.emplace_back();
    for (int k = 0; k < 90; ++k) any.back() += random.chance(0.4) ? '1' : '0';
  }
  for (const Words& lines : {equal, pairs, any}) {
    const DistanceTable table = distances(matrixOf(lines), Measure::Euclidean);
    const Ordination found = principalCoordinates(table, Scale::AsIs, 40);
    for (std::size_t i = 0; i < 40; ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        double squares = 0;
        for (const Values& axis : found.axes) squares += (axis[i] - axis[j]) * (axis[i] - axis[j]);
        ASSERT_NEAR(std::sqrt(squares), table.at(i, j), kNear) << i << " " << j;
      }
    }
    EXPECT_THROW(principalCoordinates(table, Scale::AsIs, 2, [](double done) { return done < 0.5; }),
                 Cancelled);
  }
}

INSTANTIATE_TEST_SUITE_P(Tables, OfR, testing::Values("full", "gaps"));
INSTANTIATE_TEST_SUITE_P(Tables, OfRWithoutMissing, testing::Values("full"));

TEST(BitCounts, AreTheSameByBothWaysOfCountingAndByLooking) {
  simulation::Random random(3);
  for (const std::size_t loci : {1U, 63U, 64U, 65U, 300U}) {
    for (const double missing : {0.0, 0.3}) {
      Words lines(5);
      for (std::string& line : lines) {
        for (std::size_t i = 0; i < loci; ++i)
          line += random.chance(missing) ? '?' : random.chance(0.4) ? '1' : '0';
      }
      const BandMatrix matrix = matrixOf(lines);
      const PackedBands bands(matrix);
      std::vector<PairCounts> best(4), plain(4);
      countPairs(bands, 0, best);
      countPairsPlainly(bands, 0, plain);
      for (std::size_t k = 0; k < 4; ++k) {
        PairCounts seen;
        for (std::size_t i = 0; i < loci; ++i) {
          const char a = lines[0][i], b = lines[k + 1][i];
          if (a == '?' || b == '?') continue;
          ++seen.known;
          seen.both += a == '1' && b == '1' ? 1U : 0U;
          seen.first += a == '1' ? 1U : 0U;
          seen.second += b == '1' ? 1U : 0U;
        }
        for (const PairCounts& counts : {best[k], plain[k]}) {
          EXPECT_EQ(counts.both, seen.both);
          EXPECT_EQ(counts.first, seen.first);
          EXPECT_EQ(counts.second, seen.second);
          EXPECT_EQ(counts.known, seen.known);
        }
      }
    }
  }
}

TEST(Distances, OfSamplesWithoutABandAreZeroAndWithoutACommonBinRefused) {
  const BandMatrix none = matrixOf({"000", "000", "100"});
  EXPECT_THAT(valuesOf(distances(none, Measure::Jaccard)), testing::ElementsAre(0, 1, 1));
  EXPECT_THAT(valuesOf(distances(none, Measure::Dice)), testing::ElementsAre(0, 1, 1));
  try {
    distances(matrixOf({"1?1", "010", "?0?"}), Measure::Jaccard);
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.description(),
              "The samples \"s1\" and \"s3\" have no distance: no bin is known in both.");
  }
}

std::string shapeOf(const Tree& tree, std::size_t node) {
  if (node < tree.samples) return std::to_string(node);
  std::string shape;
  for (const std::size_t child : tree.nodes[node].children)
    shape += (shape.empty() ? "(" : ",") + shapeOf(tree, child);
  return shape + ")";
}

TEST(Trees, JoinTheFirstOfEquallyNearPairs) {
  // 1-2, 2-3 and 4-5 are equally near. A search along nearest neighbours from 0 would meet 2-3 before 1-2.
  const auto ties = tableOf(6, {8, 9, 6, 9, 9,  //
                                2, 4, 9, 9,     //
                                2, 9, 9,        //
                                9, 9,           //
                                2});
  const Tree tree = upgma(ties);
  EXPECT_EQ(shapeOf(tree, tree.root()), "((0,((1,2),3)),(4,5))");
  // Of all equally near samples each joins the first.
  const Tree equal = upgma(tableOf(4, {1, 1, 1, 1, 1, 1}));
  EXPECT_EQ(shapeOf(equal, equal.root()), "(((0,1),2),3)");
  const Tree joined = neighbourJoining(tableOf(5, Values(10, 1)));
  EXPECT_EQ(shapeOf(joined, joined.root()), "(((0,1),2),3,4)");
}

TEST(Trees, OfUpgmaJoinWhatATrialOfAllPairsJoinsAlsoWithManyTies) {
  simulation::Random random(11);
  for (int round = 0; round < 200; ++round) {
    const std::size_t samples = 3 + static_cast<std::size_t>(random.uniform() * 8);
    Values values(samples * (samples - 1) / 2);
    for (double& value : values) value = 1 + std::floor(random.uniform() * 3);
    const DistanceTable table = tableOf(samples, values);
    struct Cluster {
      std::vector<std::size_t> samples;
      std::string shape;
    };
    std::vector<Cluster> clusters;
    for (std::size_t i = 0; i < samples; ++i) clusters.push_back({{i}, std::to_string(i)});
    while (clusters.size() > 1) {
      std::pair<std::size_t, std::size_t> best;
      double least = 1e9;
      for (std::size_t a = 0; a < clusters.size(); ++a) {
        for (std::size_t b = a + 1; b < clusters.size(); ++b) {
          double sum = 0;
          for (const auto i : clusters[a].samples)
            for (const auto j : clusters[b].samples) sum += table.at(i, j);
          const double mean =
              sum / static_cast<double>(clusters[a].samples.size() * clusters[b].samples.size());
          if (mean < least - 1e-9) best = {a, b}, least = mean;
        }
      }
      Cluster &a = clusters[best.first], &b = clusters[best.second];
      a.shape = "(" + a.shape + "," + b.shape + ")";
      a.samples.insert(a.samples.end(), b.samples.begin(), b.samples.end());
      clusters.erase(clusters.begin() + static_cast<std::ptrdiff_t>(best.second));
    }
    const Tree tree = upgma(table);
    EXPECT_EQ(shapeOf(tree, tree.root()), clusters.front().shape);
  }
}

TEST(Diversity, CountsPrivateBandsAndThoseOfTheCriterionAskedFor) {
  const BandMatrix matrix =
      matrixOf({"1100?", "11000", "0100?", "0110?", "01111", "01?11"}, {0, 0, 0, 1, 1, 1});
  const Diversity any = diversityOf(matrix), most = diversityOf(matrix, 0.35);
  EXPECT_EQ(any.groups[0].privateBands, 1U);
  EXPECT_EQ(any.groups[1].privateBands, 3U);
  EXPECT_EQ(any.groups[0].loci, 5U);
  EXPECT_DOUBLE_EQ(any.groups[0].polymorphicPercent, 20);
  EXPECT_DOUBLE_EQ(any.groups[1].polymorphicPercent, 20);  // the known ones of locus 3 are all present
  EXPECT_DOUBLE_EQ(any.all.polymorphicPercent, 80);
  EXPECT_DOUBLE_EQ(most.all.polymorphicPercent, 20);
}

TEST(LongWork, EndsWhenItsProgressAnswersNo) {
  const BandMatrix matrix = matrixOf(Words(40, "0101101"), [] {
    std::vector<std::size_t> groups(40, 0);
    std::fill(groups.begin() + 20, groups.end(), 1);
    return groups;
  }());
  int calls = 0;
  const Progress thirdStops = [&](double share) {
    EXPECT_GE(share, 0);
    EXPECT_LE(share, 1);
    return ++calls % 3 != 0;
  };
  const DistanceTable table = distances(matrix, Measure::Euclidean);
  EXPECT_THROW(distances(matrix, Measure::Jaccard, thirdStops), Cancelled);
  EXPECT_THROW(neighbourJoining(table, thirdStops), Cancelled);
  EXPECT_THROW(amova(table, matrix.groupOf, {}, thirdStops), Cancelled);
  EXPECT_THROW(treeOf(matrix, {Measure::Jaccard, TreeMethod::Upgma, 10, 1}, thirdStops), Cancelled);
}

TEST(Statistics, RefuseWhatTheyCannotJudge) {
  const BandMatrix one = matrixOf({"01"}), equal = matrixOf({"01", "01"}, {0, 0});
  EXPECT_THROW(upgma(distances(one, Measure::Jaccard)), Error);
  EXPECT_THROW(neighbourJoining(distances(one, Measure::Jaccard)), Error);
  EXPECT_THROW(principalCoordinates(distances(one, Measure::Jaccard), Scale::AsIs, 2), Error);
  EXPECT_THROW(principalCoordinates(distances(equal, Measure::Jaccard), Scale::AsIs, 2), Error);
  EXPECT_THROW(amova(distances(equal, Measure::Jaccard), equal.groupOf), Error);
  EXPECT_THROW(amova(distances(equal, Measure::Jaccard), std::vector<std::size_t>{0, 1}), Error);
  EXPECT_THROW(amova(distances(one, Measure::Jaccard), {}), Error);
  BandMatrix odd = equal;
  odd.cells.pop_back();
  EXPECT_THROW(distances(odd, Measure::Jaccard), Error);
}

}  // namespace
}  // namespace banddesk::host::statistics
