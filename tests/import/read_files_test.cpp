// Bad input, what is left out, several files, and the size standard.
#include <algorithm>
#include <cstdlib>
#include <gmock/gmock.h>

#include "host/import/report_text.h"
#include "tests/import/table_folder.h"

namespace banddesk::host::import {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::string header = "Dye/Sample Peak\tSample File Name\tSize\tHeight\tData Point\t\r\n";

std::string row(const char* dye, const char* sample, const char* size, const char* height = "100") {
  return std::string("\"") + dye + "\"\t" + sample + "\t" + size + "\t" + height + "\t1\t\r\n";
}

std::string errorOf(const std::filesystem::path& file) {
  try {
    TableFolder::read({file});
  } catch (const ImportError& error) {
    return error.what();
  }
  return "no error";
}

TEST(ReadFiles, SaysInOneLineWhatIsWrongAndWhere) {
  const TableFolder folder;
  std::filesystem::create_directory(folder.path() / "empty");
  struct Case {
    const char* what;
    std::string bytes, message;
  };
  const std::string good = row("B,1", "a.fsa", "50");
  const Case cases[]{
      {"empty", "", ": the file is empty"},
      {"binary", std::string("xyz\0\1\2\0\3", 8), ": is a binary file, not a text table"},
      {"raw run", std::string("ABIF\0\1\2\0", 8), ": is cut short: it ends within its header"},
      {"old spreadsheet", std::string("\xD0\xCF\x11\xE0\0\0\0\0", 8),
       ": is a spreadsheet of the old form (.xls): save it as text"},
      {"no spreadsheet", std::string("PK\3\4????", 8), ": is a zip archive, but cannot be read as an .xlsx"},
      {"other text", "Dear all,\nsee the table.\n", ": is no peak table"},
      {"no rows", header, ": has a header but no rows"},
      {"no height", "Dye\tSample\tSize\nB\ta\t50\n", ", line 1: the header has no column Height"},
      {"no dye", "Sample\tSize\tHeight\na\t50\t1\n",
       ", line 1: the header has no column Dye/Sample Peak or Dye; if all peaks are of one dye, choose it "
       "(on the command line --dye B)"},
      {"alleles alone", "Sample Name\tMarker\tDye\tAllele 1\na\tM\tB\t120\n",
       ", line 1: the genotypes have names of alleles alone"},
      {"nothing kept", header + row("Cy5,1", "a.fsa", "50") + row("Cy5,2", "a.fsa", ""),
       ": no peak is left of its 2 rows; left out: 2 (dye not known: \"Cy5\")"},
      {"six dyes",
       header + row("FAM,1", "a.fsa", "50") + row("TET,1", "a.fsa", "50") + row("VIC,1", "a.fsa", "50") +
           row("NED,1", "a.fsa", "50") + row("PET,1", "a.fsa", "50") + row("LIZ,1", "a.fsa", "50"),
       ": the dyes FAM, LIZ, NED, PET, TET, VIC do not go together"},
      {"no sample", "x\nDye\tSize\tHeight\nB\t1\t50\n",
       ", line 2: the header has no column Sample File Name"},
      {"twice", "Dye\tSample\tSize\tSize\tHeight\nB\ta\t1\t1\t50\n",
       ", line 1, column Size: the header has this column twice"},
      {"bad size", header + good + row("B,2", "a.fsa", "5O.1"),
       ", line 3, column Size: \"5O.1\" is not a number"},
      {"bad height", header + good + row("B,2", "a.fsa", "51", "OL"),
       ", line 3, column Height: \"OL\" is not a number"},
      {"negative", header + row("B,2", "a.fsa", "-51"), ", line 2, column Size: \"-51\" is negative"},
      {"infinite", header + row("B,2", "a.fsa", "51", "1e999"),
       ", line 2, column Height: \"1e999\" is not a finite number"},
      {"both marks", header + row("B,1", "a.fsa", "5.5") + row("B,2", "a.fsa", "6,5"),
       ", line 3, column Size: \"6,5\" mixes"},
      {"thousands", header + row("B,1", "a.fsa", "5.5", "1,234.5"),
       ", line 2, column Height: \"1,234.5\" has a thousands separator"},
      {"thousands first", header + row("B,1", "a.fsa", "50", "2,016"),
       ", line 2, column Height: \"2,016\" has a thousands separator"},
      {"no header", "B,1\t5.7\t38.7\t50\nB,2\t6\tx\t50\n", ", line 2, column 3: \"x\" is not a number"},
  };
  for (const Case& at : cases) {
    SCOPED_TRACE(at.what);
    const auto file = folder.write("bad.txt", at.bytes);
    EXPECT_THAT(errorOf(file), HasSubstr(file.string() + at.message));
  }
  EXPECT_THAT(errorOf(folder.path() / "nowhere.txt"), HasSubstr("nowhere.txt: there is no such file"));
  EXPECT_THAT(errorOf(folder.path() / "empty"), HasSubstr("empty: the folder has no files"));
}

TEST(ReadFiles, AnErrorCarriesItsPlaceHoweverLargeTheTable) {
  std::string text = header;
  for (int i = 2; i < 47'110; ++i) text += row("B", "a.fsa", "50.5");
  try {
    TableFolder().readOne(text + row("B", "a.fsa", "fifty"));
    FAIL() << "no error";
  } catch (const ImportError& error) {
    EXPECT_EQ(error.place.line, 47'110U);
    EXPECT_EQ(error.place.column, "Size");
  }
}

TEST(ReadFiles, RowsWithoutAPeakAreCountedByReasonWithTheirFirstLines) {
  std::string text = header + row("R,1", "a.fsa", "50") + row("Q,1", "a.fsa", "50") + row("", "a.fsa", "50") +
                     row("B,1", "", "50") + row("B,1", "a.fsa", "50", "") + "\r\n\"B,2\"\ta.fsa\r\n";
  for (int i = 0; i < 7; ++i) text += row("G,9", "b.fsa", i % 2 ? "" : "NA");
  const PeakTable table = TableFolder().readOne(text + row("G,4", "a.fsa", "60", "0"), {Dye::R});
  const FileReport& report = table.report.files[0];
  std::string left;
  for (const LeftOut& out : report.leftOut) left += out.reason + " " + std::to_string(out.count) + "; ";
  EXPECT_EQ(left,
            "size standard 1; dye not known 1; no dye 1; no sample name 1; blank height 1; row "
            "cut short 1; "
            "blank size 7; ");
  EXPECT_THAT(report.leftOut.back().firstLines, ElementsAre(9, 10, 11, 12, 13));
  EXPECT_EQ(report.rows, 14U);
  EXPECT_THAT(report.peaks, ElementsAre(0, 1, 0, 0, 0, 0));
  EXPECT_THAT(reportText(table.report),
              HasSubstr("; 14 rows, 2 samples, peaks: G 1\n  left out: 1 (size standard), line 2\n"));
  EXPECT_THAT(reportText(table.report),
              HasSubstr("  left out: 7 (blank size), lines 9, 10, 11, 12, 13, ...\n"));
  EXPECT_THAT(reportText(table.report), HasSubstr("  samples without a peak: 1\n"));
  ASSERT_EQ(table.samples.size(), 2U) << "a run without any peak is a sample still";
  EXPECT_THAT(table.samples[0].peaks(Dye::G).heights, ElementsAre(0));
}

std::vector<std::string> namesOf(const PeakTable& table) {
  std::vector<std::string> names;
  names.reserve(table.samples.size());
  for (const Sample& sample : table.samples) names.push_back(sample.name);
  return names;
}

TEST(ReadFiles, EqualNamesAreToldApartAndEqualFilesReadOnce) {
  const TableFolder folder;
  const std::string suffixed = "c.A01_12345678AB.fsa";
  const auto one =
      folder.write("1.txt", header + row("B,1", "a.fsa", "50") + row("B,1", suffixed.c_str(), "50"));
  const auto two =
      folder.write("2.txt", header + row("B,1", "a.fsa", "51") + row("B,1", suffixed.c_str(), "51"));
  const auto again =
      folder.write("3.txt", header + row("B,1", "a.fsa", "50") + row("B,1", suffixed.c_str(), "50"));
  const PeakTable table = TableFolder::read({one, two, again, one});
  EXPECT_THAT(namesOf(table), ElementsAre("a", "c.A01_12345678AB", "a (2)", "c (2).A01_12345678AB"));
  EXPECT_EQ(table.samples[2].sourceFile, two.string());
  EXPECT_THAT(table.report.files[1].notes.at(0), HasSubstr("\"a\" stands in " + one.string()));
  EXPECT_THAT(table.report.files[1].notes.at(0), HasSubstr("\"a (2)\""));
  EXPECT_THAT(table.report.files[2].notes.at(0), HasSubstr("the same content as " + one.string()));
  EXPECT_THAT(table.report.files[3].notes.at(0), HasSubstr("the same content as " + one.string()));
}

TEST(ReadFiles, TwoRunsOfOneNameInOneTableAreToldApartByTheirPeakNumbers) {
  const std::string text = header + row("B,1", "a.fsa", "50") + row("B,2", "a.fsa", "60") +
                           row("B,2", "a.fsa", "60") + row("B,1", "a.fsa", "51") +
                           row("G,1", "a.fsa", "*70") + row("B,2", "a.fsa", "61");
  const PeakTable table = TableFolder().readOne(text);
  EXPECT_THAT(namesOf(table), ElementsAre("a", "a (2)"));
  EXPECT_THAT(table.samples[0].peaks(Dye::B).sizes, ElementsAre(50, 60));
  EXPECT_THAT(table.samples[1].peaks(Dye::B).sizes, ElementsAre(51, 61));
  EXPECT_THAT(table.samples[1].peaks(Dye::G).sizes, ElementsAre(70))
      << "a star marks the size standard's own";
  EXPECT_THAT(table.report.files[0].leftOut.at(0).reason, "row repeated");
}

TEST(ReadFiles, AFolderOfOneSampleFilesIsReadInTheOrderOfNames) {
  const TableFolder folder;
  folder.write("b 2.txt", "B,1\t5.7\t38.7\t50\n");
  folder.write("a#1.fsa.txt", "G,1\t5.7\t40\t50\n");
  folder.write("readme", "Two runs.\n");
  folder.write(".hidden", "B,1\t5.7\t38.7\t50\n");
  std::uint64_t last = 0;
  const std::vector<std::filesystem::path> paths{folder.path()};
  const PeakTable table = readFiles(paths, {}, [&](std::uint64_t done, std::uint64_t total) {
    EXPECT_LE(last, done);
    EXPECT_EQ(total, 40U);
    last = done;
  });
  EXPECT_EQ(last, 40U);
  EXPECT_THAT(namesOf(table), ElementsAre("a#1", "b 2"));
  EXPECT_EQ(table.report.files[2].form, "no peak table, passed over");
}

TEST(ReadFiles, ATableLargerThanAnyBufferIsReadRowForRow) {
  // Beyond ASCII from its middle on, in each way that text can be so, or not at all.
  struct Case {
    std::string mark, name;
    bool utf16 = false;
  };
  for (const auto& [mark, name, utf16] : {Case{"", "M"}, Case{"\xEF\xBB\xBF", "M"}, Case{"", "M\xC3\xBC"},
                                          Case{"", "M\xFC"}, Case{"\xFF\xFE", "M\xFC", true}})
    for (const char separator : {'\t', ';'}) {
      SCOPED_TRACE(name + separator);
      std::string text = "Sample;Dye;Size;Height;Comment\n", padding(60, 'x');
      for (int i = 0; i < 40'000; ++i)
        text += (i < 20'000 ? "a" : name) + ";B;" + std::to_string(i) + ";7;\"" + padding + "\"\n";
      std::ranges::replace(text, ';', separator);
      if (utf16) {
        std::string wide(2 * text.size(), '\0');
        for (std::size_t i = 0; i < text.size(); ++i) wide[2 * i] = text[i];
        text.swap(wide);
      }
      const PeakTable table = TableFolder().readOne(mark + text);
      ASSERT_THAT(namesOf(table), ElementsAre("a", name == "M" ? "M" : "M\xC3\xBC"));
      for (std::size_t i = 0; i < 40'000; ++i)
        ASSERT_EQ(table.samples[i / 20'000].peaks(Dye::B).sizes.at(i % 20'000), static_cast<double>(i));
    }
}

TEST(ReadFiles, RealTablesGiveTheirKnownCounts) {
  const char* shared = std::getenv("BANDDESK_SHARED");
  const std::filesystem::path root =
      (shared ? std::filesystem::path(shared) : std::filesystem::path(BANDDESK_SOURCE_DIR) / "../shared") /
      "data";
  if (!std::filesystem::exists(root)) GTEST_SKIP() << "the real tables are not here";
  struct Case {
    const char* file;
    std::optional<Dye> ladder;
    std::size_t samples;
    std::array<std::size_t, dyeCount> peaks;
    std::size_t leftOut;
    std::optional<Dye> proposal;
  };
  const Case cases[]{
      {"peak-scanner/eaacmcat.txt", {}, 31, {5895, 2599, 885, 855, 0}, 0, Dye::R},
      {"peak-scanner/eaacmcat.txt", Dye::R, 31, {5895, 2599, 885, 0, 0}, 855, {}},
      {"genemapper/demo_samples_abi.txt", {}, 171, {770, 280, 752, 0, 0}, 0, {}},
      {"genemapper/example_data.txt", {}, 92, {7314, 0, 0, 0, 0}, 608, {}},
  };
  for (const Case& at : cases) {
    SCOPED_TRACE(at.file);
    const PeakTable table = TableFolder::read({root / at.file}, {at.ladder});
    const FileReport& report = table.report.files[0];
    EXPECT_EQ(table.samples.size(), at.samples);
    EXPECT_EQ(report.peaks, at.peaks);
    EXPECT_EQ(report.leftOut.empty() ? 0U : report.leftOut[0].count, at.leftOut);
    EXPECT_EQ(table.report.ladder ? std::optional(table.report.ladder->dye) : std::nullopt, at.proposal);
  }
}

}  // namespace
}  // namespace banddesk::host::import
