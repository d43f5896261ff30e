// The window over the real component and a study file: the tree, its names, the pages, saving, failures.
#include <QApplication>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gmock/gmock.h>

#include "desktop/base/qt_text.h"
#include "desktop/window/grid_ports.h"
#include "desktop/window/main_window.h"
#include "host/grid/grid_control.h"
#include "host/store/sqlite_store.h"

namespace banddesk::test {
namespace {

using desktop::toQString;
using ::testing::HasSubstr;

std::vector<host::NewResult> twoResults() {
  std::vector<host::NewResult> results(2);
  for (std::size_t i = 0; i < results.size(); ++i) {
    results[i].sampleName = "Plant & " + std::to_string(i);
    results[i].fragments.dyes[0] = {{100.1, 150.0 + static_cast<double>(i)}, {500, 700}};
  }
  return results;
}

class Window : public testing::Test {
 protected:
  void SetUp() override {
    QApplication::setOrganizationName(QStringLiteral("Banddesk tests"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
    host::SqliteStore::create(path(), "Oaks");
    workbench.open(path());
    workbench.host().study().addResults(twoResults());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  }

  std::string path() const { return desktop::toText(folder.filePath(QStringLiteral("oaks.study"))); }
  host::Host& host() { return workbench.host(); }

  // The analysis that a user makes with the defaults.
  std::shared_ptr<AFLP> newAnalysis() {
    host().runNewAnalysis();
    host().pages().end(host().pages().openPages().front(), true);
    QTest::qWait(0);
    return host().study().Study()->AFLPs.Item(host().study().Study()->AFLPs.Count());
  }

  QTreeWidgetItem* itemNamed(const char* name) {
    const auto found = tree().findItems(QLatin1String(name), Qt::MatchExactly | Qt::MatchRecursive);
    return found.isEmpty() ? nullptr : found.constFirst();
  }
  desktop::ExplorerPanel& tree() { return *window.findChild<desktop::ExplorerPanel*>(); }
  desktop::PageArea& pages() { return *window.findChild<desktop::PageArea*>(); }

  // Presses a button of the next modal dialog.
  static void answer(const QString& button, QString* text = nullptr) {
    QTimer::singleShot(50, qApp, [=] {
      QWidget* dialog = QApplication::activeModalWidget();
      ASSERT_NE(dialog, nullptr);
      if (const auto* box = qobject_cast<QMessageBox*>(dialog); box != nullptr && text != nullptr)
        *text = box->text();
      for (auto* each : dialog->findChildren<QPushButton*>()) {
        if (each->text().remove(QLatin1Char('&')) == button) return each->click();
      }
      FAIL() << "no button " << button.toStdString();
    });
  }

  // Renames the analysis that is chosen in the tree by typing over its name.
  void rename(const QString& text) {
    QTest::keyClick(&tree(), Qt::Key_F2);
    QTest::qWait(10);
    auto* editor = tree().viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    QTest::qWait(10);
  }

  QTemporaryDir folder;
  desktop::Workbench workbench{desktop::desktopGridPorts()};
  desktop::MainWindow window{workbench};
};

TEST_F(Window, ShowsTheStudyAndItsAnalysesAsATree) {
  EXPECT_NE(itemNamed("Oaks"), nullptr);
  EXPECT_NE(itemNamed("Results (2)"), nullptr);
  EXPECT_NE(itemNamed("Plant & 1"), nullptr);
  newAnalysis();
  ASSERT_NE(itemNamed("New AFLP 1"), nullptr);
  EXPECT_EQ(itemNamed("New AFLP 1")->parent()->text(0), QStringLiteral("AFLP"));
  EXPECT_EQ(pages().tabText(0), QStringLiteral("AFLP - New AFLP 1"));
  host().study().setResultExcluded(1, true);
  EXPECT_TRUE(itemNamed("Plant & 0")->font(0).strikeOut());
}

TEST_F(Window, RenamesInPlaceUpToFiftyCharacters) {
  const auto analysis = newAnalysis();
  tree().setCurrentItem(itemNamed("New AFLP 1"));
  rename(QStringLiteral("First & best"));
  EXPECT_EQ(analysis->Name.get(), "First & best");
  EXPECT_EQ(pages().tabText(0), QStringLiteral("AFLP - First && best"));
  EXPECT_NE(itemNamed("First & best"), nullptr);

  QString told;
  answer(QStringLiteral("OK"), &told);
  rename(QString(51, QLatin1Char('x')));
  QTest::qWait(100);
  EXPECT_EQ(told, QStringLiteral("Maximum length is 50 characters"));
  EXPECT_EQ(analysis->Name.get(), "First & best");
  EXPECT_NE(itemNamed("First & best"), nullptr);

  rename(QString(50, QLatin1Char('y')));
  EXPECT_EQ(analysis->Name.get(), std::string(50, 'y'));
}

TEST_F(Window, SavesWhatIsChosenAndAsksBeforeItCloses) {
  newAnalysis();
  EXPECT_TRUE(window.isWindowModified());
  answer(QStringLiteral("Cancel"));
  EXPECT_FALSE(window.close());
  EXPECT_TRUE(workbench.isOpen());
  window.activateWindow();  // no window manager here does it
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  answer(QStringLiteral("Save"));
  QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
  EXPECT_FALSE(window.isWindowModified());
  EXPECT_TRUE(window.close());
  EXPECT_FALSE(workbench.isOpen());
  EXPECT_THAT(host::SqliteStore(path(), host::SqliteStore::Access::Read).analysisIds(), testing::SizeIs(1));
}

TEST_F(Window, ListsAFailureOnceAndOpensTheLockedPageAnew) {
  const auto analysis = newAnalysis();
  const auto failed = host().pages().find("AFLP", analysis);
  host().faults().failAt("GridUtilities", "BuildSortInfo", 1,
                         Error(ErrorNumber::Internal, "Test", "The disk is away."));
  failed->control()->Controls().find<host::GridControl>("grdAFLP")->doubleClick(0, 1);
  host().faults().disarm();
  QTest::qWait(0);
  EXPECT_EQ(window.findChild<desktop::ErrorPanel*>()->count(), 1);
  QPushButton* reopen = nullptr;
  for (auto* each : pages().findChildren<QPushButton*>()) {
    if (each->text() == QStringLiteral("&Reopen the page") && each->isVisible()) reopen = each;
  }
  ASSERT_NE(reopen, nullptr);
  reopen->click();
  EXPECT_NE(host().pages().find("AFLP", analysis), failed);
  EXPECT_EQ(pages().count(), 1);
}

TEST_F(Window, LeavesTheOpenStudyAloneWhenAnotherCannotBeOpened) {
  QString told;
  answer(QStringLiteral("OK"), &told);
  window.openFiles({folder.filePath(QStringLiteral("none.study"))});
  EXPECT_THAT(told.toStdString(), HasSubstr("none.study"));
  EXPECT_NE(itemNamed("Oaks"), nullptr);
}

TEST_F(Window, OpensTheGuideAtThePageOfThePartInFocus) {
  newAnalysis();
  auto* quality = window.findChild<desktop::QualityPanel*>();
  window.findChild<QDockWidget*>(QStringLiteral("quality"))->show();
  for (const auto& [focus, page] :
       {std::pair<QWidget*, const char*>{quality->findChild<QLineEdit*>(), "quality.md"},
        {&tree(), "results.md"}}) {
    window.activateWindow();
    focus->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return focus->hasFocus(); }));
    QTest::keyClick(focus, Qt::Key_F1);
    desktop::HelpWindow* help = nullptr;
    for (QWidget* each : QApplication::topLevelWidgets()) {
      if (auto* found = qobject_cast<desktop::HelpWindow*>(each)) help = found;
    }
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(help->browser().source().fileName(), QLatin1String(page));
  }
}

// The letters of the menus and of the pages' controls must not take each other's keys.
TEST_F(Window, GivesEachLetterOnce) {
  newAnalysis();
  std::map<QChar, QStringList> owners;
  const auto note = [&](const QString& text) {
    const auto at = text.indexOf(QRegularExpression(QStringLiteral("&[^&]")));
    if (at >= 0) owners[text[at + 1].toLower()].append(text);
  };
  for (const QAction* menu : window.menuBar()->actions()) note(menu->text());
  for (const auto& control : host().pages().openPages().front()->control()->Controls().all()) {
    if (const auto* label = dynamic_cast<const ui::Label*>(control)) note(toQString(label->Caption.get()));
    if (const auto* box = dynamic_cast<const ui::CheckBox*>(control)) note(toQString(box->Caption.get()));
    if (const auto* option = dynamic_cast<const ui::OptionButton*>(control))
      note(toQString(option->Caption.get()));
    if (const auto* button = dynamic_cast<const ui::CommandButton*>(control))
      note(toQString(button->Caption.get()));
  }
  for (const auto& [letter, texts] : owners)
    EXPECT_EQ(texts.size(), 1) << texts.join(QStringLiteral(", ")).toStdString();
}

}  // namespace
}  // namespace banddesk::test
