// The two text files: the table as it is on the screen, and the labelled matrix.
#include <algorithm>
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

const Script kScript{{0, {{100.25, {1, 0, 2}}, {200, {0, 1, 0}}}}, {3, {{300, {0, 5, 1}}}}};
const std::vector<std::string> kSamples{"Oak \"1\", x", "Elm tree.A01_12345678AB", "c"};
const std::vector<std::string> kParameters{"Name: New AFLP 1",
                                           "Study: Plants",
                                           "Max Bin Width: 1.00",
                                           "Y Threshold: 0",
                                           "Dyes: D1, D2, D3, D4",
                                           "Sample Bin: Fragment Count",
                                           "Exclude Fully Populated Bins",
                                           "Exclude Samples w/o Qualifying Peaks"};

std::string exported(Desk& desk, const std::string& name, std::int32_t type) {
  const std::string path = scratch(name);
  desk.front.saveAnswers.emplace_back(host::SaveAnswer{path, type});
  desk.page().Export();
  return fileText(path);
}

// The parameters below the table, over the whole width of the grid.
std::string parametersIn(const std::string& rest) {
  std::string text = "\"\"" + rest + "\r\n";
  for (const std::string& line : kParameters) text += "\"" + line + "\"" + rest + "\r\n";
  return text;
}

TEST(Csv, IsTheScreenFieldByFieldWithNothingEscaped) {
  const std::string emptyFields = ",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"";
  for (const bool transposed : {false, true}) {
    Desk desk(kScript, kSamples);
    desk.newAnalysis();
    if (transposed) desk.page().SetTranspose(true);
    desk.page().HideCols(3, 9, true);
    desk.page().HideRows(2, 2, true);
    desk.grid().SetTopRow(2);
    desk.grid().SetLeftCol(3);
    desk.host.faults().startRecording();
    EXPECT_EQ(exported(desk, "t.csv", 1),
              transposed
                  ? "\"Bin\",\"100\",\"300\"\r\n\"Dye\",\"D1\",\"D4\"\r\n\"Oak \"1\", x\",\"1\",\"0\"\r\n"
                    "\"Elm tree.A01\",\"0\",\"5\"\r\n\"c\",\"2\",\"1\"\r\n" +
                        parametersIn(",\"\",\"\",\"\"")
                  : "\"Bin\",\"Dye\",\"Oak \"1\", x\",\"Elm tree.A01\",\"c\"\r\n\"100\",\"D1\",\"1\",\"0\","
                    "\"2\"\r\n\"300\",\"D4\",\"0\",\"5\",\"1\"\r\n" +
                        parametersIn(emptyFields));
    EXPECT_EQ((desk.host.faults().recorded().at({"Progress", "Step"})), transposed ? 12 + 9 : 1 + 3 + 9);
    EXPECT_EQ(desk.grid().TopRow(), 2);
    EXPECT_EQ(desk.grid().LeftCol(), 3);
    EXPECT_EQ(desk.grid().currentCol(), desk.grid().ColCount())
        << "the current cell went over the whole grid";
    EXPECT_EQ(desk.page().NumRows(), 3);
    EXPECT_EQ(desk.page().NumCols(), 12);
    EXPECT_EQ(desk.page().CellText("-2", 0), transposed ? "2-Elm tree.A01" : "2");
  }
}

TEST(Csv, HasAnEmptyLineForARowWhoseColumnsAreAllHidden) {
  Desk desk(kScript, kSamples);
  desk.newAnalysis();
  desk.page().HideCols(1, 12, true);
  EXPECT_EQ(exported(desk, "t.csv", 1),
            "\r\n\r\n\r\n\r\n" + parametersIn(",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\""));
}

TEST(Matrix, HoldsPresenceOfVisibleBinsAndSamplesWhateverIsShown) {
  for (const bool transposed : {false, true}) {
    for (const int shown : {0, 1, 2}) {
      Desk desk(kScript, kSamples);
      desk.newAnalysis();
      desk.control<ui::OptionButton>("optSampleBin(" + std::to_string(shown) + ")").Value = true;
      if (transposed) desk.choose("mnuTransposeCell");
      desk.wait();
      desk.page().SetCellText("6", 3, "3 0,0");  // of a bin, a label is the text as it stands
      desk.page().HideRows(2, 2, true);
      desk.grid().user().selectCols(12, 12);
      desk.grid().user().dragColumns(12, 12, 10);
      desk.page().HideCols(desk.page().Col("-2"), desk.page().Col("-2"), true);
      desk.host.faults().startRecording();
      std::string head;
      for (std::string line : kParameters) {
        if (line.starts_with("Sample Bin")) {
          line = desk.control<ui::OptionButton>("optSampleBin(" + std::to_string(shown) + ")").Caption.get();
          std::erase(line, '&');
        }
        head += "\"" + line + "\r\n";
      }
      // The name of the file says nothing about its type.
      EXPECT_EQ(exported(desk, "t.csv", 2),
                head + "1 2L 2L 0\r\n100 3 0,0\r\n" +
                    (transposed ? "Oak_\"1\"__x c\r\n1 1\r\n0 1\r\n" : "c Oak_\"1\"__x\r\n1 1\r\n1 0\r\n"));
      EXPECT_EQ((desk.host.faults().recorded().at({"Progress", "Step"})), 4);
      EXPECT_EQ(desk.page().NumRows(), 3);
    }
  }
}

TEST(Files, CanBeRetriedAtEveryLineWhileAnotherProgramHoldsThem) {
  const Error held(ErrorNumber::PermissionDenied, "file", "held");
  for (const std::int32_t type : {1, 2}) {
    Desk desk(kScript, kSamples);
    desk.newAnalysis();
    const std::string whole = exported(desk, "t", type);
    const auto lines = static_cast<int>(std::count(whole.begin(), whole.end(), '\n'));
    for (int line = -1; line <= lines; ++line) {
      const char* statement = line == -1 ? "OpenForOutput" : line == 0 ? "Close" : "Print";
      for (const bool retry : {true, false}) {
        desk.host.faults().failAt("TextFiles", statement, std::max(line, 1), held);
        desk.front.boxAnswers = {retry ? ui::BoxAnswer::Retry : ui::BoxAnswer::Cancel};
        const std::size_t asked = desk.front.messages.size();
        const std::string text = exported(desk, "t", type);
        EXPECT_TRUE(!retry || text == whole) << type << " " << statement << line;
        ASSERT_EQ(desk.front.messages.size(), asked + 1);
        const auto& shown = desk.front.messages.back();
        EXPECT_THAT(shown.text,
                    ::testing::MatchesRegex("Error open file '.*/t'\\.\rThe file maybe open by other "
                                            "application"));
        EXPECT_TRUE(shown.style == 53 && shown.title.empty());
        EXPECT_EQ(desk.page().NumRows(), 3);
        EXPECT_EQ(desk.page().CellText("-1", 0), "1");
        EXPECT_FALSE(desk.grid().isLocked());
      }
    }
  }
}

TEST(Files, ThatFailOtherwiseAreClosedAndReported) {
  for (const std::int32_t type : {1, 2}) {
    Desk desk(kScript, kSamples);
    desk.newAnalysis();
    desk.host.faults().failAt("TextFiles", "Print", 10, Error(ErrorNumber::DiskFull, "file", "full"));
    desk.front.saveAnswers.emplace_back(host::SaveAnswer{scratch("t"), type});
    EXPECT_THROW(desk.page().Export(), Error);
    EXPECT_EQ(desk.host.framework().reports().front().procedure, type == 1 ? "ExportCSV" : "ExportNTSYSpc");
    EXPECT_EQ(desk.host.platform().Files().FreeFile(), 1) << "the file is still open";
    EXPECT_TRUE(desk.front.messages.empty());
  }
}

TEST(Export, AsksForANameWithItsDialogAndTouchesNothingOnCancel) {
  Desk desk(kScript, kSamples);
  desk.newAnalysis();
  auto& dialog = desk.control<ui::SaveDialog>("ctlDialog");
  std::vector<std::string> folders;
  desk.front.onShowSave = [&](ui::SaveDialog& asked) {
    folders.push_back(asked.InitDir.get());
    EXPECT_EQ(asked.FilterIndex, 1);
    EXPECT_TRUE(asked.CancelError);
    asked.FilterIndex = 2;
    return std::optional<host::SaveAnswer>();
  };
  for (int call = 0; call < 2; ++call) {
    int repaints = 0;
    const auto counts = desk.grid().Repaint.connect([&] { ++repaints; });
    desk.page().Export();
    EXPECT_EQ(repaints, 0);
  }
  EXPECT_EQ(dialog.FileName.get(), "New AFLP 1");
  EXPECT_EQ(dialog.DialogTitle.get(), "Export AFLP");
  EXPECT_EQ(dialog.Filter.get(), "Text Files (Comma Delimited) (*.csv)|*.csv|NTSYSpc (*.nts)|*.nts");
  EXPECT_EQ(dialog.Flags, 6);
  EXPECT_THAT(folders[0], ::testing::StartsWith("/opt/desk/Export"));
  EXPECT_EQ(folders[1], "");
  EXPECT_EQ(desk.host.platform().MousePointer(), 0);
  EXPECT_TRUE(desk.host.framework().reports().empty());
}

}  // namespace
}  // namespace banddesk::test
