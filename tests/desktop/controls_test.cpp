// The widgets of single controls, driven by keys and mouse at the window, as a user does.
#include <QDialog>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include "desktop/controls/captions.h"
#include "desktop/controls/control_binder.h"

namespace banddesk::desktop {
namespace {

// A window with a box that may refuse to be left, and a check box to go to on another tab's side.
class Desk {
 public:
  Desk()
      : binder(registry, [this](const std::function<void()>& action) {
          ++acts;
          action();
        }) {
    auto* front = new QWidget;
    tabs.addTab(front, QStringLiteral("Front"));
    tabs.addTab(new QWidget, QStringLiteral("Back"));
    auto* lines = new QVBoxLayout(front);
    for (QWidget* each : std::initializer_list<QWidget*>{
             binder.make(label, front), box = binder.make(text, front), check = binder.make(tick, front)}) {
      lines->addWidget(each);
    }
    validation = text.Validate.connect([this](bool& cancel) {
      ++asked;
      cancel = refuses;
    });
    lost = text.LostFocus.connect([this] {
      ++left;
      if (onLeft) onLeft();
    });
    tabs.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&tabs));
    box->setFocus();
  }
  void click(QWidget& widget, const QPoint& at = {5, 5}) {
    QTest::mouseClick(tabs.windowHandle(), Qt::LeftButton, {}, widget.mapTo(&tabs, at));
  }

  ui::Label label{"lbl", "&Size && more"};
  ui::TextBox text{"txt", "1"};
  ui::CheckBox tick{"chk", "&Tick"};
  WidgetRegistry registry;
  ControlBinder binder;
  QTabWidget tabs;
  TextBoxWidget* box = nullptr;
  ColourCheckBox* check = nullptr;
  bool refuses = false;
  int asked = 0, left = 0, acts = 0;
  std::function<void()> onLeft;
  Connection validation, lost;
};

TEST(TextBox, ThatRefusesKeepsTheFocusAndSwallowsEveryWayOut) {
  const std::vector<std::pair<const char*, std::function<void(Desk&)>>> ways = {
      {"Tab", [](Desk& desk) { QTest::keyClick(desk.box, Qt::Key_Tab); }},
      {"click", [](Desk& desk) { desk.click(*desk.check); }},
      {"accelerator", [](Desk& desk) { QTest::keyClick(desk.box, Qt::Key_T, Qt::AltModifier); }},
      {"another tab",
       [](Desk& desk) { desk.click(*desk.tabs.tabBar(), desk.tabs.tabBar()->tabRect(1).center()); }},
      {"key for another tab",
       [](Desk& desk) { QTest::keyClick(desk.box, Qt::Key_Tab, Qt::ControlModifier); }},
  };
  for (const auto& [name, go] : ways) {
    Desk desk;
    desk.refuses = true;
    go(desk);
    EXPECT_EQ(QApplication::focusWidget(), desk.box) << name;
    EXPECT_EQ(std::pair(desk.asked, desk.left), std::pair(1, 0)) << name;
    EXPECT_FALSE(desk.check->isChecked()) << name;
    EXPECT_EQ(desk.tabs.currentIndex(), 0) << name;
    desk.refuses = false;
    go(desk);
    EXPECT_NE(QApplication::focusWidget(), desk.box) << name;
    EXPECT_EQ(std::pair(desk.asked, desk.left), std::pair(2, 1)) << name;
  }
}

TEST(TextBox, IsNotAskedByCodeMenusOrItsOwnLabel) {
  Desk desk;
  desk.refuses = true;
  QTest::keyClick(desk.box, Qt::Key_S, Qt::AltModifier);
  desk.click(*desk.box);
  desk.click(*desk.registry.find(desk.label));
  EXPECT_EQ(QApplication::focusWidget(), desk.box);
  desk.box->setFocus(Qt::PopupFocusReason);
  desk.check->setFocus();
  EXPECT_EQ(QApplication::focusWidget(), desk.check);
  desk.check->setFocus(Qt::MenuBarFocusReason);
  EXPECT_EQ(desk.asked, 0);
}

TEST(TextBox, IsAskedLateWhereTheFocusMovesByAnUnseenWay) {
  Desk desk;
  desk.refuses = true;
  const auto connection = desk.text.Validate.connect([&](bool&) { desk.box->setFocus(); });
  desk.check->setFocus(Qt::MouseFocusReason);
  EXPECT_EQ(QApplication::focusWidget(), desk.box);
  EXPECT_EQ(desk.left, 0);
}

TEST(TextBox, LosesThePressButNotTheFocusToADialogThatLeavingOpens) {
  Desk desk;
  desk.onLeft = [&] {
    QDialog dialog(&desk.tabs);
    QTimer::singleShot(0, &dialog, &QDialog::reject);
    dialog.exec();
  };
  desk.click(*desk.check);
  EXPECT_FALSE(desk.check->isChecked());
  EXPECT_EQ(desk.tabs.focusWidget(), desk.check);
  EXPECT_EQ(desk.left, 1);
}

TEST(TextBox, TakesEachKeystrokeAndShowsAMarkReadablyInAnyPalette) {
  Desk desk;
  int changes = 0;
  const auto connection = desk.text.Change.connect([&] { ++changes; });
  desk.box->selectAll();
  QTest::keyClicks(desk.box, QStringLiteral("2.5"));
  EXPECT_EQ(desk.text.Text.get(), "2.5");
  EXPECT_EQ(std::pair(changes, desk.acts), std::pair(3, 3));
  desk.tabs.setPalette(QPalette(Qt::black));
  const QColor base = desk.box->palette().color(QPalette::Base);
  desk.text.BackColor = ui::kYellow;
  EXPECT_EQ(desk.box->palette().color(QPalette::Base), QColor(Qt::yellow));
  EXPECT_EQ(desk.box->palette().color(QPalette::Text), QColor(Qt::black));
  EXPECT_NE(desk.box->accessibleDescription().indexOf(QStringLiteral("2.5")), -1);
  EXPECT_EQ(desk.box->toolTip().contains(QStringLiteral("2.5")), true);
  desk.text.BackColor = ui::kWhite;
  EXPECT_TRUE(desk.box->toolTip().isEmpty());
  EXPECT_EQ(desk.box->palette().color(QPalette::Base), base);
}

TEST(Widgets, FollowTheirControlsAndCodeIsNoUserAct) {
  Desk desk;
  desk.text.Text = "7";
  desk.tick.Value = ui::kGreyed;
  desk.label.Caption = "&Width";
  desk.tick.Enabled = false;
  EXPECT_EQ(desk.box->text(), QStringLiteral("7"));
  EXPECT_EQ(desk.check->checkState(), Qt::PartiallyChecked);
  EXPECT_FALSE(desk.check->isEnabled());
  EXPECT_EQ(desk.acts, 0);
  EXPECT_EQ(desk.box->accessibleName(), QStringLiteral("Size & more"));
  desk.tick.Enabled = true;
  desk.check->click();  // a greyed box becomes checked, and only a checked one unchecked
  EXPECT_EQ(desk.tick.Value, ui::kChecked);
  EXPECT_EQ(desk.check->checkState(), Qt::Checked);
  desk.check->click();
  EXPECT_EQ(desk.tick.Value, ui::kUnchecked);
  EXPECT_EQ(desk.acts, 2);
}

TEST(Widgets, OfOptionsAndListsTellOnlyChanges) {
  Desk desk;
  QWidget group;
  ui::OptionButton a("a", "A"), b("b", "B");
  a.joinGroup({&a, &b});
  b.joinGroup({&a, &b});
  ui::ComboBox list("list");
  auto* first = desk.binder.make(a, &group);
  auto* second = desk.binder.make(b, &group);
  auto* drop = desk.binder.make(list, &group);
  list.AddItem("Columns");
  list.AddItem("Rows");
  list.ListIndex = 1;
  a.Value = true;
  EXPECT_EQ(drop->currentText(), QStringLiteral("Rows"));
  EXPECT_TRUE(first->isChecked());
  second->click();
  second->click();
  EXPECT_TRUE(b.Value && !a.Value && !first->isChecked());
  b.Value = false;
  EXPECT_FALSE(second->isChecked());
  Q_EMIT drop->activated(1);
  EXPECT_EQ(desk.acts, 1);
  QTest::keyClick(drop, Qt::Key_Up);
  EXPECT_EQ(list.ListIndex, 0);
}

TEST(Widgets, EndInAnyOrderWithTheirControlsAndBinder) {
  WidgetRegistry registry;
  QWidget parent;
  QCheckBox* check = nullptr;
  const auto run = [](const std::function<void()>& action) { action(); };
  auto life = std::make_shared<char>();
  auto timer = std::make_unique<ui::Timer>("timer", 0);
  auto tick = std::make_unique<ui::CheckBox>("chk", "Tick");
  auto binder = std::make_unique<ControlBinder>(registry, run, life);
  check = binder->make(*tick, &parent);
  binder->drive(*timer, [](const auto& work) { work(); });
  timer->Enabled = true;
  life.reset();
  tick.reset();
  timer.reset();
  check->click();
  QCoreApplication::processEvents();
  binder.reset();
  check->click();
  ui::CheckBox other("chk", "Tick");
  ControlBinder second(registry, run);
  delete second.make(other, &parent);
  other.Value = ui::kChecked;
  EXPECT_EQ(registry.find(other), nullptr);
}

TEST(Captions, AreReadWithoutTheirMarksAndColoursOnAnyGround) {
  EXPECT_EQ(plainCaption(QStringLiteral("Black && &White")), QStringLiteral("Black & White"));
  EXPECT_FALSE(hasAccelerator(QStringLiteral("Black && White&")));
  EXPECT_EQ(readableOn(Qt::blue, Qt::black), QColor(Qt::white));
  EXPECT_EQ(readableOn(Qt::yellow, Qt::white), QColor(Qt::black));
  EXPECT_EQ(readableOn(Qt::white, Qt::darkRed), QColor(Qt::darkRed));
}

}  // namespace
}  // namespace banddesk::desktop
