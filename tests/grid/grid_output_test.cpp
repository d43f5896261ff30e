#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <unistd.h>

#include "host/grid/excel_formats.h"
#include "host/grid/grid_control.h"
#include "plugin/base/error.h"
#include "tests/support/test_folder.h"

namespace banddesk::host {
namespace {

GridRange block(int left, int top, int right, int bottom) {
  GridRange range;
  range.InitRange(left, top, right, bottom);
  return range;
}

// Two rows and three columns, a merged line below, one column and one row hidden.
void smallTable(GridControl& grid) {
  grid.SetRowCount(4);
  grid.SetColCount(3);
  const char* texts[5][3] = {{"Bin", "Größe", "=A1"},
                             {"1", "1.50", "007"},
                             {"hidden", "", ""},
                             {"-3", "x", "4e2"},
                             {"Name: =1", "", ""}};
  for (int row = 0; row <= 4; ++row) {
    for (int col = 1; col <= 3; ++col) grid.SetValueRange(row, col, texts[row][col - 1], 4);
  }
  grid.SetRowHeadersVisible(false);
  grid.HideRows(2, 2, true);
  grid.HideCols(2, 2, true);
  grid.SetColWidth(1, 1, 120);
  grid.SetCoveredCells(4, 1, 4, 3);
  GridStyle style;
  style.SetInterior(0x0000FF);  // red
  style.SetHorizontalAlignment(1);
  style.SetFormat(1);
  style.SetPlaces(2);
  grid.SetStyleRange(block(3, 2, 3, 3), style, StyleMode::Override);
}

TEST(GridOutput, CopyingGivesStoredTextsWithTabsAndLineEnds) {
  auto clipboard = std::make_shared<KeptClipboard>();
  GridPorts ports;
  ports.clipboard = clipboard;
  GridControl grid("grid", ports);
  smallTable(grid);
  grid.CopyCells(block(1, 0, 3, 1));
  EXPECT_EQ(clipboard->Text, "Bin\tGröße\t=A1\r\n1\t1.50\t007");
  grid.CopyCells(block(1, 1, 3, 0));
  EXPECT_EQ(clipboard->Text.substr(0, 3), "Bin") << "an empty range copies nothing";
}

TEST(GridOutput, PrintingHandsOverTheVisibleTableWithItsHeaderAndFooter) {
  auto printer = std::make_shared<KeptPrinter>();
  GridPorts ports;
  ports.printer = printer;
  GridControl grid("grid", ports);
  smallTable(grid);
  GridStyle style;
  style.SetValue("Study - one");
  grid.SetPrintFooterCell(1.0, 2.0, style);
  style.SetValue("Title");
  const auto font = grid.PrintFont();
  font->SetSize(14);
  style.SetFont(*font, 2);
  grid.SetPrintHeaderCell(1.0, 2.0, style);
  grid.SetPrintHeaderCell(1.0, 2.0, style);  // takes the place of the former
  style.SetValue("later");
  grid.PrintParam().SetBlackWhite(true);
  grid.PrintGrid();

  const PrintJob& job = printer->Last;
  ASSERT_EQ(job.header.size(), 1U);
  EXPECT_EQ(job.header[0].style.value, "Title");
  EXPECT_EQ(job.header[0].style.font, GridFont{14});
  EXPECT_EQ(job.footer.at(0).style.value, "Study - one");
  EXPECT_FALSE(job.footer.at(0).style.font);
  EXPECT_TRUE(job.isBlackWhite && job.repeatsFirstRow);
  EXPECT_EQ(job.columnWidths, (std::vector<std::int32_t>{120, LineAxis::kDefaultWidth}));
  std::string texts;
  for (const auto& row : job.rows) {
    for (const PrintCell& cell : row) {
      texts += cell.text + (cell.columns > 1 ? "(" + std::to_string(cell.columns) + ")|" : "|");
    }
    texts += '\n';
  }
  EXPECT_EQ(texts, "Bin|=A1|\n1|007|\n-3|400.00|\nName: =1(2)|\n");
  EXPECT_EQ(job.looks[job.rows[2][1].look].interior->color, 0x0000FFU);
}

TEST(GridOutput, ABlockOverSeveralRowsIsPrintedOnceAtItsFirstVisibleRow) {
  auto printer = std::make_shared<KeptPrinter>();
  GridPorts ports;
  ports.printer = printer;
  GridControl grid("grid", ports);
  grid.SetRowCount(4);
  grid.SetColCount(1);
  grid.SetColHeadersVisible(false);
  grid.SetRowHeadersVisible(false);
  grid.SetValueRange(1, 1, "block", 4);
  grid.SetValueRange(4, 1, "last", 4);
  grid.SetCoveredCells(1, 1, 3, 1);
  grid.HideRows(1, 1, true);
  grid.PrintGrid();
  const auto& rows = printer->Last.rows;
  ASSERT_EQ(rows.size(), 3U);
  ASSERT_EQ(rows[0].size(), 1U);
  EXPECT_EQ(rows[0][0].text, "block");
  EXPECT_EQ(rows[0][0].rows, 2U);
  EXPECT_TRUE(rows[1].empty());
  EXPECT_EQ(rows[2].at(0).text, "last");
  EXPECT_FALSE(printer->Last.repeatsFirstRow);
}

TEST(GridOutput, OnlyTextsThatASpreadsheetShowsAlikeBecomeNumbers) {
  struct Case {
    const char* text;
    bool isNumber;
    int decimals;
  };
  const Case cases[] = {{"0", true, 0},    {"-12", true, 0},     {"1.50", true, 2},
                        {"0.5", true, 1},  {"1.5E-07", true, 0}, {"123456789012345", true, 0},
                        {"1e5", false, 0}, {"1e999", false, 0},  {"1234567890123456", false, 0},
                        {"007", false, 0}, {"-01", false, 0},    {"+5", false, 0},
                        {" 5", false, 0},  {"5 ", false, 0},     {"-0", false, 0},
                        {"", false, 0},    {"=1+1", false, 0},   {"-0.0", false, 0}};
  for (const Case& each : cases) {
    const auto number = excelNumber(each.text);
    EXPECT_EQ(number.has_value(), each.isNumber) << each.text;
    EXPECT_EQ(number.value_or(ExcelNumber{}).decimals, each.decimals) << each.text;
  }
}

class ExcelFile : public testing::Test {
 protected:
  std::string path(const char* name) const { return (folder_ / name).string(); }

  // One line a sheet row as an independent reader sees it, then what holds for the sheet.
  std::string readBack(const std::string& file) const {
    std::ofstream script(folder_ / "read.py");
    script << R"(import sys, openpyxl
sheet = openpyxl.load_workbook(sys.argv[1]).active
for row in sheet.iter_rows():
    print('|'.join('%s:%s' % (c.data_type, c.value) for c in row))
last = sheet.cell(3 if sheet.max_row < 4 else 4, 3)
print(last.fill.fgColor.rgb, last.number_format, last.alignment.horizontal)
print(sheet.freeze_panes, [str(r.coord) for r in sheet.merged_cells.ranges], sheet.column_dimensions['B'].hidden,
      [k for k, r in sorted(sheet.row_dimensions.items()) if r.hidden],
      round(sheet.column_dimensions['A'].width * 7))
)";
    script.close();
    const std::string command = "/usr/bin/python3 '" + path("read.py") + "' '" + file + "' 2>&1";
    std::string output;
    FILE* pipe = ::popen(command.c_str(), "r");
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) output += static_cast<char>(c);
    ::pclose(pipe);
    return output;
  }
  static bool canReadBack() { return std::system("/usr/bin/python3 -c 'import openpyxl' 2>/dev/null") == 0; }

  std::size_t files() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_), {}));
  }

  const std::filesystem::path& folder_ = test::testFolder();
};

TEST_F(ExcelFile, HoldsTheShownTableWithTypesColoursBlocksAndHiddenLines) {
  if (!canReadBack()) GTEST_SKIP() << "no reader of spreadsheet files here";
  GridControl grid("grid");
  smallTable(grid);
  grid.SaveExcelFile(path("a.xlsx"));
  EXPECT_EQ(readBack(path("a.xlsx")),
            "s:Bin|s:Größe|s:=A1\nn:1|n:1.5|s:007\ns:hidden|n:None|n:None\nn:-3|s:x|s:4e2\n"
            "s:Name: =1|n:None|n:None\nFFFF0000 0.00 right\n"
            "A2 ['A5:C5'] True [3] 120\n");
  grid.SetCoveredCells(1, 1, 3, 1);  // over several rows, and it hides what lies under it
  grid.SetFrozenCols(1, 1);
  grid.SaveExcelFile(path("a.xlsx"));
  const std::string second = readBack(path("a.xlsx"));
  EXPECT_NE(second.find("n:None|s:x|s:4e2\ns:Name: =1|"), std::string::npos) << second;
  EXPECT_NE(second.find("B2 ['A2:A4', 'A5:C5']"), std::string::npos) << second;
  grid.SetValueRange(0, 1, "a name longer than its column", 4);  // 29 characters of 6 units, and the margins
  grid.SaveExcelFile(path("a.xlsx"));
  EXPECT_TRUE(readBack(path("a.xlsx")).ends_with(" 182\n")) << readBack(path("a.xlsx"));
}

TEST_F(ExcelFile, WritesDecimalPointsWhateverTheLocale) {
  const std::string locale = path("de_DE.UTF-8");
  if (std::system(("localedef -i de_DE -f UTF-8 '" + locale + "' 2>/dev/null").c_str()) != 0 ||
      !canReadBack()) {
    GTEST_SKIP() << "no locale with a decimal comma can be made, or no reader";
  }
  GridControl grid("grid");
  smallTable(grid);
  ::setenv("LOCPATH", folder_.c_str(), 1);
  ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr);
  grid.SaveExcelFile(path("a.xlsx"));
  EXPECT_STREQ(std::localeconv()->decimal_point, ",") << "the program's locale is as before";
  std::setlocale(LC_NUMERIC, "C");
  ::unsetenv("LOCPATH");
  EXPECT_NE(readBack(path("a.xlsx")).find("n:1.5"), std::string::npos);
}

TEST_F(ExcelFile, AnErrorNamesTheFileAndLeavesTheFormerOneAlone) {
  struct Case {
    const char* what;
    std::string file;
    int rows, cols;
    std::size_t length;
    ErrorNumber number;
    const char* says;
  };
  std::filesystem::create_directory(folder_ / "folder");
  const Case cases[] = {
      {"too many rows", path("a.xlsx"), 1'048'576, 1, 1, ErrorNumber::InvalidArgument, "1048577"},
      {"too many columns", path("a.xlsx"), 1, 16'384, 1, ErrorNumber::InvalidArgument, "16385"},
      {"a text too long", path("a.xlsx"), 1, 2, 32'768, ErrorNumber::InvalidArgument, "row 1, column 1"},
      {"no folder", path("none/a.xlsx"), 1, 1, 1, ErrorNumber::PathNotFound, "none/a.xlsx"},
      {"a folder", path("folder"), 1, 1, 1, ErrorNumber::DeviceIo, "folder"}};
  for (const Case& each : cases) {
    std::ofstream(path("a.xlsx")) << "former";
    GridControl grid("grid");
    grid.SetRowCount(each.rows);
    grid.SetColCount(each.cols);
    grid.SetValueRange(1, 1, std::string(each.length, 'x'), 4);
    try {
      grid.SaveExcelFile(each.file);
      ADD_FAILURE() << each.what;
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), each.number) << each.what;
      EXPECT_NE(error.description().find(each.says), std::string::npos) << error.description();
      EXPECT_NE(error.description().find(each.file), std::string::npos) << error.description();
    }
    std::string left;
    std::getline(std::ifstream(path("a.xlsx")) >> std::ws, left);
    EXPECT_EQ(left, "former") << each.what;
    EXPECT_EQ(files(), 2U) << each.what << ": nothing is left beside the file and the folder";
  }
}

}  // namespace
}  // namespace banddesk::host
