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

std::vector<std::string> lines(const std::string& text, const std::string& end = "\r\n") {
  std::vector<std::string> all;
  std::size_t from = 0;
  for (std::size_t at = text.find(end); at != std::string::npos; at = text.find(end, from)) {
    all.push_back(text.substr(from, at - from));
    from = at + end.size();
  }
  EXPECT_EQ(from, text.size()) << "the last line has no end";
  return all;
}

std::vector<std::string> fields(const std::string& line, char separator) {
  std::vector<std::string> all;
  std::istringstream in(line);
  for (std::string field; std::getline(in, field, separator);) all.push_back(field);
  return all;
}

std::string unquoted(const std::string& field) { return field.substr(1, field.size() - 2); }

const char* const kHeader = "Dye/Sample Peak\tSample File Name\tSize\tHeight\tArea\tData Point\t\n";

// Four samples, of which the last has one low peak.
std::string smallTable() {
  std::string text = kHeader;
  const char* rows[] = {"\"B,1\"\ts1.fsa\t100.00\t500", "\"B,2\"\ts1.fsa\t150.10\t90",
                        "\"B,1\"\ts2.fsa\t120.20\t600", "\"G,1\"\ts2.fsa\t80.55\t70",
                        "\"B,1\"\ts3.fsa\t100.10\t400", "\"B,2\"\ts3.fsa\t150.30\t50",
                        "\"B,1\"\ts4.fsa\t100.10\t40"};
  for (const char* row : rows) text += std::string(row) + "\t0\t0\t\n";
  const std::string path = folder() + "/small.txt";
  writeFile(path, text);
  return path;
}

TEST(Analyze, WritesTheTableAsItIsShownAndSaysWhatItHolds) {
  const std::string csv = folder() + "/t.csv";
  const Outcome done =
      banddesk({"analyze", smallTable(), "--csv", csv, "--y-threshold", "50", "--cells", "height"});
  EXPECT_EQ(done.status, 0) << done.err;
  EXPECT_THAT(done.out, HasSubstr("4 samples\nD1 (B): 5 fragments in 3 bins\nD2 (G): 1 fragment in 1 bin\n"));
  EXPECT_THAT(done.out, HasSubstr("excluded: 0 of 4 bins, 1 of 4 samples\n"));
  const auto written = lines(readFile(csv));
  ASSERT_EQ(written.size(), 14U);
  EXPECT_EQ(written[0],
            "\"Bin\",\"Dye\",\"Samples\",\"Fragments\",\"Min Size\",\"Max Size\",\"Mean Size\",\"Mean "
            "Height\",\"Size Variance\",\"s1\",\"s2\",\"s3\"");
  EXPECT_THAT(written[3], HasSubstr("\"150\",\"D1\",\"2\",\"2\",\"150.1\",\"150.3\",\"150.2\",\"70\","));
  EXPECT_THAT(written[3], ::testing::EndsWith("\"90\",\"0\",\"50\""));
}

TEST(Analyze, SaysInOneLineWhatIsWrongAndWritesNothing) {
  const std::string home = folder();
  writeFile(home + "/empty.txt", "");
  writeFile(home + "/binary.txt", std::string("\x7f"
                                              "ELF\0\0\0\1",
                                              8));
  writeFile(home + "/header.txt", kHeader);
  std::string bad = kHeader;
  for (int line = 2; line <= 4711; ++line) {
    bad += "\"B,1\"\ts.fsa\t" + std::string(line == 4711 ? "12x4" : "100.5") + "\t500\t0\t0\t\n";
  }
  writeFile(home + "/bad.txt", bad);
  std::filesystem::create_directory(home + "/dir");
  const std::string good = smallTable();
  struct Case {
    std::vector<std::string> arguments;
    std::string says;
  };
  for (const Case& c : {Case{{home + "/none.txt"}, "none.txt"},
                        Case{{home + "/empty.txt"}, "empty.txt"},
                        Case{{home + "/dir"}, "dir"},
                        Case{{home + "/binary.txt"}, "binary"},
                        Case{{home + "/header.txt"}, "no rows"},
                        Case{{home + "/bad.txt"}, "bad.txt, line 4711, column Size: \"12x4\""},
                        Case{{good, "--max-bin-width", "11"}, "--max-bin-width: \"11\""},
                        Case{{good, "--y-threshold", "12a"}, "--y-threshold: \"12a\""},
                        Case{{good, "--y-threshold", "9999999999"}, "--y-threshold: \"9999999999\""},
                        Case{{good, "--dyes", "15"}, "--dyes"},
                        Case{{good, "--ladder", "Q"}, "--ladder"},
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
    const Outcome done = banddesk(arguments);
    EXPECT_EQ(done.status, 2) << c.says;
    EXPECT_THAT(done.err, HasSubstr(c.says));
    EXPECT_EQ(std::count(done.err.begin(), done.err.end(), '\n'), 1) << done.err;
    EXPECT_FALSE(std::filesystem::exists(home + "/out.csv")) << c.says;
  }
  EXPECT_THAT(readFile(good), HasSubstr("s4.fsa"));
  for (const auto& entry : std::filesystem::directory_iterator(home)) {
    EXPECT_NE(entry.path().extension(), ".part") << entry.path();
  }
}

TEST(Analyze, ReportsTheAnalysisItselfAsJson) {
  const std::string json = folder() + "/a.json";
  ASSERT_EQ(
      banddesk({"analyze", smallTable(), "--json", json, "--y-threshold", "50", "--exclude-bin", "D1-150"})
          .status,
      0);
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
    const Outcome done = banddesk(arguments);
    EXPECT_EQ(done.status, 0) << done.err;
  }
  for (const char* form : {"nts", "matrix"}) {
    EXPECT_EQ(readFile(home + "/t." + form), readFile(home + "/t--transpose." + form)) << form;
  }
  EXPECT_EQ(readFile(home + "/t.matrix"),
            "Sample\tD1_100.066666666667\tD1_120.2\tD2_80.55\ns1\t1\t0\t0\ns3\t1\t0\t0\ns4\t1\t0\t0\n");
  EXPECT_THAT(lines(readFile(home + "/t.nts")), ::testing::Contains("1 3L 3L 0"));
}

TEST(RealTables, GiveTheirKnownCounts) {
  struct Case {
    const char* name;
    std::vector<std::string> options;
    const char *samples, *rows;
  };
  for (const Case& c :
       {Case{"peak-scanner/eaacmcat.txt", {"--ladder", "R"}, "31 samples\n", "B 5895, G 2599, Y 885\n"},
        Case{"genemapper/demo_samples_abi.txt", {}, "171 samples\n", "B 770, G 280, Y 752\n"},
        Case{"genemapper/example_data.txt", {}, "92 samples\n", "left out: 608 (blank size)"}}) {
    const std::string table = realTable(c.name);
    if (table.empty()) GTEST_SKIP() << "the real tables are not at hand";
    std::vector<std::string> arguments{"analyze", table};
    arguments.insert(arguments.end(), c.options.begin(), c.options.end());
    const Outcome done = banddesk(arguments);
    EXPECT_EQ(done.status, 0) << done.err;
    EXPECT_THAT(done.out, HasSubstr(c.samples));
    EXPECT_THAT(done.out, HasSubstr(c.rows));
  }
}

// The exports of one run say the same, read by other code than wrote them.
TEST(RealTables, AgreeInCsvMatrixAndSpreadsheetAlsoUnderADecimalComma) {
  const std::string table = realTable("peak-scanner/eaacmcat.txt");
  if (table.empty()) GTEST_SKIP() << "the real tables are not at hand";
  const std::string home = folder();
  const Outcome done = banddesk({"analyze", table, "--ladder", "R", "--max-bin-width", "1.5", "--csv",
                                 home + "/t.csv", "--nts", home + "/t.nts", "--xlsx", home + "/t.xlsx"},
                                "LC_ALL=de_DE.UTF-8");
  ASSERT_EQ(done.status, 0) << done.err;
  const auto csv = lines(readFile(home + "/t.csv"));
  auto nts = lines(readFile(home + "/t.nts"));
  nts.erase(nts.begin(),
            std::find_if(nts.begin(), nts.end(), [](const auto& line) { return line.front() != '"'; }));
  const auto bins = fields(nts[1], ' ');
  const auto samples = fields(nts[2], ' ');
  EXPECT_EQ(nts[0], "1 " + std::to_string(bins.size()) + "L " + std::to_string(samples.size()) + "L 0");
  ASSERT_EQ(nts.size(), bins.size() + 3);
  const auto header = fields(csv[0], ',');
  ASSERT_EQ(header.size(), samples.size() + 9);
  for (std::size_t row = 0; row < bins.size(); ++row) {
    const auto cells = fields(csv[row + 1], ',');
    const auto presence = fields(nts[row + 3], ' ');
    EXPECT_EQ(unquoted(cells[0]), bins[row]);
    for (std::size_t s = 0; s < samples.size(); ++s) {
      ASSERT_EQ(unquoted(cells[s + 9]) != "0", presence[s] == "1") << row << "," << s;
      EXPECT_EQ(unquoted(header[s + 9]), samples[s]);
    }
  }
  if (shell("/usr/bin/python3 -c 'import openpyxl'").status != 0)
    GTEST_SKIP() << "the spreadsheet was not read back: python3-openpyxl is not installed";
  const Outcome read = shell(
      "/usr/bin/python3 -c 'import openpyxl,sys\nfor r in "
      "openpyxl.load_workbook(sys.argv[1]).active.iter_rows"
      "(values_only=True): print(*[\"\" if c is None else format(c, \".15G\") if isinstance(c, float) else c "
      "for c in "
      "r], sep=\"|\")' '" +
      home + "/t.xlsx'");
  ASSERT_EQ(read.status, 0) << read.err;
  const auto sheet = lines(read.out, "\n");
  // The spreadsheet has the empty first column of row headers and a blank row below the header.
  for (std::size_t row = 0; row <= bins.size(); ++row) {
    const auto cells = fields(csv[row], ',');
    const auto shown = fields(sheet[row == 0 ? 0 : row + 1], '|');
    ASSERT_EQ(shown.size(), cells.size() + 1) << row;
    for (std::size_t col = 0; col < cells.size(); ++col)
      EXPECT_EQ(shown[col + 1], unquoted(cells[col])) << row;
  }
}

}  // namespace
}  // namespace banddesk::test
