// The window over the real component and a study file: the tree, its names, the pages, saving, failures.
#include <QApplication>
#include <QDialog>
#include <QDockWidget>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <gmock/gmock.h>

#include "desktop/base/qt_text.h"
#include "desktop/views/result_views.h"
#include "desktop/window/grid_ports.h"
#include "desktop/window/main_window.h"
#include "host/grid/grid_control.h"
#include "host/store/sqlite_store.h"
#include "tests/desktop/modal.h"

namespace banddesk::test {
namespace {

namespace fs = std::filesystem;
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

class Window : public desktop::OwnFolder {
 protected:
  void SetUp() override {
    host::SqliteStore::create(study, "Oaks");
    workbench.open(study);
    workbench.host().study().addResults(twoResults());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  }

  host::Host& host() { return workbench.host(); }

  // The analysis that a user makes with the defaults.
  std::shared_ptr<AFLP> newAnalysis() {
    host().runNewAnalysis();
    host().pages().end(host().pages().openPages().back(), true);
    QTest::qWait(0);
    return host().study().Study()->AFLPs.Item(host().study().Study()->AFLPs.Count());
  }

  QTreeWidgetItem* itemNamed(const char* name) {
    const auto found = tree().findItems(QLatin1String(name), Qt::MatchExactly | Qt::MatchRecursive);
    return found.isEmpty() ? nullptr : found.constFirst();
  }
  desktop::ExplorerPanel& tree() { return *window.findChild<desktop::ExplorerPanel*>(); }
  desktop::PageArea& pages() { return *window.findChild<desktop::PageArea*>(); }

  // Presses a button of the next modal dialog, whenever it opens.
  void answer(const char* button, QString* text = nullptr) {
    answering.callOnTimeout([=, this] {
      const QWidget* dialog = QApplication::activeModalWidget();
      if (dialog == nullptr) return;
      answering.stop();
      answering.disconnect();
      if (text != nullptr) *text = dialog->property("text").toString();
      desktop::buttonCalled(*dialog, button).click();
    });
    answering.start(1);
  }

  // Runs each act on the next modal dialog, one after the other.
  using Act = std::function<void(QWidget&)>;
  void answerAll(std::vector<Act> acts) {
    auto waiting = std::make_shared<std::vector<Act>>(std::move(acts));
    auto last = std::make_shared<QPointer<QWidget>>();
    answering.disconnect();
    answering.callOnTimeout([=, this] {
      QWidget* dialog = QApplication::activeModalWidget();
      if (dialog == nullptr || dialog == *last) return;
      *last = dialog;
      const Act act = waiting->front();
      waiting->erase(waiting->begin());
      if (waiting->empty()) answering.stop();
      act(*dialog);
    });
    answering.start(1);
  }

  // Renames the analysis that is chosen in the tree by typing over its name.
  void rename(const QString& text) {
    QTest::keyClick(&tree(), Qt::Key_F2);
    QLineEdit* editor = nullptr;
    ASSERT_TRUE(QTest::qWaitFor([&] {
      editor = tree().viewport()->findChild<QLineEdit*>();
      return editor != nullptr && editor->isVisible();
    }));
    editor->selectAll();
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
  }

  const std::string study = desktop::toText(path("oaks.study"));
  desktop::Workbench workbench{desktop::desktopGridPorts()};
  desktop::MainWindow window{workbench};
  QTimer answering;
};

TEST_F(Window, RenamesInPlaceAndTellsWhenANameIsTooLong) {
  const auto analysis = newAnalysis();
  tree().setCurrentItem(itemNamed("New AFLP 1"));
  rename(QStringLiteral("First & best"));
  EXPECT_TRUE(QTest::qWaitFor([&] { return itemNamed("First & best") != nullptr; }));
  EXPECT_EQ(analysis->Name.get(), "First & best");
  EXPECT_EQ(pages().tabText(0), QStringLiteral("AFLP - First && best"));
  QString told;
  answer("OK", &told);
  rename(QString(51, QLatin1Char('x')));
  EXPECT_TRUE(QTest::qWaitFor([&] { return !told.isEmpty(); }));
  EXPECT_EQ(told, QStringLiteral("Maximum length is 50 characters"));
  EXPECT_TRUE(QTest::qWaitFor([&] { return itemNamed("First & best") != nullptr; }));
}

TEST_F(Window, SavesWhatIsChosenAndAsksBeforeItCloses) {
  newAnalysis();
  EXPECT_TRUE(window.isWindowModified());
  answer("Cancel");
  EXPECT_FALSE(window.close());
  EXPECT_TRUE(workbench.isOpen());
  window.activateWindow();  // no window manager here does it
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  answer("Save");
  QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
  EXPECT_FALSE(window.isWindowModified());
  EXPECT_TRUE(window.close());
  EXPECT_FALSE(workbench.isOpen());
  EXPECT_THAT(host::SqliteStore(study, host::SqliteStore::Access::Read).analysisIds(), testing::SizeIs(1));
}

// Two dialogs one after the other: why it failed, and where to.
TEST_F(Window, TellsWhyASaveFailedAndSavesTheStudyElsewhere) {
  newAnalysis();
  const QString moved = path("moved.study"), other = path("other.study");
  ASSERT_TRUE(QFile::rename(desktop::toQString(study), moved));
  QString told;
  const auto press = [&](const char* text) {
    return [=, &told](const QWidget& dialog) {
      told += dialog.property("text").toString();
      desktop::buttonCalled(dialog, text).click();
    };
  };
  const auto name = [&](QWidget& dialog) {
    dialog.findChild<QLineEdit*>()->setText(other);
    static_cast<QDialog&>(dialog).accept();
  };
  answerAll({press("Save"), press("Retry"), press("Save As..."), name});
  QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(told.count(QStringLiteral("the file was moved or deleted while it was open")), 2);
  EXPECT_EQ(workbench.path(), desktop::toText(other));
  EXPECT_FALSE(window.isWindowModified());
  EXPECT_THAT(host::SqliteStore(desktop::toText(moved)).analysisIds(), testing::IsEmpty());
  workbench.close();
  EXPECT_THAT(host::SqliteStore(desktop::toText(other)).analysisIds(), testing::SizeIs(1));
  QFile::setPermissions(other, QFile::ReadOwner);
  fs::create_hard_link(desktop::toText(moved), desktop::toText(path("link.study")));
  workbench.open(desktop::toText(moved));
  EXPECT_EQ(window.windowTitle(), QStringLiteral("Oaks[*] (read-only) - Banddesk"));
}

TEST_F(Window, LeavesWithoutSavingWhatCannotBeSaved) {
  newAnalysis();
  newAnalysis()->Name = "New AFLP 1";
  answerAll({[](const QWidget& dialog) {
    EXPECT_THAT(desktop::toText(dialog.property("text").toString()), HasSubstr("named \"New AFLP 1\""));
    desktop::buttonCalled(dialog, "Rename...").click();
  }});
  EXPECT_FALSE(window.close());
  EXPECT_TRUE(QTest::qWaitFor([&] { return tree().viewport()->findChild<QLineEdit*>() != nullptr; }));
  answerAll({[](const QWidget& dialog) { desktop::buttonCalled(dialog, "Don't Save").click(); }});
  EXPECT_TRUE(window.close());
}

TEST_F(Window, OpensAPageAnewThatItsOwnProcedureLeftHalfMade) {
  const auto analysis = newAnalysis();
  newAnalysis();
  pages().setCurrentIndex(0);
  const auto former = host().pages().find("AFLP", analysis);
  host().faults().failAt("GridUtilities", "BuildSortInfo", 1,
                         Error(ErrorNumber::Internal, "Test", "The disk is away."));
  host().pages().userEvent(*former, [&] {
    former->control()->Controls().find<host::GridControl>("grdAFLP")->user().doubleClick(0, 1);
  });
  EXPECT_NE(host().pages().find("AFLP", analysis), former);
  EXPECT_EQ(pages().count(), 2);
  EXPECT_EQ(pages().currentIndex(), 0);
  EXPECT_EQ(pages().currentPage(), host().pages().find("AFLP", analysis));
  EXPECT_THAT(desktop::toText(window.statusBar()->currentMessage()), HasSubstr("opened anew"));
  for (const auto* button : pages().findChildren<QPushButton*>())
    EXPECT_FALSE(button->text().contains(QStringLiteral("Reopen")) && button->isVisible());
}

TEST_F(Window, ListsAFailureOnceAndOpensTheLockedPageAnew) {
  const auto analysis = newAnalysis();
  const auto failed = host().pages().find("AFLP", analysis);
  host().faults().failAt("GridUtilities", "BuildSortInfo", 1,
                         Error(ErrorNumber::Internal, "Test", "The disk is away."));
  failed->control()->Controls().find<host::GridControl>("grdAFLP")->user().doubleClick(0, 1);
  host().faults().disarm();
  QTest::qWait(0);
  EXPECT_EQ(window.findChild<desktop::ErrorPanel*>()->count(), 1);
  desktop::buttonCalled(pages(), "Reopen the page").click();
  EXPECT_NE(host().pages().find("AFLP", analysis), failed);
  EXPECT_EQ(pages().count(), 1);
}

TEST_F(Window, LeavesTheOpenStudyAloneWhenAnotherCannotBeOpened) {
  QString told;
  answer("OK", &told);
  window.openFiles({path("none.study")});
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

// Many single results: the window asks, makes a line for each, and fills the one in front alone.
TEST_F(Window, OpensManyPagesAsLinesAndClosesThemByTheirTabs) {
  std::vector<host::NewResult> more(25);
  for (std::size_t i = 0; i < more.size(); ++i) {
    more[i].sampleName = "more " + std::to_string(i);
    more[i].fragments.dyes[0] = {{i % 2 == 0 ? 100.1 : 150.0}, {500}};
  }
  host().study().addResults(more);
  newAnalysis();
  const auto table = host().pages().openPages().front();
  auto& grid = *table->control()->Controls().find<host::GridControl>("grdAFLP");
  grid.user().selectCols(10, 10 + 26);
  const auto take = [&](const char* button) {
    QString told;
    answer(button, &told);
    for (QAction* menu : window.menuBar()->actions()) {
      if (menu->text() != QStringLiteral("&Table")) continue;
      Q_EMIT menu->menu()->aboutToShow();
      menu->menu()->findChild<QAction*>(QStringLiteral("mnuSingleCell"))->trigger();
    }
    QTest::qWait(0);
    return told;
  };
  EXPECT_THAT(desktop::toText(take("No")), HasSubstr("27 samples"));
  EXPECT_EQ(pages().count(), 1);
  take("Yes");
  EXPECT_EQ(pages().count(), 28);
  const auto views = [&] { return pages().findChildren<desktop::ResultViewPage*>().size(); };
  EXPECT_EQ(views(), 1);
  pages().setCurrentIndex(3);
  EXPECT_EQ(views(), 2);

  QTest::mouseClick(pages().tabBar(), Qt::MiddleButton, {}, pages().tabBar()->tabRect(3).center());
  QTest::qWait(0);
  EXPECT_EQ(pages().count(), 27);
  window.activateWindow();  // no window manager here does it
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  QTest::keyClick(&window, Qt::Key_W, Qt::ControlModifier);
  QTest::qWait(0);
  EXPECT_EQ(pages().count(), 26);
  QTimer::singleShot(0, [] {
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_O);  // Close Others
  });
  Q_EMIT pages().tabBar()->customContextMenuRequested(pages().tabBar()->tabRect(0).center());
  QTest::qWait(0);
  EXPECT_EQ(pages().count(), 1);
  EXPECT_EQ(host().pages().openPages().size(), 1U);
  EXPECT_EQ(views(), 0);
}

TEST_F(Window, ActsOnTheAnalysisThatTheUserIsAt) {
  const auto first = newAnalysis();
  const auto second = newAnalysis();
  const auto action = [&](const char* text) {
    for (QAction* each : window.findChildren<QAction*>()) {
      if (each->text() == QLatin1String(text)) return each;
    }
    throw std::logic_error(text);
  };
  tree().setCurrentItem(itemNamed("New AFLP 1"));
  tree().setFocus();
  EXPECT_TRUE(action("&Open")->isEnabled());
  action("&Open")->trigger();
  EXPECT_EQ(pages().currentPage()->bound(), first);
  pages().setCurrentIndex(1);
  pages()
      .currentWidget()
      ->findChild<QWidget*>(QStringLiteral("qt_scrollarea_viewport"))
      ->parentWidget()
      ->setFocus();
  EXPECT_FALSE(action("&Open")->isEnabled()) << "it is in front";
  answer("Yes");
  action("&Delete...")->trigger();
  EXPECT_TRUE(host().study().Study()->AFLPs.holdsKey(first->collectionKey()));
  EXPECT_FALSE(host().study().Study()->AFLPs.holdsKey(second->collectionKey()));
  host().serviceBase().Commands.Item(host::kNewAnalysisCommand)->Visible = false;
  window.openFiles({});
  EXPECT_FALSE(action("&New AFLP Analysis")->isVisible());
}

TEST_F(Window, KeepsTheChoiceNotToBeWarnedForAllStudiesAndTakesItBackInTheMenu) {
  host().study().options().SetShowInclusionWarning(false);
  desktop::Workbench other{desktop::desktopGridPorts()};
  const desktop::MainWindow second(other);
  EXPECT_FALSE(other.host().study().options().ShowInclusionWarning());
  for (QAction* each : second.findChildren<QAction*>()) {
    if (each->text() == QStringLiteral("&Warn before Decisions Are Lost")) each->trigger();
  }
  EXPECT_TRUE(other.host().study().options().ShowInclusionWarning());
}

TEST_F(Window, ShowsAResultOfTheExplorerWithItsPlot) {
  Q_EMIT tree().itemActivated(itemNamed("Plant & 0"), 0);
  QTest::qWait(0);
  EXPECT_TRUE(pages().findChild<desktop::PlotView*>()->isVisible());
}

TEST_F(Window, ReviewsTheSelectedBinWhateverWasClickedWithTheRightButton) {
  newAnalysis();
  const auto table = host().pages().openPages().front();
  auto& grid = *table->control()->Controls().find<host::GridControl>("grdAFLP");
  grid.user().selectRows(2, 2);
  grid.user().clickCell(2, 3);
  host().platform().withoutPopups([&] { grid.user().rightClick(0, 10); });
  QTest::keyClick(&window, Qt::Key_B, Qt::ControlModifier);
  const auto* view = pages().findChild<desktop::OverlayView*>();
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(view->plot().scene().samples.size(), 2U);
  EXPECT_EQ(view->review().current()->row, 2);
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
  const auto noteCaption = [&](const auto* control) {
    if (control != nullptr) note(toQString(control->Caption.get()));
  };
  for (const auto& control : host().pages().openPages().front()->control()->Controls().all()) {
    noteCaption(dynamic_cast<const ui::Label*>(control));
    noteCaption(dynamic_cast<const ui::CheckBox*>(control));
    noteCaption(dynamic_cast<const ui::OptionButton*>(control));
    noteCaption(dynamic_cast<const ui::CommandButton*>(control));
  }
  for (const auto& [letter, texts] : owners)
    EXPECT_EQ(texts.size(), 1) << texts.join(QStringLiteral(", ")).toStdString();
}

}  // namespace
}  // namespace banddesk::test
