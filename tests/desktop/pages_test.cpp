// The two pages and the warning form as widgets over the real component, driven by keys and mouse.
#include <QDialog>
#include <QLabel>
#include <QScrollArea>
#include <QTest>
#include <gtest/gtest.h>

#include "desktop/base/qt_text.h"
#include "desktop/pages/form_dialog.h"
#include "desktop/pages/page_widget.h"
#include "tests/desktop/modal.h"
#include "tests/plugin/desk.h"

namespace banddesk::desktop {
namespace {

const test::Script kScript{{0, {{100, {1, 0, 2}}, {200, {0, 1, 0}}}}, {1, {{300, {0, 5, 1}}}}};

// One page of a study on the screen, as a window would show it.
class Shown {
 public:
  explicit Shown(const std::string& definition, const QSize& size = {1200, 700}) : desk(kScript) {
    focusing = desk.host.platform().FocusGiven.connect([this](const ui::Control& control) {
      if (QWidget* found = registry.find(control)) found->setFocus();
    });
    PageActions actions;
    actions.accept = [this] { accepted = desk.host.pages().end(page, true); };
    actions.cancel = [this] { desk.host.pages().end(page, false); };
    actions.showError = [this](const Error& error) { errors.push_back(error.description()); };
    actions.makeGrid = [this](host::GridControl&, QWidget* parent) {
      grid = new QWidget(parent);
      grid->setFocusPolicy(Qt::StrongFocus);
      return grid;
    };
    page = desk.parametersPage();
    if (definition == "AFLP") {
      desk.accept(page);
      page = desk.pageNamed("AFLP");
      (void)desk.host.save();
    }
    widget.reset(makePageWidget(desk.host, *page, registry, actions, nullptr));
    widget->resize(size);
    widget->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(widget.get()));
    widget->setFocus();
    desk.calculators->calculated.clear();
  }
  template <class Wanted = ui::Control>
  Wanted& control(const std::string& name) {
    return test::Desk::control<Wanted>(*page->control(), name);
  }
  QWidget& of(const std::string& name) { return *registry.find(control(name)); }
  std::string focus() {
    for (const ui::Control* each : page->control()->Controls().all()) {
      if (registry.find(*each) != nullptr && registry.find(*each)->hasFocus()) return each->Name();
    }
    return "";
  }
  void type(const std::string& box, const char* text) {
    of(box).setFocus();
    QTest::keyClick(&of(box), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&of(box), QString::fromLatin1(text));
  }
  std::size_t analyses() const { return desk.calculators->calculated.size() / 4; }
  bool isChanged() { return !desk.host.unsaved().empty(); }

  test::Desk desk;
  WidgetRegistry registry;
  std::shared_ptr<host::HostPage> page;
  QWidget* grid = nullptr;
  bool accepted = false;
  std::vector<std::string> errors;
  std::unique_ptr<QWidget> widget;
  Connection focusing;
};

TEST(Pages, KeepABadWidthUnderTheCursorUntilItIsGood) {
  for (const char* definition : {"AFLPParams", "AFLP"}) {
    Shown shown(definition);
    shown.type("txtMaxBinWidth", "10.5");
    QTest::keyClick(&shown.of("txtMaxBinWidth"), Qt::Key_Tab);
    EXPECT_EQ(shown.focus(), "txtMaxBinWidth");
    EXPECT_EQ(shown.desk.front.beeps, 1);
    EXPECT_EQ(shown.of("txtMaxBinWidth").palette().color(QPalette::Base), QColor(Qt::yellow));
    EXPECT_EQ(shown.analyses(), 0U);
    shown.type("txtMaxBinWidth", "2.5");
    QTest::keyClick(&shown.of("txtMaxBinWidth"), Qt::Key_Tab);
    EXPECT_EQ(shown.focus(), "txtYThreshold");
    EXPECT_EQ(shown.control("txtMaxBinWidth").BackColor, ui::kWhite);
    EXPECT_EQ(shown.analyses(), std::string_view(definition) == "AFLP" ? 1U : 0U);
  }
}

TEST(ParametersPage, GoesByTabAndAcceleratorThroughItsControls) {
  Shown shown("AFLPParams");
  std::string order;
  for (int i = 0; i < 9; ++i) {
    order += shown.focus() + " ";
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(order,
            "txtMaxBinWidth txtYThreshold chkExcludeFullBins chkExcludeEmptySamples chkDye(0) chkDye(1) "
            "chkDye(2) chkDye(3)  ");
  QTest::keyClick(shown.widget.get(), Qt::Key_W, Qt::AltModifier);
  EXPECT_EQ(shown.focus(), "txtMaxBinWidth");
  QTest::keyClick(shown.widget.get(), Qt::Key_3, Qt::AltModifier);
  EXPECT_EQ(shown.focus(), "chkDye(2)");
  EXPECT_TRUE(QTest::qWaitFor([&] { return shown.control<ui::CheckBox>("chkDye(2)").Value == 0; }));
}

TEST(ParametersPage, IsAcceptedByEnterIfItIsValidAndGivenUpByEscape) {
  Shown shown("AFLPParams");
  shown.type("txtYThreshold", "12a");
  QTest::keyClick(&shown.of("txtYThreshold"), Qt::Key_Return);
  EXPECT_FALSE(shown.accepted);
  EXPECT_EQ(shown.of("txtYThreshold").palette().color(QPalette::Base), QColor(Qt::yellow));
  shown.type("txtYThreshold", "50");
  QTest::keyClick(&shown.of("txtYThreshold"), Qt::Key_Up);
  QTest::keyClick(&shown.of("txtYThreshold"), Qt::Key_Return);
  EXPECT_TRUE(shown.accepted);
  EXPECT_EQ(shown.desk.analysis().YThreshold, 150);

  Shown other("AFLPParams");
  other.type("txtMaxBinWidth", "bad");
  QTest::keyClick(&other.of("txtMaxBinWidth"), Qt::Key_Escape);
  EXPECT_EQ(other.page->control(), nullptr);
  EXPECT_TRUE(other.desk.host.pages().openPages().empty());
}

TEST(ResultsPage, AnalysesOnceAfterABurstOfStepsAndAtOnceAtEnter) {
  Shown shown("AFLP");
  shown.control<ui::Timer>("ctlTimer").Interval = 1;
  auto* more = shown.of("udMaxBinWidth").findChild<QAbstractButton*>();
  for (int i = 0; i < 5; ++i) QTest::mouseClick(more, Qt::LeftButton);
  EXPECT_EQ(shown.analyses(), 0U);
  EXPECT_TRUE(QTest::qWaitFor([&] { return shown.analyses() > 0; }));
  EXPECT_FALSE(QTest::qWaitFor([&] { return shown.analyses() > 1; }, 30));
  EXPECT_EQ(shown.desk.calculators->calculated.front().first, 1.25);
  shown.type("txtYThreshold", "5");
  QTest::keyClick(&shown.of("txtYThreshold"), Qt::Key_Enter);
  EXPECT_EQ(shown.analyses(), 2U);
  EXPECT_EQ(shown.focus(), "txtYThreshold");
}

TEST(ResultsPage, LeavesTheKeysOfACellBeingEditedAlone) {
  Shown shown("AFLP");
  shown.control<ui::TextBox>("txtYThreshold").Text = "5";
  shown.grid->setFocus();
  host::GridControl& grid = shown.desk.grid();
  GridStyle writable;
  writable.SetReadOnly(false);
  grid.SetLockReadOnly(false);
  grid.GridParam().GetData().StoreStyleRowCol(1, 1, writable, StyleMode::Override, 0);
  ASSERT_TRUE(grid.user().beginEdit(1, 1));
  QTest::keyClick(shown.grid, Qt::Key_Return);
  EXPECT_EQ(shown.analyses(), 0U);
  grid.user().endEdit(false);
  QTest::keyClick(shown.grid, Qt::Key_Return);
  EXPECT_EQ(shown.analyses(), 1U);
}

TEST(ResultsPage, CountsAsChangedByWhatTheUserDoesOnly) {
  Shown shown("AFLP");
  shown.control<ui::CheckBox>("chkShowWellID").Value = ui::kUnchecked;
  shown.control<ui::OptionButton>("optSampleBin(0)").Value = true;
  QTest::keyClick(&shown.of("txtYThreshold"), Qt::Key_Tab);
  QTest::mouseClick(&shown.of("cmdHelp"), Qt::LeftButton);
  EXPECT_FALSE(shown.isChanged());
  EXPECT_EQ(shown.desk.front.help.back().topic, "AFLP");
  QTest::keyClick(&shown.of("chkShowWellID"), Qt::Key_Space);
  EXPECT_EQ(shown.control<ui::CheckBox>("chkShowWellID").Value, ui::kChecked);
  EXPECT_TRUE(shown.isChanged());
}

TEST(ResultsPage, GivesTheGridWhatThePanelLeavesAndNothingWhereNothingIsLeft) {
  Shown shown("AFLP");
  const auto* panel = shown.widget->findChild<QScrollArea*>();
  const auto fills = [&](int width, int height) {
    shown.widget->resize(width, height);
    QCoreApplication::processEvents();
    return shown.grid->geometry() == QRect(0, 0, shown.widget->width(), panel->y()) &&
           panel->geometry().bottom() == shown.widget->height() - 1 &&
           shown.desk.grid().Height == shown.grid->height();
  };
  EXPECT_TRUE(fills(1400, 800));
  const int wide = panel->height();
  EXPECT_TRUE(fills(600, 800));
  EXPECT_GT(panel->height(), wide * 3 / 2);
  shown.widget->resize(300, 60);
  EXPECT_EQ(shown.desk.grid().Height, 0);
  EXPECT_EQ(panel->y(), 0);
  EXPECT_TRUE(fills(1400, 800));
  EXPECT_EQ(panel->height(), wide);
}

TEST(Pages, EndBeforeTheirWidgets) {
  for (const char* definition : {"AFLPParams", "AFLP"}) {
    Shown shown(definition);
    auto& box = shown.of("txtMaxBinWidth");
    auto& check = shown.of("chkExcludeFullBins");
    shown.type("txtMaxBinWidth", "3");
    shown.desk.host.closeStudy();
    EXPECT_EQ(shown.page->control(), nullptr);
    shown.page.reset();
    for (const auto key : {Qt::Key_Return, Qt::Key_Up, Qt::Key_4, Qt::Key_Tab}) QTest::keyClick(&box, key);
    qobject_cast<QAbstractButton*>(&check)->click();
    shown.widget->resize(500, 400);
    QCoreApplication::processEvents();
    EXPECT_TRUE(shown.errors.empty());
  }
}

class WarningForm : public ::testing::Test {
 protected:
  WarningForm() : shown("AFLP") {
    shown.desk.host.study().Options().SetShowInclusionWarning(true);
    shown.desk.front.onRunModal = [this](ui::Form& form) { runForm(form, shown.widget.get()); };
    shown.desk.grid().user().rightClick(1, 1);
    shown.desk.choose("mnuExcludeBin");
  }
  // Enter with another width, and the user's answer to the form that comes up.
  void answer(const std::function<void(QDialog&)>& user) {
    onNextDialog<QDialog>(user);
    shown.type("txtMaxBinWidth", "2.5");
    QTest::keyClick(&shown.of("txtMaxBinWidth"), Qt::Key_Return);
  }

  Shown shown;
};

TEST_F(WarningForm, GoesOnByEnterAndPutsTheWidthBackByCancelEscapeAndFrame) {
  const std::vector<std::function<void(QDialog&)>> refusals = {
      [](const QDialog& dialog) { buttonCalled(dialog, "Cancel").click(); },
      [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); },
      [](QDialog& dialog) { dialog.close(); }};
  for (const auto& refuse : refusals) {
    answer(refuse);
    EXPECT_EQ(shown.analyses(), 0U);
    EXPECT_EQ(shown.of("txtMaxBinWidth").property("text").toString(), QStringLiteral("1.00"));
  }
  answer([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); });
  EXPECT_EQ(shown.analyses(), 1U);
}

TEST_F(WarningForm, OpensHelpForAReleaseThatNoPressCameBeforeAndKeepsTheTick) {
  const auto& help = shown.desk.front.help;
  answer([&](QDialog& dialog) {
    QAbstractButton& tick = buttonCalled(dialog, "Do not show this dialog in the future");
    QTest::mouseClick(&tick, Qt::LeftButton, {}, QPoint(5, tick.height() / 2));
    for (auto* label : dialog.findChildren<QLabel*>()) QTest::mouseClick(label, Qt::LeftButton);
    QTest::mouseClick(&dialog, Qt::LeftButton, {}, QPoint(2, 2));
    EXPECT_TRUE(help.empty());
    QTest::mouseRelease(&dialog, Qt::LeftButton, {}, QPoint(2, 2));
    EXPECT_EQ(help.size(), 1U);
    QTest::keyClick(&dialog, Qt::Key_F1);
    EXPECT_EQ(help.size(), 2U);
    EXPECT_EQ(help.back().topic, "AFLPWarning");
  });
  EXPECT_FALSE(shown.desk.host.study().Options().ShowInclusionWarning());
}

}  // namespace
}  // namespace banddesk::desktop
