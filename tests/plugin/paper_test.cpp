// What goes to the clipboard, the printer and the spreadsheet: the visible table and the lines below it.
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

const Script kScript{{0, {{100.25, {1, 0, 2, 0}}, {200, {0, 1, 0, 1}}}}, {3, {{300, {0, 5, 1, 0}}}}};
const std::vector<std::string> kSamples{"Oak", " Elm.A01_12345678AB", "c", "d"};
constexpr Colour kGrey = 0xC0C0C0;

// A table with a hidden dye, a hidden column of bin information but for number and dye, and a sample
// excluded.
std::unique_ptr<Desk> deskWithHiddenLines() {
  auto desk = std::make_unique<Desk>(kScript, kSamples);
  desk->newAnalysis();
  desk->control<ui::CheckBox>("chkExcludeFullBins").click();
  desk->control<ui::CheckBox>("chkDye(3)").click();
  desk->wait();
  for (const char* key : {"8", "119", "9", "10", "83", "84", "85"}) {
    desk->analysis().BinGrid->Columns.Item(key)->IsVisible = false;
  }
  desk->page().Init(desk->analysis().BinGrid);
  desk->chooseAt(0, 12, "mnuExcludeColumn");
  return desk;
}

const std::vector<std::string> kParameters{"",
                                           "Name: New AFLP 1",
                                           "Study: Plants",
                                           "Max Bin Width: 1.00",
                                           "Y Threshold: 0",
                                           "Dyes: D1, D2, D3",
                                           "Sample Bin: Fragment Count",
                                           "Exclude Samples w/o Qualifying Peaks"};

std::string joined(std::vector<std::string> lines, const std::vector<std::string>& below,
                   const std::string& rest) {
  for (const std::string& line : below) lines.push_back(line + rest);
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "\r\n") + line;
  return text;
}

TEST(Copy, HoldsTheVisibleTableAndItsParameters) {
  for (const bool transposed : {false, true}) {
    const auto desk = deskWithHiddenLines();
    if (transposed) desk->choose("mnuTransposeCell");
    const std::string before = desk->visibleTable();
    desk->page().CopyGrid();
    const auto& clipboard = dynamic_cast<host::KeptClipboard&>(*desk->grid().ports().clipboard);
    const std::vector<std::string> table =
        transposed
            ? std::vector<std::string>{"Bin\t100\t200", "Dye\tD1\tD1", "Oak\t1\t0", "Elm.A01\t0\t1",
                                       "d\t0\t1"}
            : std::vector<std::string>{"Bin\tDye\tOak\tElm.A01\td", "100\tD1\t1\t0\t0", "200\tD1\t0\t1\t1"};
    EXPECT_EQ(clipboard.Text, joined(table, kParameters, transposed ? "\t\t" : "\t\t\t\t"));
    EXPECT_EQ(desk->visibleTable(), before);
    EXPECT_EQ(desk->page().NumCols(), 13);
    EXPECT_EQ(desk->page().NumRows(), 3);
  }
}

// What is on paper: texts of a row, "*" behind a grey one, "=" and the columns behind one that covers
// several.
std::vector<std::string> rowsOf(const host::PrintJob& job) {
  std::vector<std::string> rows;
  for (const auto& cells : job.rows) {
    std::string& row = rows.emplace_back();
    for (const host::PrintCell& cell : cells) {
      row += (row.empty() ? "" : " ") + cell.text;
      if (job.looks[cell.look].interior->bkColor == kGrey) row += "*";
      if (cell.columns > 1) row += "=" + std::to_string(cell.columns);
    }
  }
  return rows;
}

class SeenAtPrint final : public host::PrinterPort {
 public:
  explicit SeenAtPrint(std::function<void(const host::PrintJob&)> see) : see_(std::move(see)) {}
  bool print(const host::PrintJob& job) override { return see_(job), true; }

 private:
  std::function<void(const host::PrintJob&)> see_;
};

TEST(Print, ListsTheSamplesBelowTheTableByTheirNumbers) {
  for (const bool showsExcluded : {false, true}) {
    const auto desk = deskWithHiddenLines();
    if (showsExcluded) desk->control<ui::CheckBox>("chkShowExcluded").click(), desk->wait();
    const std::string before = desk->visibleTable();
    std::vector<std::string> printed;
    desk->grid().ports().printer = std::make_shared<SeenAtPrint>([&](const host::PrintJob& job) {
      printed = rowsOf(job);
      // Below the table every cell is white and left, also those that the line covers.
      for (std::int32_t row = 4; row <= desk->grid().RowCount(); ++row) {
        for (std::int32_t col = 2; col <= desk->grid().ColCount(); ++col) {
          EXPECT_EQ(desk->grid().look(row, col).interior->bkColor, 0xFFFFFFU) << row << "," << col;
          EXPECT_EQ(desk->grid().look(row, col).horizontalAlignment, 0) << row << "," << col;
        }
      }
    });
    desk->page().PrintGrid(true);
    std::vector<std::string> expected =
        showsExcluded ? std::vector<std::string>{"Bin Dye 1 2 3* 4", "100 D1 1 0 2* 0", "200 D1 0 1 0* 1"}
                      : std::vector<std::string>{"Bin Dye 1 2 4", "100 D1 1 0 0", "200 D1 0 1 1"};
    std::vector<std::string> below = kParameters;
    if (showsExcluded) below.emplace_back("Show Excluded Elements");
    below.insert(below.end(), {"", "1-Oak", "2-Elm.A01"});
    if (showsExcluded) below.emplace_back("3-c*");
    below.emplace_back("4-d");
    for (const std::string& line : below) expected.push_back(line + (showsExcluded ? "=6" : "=5"));
    EXPECT_THAT(printed, ElementsAreArray(expected));
    EXPECT_EQ(desk->visibleTable(), before);
    EXPECT_EQ(desk->page().CellText("-2", 0), "2");
  }
}

TEST(Print, NamesTheSamplesThemselvesWhereTheyRunAlongRows) {
  const auto desk = deskWithHiddenLines();
  desk->choose("mnuTransposeCell");
  desk->page().PrintGrid(false);
  const auto& job = dynamic_cast<host::KeptPrinter&>(*desk->grid().ports().printer).Last;
  std::vector<std::string> expected{"Bin 100 200", "Dye D1 D1", "Oak 1 0", "Elm.A01 0 1", "d 0 1"};
  for (const std::string& line : kParameters) expected.push_back(line + "=3");
  EXPECT_THAT(rowsOf(job), ElementsAreArray(expected));
  EXPECT_EQ(desk->page().CellText("-2", 0), "2-Elm.A01");
}

TEST(Print, HasTitleAndStudyOnEachPageAndColoursAsAsked) {
  for (const bool color : {false, true}) {
    const auto desk = deskWithHiddenLines();
    desk->choose(color ? "mnuPrintColor2" : "mnuPrintBW2");
    const auto& job = dynamic_cast<host::KeptPrinter&>(*desk->grid().ports().printer).Last;
    EXPECT_EQ(job.isBlackWhite, !color);
    ASSERT_TRUE(job.header.size() == 1 && job.footer.size() == 1);
    EXPECT_TRUE(job.header[0].row == 1 && job.header[0].col == 2 && job.footer[0].row == 1 &&
                job.footer[0].col == 2);
    EXPECT_EQ(job.header[0].style.value, desk->pageNamed("AFLP")->Caption());
    EXPECT_EQ(job.header[0].style.font->size, 14);
    EXPECT_EQ(job.footer[0].style.value, "Study - Plants");
    EXPECT_FALSE(job.footer[0].style.font.has_value() || job.footer[0].style.interior.has_value());
  }
}

// A write that fails leaves the grid as it was handed over: hidden rows gone, hidden columns there, both
// headers visible, the names without numbers and the parameters below.
TEST(Spreadsheet, IsHandedTheTableWithBothHeadersAndTheHiddenColumns) {
  for (const bool transposed : {false, true}) {
    Desk desk(kScript, kSamples);
    desk.guardGrids();
    desk.newAnalysis();
    desk.control<ui::CheckBox>("chkDye(3)").click();
    desk.wait();
    desk.page().HideCols(4, 9, true);
    if (transposed) desk.page().SetTranspose(true);
    const std::string before = desk.visibleTable();
    desk.host.faults().failAt("Grid", "SaveExcelFile", 1, Error(ErrorNumber::DiskFull, "file", "full"));
    EXPECT_THROW(desk.page().ExportExcel(scratch("t.xlsx")), Error);
    host::GridControl& grid = desk.grid();
    EXPECT_TRUE(grid.RowHeadersVisible() && grid.ColHeadersVisible());
    // An empty row is inserted below the header.
    EXPECT_EQ(grid.RowCount(), transposed ? 13 - 6 + 1 + 9 : 2 + 1 + 9);
    EXPECT_EQ(grid.ColCount(), transposed ? 3 : 13);
    std::vector<std::string> lines;
    for (std::int32_t row = 0; row <= grid.RowCount(); ++row) {
      lines.push_back(grid.GetValue(row, transposed ? 0 : 1) + "," + grid.GetValue(row, transposed ? 1 : 11));
    }
    const std::vector<std::string> head =
        transposed ? std::vector<std::string>{lines[0], ",", "Bin,100", "Dye,D1", "Samples,2", "Oak,1"}
                   : std::vector<std::string>{"Bin,Elm.A01", ",", "100,0", "200,1"};
    EXPECT_THAT(std::vector(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(head.size())),
                ElementsAreArray(head));
    EXPECT_THAT(lines.back(), ::testing::StartsWith("Exclude Samples w/o Qualifying Peaks"));
  }
}

TEST(Spreadsheet, LeavesTheTableAsItWas) {
  for (const bool transposed : {false, true}) {
    const auto desk = deskWithHiddenLines();
    if (transposed) desk->choose("mnuTransposeCell");
    const std::string before = desk->visibleTable();
    desk->calculators->calculated.clear();
    desk->page().ExportExcel(scratch("t.xlsx"));
    EXPECT_EQ(desk->visibleTable(), before);
    EXPECT_EQ(desk->calculators->calculated.size(), 4U);
    EXPECT_EQ(desk->grid().RowHeadersVisible(), transposed);
    EXPECT_EQ(desk->grid().ColHeadersVisible(), !transposed);
    EXPECT_EQ(desk->page().CellText("-2", 0), transposed ? "2-Elm.A01" : "2");
  }
}

TEST(Copy, AsksBeforeItLosesDecisionsAndIsLeftEmptyWhenThatIsRefused) {
  Desk desk({{0, {{100, {1, 1, 1}}, {200, {1, 0, 1}}}}});
  IAFLPResultsPage& page = desk.newAnalysis();
  for (const auto& [button, rows] : {std::pair("btnOK", 2), {"btnCancel", 0}}) {
    desk.chooseAt(2, 1, "mnuExcludeBin");
    desk.front.formAnswers.emplace_back([button = button](ui::Form& form) {
      form.Controls().find<ui::CommandButton>(button)->Click.raise();
    });
    page.CopyGrid();
    EXPECT_EQ(page.NumRows(), rows);
  }
}

}  // namespace
}  // namespace banddesk::test
