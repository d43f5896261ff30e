// Every way a table may be spelled gives the table that the plain spelling gives.
#include <algorithm>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <map>
#include <numeric>
#include <xlsxwriter.h>

#include "host/simulation/random.h"
#include "tests/import/table_folder.h"

namespace banddesk::host::import {
namespace {

using simulation::Random;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct Spelling {
  enum Form { PeakScanner, GeneMapper, LaterGeneMapper, ThroughR, GeneMarker, Forms } form = PeakScanner;
  char separator = '\t';
  bool decimalComma = false, shuffled = false, crlf = false, quoted = false, trailing = false, apart = false;
  enum Encoding { Plain, Marked, Utf16Little, Utf16Big, Windows1252, Encodings } encoding = Plain;
};

using Cells = std::vector<std::string>;

Cells headerOf(Spelling::Form form) {
  switch (form) {
    case Spelling::GeneMapper:
      return {"Dye/Sample Peak", "Sample File Name", "Size", "Height", "Area", "Data Point"};
    case Spelling::LaterGeneMapper:
      return {"Dye", "Sample Peak", "Sample File Name", "Marker", "Allele", "Size", "Height", "Area"};
    case Spelling::ThroughR:
      return {"Dye.Sample.Peak", "Sample.File.Name", "Size", "Height", "Data.Point", "X"};
    case Spelling::GeneMarker:
      return {"", "Sample", "Allele", "Dye", "Size", "Height", "Ht_Ratio", "Quality Reasons"};
    default:
      return {"Status", "Sample Name", "Offscale", "Dye/Sample Peak", "Sample File Name",
              "Size",   "Height",      "Begin BP", "User Comments"};
  }
}

struct ModelPeak {
  std::string sample;
  std::size_t dye = 0;
  int number = 0;
  std::string size, height;
};

std::vector<ModelPeak> modelPeaks(Random& random) {
  const std::vector<std::string> names{"A#1 (x)", "b__2", "M\xC3\xBCller", "S1.A01_12345678AB"};
  std::vector<ModelPeak> peaks;
  for (const std::string& name : names)
    for (std::size_t dye = 0; dye < dyeCount; ++dye)
      for (int number = 1; number < 8; number += random.chance(0.2) ? 2 : 1) {
        const double size = random.uniform(0.1, 800);
        const std::string text = fmt::format("{:.{}f}", size, static_cast<int>(random.uniform(0, 5)));
        peaks.push_back(
            {name, dye, number, random.chance(0.1) ? "" : text, random.chance(0.1) ? "0" : "512.5"});
      }
  // Rows of a sample need not stand together; within sample and dye the order stays, as the readers keep it.
  for (std::size_t i = 0; i + 1 < peaks.size(); ++i)
    if (random.chance(0.4) && peaks[i].sample != peaks[i + 1].sample) std::swap(peaks[i], peaks[i + 1]);
  return peaks;
}

std::string number(const Spelling& spelling, std::string text) {
  if (text.empty() && spelling.form == Spelling::ThroughR) return "NA";
  if (spelling.decimalComma) std::ranges::replace(text, '.', ',');
  return text;
}

std::string cellOf(const Spelling& spelling, const std::string& column, const ModelPeak& peak) {
  static const Cells words{"Blue", "Green", "Yellow", "Red", "Orange", "Purple"};
  const char letter = "BGYROP"[peak.dye];
  if (column.starts_with("Dye/") || column.starts_with("Dye."))
    return fmt::format("{},{}{}", letter, spelling.form == Spelling::PeakScanner ? " " : "", peak.number);
  if (column == "Dye")
    return spelling.form == Spelling::GeneMarker ? words[peak.dye] : std::string(1, letter);
  if (column == "Sample Peak") return std::to_string(peak.number);
  if (column.starts_with("Sample") && column != "Sample Name") return peak.sample + " .fsa";
  if (column == "Size") return number(spelling, peak.size);
  if (column == "Height") return number(spelling, peak.height);
  if (column == "Quality Reasons") return "[<SAT (Pullup)>] SP, LS; \"x\"";
  return column.empty() || column == "Status" ? "1" : "";
}

std::string joined(const Spelling& spelling, Cells cells) {
  if (spelling.trailing) cells.emplace_back();
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    std::string& cell = cells[i];
    const bool must = cell.find_first_of(fmt::format("{}\"", spelling.separator)) != std::string::npos;
    if (must || (spelling.quoted && !cell.empty())) {
      for (std::size_t at = 0; (at = cell.find('"', at)) != std::string::npos; at += 2)
        cell.insert(at, 1, '"');
      cell = '"' + cell + '"';
    }
    line += (i ? std::string(1, spelling.separator) : "") + cell;
  }
  return line + (spelling.crlf ? "\r\n" : "\n");
}

std::string encoded(Spelling::Encoding encoding, const std::string& text) {
  if (encoding == Spelling::Plain) return text;
  if (encoding == Spelling::Marked) return "\xEF\xBB\xBF" + text;
  // The only letter beyond ASCII is the u with two dots: two bytes in UTF-8, one unit elsewhere.
  std::string out = encoding == Spelling::Utf16Little ? "\xFF\xFE"
                    : encoding == Spelling::Utf16Big  ? "\xFE\xFF"
                                                      : "";
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i] == '\xC3' ? text[++i], '\xFC' : text[i];
    if (encoding == Spelling::Utf16Big) out.push_back('\0');
    out.push_back(c);
    if (encoding == Spelling::Utf16Little) out.push_back('\0');
  }
  return out;
}

std::string spelled(const Spelling& spelling, const std::vector<ModelPeak>& peaks, Random& random) {
  const Cells header = headerOf(spelling.form);
  std::vector<std::size_t> order(header.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  for (std::size_t i = order.size(); spelling.shuffled && i > 1; --i)
    std::swap(order[i - 1], order[static_cast<std::size_t>(random.uniform() * static_cast<double>(i))]);
  std::string text;
  for (int i = 0; spelling.form == Spelling::GeneMarker && i < 12; ++i)
    text += joined(spelling,
                   spelling.apart ? Cells{"Preamble", "size", "", ""} : Cells{i % 3 ? "Some preamble" : ""});
  Cells line;
  for (const std::size_t i : order) line.push_back(header[i]);
  text += joined(spelling, line);
  for (const ModelPeak& peak : peaks) {
    for (std::size_t i = 0; i < order.size(); ++i) line[i] = cellOf(spelling, header[order[i]], peak);
    text += joined(spelling, line);
  }
  return encoded(spelling.encoding, text);
}

Spelling drawSpelling(Random& random) {
  const auto below = [&](int n) { return static_cast<int>(random.uniform() * n); };
  Spelling spelling;
  spelling.form = static_cast<Spelling::Form>(below(Spelling::Forms));
  spelling.separator = "\t;,"[below(3)];
  spelling.decimalComma = random.chance(0.5);
  spelling.shuffled = random.chance(0.5);
  spelling.crlf = random.chance(0.5);
  spelling.quoted = random.chance(0.3);
  spelling.trailing = random.chance(0.5);
  spelling.apart = random.chance(0.5);
  spelling.encoding = static_cast<Spelling::Encoding>(below(Spelling::Encodings));
  return spelling;
}

TEST(Forms, EverySpellingOfATableGivesTheSameSamples) {
  const TableFolder folder;
  for (std::uint64_t seed = 0; seed < 400; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const std::vector<ModelPeak> peaks = modelPeaks(random);
    const PeakTable table = folder.readOne(spelled(drawSpelling(random), peaks, random));
    std::map<std::pair<std::string, std::size_t>, DyePeaks> expected;
    std::size_t blank = 0;
    for (const ModelPeak& peak : peaks) {
      if (peak.size.empty() && ++blank) continue;
      DyePeaks& of = expected[{peak.sample, peak.dye}];
      of.sizes.push_back(std::stod(peak.size));
      of.heights.push_back(std::stod(peak.height));
    }
    ASSERT_EQ(table.samples.size(), 4U);
    for (const Sample& sample : table.samples)
      for (const Dye dye : allDyes) {
        ASSERT_EQ(sample.peaks(dye).sizes, (expected[{sample.name, indexOf(dye)}].sizes)) << sample.name;
        ASSERT_EQ(sample.peaks(dye).heights, (expected[{sample.name, indexOf(dye)}].heights)) << sample.name;
      }
    const FileReport& report = table.report.files[0];
    EXPECT_EQ(report.rows, peaks.size());
    EXPECT_EQ(report.leftOut.empty() ? 0U : report.leftOut[0].count, blank);
  }
}

TEST(Forms, TablesAreRecognisedByContentAndSurviveWhatRealOnesHold) {
  struct Case {
    const char* what;
    std::string text;
    const char* form;
    std::string sample;
    std::vector<double> sizes;  // of B
  };
  const std::string gm = "Dye/Sample Peak,Sample File Name,Size,Height\n";
  const Case cases[]{
      {"no header",
       "B,1\t5.70\t38.72\t50\t321\t2137\r\nB,3\t6.10\t45\t70\t1\t2\r\n",
       "GeneScan table, tab",
       "t",
       {38.72, 45}},
      {"no header, spreadsheet",
       "\"B,1\";5,70;38,72;50;321;2137\n",
       "GeneScan table, semicolon",
       "t",
       {38.72}},
      {"no header, dye in two", "B,1,5.70,38.72,50,321,2137\n", "GeneScan table, comma", "t", {38.72}},
      {"unquoted dye and commas",
       gm + "B,1,a.fsa,38.72,50\n\"B, 2\",a.fsa,40,50\n",
       "GeneMapper sizing table, comma",
       "a",
       {38.72, 40}},
      {"field over a line's end",
       "Sample,Comments,Dye,Size,Height\nx,\"one\ntwo, \"\"three\"\"\",Blue,7,8\n",
       "peak table, comma",
       "x",
       {7}},
      {"stray quote",
       "Sample\tNote\tDye\tSize\tHeight\nx\t\"5 nt\tb\t7\t8\nx\t5\"\tB\t8\t8",
       "peak table, tab",
       "x",
       {7, 8}},
      {"carriage returns only",
       "Sample\tDye\tSize\tHeight\rx\tB\t7\t8\rx\tB\t9\t8\r",
       "peak table, tab",
       "x",
       {7, 9}},
      {"blank file name",
       "Sample Name\tSample File Name\tDye\tSize\tHeight\nx\t\tB\t7\t8\n",
       "peak table, tab",
       "x",
       {7}},
      {"header once more",
       gm + "\"B,1\",a.fsa,1,2\n" + gm + "\"B,2\",a.fsa,3,4\n",
       "GeneMapper sizing table, comma",
       "a",
       {1, 3}},
      {"a point that is no extension",
       "Sample\tDye\tSize\tHeight\nx.2.FSA\tB\t7\t8\n",
       "peak table, tab",
       "x.2",
       {7}},
  };
  for (const Case& at : cases) {
    SCOPED_TRACE(at.what);
    const PeakTable table = TableFolder().readOne(at.text);
    EXPECT_THAT(table.report.files[0].form, HasSubstr(at.form));
    ASSERT_EQ(table.samples.size(), 1U);
    EXPECT_EQ(table.samples[0].name, at.sample);
    EXPECT_EQ(table.samples[0].peaks(Dye::B).sizes, at.sizes);
  }
}

TEST(Forms, TablesOfOtherProgramsAreReadAsTheyAre) {
  struct Case {
    std::string file, text, form, sample;
    std::vector<double> sizes;  // of B
    std::optional<Dye> dye = {};
  };
  const std::string plain = "Sample\tDye\tSize\tHeight (RFU)\nx\tB\t7\t8\n";
  std::string wide;
  for (const char c : plain) wide += {c, '\0'};
  const Case cases[]{
      {"QCWA.22", "B,1\t5.7\t38.72\t50\n", "GeneScan", "QCWA.22", {38.72}},
      {"QCWA.22.fsa.TXT", "B,1\t5.7\t38.72\t50\n", "GeneScan", "QCWA.22", {38.72}},
      {"t", wide, "UTF-16 LE", "x", {7}},
      {"t", '\0' + wide.substr(0, wide.size() - 1), "UTF-16 BE", "x", {7}},
      {"t",
       "Sample Name\tMarker\tDye\tAllele 1\tAllele 2\tSize 1\tSize 2\tHeight 1\tHeight 2\n"
       "x\tM\tB\t1\t2\t50.5\t60\t9\t8\nx\tN\tB\t\t\t70\t\t5\t\nx\tO\tB\t\t\t\t\t\t\n",
       "genotype table",
       "x",
       {50.5, 60, 70}},
      {"t", "Sample ID;Size (bp);RFU\nx;50,5;9\n", "semicolon", "x", {50.5}, Dye::B},
      {"t", "Sample,BP,Peak Height\nx,50,9\n", "comma", "x", {50}, Dye::B},
      {"t", "Sample\tDye\tSize\tHeight\n1\tx\tB\t50\t9\n2\tx\tB\t60\t9\n", "tab", "x", {50, 60}},
      {"t",
       "\"Sample\" \"bp\" \"height\"\n\"1\" \"x\" 50 9\n\"2\" \"x\" 60 9\n",
       "blank",
       "x",
       {50, 60},
       Dye::B},
  };
  for (const Case& at : cases) {
    SCOPED_TRACE(at.text);
    const PeakTable table = TableFolder().readOne(at.text, {{}, at.dye}, at.file);
    EXPECT_THAT(table.report.files[0].form, HasSubstr(at.form));
    ASSERT_EQ(table.samples.size(), 1U);
    EXPECT_EQ(table.samples[0].name, at.sample);
    EXPECT_EQ(table.samples[0].peaks(Dye::B).sizes, at.sizes);
  }
}

TEST(Forms, NamesOfDyesAreReadByTheSetTheyStandIn) {
  struct Case {
    std::vector<const char*> dyes;
    const char* colours;
  };
  const Case cases[]{
      {{"6-FAM", "VIC", "NED", "PET", "LIZ"}, "BGYRO"}, {{"FAM (B)", "hex", "NED(Y)", "Rox"}, "BGYR"},
      {{"5-FAM", "TET", "HEX", "TAMRA"}, "BGYR"},       {{"FAM", "JOE", "TAMRA", "ROX"}, "BGYR"},
      {{"FAM", "JOE", "TMR", "CXR", "BTO"}, "BGYRO"},   {{"TET (G)", "HEX (Y)"}, "GY"},
      {{"FAM", "VIC", "HEX", "NED"}, "BGYR"},
  };
  for (const Case& at : cases) {
    SCOPED_TRACE(at.dyes.front());
    std::string text = "Sample\tDye\tSize\tHeight\n";
    // In a sample of its own no dye has to make room for another.
    for (std::size_t i = 0; i < at.dyes.size(); ++i)
      text += fmt::format("x\t{0}\t{1}\t9\ny{1}\t{0}\t{1}\t9\n", at.dyes[i], i);
    const PeakTable table = TableFolder().readOne(text);
    for (std::size_t i = 0; i < at.dyes.size(); ++i)
      EXPECT_THAT(table.samples[0].peaks(*dyeOf(std::string_view(at.colours).substr(i, 1))).sizes,
                  ElementsAre(static_cast<double>(i)));
  }
  const TableFolder folder;
  const auto one = folder.write("1", "Sample\tDye\tSize\tHeight\na\tVIC\t5\t9\n");
  const auto two = folder.write("2", "Sample\tDye\tSize\tHeight\nb\tHEX\t6\t9\n");
  const PeakTable apart = TableFolder::read({one, two});
  EXPECT_EQ(apart.report.files[0].peaks, apart.report.files[1].peaks) << "runs of two kits, one colour";
  EXPECT_EQ(apart.report.dyeNames, "dyes by name: HEX as G, VIC as G");
}

TEST(Forms, ASpreadsheetIsReadFromItsFirstSheetOrTheOneThatIsNamed) {
  const TableFolder folder;
  const std::string file = folder.file("t.xlsx");
  lxw_workbook* const book = workbook_new(file.c_str());
  for (const char* name : {"One", "Two"}) {
    lxw_worksheet* const sheet = workbook_add_worksheet(book, name);
    const char* const header[]{"Sample", "Dye", "Size", "Height"};
    for (lxw_col_t col = 0; col < 4; ++col) worksheet_write_string(sheet, 2, col, header[col], nullptr);
    worksheet_write_string(sheet, 3, 0, "a \"b\"\tc", nullptr);
    worksheet_write_string(sheet, 3, 1, "B", nullptr);
    worksheet_write_number(sheet, 3, 2, name[0] == 'O' ? 50.125 : 60, nullptr);
    worksheet_write_formula_num(sheet, 3, 3, "=4+5", nullptr, 9);
    for (lxw_col_t col = 0; name[0] == 'T' && col < 4; ++col)
      worksheet_write_string(sheet, 4, col, "wide", nullptr);
  }
  ASSERT_EQ(workbook_close(book), LXW_NO_ERROR);
  const PeakTable table = TableFolder::read({file});
  ASSERT_EQ(table.samples.size(), 1U);
  EXPECT_EQ(table.samples[0].name, "a \"b\" c");
  EXPECT_THAT(table.samples[0].peaks(Dye::B).sizes, ElementsAre(50.125));
  EXPECT_THAT(table.samples[0].peaks(Dye::B).heights, ElementsAre(9));
  const auto errorOf = [&](const char* sheet) {
    try {
      TableFolder::read({file}, {{}, {}, sheet});
    } catch (const ImportError& error) {
      return error.message;
    }
    return std::string();
  };
  EXPECT_EQ(errorOf("Two"), "\"wide\" is not a number");
  EXPECT_EQ(errorOf("Three"), "has no sheet \"Three\", but \"One\", \"Two\"");
}

}  // namespace
}  // namespace banddesk::host::import
