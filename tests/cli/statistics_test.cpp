// Formats and statistics of a study's analysis from the command line.
#include <filesystem>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/cli/command.h"

namespace banddesk::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// Bands by sample: a 100 200, b 100 300, c 200 300 400, d 100 400; all of dye B. Excluded by hand: 400 and d.
std::string studyOfFour() {
  std::string text = "Dye/Sample Peak\tSample File Name\tSize\tHeight\n";
  const std::pair<const char*, std::vector<int>> samples[] = {
      {"a", {100, 200}}, {"b", {100, 300}}, {"c", {200, 300, 400}}, {"d", {100, 400}}};
  for (const auto& [name, sizes] : samples) {
    for (std::size_t i = 0; i < sizes.size(); ++i)
      text += fmt::format("\"B,{}\"\t{}.fsa\t{}\t500\n", i + 1, name, sizes[i]);
  }
  writeFile(in("t.txt"), text);
  const std::string study = in("s.study");
  ok({"new", study});
  ok({"import", study, in("t.txt")});
  ok({"analyze", study, "--name", "First", "--exclude-bin", "D1-400", "--exclude-sample", "d"});
  return study;
}

std::string groupsFile(const std::string& text = "x\tEast\nc\tSouth\na\tNorth\nb\tNorth\n") {
  writeFile(in("groups.txt"), text);
  return in("groups.txt");
}

TEST(FormatExport, WritesSeveralFormatsWithGroupsAndWithoutWhatIsExcluded) {
  const std::string study = studyOfFour(), groups = groupsFile();
  ok({"export", study, "--groups", groups, "--format", "genalex", in("t.csv"), "--format", "darwin",
      in("t.var"), "--csv", in("seen.csv")});
  EXPECT_EQ(readFile(in("t.csv")),
            "3,3,2,1,2\nAFLP,,,South,North\nSample,Pop,D1_100.00,D1_200.00,D1_300.00\n"
            "c,South,0,1,1\na,North,1,1,0\nb,North,1,0,1\n");
  EXPECT_THAT(readFile(in("t.don")), HasSubstr("1\ta\tNorth\n"));
  EXPECT_TRUE(fs::exists(in("t.var.names.tsv")));
  EXPECT_TRUE(fs::exists(in("seen.csv")));
  ok({"export", study, "--show-excluded", "--format", "phylip", in("all.phy")});
  EXPECT_EQ(readFile(in("all.phy")),
            "    4     4\na         1100\nb         1010\nc         0111\nd         1001\n");
}

TEST(FormatExport, ListsItsFormatsWithoutAStudy) {
  const std::string list = ok({"export", "--format", "list"}).out;
  EXPECT_THAT(list, HasSubstr("\nstructure "));
  EXPECT_THAT(list, HasSubstr("POPGENE; not checked by the program itself\n"));
}

TEST(FormatExport, RefusesWhatItCannotDoAndWritesNothing) {
  const std::string study = studyOfFour(), out = in("out.txt");
  const auto refused = [&](Arguments arguments, const std::string& message) {
    arguments.insert(arguments.begin(), {"export", study});
    expectError(arguments, message);
    EXPECT_FALSE(fs::exists(out)) << message;
  };
  refused({"--format", "structur", out}, "\"structur\" is none of the formats r, genalex,");
  refused({"--format", "structure"}, "--format structure: name a file too");
  refused({"--format", "r", out, "--format", "genalex", out}, "two outputs have this name");
  refused({"--format", "darwin", out, "--csv", in("out.don")}, "two outputs have this name");
  refused({"--format", "r", out, "--groups", groupsFile("a\tx\nb\tx\n")}, "the sample \"c\" has no group");
  refused({"--format", "r", out, "--groups", groupsFile("a\tx\na\ty\n")},
          "the sample \"a\" is in two groups");
  refused({"--format", "r", out, "--groups", groupsFile("a x\n")},
          "groups.txt, line 1: expected a sample's name and its group with a tab between them");
  refused({"--format", "r", out, "--groups", in("none.txt")}, "none.txt: it cannot be read");
  expectError({"export"}, "STUDY is required");
}

json writtenJson(Arguments arguments) {
  arguments.insert(arguments.end(), {"--json", in("out.json")});
  ok(arguments);
  return json::parse(readFile(in("out.json")));
}

TEST(StatisticsCommands, TellTheDistancesOfWhatIsNotExcluded) {
  const std::string study = studyOfFour();
  const json table =
      writtenJson({"distances", study, "--measure", "simple-matching", "--phylip", in("t.dist")});
  EXPECT_THAT(table["samples"], ElementsAre("a", "b", "c"));
  EXPECT_EQ(table["distances"].dump(),
            "[[0.0,0.6666666666666666,0.6666666666666666],[0.6666666666666666,0.0,"
            "0.6666666666666666],[0.6666666666666666,0.6666666666666666,0.0]]");
  EXPECT_THAT(readFile(in("t.dist")), HasSubstr("a          0.000000 0.666667 0.666667\n"));
  EXPECT_THAT(ok({"distances", study}).out,
              HasSubstr("Jaccard distances\nSample\ta\tb\tc\na\t0.000000\t0.666667"));
  expectError({"distances", study, "--measure", "nei"},
              "\"nei\" is none of dice, euclidean, jaccard, simple-matching");
}

TEST(StatisticsCommands, DrawAndTellTheOrdination) {
  const std::string study = studyOfFour();
  const json result = writtenJson(
      {"pcoa", study, "--groups", groupsFile(), "--axes", "2", "--square-root", "--svg", in("p.svg")});
  EXPECT_EQ(result["axes"].size(), 2U);
  EXPECT_EQ(result["groups"].dump(), R"(["North","North","South"])");
  EXPECT_THAT(readFile(in("p.svg")), HasSubstr("<title>c</title>"));
}

TEST(StatisticsCommands, MakeTreesWithSupportThatRepeats) {
  const std::string study = studyOfFour();
  const Arguments call = {"tree", study, "--bootstrap", "50", "--newick", in("t.nwk"), "--svg", in("t.svg")};
  const json first = writtenJson(call), again = writtenJson(call);
  EXPECT_EQ(first, again);
  EXPECT_EQ(first["nodes"].size(), 5U);
  EXPECT_TRUE(first["nodes"][3].contains("support"));
  EXPECT_TRUE(readFile(in("t.nwk")).starts_with("((a:"));
  EXPECT_THAT(readFile(in("t.svg")), HasSubstr(">Distance</text>"));
  EXPECT_EQ(writtenJson({"tree", study, "--method", "nj"})["nodes"].back()["children"].size(), 3U);
}

TEST(StatisticsCommands, TellDiversityByGroupAndVarianceAmongThem) {
  const std::string study = studyOfFour();
  const json result = writtenJson({"diversity", study, "--groups", groupsFile(), "--permutations", "9"});
  EXPECT_EQ(result["byGroup"][0]["name"], "South");
  EXPECT_EQ(result["byGroup"][1]["privateBands"], 1);
  EXPECT_EQ(result["amova"]["permutations"], 9);
  EXPECT_THAT(ok({"diversity", study}).out, Not(HasSubstr("PhiPT")))
      << "one group has no variance among groups";
}

}  // namespace
}  // namespace banddesk::test
