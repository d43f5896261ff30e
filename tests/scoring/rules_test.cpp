#include "host/scoring/rules.h"

#include <gmock/gmock.h>

namespace banddesk::host::scoring {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Rules, AreRefusedAtTheCharacterThatIsWrong) {
  const std::vector<std::pair<std::string, std::size_t>> cases = {{"", 1},
                                                                  {"heigth<1", 1},
                                                                  {"height=1", 7},
                                                                  {"height<", 8},
                                                                  {"width> x", 8},
                                                                  {"height<-1", 8},
                                                                  {"size<inf", 6},
                                                                  {"size<nan", 6},
                                                                  {"height<10%", 10},
                                                                  {"disagree>10", 12},
                                                                  {"samples<2 3", 11},
                                                                  {"blank>0,5", 8},
                                                                  {"height<1e999", 8}};
  for (const auto& [text, at] : cases) {
    try {
      parseRule(text);
      ADD_FAILURE() << text;
    } catch (const RuleError& error) {
      EXPECT_EQ(error.character, at) << error.what();
    }
  }
}

TEST(Rules, AreWrittenAsTheyAreRead) {
  for (const std::string text : {"height<100", "samples>12", "disagree>10%", "fragments<12.5%", "blank>0"}) {
    EXPECT_EQ(ruleText(parseRule(text)), text);
  }
  EXPECT_EQ(ruleText(parseRule("  width  >  0.75 ")), "width>0.75");
}

// Samples: A and its replicate, B and its replicate, a poor one, a blank.
TEST(Rules, TakeBinsByTheSamplesThatCount) {
  const std::vector<RuleBin> bins = {
      {49.5, 50, 49.75}, {99, 100.25, 99.5}, {200, 200, 200}, {300, 300.5, 300.2}};
  const std::vector<std::int32_t> counts = {1, 1, 1, 1, 0, 0,  //
                                            2, 1, 0, 1, 1, 1,  //
                                            0, 0, 0, 0, 0, 1,  //
                                            1, 1, 1, 1, 0, 0};
  const std::vector<double> heights = {100, 100, 100, 100, 0,    0,     //
                                       150, 75,  0,   75,  9000, 9000,  //
                                       0,   0,   0,   0,   0,    500,   //
                                       50,  50,  50,  51,  0,    0};
  const std::vector<ReplicatePair> pairs = {{0, 1}, {2, 3}};
  using enum SampleState;
  std::vector<SampleState> states = {Judged, Judged, Judged, Judged, Judged, Blank};
  const RuleTable table{bins, counts, heights, states, pairs};
  std::vector<Rule> rules;
  for (const char* text : {"height<100", "samples<2", "samples>3", "width>1", "size<50", "disagree>49%",
                           "disagree>50%", "blank>0", "fragments<2", "fragments<50%"}) {
    rules.push_back(parseRule(text));
  }
  const RuleOutcome outcome = applyRules(rules, table);
  EXPECT_THAT(outcome.bins,
              ElementsAre(ElementsAre(2, 4), ElementsAre(0, 3, 5, 7), ElementsAre(1, 7), ElementsAre(0, 2)));
  EXPECT_THAT(outcome.samples,
              ElementsAre(IsEmpty(), IsEmpty(), IsEmpty(), IsEmpty(), ElementsAre(8, 9), IsEmpty()));
  EXPECT_EQ(outcome.takenBy(7), 2U);
  EXPECT_EQ(outcome.takenBy(9), 1U);

  states[4] = Kept;  // which the hand brought back: its fragments count again
  states[1] = LeftOut;
  EXPECT_THAT(applyRules(rules, table).samples[4], IsEmpty());
  EXPECT_THAT(applyRules(rules, table).bins[1], ElementsAre(3, 5, 6, 7))
      << "mean height (150 + 75 + 9000) / 4; the one pair left differs";
  RuleTable torn = table;
  torn.samples = torn.samples.first(5);
  EXPECT_THROW(applyRules(rules, torn), std::invalid_argument);
}

}  // namespace
}  // namespace banddesk::host::scoring
