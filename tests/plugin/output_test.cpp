// What leaves the table: CSV, the labelled matrix, the spreadsheet, clipboard and printer.
#include <filesystem>
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

const Script kScript{{0, {{100.25, {1, 0, 2}}, {200, {0, 1, 0}}}}, {3, {{300, {0, 5, 1}}}}};
const std::vector<std::string> kSamples{"Oak \"1\", x", "Elm tree.A01_12345678AB", "c"};

// Only the columns of bin number, dye and samples are left.
void narrow(Desk& desk) {
  for (std::int32_t col = 3; col <= 9; ++col) desk.page().HideCols(col, col, true);
}

TEST(Csv, IsTheScreenFieldByFieldWithNothingEscaped) {
  Desk desk(kScript, kSamples);
  desk.newAnalysis();
  narrow(desk);
  const std::string path = scratch("t.csv");
  desk.host.platform().saveAnswers.emplace_back(host::SaveAnswer{path, 1});
  desk.page().Export();
  const std::string rest = ",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n";
  EXPECT_EQ(fileText(path),
            "\"Bin\",\"Dye\",\"Oak \"1\", x\",\"Elm tree.A01\",\"c\"\r\n"
            "\"100\",\"D1\",\"1\",\"0\",\"2\"\r\n"
            "\"200\",\"D1\",\"0\",\"1\",\"0\"\r\n"
            "\"300\",\"D4\",\"0\",\"5\",\"1\"\r\n"
            "\"\"" +
                rest + "\"Name: New AFLP 1\"" + rest + "\"Study: Plants\"" + rest +
                "\"Max Bin Width: 1.00\"" + rest + "\"Y Threshold: 0\"" + rest + "\"Dyes: D1, D2, D3, D4\"" +
                rest + "\"Sample Bin: Fragment Count\"" + rest + "\"Exclude Fully Populated Bins\"" + rest +
                "\"Exclude Samples w/o Qualifying Peaks\"" + rest);
  EXPECT_EQ(desk.page().NumRows(), 3);
  EXPECT_EQ(desk.page().CellText("-1", 0), "1");
}

TEST(Export, AsksForANameWithItsDialogAndTouchesNothingOnCancel) {
  Desk desk(kScript, kSamples);
  desk.newAnalysis();
  const auto& dialog = desk.control<ui::SaveDialog>("ctlDialog");
  std::string folder;
  desk.host.platform().onShowSave = [&](ui::SaveDialog& asked) {
    folder = asked.InitDir.get();
    return std::optional<host::SaveAnswer>();
  };
  desk.page().Export();
  EXPECT_EQ(dialog.FileName.get(), "New AFLP 1");
  EXPECT_EQ(dialog.DialogTitle.get(), "Export AFLP");
  EXPECT_EQ(dialog.Filter.get(), "Text Files (Comma Delimited) (*.csv)|*.csv|NTSYSpc (*.nts)|*.nts");
  EXPECT_EQ(dialog.Flags, 6);
  EXPECT_THAT(folder, ::testing::StartsWith("/opt/desk/Export"));
  desk.page().Export();
  EXPECT_EQ(folder, "");
  EXPECT_TRUE(desk.grid().GridEnabledRedraw());
  EXPECT_EQ(desk.host.platform().MousePointer(), 0);
  EXPECT_TRUE(desk.host.framework().reports().empty());
}

TEST(Csv, LetsTheUserRetryAFileThatIsHeldAndPutsTheGridBackOnCancel) {
  const Error held(ErrorNumber::PermissionDenied, "file", "held");
  for (const bool retry : {true, false}) {
    for (const char* statement : {"OpenForOutput", "Print", "Close"}) {
      Desk desk(kScript, kSamples);
      desk.newAnalysis();
      const std::string path = scratch("t.csv");
      desk.host.faults().failAt("TextFiles", statement, 1, held);
      desk.host.platform().boxAnswers = {retry ? ui::BoxAnswer::Retry : ui::BoxAnswer::Cancel};
      desk.page().ExportCSV(path);
      ASSERT_EQ(desk.host.platform().messages().size(), 1U) << statement;
      const auto& shown = desk.host.platform().messages().front();
      EXPECT_EQ(shown.text, "Error open file '" + path + "'.\rThe file maybe open by other application");
      EXPECT_EQ(shown.style, 53);
      EXPECT_EQ(desk.page().NumRows(), 3);
      EXPECT_EQ(desk.page().CellText("-1", 0), "1");
      const std::string text = fileText(path);
      EXPECT_TRUE(!retry || std::count(text.begin(), text.end(), '\n') == 13) << statement;
    }
  }
}

TEST(Matrix, HoldsPresenceOfVisibleBinsAndSamplesWhateverThePicture) {
  const std::string expected =
      "\"Name: New AFLP 1\r\n\"Study: Plants\r\n\"Max Bin Width: 1.00\r\n\"Y Threshold: 0\r\n\"Dyes: D1, D2, "
      "D3, D4\r\n"
      "\"Sample Bin: Fragment(s) Max Y\r\n\"Exclude Fully Populated Bins\r\n\"Exclude Samples w/o Qualifying "
      "Peaks\r\n"
      "1 2L 2L 0\r\n100 300\r\nOak_\"1\"__x c\r\n1 1\r\n0 1\r\n";
  for (const int rows : {0, 1}) {
    Desk desk(kScript, kSamples);
    desk.newAnalysis();
    desk.control<ui::OptionButton>("optSampleBin(2)").Value = true;
    desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = rows;
    desk.wait();
    desk.page().HideRows(2, 2, true);
    desk.page().HideCols(11, 11, true);
    const std::string path = scratch("t.nts");
    desk.host.platform().saveAnswers.emplace_back(host::SaveAnswer{path, 2});
    desk.page().Export();
    EXPECT_EQ(fileText(path), expected);
  }
}

// Copying, printing and the spreadsheet rebuild the table.
TEST(Output, ShowsTheSameTableAfterCopyingPrintingAndTheSpreadsheet) {
  for (const int rows : {0, 1}) {
    Desk desk(kScript, kSamples);
    desk.newAnalysis();
    desk.control<ui::CheckBox>("chkDye(3)").click();
    desk.analysis().BinGrid->Columns.Item("9")->IsVisible = false;
    desk.page().Init(desk.analysis().BinGrid);
    desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = rows;
    desk.wait();
    const std::string before = desk.visibleTable();
    desk.choose("mnuCopy1");
    EXPECT_EQ(desk.visibleTable(), before);
    desk.choose("mnuPrintColor3");
    EXPECT_EQ(desk.visibleTable(), before);
    desk.page().ExportExcel(scratch("t.xlsx"));
    EXPECT_EQ(desk.visibleTable(), before) << rows;
    EXPECT_TRUE(desk.host.framework().reports().empty());
  }
}

TEST(Output, LosesDecisionsAfterAskingAndKeepsAnEmptyGridWhenThatIsCancelled) {
  Desk desk({{0, {{100, {1, 1, 1}}, {200, {1, 0, 1}}}}});
  IAFLPResultsPage& page = desk.newAnalysis();
  desk.chooseAt(2, 1, "mnuExcludeBin");
  const auto answer = [&](const char* button) {
    desk.host.platform().formAnswers.emplace_back(
        [button](ui::Form& form) { form.Controls().find<ui::CommandButton>(button)->Click.raise(); });
  };
  answer("btnOK");
  page.CopyGrid();
  EXPECT_FALSE(page.AnyManualExclusions());
  EXPECT_EQ(page.NumRows(), 2);
  desk.chooseAt(2, 1, "mnuExcludeBin");
  answer("btnCancel");
  page.CopyGrid();
  EXPECT_EQ(page.NumRows(), 0);
}

}  // namespace
}  // namespace banddesk::test
