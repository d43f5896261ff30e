// The review of bins by mouse and keys on a real screen: ten samples over one another, from bin to bin, and
// the table follows what is decided there.
#include <QApplication>
#include <QCheckBox>
#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>

#include "desktop/base/qt_text.h"
#include "desktop/views/bin_review.h"
#include "desktop/views/result_view_page.h"
#include "host/simulation/peak_table_writer.h"
#include "host/simulation/simulator.h"
#include "tests/road/desk_at_screen.h"

namespace banddesk::road {
namespace {

constexpr std::int32_t kFirstSample = 10;

QString simulatedTable(const QString& folder) {
  host::simulation::Settings settings;
  settings.samples = 16;
  settings.replicates = 2;
  const QString path = folder + QStringLiteral("/runs.txt");
  std::ofstream out(desktop::toText(path));
  host::simulation::writePeakTable(out, host::simulation::simulate(settings));
  return path;
}

std::ptrdiff_t excludedByHand(const DeskAtScreen& desk) {
  const auto marks = desk.results().Analysis().manualExcluded;
  return std::ranges::count_if(marks, [](std::uint8_t mark) { return mark != 0; });
}

QWidget* boxNamed(const QString& text) {
  for (QWidget* widget : QApplication::allWidgets()) {
    const auto* box = qobject_cast<QCheckBox*>(widget);
    if (box != nullptr && box->isVisible() && box->accessibleName() == text) return widget;
  }
  return nullptr;
}

TEST(Review, WalksTheBinsAndTheTableFollows) {
  DeskAtScreen desk;
  User& user = desk.user;
  desk.makeStudy(QStringLiteral("runs"), simulatedTable(desk.folder));
  desk.makeAnalysis();
  // What is excluded stays in sight, so that it can be brought back.
  user.click([] { return boxNamed(QStringLiteral("Show Excluded Elements")); });
  user.until("the shown ones", [&] {
    const host::GridControl& grid = desk.table()->grid();
    return grid.rowAxis().visibility.visibleUpTo(grid.RowCount()) == grid.RowCount();
  });
  user.clickAt(desk.cell(0, kFirstSample));
  User::pause();
  user.clickAt(desk.cell(0, kFirstSample + 9), 1, 1, QStringLiteral("shift"));
  user.key(QStringLiteral("ctrl+b"));
  const auto review = [&] { return desk.window().findChild<desktop::ResultViewPage*>(); };
  user.until("the overlay", [&] { return review() != nullptr && review()->isVisible(); });
  user.picture(QStringLiteral("review"));
  for (int step = 0; step < 20; ++step) user.key(QStringLiteral("n"));
  user.picture(QStringLiteral("review-20"));
  const auto row = [&] {
    return User::see<std::int32_t>([&] { return desk.anyTable()->grid().currentRow(); });
  };
  EXPECT_EQ(row(), 21);

  // Bins that a filter has excluded are passed by.
  const auto toNextFree = [&] {
    do user.key(QStringLiteral("n"));
    while (User::see<bool>([&] {
      return !review()->findChild<desktop::BinReview*>()->status().endsWith(QStringLiteral(" not excluded"));
    }));
  };
  toNextFree();
  user.key(QStringLiteral("x"));
  user.until("one excluded", [&] { return excludedByHand(desk) == 1; });
  const std::int32_t first = row();
  toNextFree();
  user.key(QStringLiteral("x"));
  user.until("two excluded", [&] { return excludedByHand(desk) == 2; });
  user.picture(QStringLiteral("review-excluded"));
  while (row() > first) user.key(QStringLiteral("p"));
  user.key(QStringLiteral("x"));
  user.until("one brought back", [&] { return excludedByHand(desk) == 1; });
  EXPECT_EQ(User::see<std::size_t>([&] { return desk.failures(); }), 0U);
}

}  // namespace
}  // namespace banddesk::road
