// Rules, replicates, roles, joined primer pairs and the search, from the command line to the files.
#include <algorithm>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/cli/command.h"

namespace banddesk::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr int kIndividuals = 29;

// Two runs of each individual for each pair, and a blank. An individual has two thirds of the loci; a run
// lacks one of its loci, is 0.02 nt off, and has noise of 60 RFU somewhere of its own.
std::string pairedTable() {
  std::string text = "Dye/Sample Peak\tSample File Name\tSize\tHeight\n\"B,1\"\tH2O_E32.fsa\t110.1\t300\n";
  for (const auto& [pair, first] : {std::pair("E32", 100), std::pair("E35", 103)}) {
    for (int individual = 0; individual < kIndividuals; ++individual) {
      for (int run = 1; run <= 2; ++run) {
        const std::string name = fmt::format("Oak{:02}_R{}_{}.fsa", individual, run, pair);
        for (int locus = 0; locus < 12; ++locus) {
          const bool isLost = (individual * 5 + run) % 12 == locus;
          if ((locus * 7 + individual) % 3 != 0 && !isLost)
            text += fmt::format("\"B,{}\"\t{}\t{:.2f}\t{}\n", locus, name, first + 10 * locus + 0.02 * run,
                                400 + 10 * individual + locus);
        }
        text += fmt::format("\"G,1\"\t{}\t{:.2f}\t60\n", name, 150.0 + 3 * individual + run);
      }
    }
  }
  writeFile(in("pairs.txt"), text);
  return in("pairs.txt");
}

std::string pairedStudy() {
  const std::string study = in("oaks.study");
  ok({"new", study});
  ok({"import", study, pairedTable()});
  ok({"samples", study, "--individuals", "(Oak\\d+)_R\\d_E\\d+\\.?.*", "--primer-pairs", "_(E\\d+)",
      "--group-pattern", "Oak(\\d)", "--blank", "H2O_E32"});
  return study;
}

json parsed(const std::string& name) { return json::parse(readFile(in(name))); }

std::vector<std::vector<std::string>> fieldsOf(const std::string& text) {
  std::vector<std::vector<std::string>> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    auto& fields = lines.emplace_back();
    std::istringstream parts(line);
    for (std::string field; std::getline(parts, field, '\t');) fields.push_back(field);
  }
  return lines;
}

std::vector<std::string> excludedBins(const json& analysis) {
  std::vector<std::string> excluded;
  for (const json& bin : analysis["bins"])
    if (bin["suppressed"]) excluded.push_back(bin.value("excludedByRule", "-"));
  return excluded;
}

TEST(Scoring, RulesAreSeenBeforeTheyActAndActAgainAtEveryOpening) {
  const std::string study = pairedStudy();
  const Arguments rules = {"--exclude-bins", "height<100", "--exclude-bins", "blank>0"};
  const auto analyze = [&](Arguments more, const std::string& name = "First") {
    more.insert(more.begin(),
                {"analyze", study, "--name", name, "--keep-full-bins", "--max-bin-width", "0.5"});
    return ok(more).out;
  };
  const auto exported = [&] {
    ok({"export", study, "--name", "First", "--json", in("a.json"), "--matrix", in("a.tsv")});
    return parsed("a.json");
  };
  Arguments preview = rules;
  preview.emplace_back("--preview");
  EXPECT_THAT(analyze(preview),
              AllOf(HasSubstr("height<100: 58 of 82 bins\n"), HasSubstr("blank>0: 1 of 82 bins\n")));
  expectError({"export", study, "--json", in("a.json")}, "no analysis");

  EXPECT_THAT(analyze(rules), HasSubstr("several primer pairs"));
  for (int opening = 0; opening < 2; ++opening) {
    const json analysis = exported();
    EXPECT_THAT(excludedBins(analysis), SizeIs(59));
    EXPECT_EQ(std::ranges::count(excludedBins(analysis), "blank>0"), 1);
    EXPECT_EQ(analysis["parameters"]["rules"], (json{"height<100", "blank>0"}));
    EXPECT_THAT(fieldsOf(readFile(in("a.tsv")))[0], SizeIs(1 + 82 - 59));
    analyze({});
  }
  analyze({"--y-threshold", "50"});
  EXPECT_THAT(excludedBins(exported()), SizeIs(59)) << "a run with only rules' marks asks nobody";
  analyze({"--exclude-bins", "samples>1000"});
  EXPECT_THAT(excludedBins(exported()), IsEmpty());
  analyze({"--exclude-samples", "fragments<5"});
  ok({"report", study, "--name", "First", in("r.html")});
  EXPECT_THAT(readFile(in("r.html")),
              HasSubstr("The rules left out what has a number of samples above 1000"));
}

TEST(Scoring, BadInputGetsOneLineAndChangesNothing) {
  const std::string study = pairedStudy();
  const std::string before = ok({"samples", study}).out;
  writeFile(in("table.tsv"), "Sample\tGroup\nOak00_R1_E32\tNorth\nnobody\tSouth\n");
  writeFile(in("rename.tsv"), "Oak00_R1_E32\tOak00_R2_E32\n");
  writeFile(in("bins.tsv"), "Dye\tFrom\tTo\nD1\t100\t102\nD1\t101\t103\n");
  const std::vector<std::pair<Arguments, std::string>> cases = {
      {{"analyze", study, "--exclude-bins", "height<<1"}, "character 8"},
      {{"analyze", study, "--exclude-bins", "fragments<1"},
       "--exclude-bins: \"fragments<1\" is a rule for samples"},
      {{"analyze", study, "--exclude-samples", "height<1"}, "rule for bins"},
      {{"analyze", study, "--size-range", "500:100"}, "begins behind its end"},
      {{"analyze", study, "--size-range", "a:100"}, "no number"},
      {{"analyze", study, "--normalise", "mean"}, "none, total and median"},
      {{"analyze", study, "--call-percent", "101"}, "--call-percent"},
      {{"analyze", study, "--bins", in("bins.tsv")}, "bins.tsv, line 3"},
      {{"samples", study, "--table", in("table.tsv")}, "table.tsv, line 3: the study has no sample named"},
      {{"samples", study, "--rename", in("rename.tsv")}, "two samples would be named"},
      {{"samples", study, "--individuals", "_X/_Y"}, "matches no sample"},
      {{"samples", study, "--primer-pairs", "E\\d+"}, "has no group"},
      {{"search", study, "--rule", "height<{0,x}"}, "'x' is no number"},
      {{"search", study, "--max-bin-width", "2:1:0.1"}, "is no from:to:step"},
      {{"join", study, "--name", "J", "--of", "A", "--of", "B"}, "there is no analysis \"A\""}};
  for (const auto& [arguments, message] : cases) expectError(arguments, message);
  EXPECT_EQ(ok({"samples", study}).out, before);
  EXPECT_THAT(ok({"list", study}).out, Not(HasSubstr("analysis")));
}

TEST(Scoring, SamplesKeepTheirNamesRolesGroupsAndNotes) {
  const std::string study = pairedStudy();
  writeFile(in("table.tsv"), "Sample\tNote\tRole\nOak01_R1_E32\tpale leaf\treference\n");
  writeFile(in("rename.tsv"), "Oak02_R1_E32\tOld Oak\n");
  ok({"analyze", study, "--name", "First"});
  ok({"samples", study, "--table", in("table.tsv"), "--rename", in("rename.tsv")});
  const auto told = ok({"samples", study}).out;
  EXPECT_THAT(told, HasSubstr("Oak01_R1_E32\treference\t0\tOak01\tE32\tpale leaf\n"));
  EXPECT_THAT(told, HasSubstr("H2O_E32\tblank\t\tH2O_E32\tE32\t\n"));
  ok({"export", study, "--matrix", in("m.tsv"), "--json", in("a.json"), "--format", "structure",
      in("s.str")});
  EXPECT_THAT(readFile(in("m.tsv")), AllOf(HasSubstr("\nOld Oak\t"), Not(HasSubstr("Oak02_R1_E32"))));
  EXPECT_THAT(readFile(in("a.json")),
              HasSubstr("\"role\":\"reference\",\"group\":\"0\",\"individual\":\"Oak01\""));
}

TEST(Scoring, FiguresOfReplicatesAreThoseOfAnotherProgram) {
  if (shell("python3 --version").status != 0) GTEST_SKIP() << "there is no python3";
  const std::string study = pairedStudy();
  const std::string pattern = "(Oak\\d+_)R\\d(?:_E\\d+)";
  for (const char* width : {"0.05", "0.5", "1.5"}) {
    ok({"analyze", study, "--name", width, "--max-bin-width", width, "--keep-full-bins", "--primer-pair",
        "E32"});
    ok({"export", study, "--name", width, "--matrix", in("m.tsv")});
    ok({"quality", study, "--name", width, "--replicates", pattern, "--json", in("q.json")});
    // The blank has no replicate and counts in no figure: in the matrix it stands alone.
    const Outcome outcome = shell(fmt::format("'{}/tools/check-replicates' '{}' '{}' '{}'",
                                              BANDDESK_SOURCE_DIR, in("m.tsv"), pattern, in("q.json")));
    EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("29 pairs"));
  }
}

TEST(Scoring, JoinsTheIndividualsOfTwoPrimerPairsInOneTable) {
  const std::string study = pairedStudy();
  for (const char* pair : {"E32", "E35"})
    ok({"analyze", study, "--name", pair, "--primer-pair", pair, "--exclude-bins", "height<100",
        "--keep-full-bins", "--max-bin-width", "0.5"});
  EXPECT_THAT(ok({"join", study, "--name", "Both", "--of", "E32", "--of", "E35", "--consensus", "1"}).out,
              AllOf(HasSubstr("30 individuals, 24 bins of 2 primer pairs"),
                    HasSubstr("without a sample of E35, and missing there: H2O_E32")));
  EXPECT_THAT(ok({"list", study}).out, HasSubstr("joined \"Both\": the primer pairs E32, E35, consensus 1"));
  ok({"results", study, "--exclude", "H2O_E32"});
  ok({"analyze", study, "--name", "E32"});
  ok({"export", study, "--name", "Both", "--matrix", in("m.tsv"), "--format", "nexus", in("m.nex")});
  const auto lines = fieldsOf(readFile(in("m.tsv")));
  ASSERT_THAT(lines, SizeIs(1 + kIndividuals));
  EXPECT_THAT(lines, Each(SizeIs(1 + 24)));
  EXPECT_EQ(std::ranges::count_if(lines[0], [](const auto& bin) { return bin.starts_with("E32_D1_"); }), 12);
  for (int individual = 0; individual < kIndividuals; ++individual) {
    for (std::size_t locus = 0; locus < 24; ++locus)
      EXPECT_EQ(lines[static_cast<std::size_t>(individual) + 1][locus + 1],
                (static_cast<int>(locus) % 12 * 7 + individual) % 3 != 0 ? "1" : "0");
  }
  EXPECT_THAT(ok({"distances", study, "--name", "Both"}).out, HasSubstr("29 samples, 24 bins"));
  expectError({"export", study, "--name", "Both", "--csv", in("x.csv")}, "--matrix or --format");
  ok({"join", study, "--name", "Both", "--remove"});
  EXPECT_THAT(ok({"list", study}).out, Not(HasSubstr("joined")));
}

TEST(Scoring, SearchTellsEverySettingAndTheLeastError) {
  const std::string study = pairedStudy();
  ok({"analyze", study, "--name", "E32", "--primer-pair", "E32"});
  const std::string told = ok({"search", study, "--name", "E32", "--max-bin-width", "0.05:0.55:0.5",
                               "--y-threshold", "0,100", "--rule", "height<{0,100}", "--json", in("s.json")})
                               .out;
  EXPECT_THAT(told, AllOf(HasSubstr("8 settings, 29 replicate pairs"), HasSubstr("least error")));
  const json settings = parsed("s.json")["settings"];
  ASSERT_THAT(settings, SizeIs(8));
  EXPECT_THAT(settings[0]["rules"], ElementsAre("height<0"));
  // Without noise by the threshold and by the rule alike.
  EXPECT_EQ(settings[5]["bins"], settings[6]["bins"]);
  EXPECT_EQ(settings[5]["jaccardErrorMean"], settings[7]["jaccardErrorMean"]);
  EXPECT_GT(settings[4]["jaccardErrorMean"], settings[5]["jaccardErrorMean"]);
}

TEST(Scoring, SettingsOfTheCalculatorsAreKeptWithTheAnalysis) {
  const std::string study = pairedStudy();
  writeFile(in("bins.tsv"), "Dye\tFrom\tTo\tName\nD1\t99\t101\tA\nD1\t109.5\t120.5\tWide\n");
  ok({"analyze", study, "--name", "First", "--keep-full-bins", "--exclude-bin", "D1-100"});
  const auto bins = [&](const Arguments& more) {
    Arguments arguments{"analyze", study, "--name", "First"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    ok(arguments);
    ok({"export", study, "--json", in("a.json")});
    return parsed("a.json");
  };
  json analysis = bins({"--size-range", "95:125"});
  EXPECT_THAT(analysis["bins"], SizeIs(6)) << "100, 110 and 120 of one pair, 103, 113 and 123 of the other";
  EXPECT_TRUE(analysis["bins"][0]["manuallyExcluded"]) << "what the hand decided is carried over";
  analysis = bins({"--bins", in("bins.tsv"), "--normalise", "total", "--align-lanes"});
  EXPECT_EQ(analysis["parameters"]["givenBins"], 2);
  EXPECT_EQ(analysis["bins"][1]["name"], "Wide");
  EXPECT_TRUE(analysis["bins"][1]["isWiderThanMaximum"]);
  EXPECT_TRUE(analysis["bins"][0]["manuallyExcluded"]);
  EXPECT_TRUE(analysis["samples"][0].contains("heightFactors"));
  EXPECT_TRUE(analysis["bins"][0].contains("measured"));
  analysis = bins({"--bins", "none", "--normalise", "none", "--no-align-lanes", "--size-range", "none"});
  EXPECT_FALSE(analysis["parameters"].contains("givenBins"));
  EXPECT_FALSE(analysis["bins"][0].contains("measured"));
}

}  // namespace
}  // namespace banddesk::test
