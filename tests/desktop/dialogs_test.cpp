// What the desktop answers for the platform: messages, pointer, saving, menus, and the dialogs over columns,
// unsaved items and styles.
#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <algorithm>
#include <random>

#include "desktop/base/qt_text.h"
#include "desktop/dialogs/column_selector.h"
#include "desktop/dialogs/column_sorter.h"
#include "desktop/dialogs/platform_front.h"
#include "desktop/dialogs/save_choice.h"
#include "desktop/dialogs/save_dialog.h"
#include "desktop/dialogs/style_dialog.h"
#include "host/grid/looks.h"
#include "tests/desktop/modal.h"

namespace banddesk::desktop {
namespace {

class Front : public testing::Test {
 protected:
  host::FaultInjector faults;
  host::FrontSeat seat;
  host::HostPlatform platform{faults, seat, "UTF-8"};
  WidgetRegistry widgets;
  QWidget window;
};

TEST_F(Front, MessageBoxesHaveTheIconsButtonsAndAnswersOfTheirStyle) {
  const PlatformFront front(platform, seat, &window, widgets);
  const struct {
    std::int32_t style;
    QMessageBox::Icon icon;
    QMessageBox::StandardButtons buttons;
    Qt::Key key;
    ui::BoxAnswer answer;
  } cases[] = {
      {64, QMessageBox::Information, QMessageBox::Ok, Qt::Key_Escape, ui::BoxAnswer::Ok},
      {53, QMessageBox::Warning, QMessageBox::Retry | QMessageBox::Cancel, Qt::Key_Escape,
       ui::BoxAnswer::Cancel},
      {53, QMessageBox::Warning, QMessageBox::Retry | QMessageBox::Cancel, Qt::Key_Return,
       ui::BoxAnswer::Retry},
  };
  for (const auto& each : cases) {
    onNextDialog<QMessageBox>([&](QMessageBox& box) {
      EXPECT_EQ(box.icon(), each.icon);
      EXPECT_EQ(box.standardButtons(), each.buttons);
      EXPECT_EQ(box.windowTitle(), QStringLiteral("AFLP Analysis"));
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      EXPECT_EQ(box.text(), QStringLiteral("<b>a</b>\nb"));
      if (each.key == Qt::Key_Return) box.button(QMessageBox::Retry)->setFocus();
      QTest::keyClick(&box, each.key);
    });
    EXPECT_EQ(platform.MsgBox("<b>a</b>\rb", each.style, ""), each.answer);
  }
}

TEST_F(Front, ThePointerFollowsTheValueWithoutStackingAndIsPlainOverDialogs) {
  {
    const PlatformFront front(platform, seat, &window, widgets);
    platform.SetMousePointer(11);
    platform.SetMousePointer(11);
    ASSERT_NE(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    onNextDialog<QMessageBox>([&](QMessageBox& box) {
      EXPECT_EQ(QApplication::overrideCursor(), nullptr);
      box.accept();
    });
    platform.MsgBox("text", 64, "");
    EXPECT_NE(QApplication::overrideCursor(), nullptr);
    platform.SetMousePointer(0);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    platform.SetMousePointer(11);
  }
  EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the front leaves no pointer behind";
  EXPECT_EQ(platform.MsgBox("nobody answers", 53, ""), ui::BoxAnswer::Cancel) << "nor itself";
}

TEST_F(Front, TheFocusMovesOnlyAfterTheCallerIsDone) {
  const PlatformFront front(platform, seat, &window, widgets);
  QLineEdit first(&window);
  QLineEdit second(&window);
  ui::TextBox control("txt");
  widgets.add(control, &second);
  window.show();
  first.setFocus();
  platform.SetFocus(control);
  EXPECT_NE(window.focusWidget(), &second);
  QApplication::processEvents();
  EXPECT_EQ(window.focusWidget(), &second);
}

TEST_F(Front, AnItemOfAPopupIsTheUsersActUnlessItOnlyLooks) {
  struct Counting final : PlatformFront {
    using PlatformFront::PlatformFront;
    void act(const std::function<void()>& work) override { ++acts, work(); }
    int acts = 0;
  };
  const Counting front(platform, seat, &window, widgets);
  ui::MenuItem sort("mnuSortColumn", "Sort Column");
  ui::MenuItem view("mnuSingleCell", "Show Single &Result...");
  ui::MenuItem print("mnuPrint1", "&Print Grid...");
  ui::MenuItem black("mnuPrintBW1", "Black && White");
  ui::MenuItem menu("mnuCell", "");
  print.setItems({&black});
  menu.setItems({&sort, nullptr, &view, &print});
  std::vector<std::string> taken;
  Connections connections;
  for (ui::MenuItem* item : {&sort, &view, &black}) {
    connections.push_back(item->Click.connect([&taken, item] { taken.push_back(item->Name()); }));
  }
  sort.Checked = true;
  const auto take = [&](const char* name) {
    QTimer::singleShot(0, [&, name] {
      auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      ASSERT_NE(popup, nullptr);
      EXPECT_EQ(popup->defaultAction()->objectName(), QStringLiteral("mnuSortColumn"));
      EXPECT_TRUE(popup->actions()[0]->isChecked());
      EXPECT_TRUE(popup->actions()[1]->isSeparator());
      popup->findChild<QAction*>(QLatin1String(name))->trigger();
      popup->close();
    });
    platform.ShowPopup(menu, &sort);
  };
  take("mnuSingleCell");
  EXPECT_EQ(front.acts, 0);
  take("mnuPrintBW1");
  take("mnuSortColumn");
  EXPECT_EQ(front.acts, 2);
  EXPECT_EQ(taken, (std::vector<std::string>{"mnuSingleCell", "mnuPrintBW1", "mnuSortColumn"}));
  sort.Enabled = false;
  take("mnuSortColumn");
  EXPECT_EQ(taken.size(), 3U);
}

class Saving : public OwnFolder {
 protected:
  Saving() {
    request.Filter = "Text Files (Comma Delimited) (*.csv)|*.csv|NTSYSpc (*.nts)|*.nts";
    request.FilterIndex = 1;
    request.Flags = 6;
    request.FileName = "Run";
    request.InitDir = toText(folder.path());
  }

  static QLineEdit& nameOf(const QFileDialog& dialog) {
    return *dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
  }
  static void accept(QFileDialog& dialog) { static_cast<QDialog&>(dialog).accept(); }

  ui::SaveDialog request{"ctlDialog"};
};

TEST_F(Saving, TheChosenTypeIsAnsweredWhateverTheNameEndsIn) {
  const struct {
    int filter;
    const char* typed;
    const char* saved;
  } cases[] = {{1, "table.csv", "table.csv"},
               {1, "table", "table.nts"},
               {0, "Width 1.5", "Width 1.5.csv"},
               {0, "a.txt", "a.txt"}};
  for (const auto& each : cases) {
    onNextDialog<QFileDialog>([&](QFileDialog& dialog) {
      EXPECT_EQ(dialog.selectedNameFilter(), dialog.nameFilters()[0]) << "the first type is preselected";
      auto* types = dialog.findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
      types->setCurrentIndex(each.filter);
      Q_EMIT types->textActivated(types->currentText());
      nameOf(dialog).setText(QLatin1String(each.typed));
      accept(dialog);
    });
    const auto answer = askWhereToSave(request, nullptr);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->filterIndex, each.filter + 1);
    EXPECT_EQ(toQString(answer->fileName), path(each.saved));
  }
}

TEST_F(Saving, AnySuggestionIsAcceptedAndStaysInTheFolder) {
  for (const char* name :
       {"/etc/passwd", "../up", "say \"hi\"", "~root", "..", "x\ny", "\xc3\xa9t\xc3\xa9: 5 %?*"}) {
    request.FileName = name;
    onNextDialog<QFileDialog>([&](QFileDialog& dialog) {
      EXPECT_EQ(dialog.directory(), QDir(folder.path()));
      EXPECT_FALSE(nameOf(dialog).text().isEmpty());
      accept(dialog);
    });
    const auto answer = askWhereToSave(request, nullptr);
    ASSERT_TRUE(answer) << name;
    EXPECT_EQ(QFileInfo(toQString(answer->fileName)).path(), folder.path()) << answer->fileName;
  }
  EXPECT_LE(suggestedFileName(QString(500, QChar(0xe9))).toUtf8().size(), 200);
}

TEST_F(Saving, ReplacingAFileIsAskedForTheNameWithItsEnding) {
  QFile file(path("Run.csv"));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  const auto answerTwice = [&](QMessageBox::StandardButton replace) {
    onNextDialog<QFileDialog>([&, replace](QFileDialog& dialog) {
      onNextDialog<QMessageBox>([&, replace](QMessageBox& box) {
        // After a No the file dialog is open again.
        if (replace == QMessageBox::No) onNextDialog<QFileDialog>([](QFileDialog& again) { again.reject(); });
        box.button(replace)->click();
      });
      accept(dialog);
    });
    return askWhereToSave(request, nullptr);
  };
  EXPECT_FALSE(answerTwice(QMessageBox::No));
  const auto answer = answerTwice(QMessageBox::Yes);
  ASSERT_TRUE(answer);
  EXPECT_EQ(toQString(answer->fileName), path("Run.csv"));
}

TEST_F(Saving, TheLastFolderIsUsedWhereTheAskedOneDoesNotExist) {
  ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("chosen")));
  onNextDialog<QFileDialog>([&](QFileDialog& dialog) {
    nameOf(dialog).setText(path("chosen/first"));
    accept(dialog);
  });
  ASSERT_TRUE(askWhereToSave(request, nullptr));
  for (const std::string& asked : {std::string(), toText(path("missing"))}) {
    request.InitDir = asked;
    onNextDialog<QFileDialog>(
        [&](const QFileDialog& dialog) { EXPECT_EQ(dialog.directory(), QDir(path("chosen"))); });
    EXPECT_FALSE(askWhereToSave(request, nullptr)) << "closing it is a cancel";
  }
  EXPECT_FALSE(QFileInfo::exists(path("missing")));
}

GridLayout& fill(GridLayout& layout, int count) {
  for (int i = 1; i <= count; ++i) {
    auto column = std::make_shared<GridColumn>();
    column->Key = std::to_string(i);
    column->Header = "C" + std::to_string(i);
    column->ColumnOrder = i;
    layout.Columns.Add(column);
  }
  return layout;
}

std::string orderOf(const std::vector<ColumnEntry>& entries) {
  std::string text;
  for (const ColumnEntry& entry : entries) text += entry.label.substr(1) + (entry.isVisible ? "" : "-") + " ";
  return text;
}

TEST(ColumnListModelTest, MovesColumnsLikeAPlainListUnderTheToolkitsOwnTester) {
  GridLayout layout;
  ColumnListModel model(host::ColumnSelection(fill(layout, 12)).entries, nullptr);
  const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    const int target = static_cast<int>(random() % 13);
    std::vector<int> moved;
    std::string above;
    std::string middle;
    std::string below;
    for (int row = 0; row < 12; ++row) {
      const bool isMoved = random() % 3 == 0;
      if (isMoved) moved.push_back(row);
      std::string& part = isMoved ? middle : row < target ? above : below;
      part += orderOf({model.entries()[static_cast<std::size_t>(row)]});
    }
    const std::vector<int> places = model.moveInFrontOf(moved, target);
    ASSERT_EQ(orderOf(model.entries()), above + middle + below) << "target " << target;
    ASSERT_TRUE(places.empty() || places.front() == std::ranges::count(above, ' '));
  }
}

TEST(ColumnSelectorTest, OkTakesTheUsersOrderAndChecksAndCancelLeavesTheDraft) {
  GridLayout layout;
  host::ColumnSelection draft(fill(layout, 4));
  const auto work = [](ColumnSelector& dialog) {
    auto* list = dialog.findChild<QListView*>();
    list->setCurrentIndex(list->model()->index(0, 0));
    QTest::keyClick(list, Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(list, Qt::Key_Space);
    QTest::keyClick(list, Qt::Key_Down, Qt::AltModifier);
    list->setCurrentIndex(list->model()->index(3, 0));
    QTest::keyClick(list, Qt::Key_Home, Qt::AltModifier);
  };
  onNextDialog<ColumnSelector>([&](ColumnSelector& dialog) {
    work(dialog);
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  EXPECT_FALSE(selectColumns(draft, {}, nullptr));
  EXPECT_EQ(orderOf(draft.entries), "1 2 3 4 ");
  onNextDialog<ColumnSelector>([&](ColumnSelector& dialog) {
    work(dialog);
    buttonCalled(dialog, "OK").click();
  });
  EXPECT_TRUE(selectColumns(draft, {}, nullptr));
  EXPECT_EQ(orderOf(draft.entries), "4 2 3 1- ");
}

TEST(ColumnSelectorTest, ButtonsActOnTheFoundColumnsOnlyAndMovesPassHiddenOnes) {
  GridLayout layout;
  host::ColumnSelection draft(fill(layout, 1500));
  onNextDialog<ColumnSelector>([&](ColumnSelector& dialog) {
    auto* filter = dialog.findChild<QLineEdit*>(QStringLiteral("filter"));
    QTest::keyClicks(filter, QStringLiteral("c149"));  // C149, C1490 to C1499
    buttonCalled(dialog, "None").click();
    EXPECT_EQ(dialog.model().checkedCount(), 1489);
    QTest::keyClick(filter, Qt::Key_Return);  // selects C149 and does not close the dialog
    QTest::keyClick(dialog.findChild<QListView*>(), Qt::Key_Down, Qt::AltModifier);
    filter->clear();
    buttonCalled(dialog, "Invert").click();
    EXPECT_EQ(dialog.model().checkedCount(), 11);
    buttonCalled(dialog, "OK").click();
  });
  EXPECT_TRUE(selectColumns(draft, {}, nullptr));
  EXPECT_EQ(draft.entries[1488].label, "C1490");
  EXPECT_EQ(draft.entries[1489].label, "C149");
}

TEST(ColumnSelectorTest, SelectedColumnsMoveTogetherAndStopAtTheEnd) {
  GridLayout layout;
  const host::ColumnSelection draft(fill(layout, 5));
  ColumnSelector dialog(draft, {}, nullptr);
  auto* list = dialog.findChild<FilteredList*>();
  list->select({1, 3});
  for (const char* expected : {"2 1 4 3 5 ", "2 4 1 3 5 ", "2 4 1 3 5 "}) {
    buttonCalled(dialog, "Move Up").click();
    EXPECT_EQ(orderOf(dialog.model().entries()), expected);
  }
  for (const char* expected : {"1 2 4 3 5 ", "1 3 2 4 5 ", "1 3 5 2 4 ", "1 3 5 2 4 "}) {
    buttonCalled(dialog, "Move Down").click();
    EXPECT_EQ(orderOf(dialog.model().entries()), expected);
  }
  EXPECT_EQ(list->selectedRows(), (std::vector<int>{3, 4}));
}

TEST(ColumnSorterTest, KeysAreAddedOrderedReversedAndRemoved) {
  GridLayout layout;
  fill(layout, 5).Columns.Item("3")->SortPriority = 1;
  layout.Columns.Item("3")->SortOrder = 1;
  host::ColumnSorting draft(layout);
  const auto work = [](ColumnSorter& dialog) {
    const QAbstractItemModelTester tester(dialog.findChild<SortKeyModel*>());
    auto* list = dialog.findChild<FilteredList*>();
    auto* keys = dialog.findChild<QTreeView*>(QStringLiteral("keys"));
    EXPECT_EQ(list->shownRows(), (std::vector<int>{0, 1, 3, 4})) << "a key cannot be added twice";
    list->select({0, 4});
    Q_EMIT list->view().doubleClicked({});
    keys->setCurrentIndex(keys->model()->index(2, 0));
    QTest::keyClick(keys, Qt::Key_Space);
    QTest::keyClick(keys, Qt::Key_Up, Qt::AltModifier);
    keys->setCurrentIndex(keys->model()->index(2, 0));
    QTest::keyClick(keys, Qt::Key_Delete);
  };
  onNextDialog<ColumnSorter>([&](ColumnSorter& dialog) { work(dialog); });
  EXPECT_FALSE(sortColumns(draft, {}, nullptr));
  EXPECT_EQ(draft.keys.size(), 1U);
  onNextDialog<ColumnSorter>([&](ColumnSorter& dialog) {
    work(dialog);
    buttonCalled(dialog, "OK").click();
  });
  EXPECT_TRUE(sortColumns(draft, {}, nullptr));
  std::string keys;
  for (const SortKey& key : draft.keys) keys += key.column->Key.get() + (key.isDescending ? "v " : "^ ");
  EXPECT_EQ(keys, "3v 5v ");
}

TEST(SaveChoiceTest, AnswersTheCheckedItemsNoneOrNothing) {
  const std::vector<std::string> items{"Add AFLP: A", "Update AFLP: <i>B</i>", "Delete AFLP: C"};
  using Answer = std::optional<std::vector<std::string>>;
  const auto ask = [&](SaveOccasion occasion, const std::function<void(QDialog&)>& act) {
    onNextDialog<QDialog>(act);
    return askWhatToSave(items, occasion, nullptr);
  };
  const auto save = [](const QDialog& dialog) { buttonCalled(dialog, "Save").click(); };
  EXPECT_EQ(ask(SaveOccasion::Saving, save), Answer(items));
  EXPECT_EQ(ask(SaveOccasion::Saving,
                [&](const QDialog& dialog) {
                  EXPECT_EQ(dialog.findChildren<QPushButton*>().size(), 2) << "nothing to throw away";
                  dialog.findChild<QListWidget*>()->item(0)->setCheckState(Qt::Unchecked);
                  save(dialog);
                }),
            (Answer{{items[1], items[2]}}));
  EXPECT_EQ(
      ask(SaveOccasion::Closing, [](const QDialog& dialog) { buttonCalled(dialog, "Don't Save").click(); }),
      Answer(std::vector<std::string>{}));
  EXPECT_EQ(ask(SaveOccasion::Closing, [](QDialog& dialog) { dialog.reject(); }), Answer());
}

TEST(StyleDialogTest, OkChangesTheEditedStylesAndCancelNone) {
  const host::StyleSets sets;
  host::Looks looks(sets);
  GridStyle style;
  style.SetInterior(0x00FF00);
  looks.RegisterStyle("D1 Style", style, -1);
  looks.RegisterStyle("Mean Size Style", style, -1);
  StyleDialogFront front(nullptr);
  const auto work = [](const QDialog& dialog) {
    dialog.findChild<QListWidget*>()->setCurrentRow(1);
    const auto combos = dialog.findChildren<QComboBox*>();
    combos[0]->setCurrentIndex(1);  // right
    combos[2]->setCurrentIndex(1);  // fixed decimals
    dialog.findChild<QSpinBox*>()->setValue(3);
    dialog.findChild<QCheckBox*>()->setChecked(true);  // frame
  };
  onNextDialog<QDialog>([&](const QDialog& dialog) { work(dialog); });
  front.run(looks);
  EXPECT_EQ(looks.registeredStyle(2).attributes(), style.attributes());
  onNextDialog<QDialog>([&](const QDialog& dialog) {
    work(dialog);
    buttonCalled(dialog, "OK").click();
  });
  front.run(looks);
  EXPECT_EQ(looks.registeredStyle(1).attributes(), style.attributes())
      << "looking at a style changes nothing";
  style.SetHorizontalAlignment(1);
  style.SetFormat(1);
  style.SetPlaces(3);
  style.SetDraw3dFrame(true);
  EXPECT_EQ(looks.registeredStyle(2).attributes(), style.attributes());
}

}  // namespace
}  // namespace banddesk::desktop
