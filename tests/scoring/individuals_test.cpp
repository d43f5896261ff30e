#include "host/scoring/individuals.h"

#include <cmath>
#include <gmock/gmock.h>

namespace banddesk::host::scoring {
namespace {

using testing::ElementsAre;
using Names = std::vector<std::string>;

TEST(Individuals, AreTheGroupOfAPatternThatMatchesTheWholeName) {
  const auto found = individualsByPattern(Names{"A_R1", "B_R1", "C", "A_R2", "A_R3"}, "(.*)_R[123]");
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].name, "A");
  EXPECT_THAT(found[0].samples, ElementsAre(0, 3, 4));
  EXPECT_EQ(found[2].name, "C");
  EXPECT_THAT(pairsOf(found), ElementsAre(ReplicatePair{0, 3}, ReplicatePair{0, 4}, ReplicatePair{3, 4}));
  for (const char* bad : {"(.*", ".*_R1", "(.*)_X", "(.*?)A_R1"}) {
    EXPECT_THROW(individualsByPattern(Names{"A_R1", "A_R2"}, bad), std::invalid_argument) << bad;
  }
  for (const Names& clash : {Names{"A", "A_R1"}, Names{"A_R1", "A"}, Names{"C", "C", "A_R1"}}) {
    EXPECT_THROW(individualsByPattern(clash, "(.*)_R1"), std::invalid_argument);
  }
}

TEST(Individuals, AreComparedOverTheBinsNamedAndMadeOneByConsensus) {
  const std::vector<BinExtent> bins(4);
  const std::vector<std::int32_t> counts = {1, 2, 1, 0,  //
                                            1, 1, 0, 0,  //
                                            1, 0, 0, 0,  //
                                            0, 0, 0, 1};
  const TableView table{counts, bins, 4};
  const std::vector<Individual> individuals = {{"A", {0, 1, 2}}, {"B", {3}}};
  const auto figures = figuresOf(table, pairsOf(individuals), std::vector<std::size_t>{0, 1, 2, 3});
  const FigureMeans means = meansOf(figures);
  EXPECT_NEAR(*means.jaccard.mean, 0.5, 1e-12);  // 1/3, 2/3, 1/2
  EXPECT_NEAR(*means.jaccard.deviation, 1.0 / 6, 1e-12);
  EXPECT_NEAR(*means.simpleMatching.mean, 1.0 / 3, 1e-12);  // 1/4, 2/4, 1/4
  EXPECT_NEAR(*means.euclidean.mean, (2 + std::sqrt(2.0)) / 3, 1e-12);
  EXPECT_NEAR(*meansOfSample(figures, 2).jaccard.mean, 7.0 / 12, 1e-12);
  EXPECT_FALSE(meansOf(figuresOf(table, pairsOf(individuals), std::vector<std::size_t>{3})).jaccard.mean);

  const auto callsOfA = [&](ConsensusRule rule, std::size_t atLeast = 1) {
    std::string text;
    for (const auto& line : consensusOf(table, individuals, rule, atLeast)) {
      text += "01?"[static_cast<int>(line[0])];
      EXPECT_EQ(line[1] == Call::Present, text.size() == 4);
    }
    return text;
  };
  EXPECT_EQ(callsOfA(ConsensusRule::All), "1000");
  EXPECT_EQ(callsOfA(ConsensusRule::Most), "1100");
  EXPECT_EQ(callsOfA(ConsensusRule::AtLeast, 1), "1110");
  EXPECT_EQ(callsOfA(ConsensusRule::MissingWhereTheyDisagree), "1??0");
}

}  // namespace
}  // namespace banddesk::host::scoring
