#include "host/quality/replicates.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace banddesk::host {
namespace {

using Names = std::vector<std::string>;
using Pairs = std::vector<ReplicatePair>;

TEST(Replicates, BySuffixArePairedWithTheExactNameBeforeAnAnchoredEnding) {
  const Names names = {"Ab-2", "A-2", "A-2b", "Xb", "b", "B-3", "B-3B", "Ab-2b"};
  const Replicates found = replicatesBySuffix(names, "b");
  EXPECT_EQ(found.pairs, (Pairs{{1, 2}, {0, 7}}));
  ASSERT_EQ(found.unmade.size(), 1U);
  EXPECT_EQ(found.unmade[0].second, "Xb");
  EXPECT_EQ(found.unmade[0].reason, "no sample is named \"X\"");
  EXPECT_THROW(replicatesBySuffix(names, ""), std::invalid_argument);
}

TEST(Replicates, ByNameReportEveryPairThatCannotBeMade) {
  const Names names = {"A", "B", "C", "C"};
  const std::vector<std::pair<std::string, std::string>> wanted = {{"A", "B"}, {"B", "A"}, {"A", "A"},
                                                                   {"A", "C"}, {"D", "A"}, {"A", "b"}};
  const Replicates found = replicatesByName(names, wanted);
  EXPECT_EQ(found.pairs, (Pairs{{0, 1}}));
  ASSERT_EQ(found.unmade.size(), 5U);
  const std::vector<std::string> reasons = {"the pair is named twice", "a sample is no replicate of itself",
                                            "there are 2 samples named \"C\"", "no sample is named \"D\"",
                                            "no sample is named \"b\""};
  for (std::size_t i = 0; i < reasons.size(); ++i) EXPECT_EQ(found.unmade[i].reason, reasons[i]);
}

}  // namespace
}  // namespace banddesk::host
