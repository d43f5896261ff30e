// A scientist's day, by mouse and keys on a real screen: from peak tables to the saved study, and back to it
// on another day. Its pictures are left for people to look at.
#include <QApplication>
#include <QFile>
#include <QProcess>
#include <filesystem>
#include <gmock/gmock.h>

#include "desktop/base/qt_text.h"
#include "desktop/controls/spin_buttons.h"
#include "tests/road/desk_at_screen.h"

namespace banddesk::road {
namespace {

using desktop::toQString;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr std::int32_t kFirstSample = 10;

std::string peakTable() {
  const char* shared = std::getenv("BANDDESK_SHARED");
  const std::filesystem::path folder =
      shared != nullptr ? shared : std::filesystem::path(BANDDESK_SOURCE_DIR).parent_path() / "shared";
  return (folder / "data/peak-scanner/eaacmcat.txt").string();
}

std::string contents(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

std::string output(const QString& program, const QStringList& arguments) {
  QProcess process;
  process.start(program, arguments);
  process.waitForFinished(20000);
  return process.readAllStandardOutput().toStdString();
}

class Day : public testing::Test {
 public:
  void SetUp() override {
    if (!std::filesystem::exists(peakTable())) GTEST_SKIP() << "the peak tables are not here";
    desk = std::make_unique<DeskAtScreen>();
  }

  User& user() { return desk->user; }
  void key(const char* keys) { user().key(QLatin1String(keys)); }
  void untilAnalysed(const std::function<bool()>& holds) { user().until("the analysis", holds); }

  void analyse();
  void correct();
  void output();
  void comeBack();
  void copyAndPrint();

  std::unique_ptr<DeskAtScreen> desk;
  std::vector<std::string> header;
  std::vector<std::string> numbers;
  std::string csv;
};

void Day::analyse() {
  desk->makeStudy(QStringLiteral("maize"), toQString(peakTable()));
  desk->makeAnalysis();
  ASSERT_EQ(desk->cols(), 40);
  ASSERT_EQ(desk->control("txtMaxBinWidth"), "1.00");
  const std::int32_t before = desk->rows();

  // A burst of clicks is one analysis, half a second after the last.
  const auto up = [this]() -> QWidget* {
    for (auto* buttons : desk->table()->window()->findChildren<desktop::SpinButtons*>()) {
      if (buttons->isVisible()) return &buttons->up();
    }
    return nullptr;
  };
  for (int i = 0; i < 10; ++i) user().click(up);
  EXPECT_EQ(desk->control("txtMaxBinWidth"), "1.50");
  untilAnalysed([&] { return desk->table()->grid().RowCount() != before; });
}

void Day::correct() {
  // Sorted by the number of samples: a double click on the header.
  user().clickAt(desk->cell(0, 3), 1, 2);
  user().until("the order", [&] {
    const host::GridControl& grid = desk->table()->grid();
    return std::stoi(grid.GetValue(1, 3)) <= std::stoi(grid.GetValue(2, 3)) &&
           std::stoi(grid.GetValue(2, 3)) <= std::stoi(grid.GetValue(grid.RowCount(), 3));
  });

  user().clickAt(desk->cell(2, 5), 3);
  desk->choose(QStringLiteral("Transpose"));
  user().until("the exchange", [&] { return desk->results().Transpose(); });
  user().picture(QStringLiteral("transposed"));
  user().clickAt(desk->cell(2, 5), 3);
  desk->choose(QStringLiteral("Transpose"));
  user().until("the exchange back", [&] { return !desk->results().Transpose(); });

  // The second sample goes in front of the first.
  const std::string second = desk->text(0, kFirstSample + 1);
  user().clickAt(desk->cell(0, kFirstSample + 1));
  User::pause();
  const QPoint target = desk->cell(0, kFirstSample);
  const int half = User::see<int>([&] { return desk->table()->cellRect(0, kFirstSample).width() / 2 - 2; });
  user().drag(desk->cell(0, kFirstSample + 1), target - QPoint(half, 0));
  EXPECT_EQ(desk->text(0, kFirstSample), second);

  user().clickAt(desk->cell(0, 2), 3);
  desk->choose(QStringLiteral("Lock Column"));
  user().until("the lock", [&] { return desk->table()->grid().FrozenCols() == 2; });

  // A bin and a sample are excluded, and hidden with that.
  user().clickAt(desk->cell(4, 1));
  user().clickAt(desk->cell(4, 1), 3);
  desk->choose(QStringLiteral("Exclude Bin"));
  user().until("the hidden bin", [&] { return desk->table()->grid().IsRowHidden(4); });
  user().clickAt(desk->cell(0, kFirstSample + 2));
  user().clickAt(desk->cell(0, kFirstSample + 2), 3);
  user().picture(QStringLiteral("column-menu"));
  desk->choose(QStringLiteral("Exclude Column"));
  user().until("the hidden sample", [&] { return desk->table()->grid().IsColHidden(kFirstSample + 2); });
}

void Day::output() {
  for (const auto& [file, type] : {std::pair{"/maize.csv", 1}, {"/maize.nts", 2}}) {
    user().clickAt(desk->cell(2, 5), 3);
    desk->choose(QStringLiteral("Export Grid..."));
    user().untilDialog(QStringLiteral("Export AFLP"));
    key("ctrl+a");
    user().type(desk->folder + QLatin1String(file));
    if (type == 2) {
      user().click([] {
        return QApplication::activeModalWidget()->findChild<QWidget*>(QStringLiteral("fileTypeCombo"));
      });
      key("Down");
      key("Return");
    }
    user().picture(QStringLiteral("export"));
    user().click([] { return buttonNamed(QStringLiteral("Save")); });
    user().untilNoDialog();
  }
  csv = contents(desk->folder + QStringLiteral("/maize.csv"));
  EXPECT_THAT(csv.substr(0, 200), StartsWith("\"Bin\",\"Dye\""));
  EXPECT_THAT(contents(desk->folder + QStringLiteral("/maize.nts")).substr(0, 400), HasSubstr("L 30L 0"));
  user().keep(desk->folder + QStringLiteral("/maize.csv"));
  user().keep(desk->folder + QStringLiteral("/maize.nts"));
  header = desk->line(Axis::Rows, 0, desk->cols());
  numbers = desk->line(Axis::Columns, 7, desk->rows());

  key("ctrl+s");
  user().untilDialog(QStringLiteral("Save Study"));
  user().picture(QStringLiteral("save"));
  key("Return");
  user().untilNoDialog();
  key("ctrl+q");
  desk->untilClosed();
}

void Day::comeBack() {
  desk->start();
  key("ctrl+o");
  desk->giveFile(QStringLiteral("Open Study"), desk->folder + QStringLiteral("/maize.study"));
  user().untilNoDialog();
  // The explorer: study, folder of analyses, the analysis.
  user().click([&] { return desk->explorer(); });
  key("Home");
  key("Down");
  key("Down");
  key("Return");
  untilAnalysed([&] { return desk->table() != nullptr && desk->table()->grid().RowCount() > 0; });
  user().picture(QStringLiteral("another-day"));
  EXPECT_EQ(desk->control("txtMaxBinWidth"), "1.50");
  EXPECT_EQ(desk->line(Axis::Rows, 0, desk->cols()), header);
  EXPECT_EQ(desk->line(Axis::Columns, 7, desk->rows()), numbers);
  EXPECT_TRUE(desk->isHidden(Axis::Rows, 4));
  EXPECT_TRUE(desk->isHidden(Axis::Columns, kFirstSample + 2));
  EXPECT_EQ(User::see<std::int32_t>([&] { return desk->table()->grid().FrozenCols(); }), 2);
}

void Day::copyAndPrint() {
  // Copying rebuilds the table, which loses what was decided by hand: it asks.
  user().clickAt(desk->cell(2, 5), 3);
  desk->choose(QStringLiteral("Copy Grid"));
  user().untilDialog(QStringLiteral("Inclusion/Exclusion Warning"));
  user().picture(QStringLiteral("warning"));
  user().click([] { return buttonNamed(QStringLiteral("OK")); });
  user().untilNoDialog();
  const auto clipboard = [](const char* type) {
    return ::banddesk::road::output(QStringLiteral("xclip"),
                                    {QStringLiteral("-selection"), QStringLiteral("clipboard"),
                                     QStringLiteral("-o"), QStringLiteral("-t"), QLatin1String(type)});
  };
  EXPECT_THAT(clipboard("UTF8_STRING").substr(0, 200), StartsWith("Bin\tDye\t"));
  EXPECT_THAT(clipboard("text/html").substr(0, 2000), HasSubstr("<table"));

  user().clickAt(desk->cell(2, 5), 3);
  desk->choose(QStringLiteral("Print Grid..."));
  key("Down");
  key("Return");
  user().until("the pages", [] { return buttonNamed(QStringLiteral("Save as PDF…")) != nullptr; });
  user().picture(QStringLiteral("print"));
  user().click([] { return buttonNamed(QStringLiteral("Save as PDF…")); });
  const QString pdf = desk->folder + QStringLiteral("/maize.pdf");
  desk->giveFile(QStringLiteral("Save as PDF"), pdf);
  user().untilNoDialog();
  EXPECT_THAT(::banddesk::road::output(QStringLiteral("pdftotext"), {pdf, QStringLiteral("-")}),
              AllOf(HasSubstr("AFLP - New AFLP 1"), HasSubstr("Study - maize")));
}

TEST_F(Day, LeadsFromPeakTablesToTheSavedStudyAndBack) {
  for (const auto step : {&Day::analyse, &Day::correct, &Day::output, &Day::comeBack, &Day::copyAndPrint}) {
    (this->*step)();
    if (HasFatalFailure()) return;
  }
  EXPECT_TRUE(User::see<bool>([&] { return desk->failures() == 0; }));
}

}  // namespace
}  // namespace banddesk::road
