#include "host/scoring/individuals.h"

#include <cmath>
#include <gmock/gmock.h>

namespace banddesk::host::scoring {
namespace {

using testing::ElementsAre;
using Names = std::vector<std::string>;

std::string described(const Individuals& individuals) {
  std::string text;
  for (const Individual& each : individuals.all) {
    text += each.name;
    for (const std::size_t sample : each.samples) text += ' ' + std::to_string(sample);
    text += ", ";
  }
  return text;
}

TEST(Individuals, AreToldByGroupsOfAPatternByEndingsAndByPairs) {
  const std::string runs = ".A01_12345678XY";
  const std::vector<std::pair<std::pair<std::string, Names>, std::string>> cases = {
      {{"(.*)_R[123]", {"A_R1", "B_R1", "C", "A_R2", "A_R3"}}, "A 0 3 4, B 1, C 2, "},
      {{"_I/_II", {"A_I", "A_II", "B_II" + runs, "C", "B_I"}}, "A 0 1, B 2 4, C 3, "},
      {{"b", {"2" + runs, "2b", "3", "b"}}, "2 0 1, 3 2, b 3, "}};
  for (const auto& [given, expected] : cases)
    EXPECT_EQ(described(individualsByPattern(given.second, given.first)), expected) << given.first;
  const std::vector<std::pair<std::string, std::string>> pairs = {
      {"c", "a"}, {"b", "d"}, {"d", "c"}, {"a", "x"}};
  const Individuals found = individualsByPairs(Names{"a", "b", "c", "d", "e"}, pairs);
  EXPECT_EQ(described(found), "a 0 1 2 3, e 4, ");
  EXPECT_EQ(found.unmade.size(), 1U);
  EXPECT_EQ(described(individualsByWord(Names{"a", "b", "c"}, Names{"I", "", "I"})), "I 0 2, b 1, ");
  EXPECT_THROW(individualsByWord(Names{"a", "b"}, Names{"b", ""}), std::invalid_argument);
  EXPECT_EQ(pairsOf(individualsByPattern(cases[0].first.second, "(.*)_R[123]").all).size(), 3U);
}

TEST(Individuals, AreRefusedWhereThePatternTellsNothingOrTooMuch) {
  const std::vector<std::pair<std::string, Names>> cases = {
      {"(.*", {"A_R1", "A_R2"}},       {"(?:.*)_R1", {"A_R1"}},       {"(.*)_X", {"A_R1"}},
      {"(.*?)A_R1", {"A_R1"}},         {"(.*)_R1", {"A", "A_R1"}},    {"(.*)_R1", {"A_R1", "A"}},
      {"(.*)_R1", {"C", "C", "A_R1"}}, {"(.*)_R1", {"A_R1", "A_R1"}}, {"_R1/", {"A_R1"}},
      {"_R1/_R2", {"A", "A_R1"}},      {"_R1/_R2", {"A_R1", "A_R1"}}, {"b", {"A", "B"}}};
  for (const auto& [pattern, names] : cases)
    EXPECT_THROW(individualsByPattern(names, pattern), std::invalid_argument) << pattern;
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

  using enum statistics::Band;
  statistics::BandMatrix bands{{"a", "b", "c", "d"}, {"g", "h"}, {0, 0, 0, 1}, {}, {}};
  for (int locus = 0; locus < 5; ++locus) bands.loci.push_back({"D1", 100.0 + locus});
  bands.cells = {Present, Present, Present, Absent,  Present,  //
                 Present, Present, Absent,  Absent,  Missing,  //
                 Present, Absent,  Absent,  Absent,  Missing,  //
                 Absent,  Absent,  Absent,  Present, Missing};
  for (const auto& [rule, expected] :
       std::vector<std::pair<std::string, std::string>>{{"all", "10001 0001?"},
                                                        {"most", "11001 0001?"},
                                                        {"1", "11101 0001?"},
                                                        {"missing", "1??01 0001?"}}) {
    const auto made = consensusOf(bands, individuals, parseConsensus(rule));
    std::string text;
    for (const auto call : made.cells) text += "01?"[static_cast<int>(call)];
    EXPECT_EQ(text.insert(5, " "), expected) << rule;
    EXPECT_THAT(made.groupOf, ElementsAre(0, 1));
    EXPECT_EQ(consensusText(parseConsensus(rule)), rule);
  }
  bands.groupOf[1] = 1;
  EXPECT_THROW(consensusOf(bands, individuals, {}), std::invalid_argument);
  for (const char* bad : {"", "0", "-1", "2x", "some"})
    EXPECT_THROW(parseConsensus(bad), std::invalid_argument);
}

}  // namespace
}  // namespace banddesk::host::scoring
