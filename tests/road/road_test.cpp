// A scientist's day, by mouse and keys on a real screen: from peak tables to the saved study, back to it on
// another day, and through a review of its bins. Its pictures are left for people to look at.
#include <QApplication>
#include <QFile>
#include <QProcess>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

#include "desktop/base/qt_text.h"
#include "desktop/controls/spin_buttons.h"
#include "desktop/views/bin_review.h"
#include "desktop/views/result_view_page.h"
#include "host/simulation/peak_table_writer.h"
#include "host/simulation/simulator.h"
#include "tests/road/desk_at_screen.h"

namespace banddesk::road {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr std::int32_t kFirstSample = 10;
constexpr std::int32_t kMeanSize = 7;  // its column

struct Runs {
  QString table;
  std::int32_t samples;
};

// Real ones where they are at hand.
Runs runs(const QString& folder) {
  const char* const shared = std::getenv("BANDDESK_SHARED");
  const std::filesystem::path place =
      shared != nullptr ? shared : std::filesystem::path(BANDDESK_SOURCE_DIR).parent_path() / "shared";
  const auto real = place / "data/peak-scanner/eaacmcat.txt";
  if (std::filesystem::exists(real)) return {desktop::toQString(real.string()), 31};
  host::simulation::Settings settings;
  settings.samples = 16;
  settings.replicates = 2;
  const QString path = folder + QStringLiteral("/runs.txt");
  std::ofstream out(desktop::toText(path));
  host::simulation::writePeakTable(out, host::simulation::simulate(settings));
  return {path, static_cast<std::int32_t>(settings.samples + settings.replicates)};
}

std::string contents(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

std::string outputOf(const QString& program, const QStringList& arguments) {
  QProcess process;
  process.start(program, arguments);
  process.waitForFinished(20000);
  return process.readAllStandardOutput().toStdString();
}

class Day : public testing::Test {
 public:
  void key(const char* keys) { user.key(QLatin1String(keys)); }
  host::GridControl& grid() { return desk.table()->grid(); }
  void chooseOver(QPoint cell, const QString& item) {
    user.clickAt(cell, 3);
    desk.choose(item);
  }

  void analyse();
  void correct();
  void output();
  void comeBack();
  void copyAndPrint();
  void review();

  std::string binWidth();
  std::vector<std::string> shown();
  std::int32_t currentRow();
  std::ptrdiff_t excludedByHand();
  void goToFreeBin();

  DeskAtScreen desk;
  User& user = desk.user;
  std::int32_t sampleCount = 0;
  std::vector<std::string> saved;
};

std::string Day::binWidth() {
  return User::see<std::string>([&] {
    const auto* box = desk.results().Controls().find<ui::TextBox>("txtMaxBinWidth");
    return box->Text.get();
  });
}

// What a study must bring back: the names of the visible samples, and the mean sizes of the visible bins.
std::vector<std::string> Day::shown() {
  return User::see<std::vector<std::string>>([&] {
    std::vector<std::string> texts{std::to_string(grid().FrozenCols())};
    for (std::int32_t col = 0; col <= grid().ColCount(); ++col) {
      if (!grid().IsColHidden(col)) texts.push_back(grid().GetValue(0, col));
    }
    for (std::int32_t row = 1; row <= grid().RowCount(); ++row) {
      if (!grid().IsRowHidden(row)) texts.push_back(grid().GetValue(row, kMeanSize));
    }
    return texts;
  });
}

void Day::analyse() {
  const Runs read = runs(desk.folder);
  sampleCount = read.samples;
  desk.makeStudy(QStringLiteral("maize"), read.table);
  desk.makeAnalysis();
  const auto rows = [&] { return grid().RowCount(); };
  ASSERT_EQ(User::see<std::int32_t>([&] { return grid().ColCount(); }), kFirstSample - 1 + sampleCount);
  const auto before = User::see<std::int32_t>(rows);

  // A burst of clicks is one analysis, half a second after the last.
  const auto up = [this]() -> QWidget* {
    for (auto* buttons : desk.table()->window()->findChildren<desktop::SpinButtons*>()) {
      if (buttons->isVisible()) return &buttons->up();
    }
    return nullptr;
  };
  for (int i = 0; i < 10; ++i) user.click(up);
  EXPECT_EQ(binWidth(), "1.50");
  user.until("the analysis", [&] { return rows() != before; });
}

void Day::correct() {
  // Sorted by the number of samples: a double click on the header.
  user.clickAt(desk.cell(0, 3), 1, 2);
  user.until("the order", [&] {
    const auto samples = [&](std::int32_t row) { return std::stoi(grid().GetValue(row, 3)); };
    return samples(1) <= samples(2) && samples(2) <= samples(grid().RowCount());
  });

  chooseOver(desk.cell(2, 5), QStringLiteral("Transpose"));
  user.until("the exchange", [&] { return desk.results().Transpose(); });
  user.picture(QStringLiteral("transposed"));
  chooseOver(desk.cell(2, 5), QStringLiteral("Transpose"));
  user.until("the exchange back", [&] { return !desk.results().Transpose(); });

  // The second sample goes in front of the first.
  const auto firstSample = [&] { return grid().GetValue(0, kFirstSample); };
  const auto before = User::see<std::string>(firstSample);
  user.clickAt(desk.cell(0, kFirstSample + 1));
  User::pause();
  const int half = User::see<int>([&] { return desk.table()->cellRect(0, kFirstSample).width() / 2 - 2; });
  user.drag(desk.cell(0, kFirstSample + 1), desk.cell(0, kFirstSample) - QPoint(half, 0));
  EXPECT_NE(User::see<std::string>(firstSample), before);

  chooseOver(desk.cell(0, 2), QStringLiteral("Lock Column"));
  user.until("the lock", [&] { return grid().FrozenCols() == 2; });

  // A bin and a sample are excluded, and hidden with that.
  user.clickAt(desk.cell(4, 1));
  chooseOver(desk.cell(4, 1), QStringLiteral("Exclude Bin"));
  user.until("the hidden bin", [&] { return grid().IsRowHidden(4); });
  user.clickAt(desk.cell(0, kFirstSample + 2));
  user.clickAt(desk.cell(0, kFirstSample + 2), 3);
  user.picture(QStringLiteral("column-menu"));
  desk.choose(QStringLiteral("Exclude Column"));
  user.until("the hidden sample", [&] { return grid().IsColHidden(kFirstSample + 2); });
}

void Day::output() {
  for (const auto& [file, type] : {std::pair{"/maize.csv", 1}, {"/maize.nts", 2}}) {
    chooseOver(desk.cell(2, 5), QStringLiteral("Export Grid..."));
    user.untilDialog(QStringLiteral("Export AFLP"));
    key("ctrl+a");
    user.type(desk.folder + QLatin1String(file));
    if (type == 2) {
      user.click([] {
        return QApplication::activeModalWidget()->findChild<QWidget*>(QStringLiteral("fileTypeCombo"));
      });
      key("Down");
      key("Return");
    }
    user.picture(QStringLiteral("export"));
    user.click([] { return buttonNamed(QStringLiteral("Save")); });
    user.untilNoDialog();
  }
  EXPECT_THAT(contents(desk.folder + QStringLiteral("/maize.csv")), StartsWith("\"Bin\",\"Dye\""));
  EXPECT_THAT(contents(desk.folder + QStringLiteral("/maize.nts")),
              HasSubstr(std::to_string(sampleCount - 1) + "L 0"));
  saved = shown();

  key("ctrl+s");
  user.untilDialog(QStringLiteral("Save Study"));
  user.picture(QStringLiteral("save"));
  key("Return");
  user.untilNoDialog();
  key("ctrl+q");
  user.until("the end of the window", [this] { return !desk.window().isVisible(); });
}

void Day::comeBack() {
  desk.start();
  key("ctrl+o");
  desk.giveFile(QStringLiteral("Open Study"), desk.folder + QStringLiteral("/maize.study"));
  user.untilNoDialog();
  // The explorer: study, folder of analyses, the analysis.
  user.click([&] { return desk.window().findChild<desktop::ExplorerPanel*>(); });
  key("Home");
  key("Down");
  key("Down");
  key("Return");
  user.until("the analysis", [&] { return desk.table() != nullptr && grid().RowCount() > 0; });
  user.picture(QStringLiteral("another-day"));
  EXPECT_EQ(binWidth(), "1.50");
  EXPECT_EQ(shown(), saved);
}

void Day::copyAndPrint() {
  // Copying rebuilds the table, which loses what was decided by hand: it asks.
  chooseOver(desk.cell(2, 5), QStringLiteral("Copy Grid"));
  user.untilDialog(QStringLiteral("Inclusion/Exclusion Warning"));
  user.picture(QStringLiteral("warning"));
  user.click([] { return buttonNamed(QStringLiteral("OK")); });
  user.untilNoDialog();
  const auto clipboard = [](const char* type) {
    return outputOf(QStringLiteral("xclip"),
                    {QStringLiteral("-selection"), QStringLiteral("clipboard"), QStringLiteral("-o"),
                     QStringLiteral("-t"), QLatin1String(type)});
  };
  EXPECT_THAT(clipboard("UTF8_STRING").substr(0, 200), StartsWith("Bin\tDye\t"));
  EXPECT_THAT(clipboard("text/html").substr(0, 2000), HasSubstr("<table"));

  chooseOver(desk.cell(2, 5), QStringLiteral("Print Grid..."));
  key("Down");
  key("Return");
  user.until("the pages", [] { return buttonNamed(QStringLiteral("Save as PDF…")) != nullptr; });
  user.picture(QStringLiteral("print"));
  user.click([] { return buttonNamed(QStringLiteral("Save as PDF…")); });
  const QString pdf = desk.folder + QStringLiteral("/maize.pdf");
  desk.giveFile(QStringLiteral("Save as PDF"), pdf);
  user.untilNoDialog();
  EXPECT_THAT(outputOf(QStringLiteral("pdftotext"), {pdf, QStringLiteral("-")}),
              AllOf(HasSubstr("AFLP - New AFLP 1"), HasSubstr("Study - maize")));
}

std::int32_t Day::currentRow() {
  return User::see<std::int32_t>([&] { return desk.anyTable()->grid().currentRow(); });
}

std::ptrdiff_t Day::excludedByHand() {
  const auto analysis = cast<AFLP>(desk.results().Page()->BoundObject(), "AFLP");
  const auto bands = desktop::binBands(*analysis, desk.results());
  return std::ranges::count(bands, desktop::BinMark::ExcludedByHand, &desktop::BinBand::mark);
}

// Bins that a filter has excluded are passed by.
void Day::goToFreeBin() {
  const auto isFree = [&] {
    const auto* review = desk.window().findChild<desktop::BinReview*>();
    return review->status().endsWith(QStringLiteral(" not excluded"));
  };
  do key("n");
  while (!User::see<bool>(isFree));
}

// Ten samples over one another, from bin to bin, and the table follows what is decided there.
void Day::review() {
  // What is excluded stays in sight, so that it can be brought back.
  user.click([] { return buttonNamed(QStringLiteral("Show Excluded Elements")); });
  user.until("the shown ones",
             [&] { return grid().rowAxis().visibility.visibleUpTo(grid().RowCount()) == grid().RowCount(); });
  user.clickAt(desk.cell(0, kFirstSample));
  User::pause();
  user.clickAt(desk.cell(0, kFirstSample + 9), 1, 1, QStringLiteral("shift"));
  const std::int32_t start = currentRow();
  key("ctrl+b");
  user.until("the overlay", [&] {
    const auto* view = desk.window().findChild<desktop::ResultViewPage*>();
    return view != nullptr && view->isVisible();
  });
  for (int step = 0; step < 20; ++step) key("n");
  user.picture(QStringLiteral("review"));
  EXPECT_EQ(currentRow(), start + 20);

  goToFreeBin();
  key("x");
  user.until("one excluded", [&] { return excludedByHand() == 1; });
  const std::int32_t first = currentRow();
  goToFreeBin();
  key("x");
  user.until("two excluded", [&] { return excludedByHand() == 2; });
  user.picture(QStringLiteral("review-excluded"));
  while (currentRow() > first) key("p");
  key("x");
  user.until("one brought back", [&] { return excludedByHand() == 1; });
}

TEST_F(Day, LeadsFromPeakTablesToTheSavedStudyAndBackToAReview) {
  for (const auto step :
       {&Day::analyse, &Day::correct, &Day::output, &Day::comeBack, &Day::copyAndPrint, &Day::review}) {
    (this->*step)();
    if (HasFatalFailure()) return;
  }
  EXPECT_TRUE(User::see<bool>([&] { return desk.hasNoFailure(); }));
}

}  // namespace
}  // namespace banddesk::road
