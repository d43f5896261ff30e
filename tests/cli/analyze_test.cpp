// The command line from a table to its exports, and what it says to bad input.
#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/cli/command.h"

namespace banddesk::test {
namespace {

using ::testing::HasSubstr;

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) all.push_back(line);
  return all;
}

const char* const kHeader = "Dye/Sample Peak\tSample File Name\tSize\tHeight\tArea\tData Point\t\n";

// Four samples, of which the last has one low peak.
std::string smallTable() {
  std::string text = kHeader;
  const char* rows[] = {"\"B,1\"\ts1.fsa\t100.00\t500", "\"B,2\"\ts1.fsa\t150.10\t90",
                        "\"B,1\"\ts2.fsa\t120.20\t600", "\"G,1\"\ts2.fsa\t80.55\t70",
                        "\"B,1\"\ts3.fsa\t100.10\t400", "\"B,2\"\ts3.fsa\t150.30\t50",
                        "\"B,1\"\ts4.fsa\t100.10\t40"};
  for (const char* row : rows) text += std::string(row) + "\t0\t0\t\n";
  const std::string path = in("small.txt");
  writeFile(path, text);
  return path;
}

TEST(Analyze, WritesTheTableAsItIsShownAndSaysWhatItHolds) {
  const std::string csv = in("t.csv");
  const Outcome done =
      ok({"analyze", smallTable(), "--csv", csv, "--y-threshold", "50", "--cells", "height"});
  EXPECT_THAT(done.out, HasSubstr("4 samples\nD1 (B): 5 fragments in 3 bins\nD2 (G): 1 fragment in 1 bin\n"));
  EXPECT_THAT(done.out, HasSubstr("excluded: 0 of 4 bins, 1 of 4 samples\n"));
  const auto written = lines(readFile(csv));
  ASSERT_EQ(written.size(), 14U);
  EXPECT_EQ(written[0],
            "\"Bin\",\"Dye\",\"Samples\",\"Fragments\",\"Min Size\",\"Max Size\",\"Mean Size\",\"Mean "
            "Height\",\"Size Variance\",\"s1\",\"s2\",\"s3\"\r");
  EXPECT_THAT(written[3], HasSubstr("\"150\",\"D1\",\"2\",\"2\",\"150.1\",\"150.3\",\"150.2\",\"70\","));
  EXPECT_THAT(written[3], ::testing::EndsWith("\"90\",\"0\",\"50\"\r"));
}

TEST(Analyze, SaysInOneLineWhatIsWrongAndWritesNothing) {
  const std::string home = folder();
  writeFile(in("bad.txt"), std::string(kHeader) + "\"B,1\"\ts.fsa\t12x4\t500\t0\t0\t\n");
  std::filesystem::create_directory(in("dir"));
  const std::string good = smallTable();
  struct Case {
    std::vector<std::string> arguments;
    std::string says;
  };
  for (const Case& c : {Case{{home + "/bad.txt"}, "bad.txt, line 2, column Size: \"12x4\""},
                        Case{{good, "--max-bin-width", "11"}, "--max-bin-width: \"11\""},
                        Case{{good, "--y-threshold", "12a"}, "--y-threshold: \"12a\""},
                        Case{{good, "--y-threshold", "9999999999"}, "--y-threshold: \"9999999999\""},
                        Case{{good, "--dyes", "15"}, "--dyes"}, Case{{good, "--ladder", "Q"}, "--ladder"},
                        Case{{good, "--cells", "all"}, "--cells"},
                        Case{{good, "--sort", "nothing"}, "--sort: there is no column \"nothing\""},
                        Case{{good, "--exclude-bin", "D1-7"}, "--exclude-bin: there is no bin \"D1-7\""},
                        Case{{good, "--exclude-sample", "s9"}, "--exclude-sample: there is no sample \"s9\""},
                        Case{{good, "--json", home + "/none/x.json"}, "none/x.json: there is no such folder"},
                        Case{{good, "--max-bin-width", "1,5"}, "--max-bin-width: \"1,5\""},
                        Case{{good, "--ladder", "O"}, "--ladder: no row has the dye O"},
                        Case{{good, "--nts", good}, "it is read here"},
                        Case{{good, "--nts", home + "/./out.csv"}, "two outputs have this name"},
                        Case{{good, "--json", "/dev/full"}, "/dev/full: it cannot be written: No space left"},
                        Case{{good, "--xlsx", home + "/dir"}, "dir: it is a folder"}}) {
    std::vector<std::string> arguments{"analyze", "--csv", home + "/out.csv"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    expectError(arguments, c.says);
    EXPECT_FALSE(std::filesystem::exists(home + "/out.csv")) << c.says;
  }
  EXPECT_THAT(readFile(good), HasSubstr("s4.fsa"));
  for (const auto& entry : std::filesystem::directory_iterator(home)) {
    EXPECT_NE(entry.path().extension(), ".part") << entry.path();
  }
}

TEST(Analyze, ReportsTheAnalysisItselfAsJson) {
  const std::string json = in("a.json");
  ok({"analyze", smallTable(), "--json", json, "--y-threshold", "50", "--exclude-bin", "D1-150"});
  const auto report = nlohmann::json::parse(readFile(json));
  EXPECT_EQ(report["parameters"]["yThresholdRfu"], 50);
  ASSERT_EQ(report["bins"].size(), 4U);
  EXPECT_EQ(report["bins"][2]["key"], "D1-150.2");
  EXPECT_EQ(report["bins"][2]["counts"], nlohmann::json({1, 0, 1, 0}));
  EXPECT_EQ(report["bins"][2]["maxHeightsRfu"], nlohmann::json({90, 0, 50, 0}));
  EXPECT_TRUE(report["bins"][2]["manuallyExcluded"]);
  EXPECT_EQ(report["samples"][3]["name"], "s4");
  EXPECT_TRUE(report["samples"][3]["filterExcluded"]);
}

TEST(Analyze, GivesTheSameMatrixInBothOrientationsAndKeepsDecisionsThroughAllOutputs) {
  const std::string home = folder();
  const std::string table = smallTable();
  for (const std::string way : {"", "--transpose"}) {
    std::vector<std::string> arguments{"analyze",       table,    "--exclude-sample", "s2",
                                       "--exclude-bin", "D1-150", "--keep-full-bins"};
    for (const char* form : {"csv", "nts", "matrix", "json", "xlsx"}) {
      arguments.push_back(std::string("--") + form);
      arguments.push_back(home + "/t" + way + "." + form);
    }
    if (!way.empty()) arguments.push_back(way);
    ok(arguments);
  }
  for (const char* form : {"nts", "matrix"}) {
    EXPECT_EQ(readFile(home + "/t." + form), readFile(home + "/t--transpose." + form)) << form;
  }
  EXPECT_EQ(readFile(home + "/t.matrix"),
            "Sample\tD1_100.07\tD1_120.20\tD2_80.55\ns1\t1\t0\t0\ns3\t1\t0\t0\ns4\t1\t0\t0\n");
  EXPECT_THAT(lines(readFile(home + "/t.nts")), ::testing::Contains("1 3L 3L 0\r"));
}

TEST(Analyze, TheMatrixHoldsPresenceUnlessSomethingElseIsAskedFor) {
  writeFile(in("t.txt"), std::string(kHeader) +
                             "B\ta.fsa\t100.00\t500\t0\t0\t\nB\ta.fsa\t100.02\t90\t0\t0\t\n" +
                             "B\tb.fsa\t200.00\t70\t0\t0\t\n");
  const std::string study = in("t.study");
  ok({"new", study});
  ok({"import", study, in("t.txt")});
  ok({"analyze", study, "--cells", "height"});
  const std::vector<std::pair<Arguments, std::string>> cases{
      {{}, "a\t1\t0\nb\t0\t1\n"},
      {{"--cells", "count"}, "a\t2\t0\nb\t0\t1\n"},
      {{"--cells", "height"}, "a\t500\t0\nb\t0\t70\n"}};
  for (const auto& [cells, rows] : cases) {
    Arguments arguments{"export", study, "--matrix", in("m.tsv")};
    arguments.insert(arguments.end(), cells.begin(), cells.end());
    ok(arguments);
    EXPECT_EQ(readFile(in("m.tsv")), "Sample\tD1_100.01\tD1_200.00\n" + rows);
  }
}

// Read by other code than wrote it.
TEST(Analyze, WritesTheSameTableIntoTheSpreadsheet) {
  if (shell("/usr/bin/python3 -c 'import openpyxl'").status != 0)
    GTEST_SKIP() << "the spreadsheet was not read back: python3-openpyxl is not installed";
  std::string table = realTable("peak-scanner/eaacmcat.txt");
  if (table.empty()) table = smallTable();
  ok({"analyze", table, "--max-bin-width", "1.5", "--csv", in("t.csv"), "--xlsx", in("t.xlsx")});
  // The spreadsheet has the empty first column of row headers and a blank row below the header.
  writeFile(in("read.py"),
            "import openpyxl, sys\n"
            "def text(c): return '' if c is None else format(c, '.15G') if isinstance(c, float) else str(c)\n"
            "rows = openpyxl.load_workbook(sys.argv[1]).active.iter_rows(values_only=True)\n"
            "for i, row in enumerate(rows):\n"
            "  if i != 1: print(','.join('\"%s\"' % text(c) for c in row[1:]), end='\\r\\n')\n");
  const Outcome read = shell("/usr/bin/python3 " + in("read.py") + " " + in("t.xlsx"));
  ASSERT_EQ(read.status, 0) << read.err;
  const auto sheet = lines(read.out);
  const auto csv = lines(readFile(in("t.csv")));
  // Below the table stand the parameters, after an empty line.
  const auto end = std::ranges::find_if(csv, [](const auto& line) { return line.starts_with("\"\","); });
  const auto rows = static_cast<std::size_t>(end - csv.begin());
  ASSERT_GT(rows, 3U);
  for (std::size_t row = 0; row < rows; ++row) EXPECT_EQ(sheet.at(row), csv[row]);
}

}  // namespace
}  // namespace banddesk::test
