// The page's own controls: the two numbers, what waits for the timer and in which order it runs, keys and
// sizes.
#include <algorithm>
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;

const Script kScript{{0, {{100, {1, 0, 2}}, {200, {1, 1, 1}}}}, {1, {{300, {0, 5, 1}}}}};

std::size_t runs(Desk& desk) { return desk.calculators->calculated.size() / 4; }

TEST(Numbers, StepWithinTheLimitsThatEachBoxHasAndStartOneAnalysis) {
  struct Step {
    const char *box, *spin, *from;
    bool up;
    const char* to;
    bool runs;
  };
  for (const Step& s : {Step{"txtMaxBinWidth", "udMaxBinWidth", "1.00", true, "1.05", true},
                        Step{"txtMaxBinWidth", "udMaxBinWidth", "1.00", false, "0.95", true},
                        Step{"txtMaxBinWidth", "udMaxBinWidth", "0.05", false, "0.05", false},
                        Step{"txtMaxBinWidth", "udMaxBinWidth", "9.99", true, "10.04", true},
                        Step{"txtMaxBinWidth", "udMaxBinWidth", "10", true, "10", false},
                        Step{"txtYThreshold", "udYThreshold", "100", false, "0", true},
                        Step{"txtYThreshold", "udYThreshold", "99", false, "99", false},
                        Step{"txtYThreshold", "udYThreshold", "99.5", true, "199.5", true}}) {
    Desk desk(kScript);
    desk.newAnalysis();
    desk.control<ui::TextBox>(s.box).Text = s.from;
    desk.page().Analyze(false);
    const std::size_t before = runs(desk);
    auto& spin = desk.control<ui::UpDown>(s.spin);
    s.up ? spin.up() : spin.down();
    EXPECT_EQ(desk.control<ui::TextBox>(s.box).Text.get(), s.to);
    EXPECT_EQ(runs(desk), before) << "before the pause";
    EXPECT_EQ(desk.wait(), s.runs) << s.from << s.up;
    const bool isValid = std::string(s.to) != "10.04";
    EXPECT_EQ(runs(desk), before + (s.runs && isValid ? 1 : 0));
    EXPECT_FALSE(desk.wait());
  }
}

TEST(Numbers, AreCheckedOnLeavingWithABeepAndSilentlyForTheHost) {
  Desk desk(kScript);
  desk.newAnalysis();
  auto& width = desk.control<ui::TextBox>("txtMaxBinWidth");
  auto& threshold = desk.control<ui::TextBox>("txtYThreshold");
  struct Case {
    const char *width, *threshold;
    bool widthIsGood, thresholdIsGood;
  };
  for (const Case& c : {Case{"1abc", "100abc", true, false}, Case{"0.04", "0", false, true},
                        Case{"10.5", "-1", false, false}}) {
    width.Text = c.width;
    threshold.Text = c.threshold;
    EXPECT_FALSE(desk.host.pages().validate(*desk.pageNamed("AFLP")));
    EXPECT_EQ(width.BackColor, c.widthIsGood ? 0xFFFFFFU : 0x00FFFFU);
    EXPECT_EQ(threshold.BackColor, c.thresholdIsGood ? 0xFFFFFFU : 0x00FFFFU);
    EXPECT_EQ(desk.front.focus, c.widthIsGood ? "txtYThreshold" : "txtMaxBinWidth");
    EXPECT_EQ(desk.front.beeps, 0);
  }
  EXPECT_FALSE(width.leave());
  EXPECT_FALSE(threshold.leave());
  EXPECT_EQ(desk.front.beeps, 2);
  EXPECT_EQ(runs(desk), 1U);
  for (const auto& [box, text] : {std::pair("txtYThreshold", "7"), {"txtMaxBinWidth", "2"}}) {
    desk.control<ui::TextBox>(box).Text = text;
    desk.control<ui::TextBox>(box).leave();
  }
  EXPECT_EQ(runs(desk), 2U) << "at once, with both numbers good";
  EXPECT_EQ(desk.calculators->calculated.back(), std::pair(2.0, 7.0));
  EXPECT_TRUE(desk.host.pages().validate(*desk.pageNamed("AFLP")));
}

TEST(Numbers, MarkTheAnalysisChangedAsTheyAreTyped) {
  for (const char* box : {"txtMaxBinWidth", "txtYThreshold"}) {
    Desk desk(kScript);
    desk.newAnalysis();
    desk.host.save();
    desk.control<ui::TextBox>(box).Text = "3";
    EXPECT_THAT(desk.host.unsaved(), ElementsAre("Update AFLP: New AFLP 1")) << box;
  }
}

TEST(Keys, EnterAnalysesWhatHasChangedAndIsTakenAway) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  const auto press = [&](std::int32_t key) {
    std::int32_t down = key, pressed = key;
    page.UserControl_KeyDown(down);
    page.UserControl_KeyPress(pressed);
    EXPECT_EQ(down, key == 13 ? 0 : key);
    EXPECT_EQ(pressed, key == 13 ? 0 : key);
  };
  press(13);
  EXPECT_EQ(runs(desk), 1U) << "nothing had changed";
  desk.control<ui::TextBox>("txtYThreshold").Text = "5";
  press(65);
  EXPECT_EQ(runs(desk), 1U);
  press(13);
  EXPECT_EQ(runs(desk), 2U);
}

TEST(DelayedWork, RunsOnceForABurstOfEvents) {
  Desk desk(kScript);
  desk.newAnalysis();
  EXPECT_FALSE(desk.wait()) << "opening the page left work";
  auto& timer = desk.control<ui::Timer>("ctlTimer");
  EXPECT_EQ(timer.Interval, 500);
  int armed = 0;
  const auto counts = timer.Armed.connect([&](bool on) { armed += on ? 1 : 0; });
  for (int i = 0; i < 5; ++i) desk.control<ui::UpDown>("udMaxBinWidth").up();
  EXPECT_EQ(armed, 5) << "the wait does not start anew";
  EXPECT_EQ(runs(desk), 1U);
  EXPECT_TRUE(desk.wait());
  EXPECT_EQ(runs(desk), 2U);
  EXPECT_EQ(desk.calculators->calculated.back().first, 1.25);
}

// What is left over by work that found nothing to do does not come back with the next.
TEST(DelayedWork, IsForgottenWhenItHasRun) {
  Desk desk(kScript);
  desk.newAnalysis();
  desk.control<ui::UpDown>("udMaxBinWidth").up();
  desk.control<ui::UpDown>("udMaxBinWidth").down();
  desk.wait();
  EXPECT_EQ(runs(desk), 1U);
  desk.control<ui::TextBox>("txtMaxBinWidth").Text = "3";
  for (const char* box : {"chkShowExcluded", "chkExcludeFullBins", "chkShowWellID"}) {
    desk.control<ui::CheckBox>(box).click();
  }
  desk.control<ui::OptionButton>("optSampleBin(1)").Value = true;
  desk.wait();
  EXPECT_EQ(runs(desk), 1U);
}

// Each work is seen by what it does to the table; a failure of one keeps those after it from running.
TEST(DelayedWork, RunsInItsOrderAndLeavesOutWhatAnotherHasDone) {
  const auto states = [](Desk& desk) {
    return (desk.page().CellText("-2", 3) == "100" ? "heights " : "") +
           std::string(desk.page().IsRowHidden(3) ? "dye " : "") +
           (desk.page().IsRowHidden(2) ? "" : "shown ") + desk.page().CellText("-1", 0);
  };
  struct Case {
    const char *type, *member;
    int call;
    const char* done;
  };
  for (const Case& c : {Case{"Progress", "Finish", 1, "1-a"},  // the analysis' own end is call 2
                        Case{"Progress", "Finish", 9, "heights dye shown 1-a"}}) {
    Desk desk(kScript, {"a.A01_12345678AB", "b", "c"});
    desk.newAnalysis();
    desk.choose("mnuTransposeCell");
    desk.control<ui::CheckBox>("chkShowWellID").Value = 0;
    desk.control<ui::CheckBox>("chkShowExcluded").click();
    desk.control<ui::CheckBox>("chkDye(1)").click();
    desk.control<ui::OptionButton>("optSampleBin(2)").Value = true;
    const std::string before = states(desk);
    EXPECT_EQ(before, "1-a.A01");
    desk.host.faults().failAt(c.type, c.member, c.call, Error(ErrorNumber::Internal, "host", "broken"));
    desk.wait();
    EXPECT_EQ(desk.host.faults().hasFailed(), c.call == 1);
    EXPECT_EQ(states(desk), c.call == 1 ? "heights 1-a.A01" : c.done);
  }
}

TEST(DelayedWork, IsDoneByAnAnalysisThatRunsFirst) {
  Desk desk(kScript);
  desk.newAnalysis();
  desk.control<ui::OptionButton>("optSampleBin(2)").Value = true;
  desk.control<ui::CheckBox>("chkExcludeFullBins").click();
  desk.control<ui::UpDown>("udYThreshold").up();
  desk.host.faults().startRecording();
  desk.wait();
  EXPECT_EQ((desk.host.faults().recorded().at({"Progress", "Start"})), 1);
  EXPECT_EQ(desk.page().CellText("-2", 3), "100");
  EXPECT_FALSE(desk.page().IsRowHidden(2));
}

TEST(Resize, MovesTheControlsAndLetsTheGridOweHeight) {
  Desk desk(kScript);
  IAFLPResultsPage& page = desk.newAnalysis();
  auto& box = desk.control<ui::TextBox>("txtMaxBinWidth");
  double lowest = 0;
  for (const ui::Control* control : page.Controls().all()) {
    if (control->hasPlace()) lowest = std::max(lowest, control->Top + control->Height);
  }
  const double top = box.Top;
  const double height = desk.grid().Height;
  struct Step {
    double width, change, grid;
  };
  double at = lowest;
  for (const Step& step :
       {Step{640, 0, height}, Step{500, -height, 0}, Step{500, 20, 20}, Step{500, -70, 0}, Step{640, 30, 0},
        Step{640, 10, 0}, Step{640, 10, 0}, Step{640, 10, 10}, Step{640, height - 10, height}}) {
    at += step.change;
    page.UserControl_Resize(step.width, at);
    EXPECT_EQ(desk.grid().Height, step.grid) << step.change;
    EXPECT_EQ(desk.grid().Width, step.width);
    EXPECT_EQ(desk.grid().Top, 0);
    EXPECT_EQ(box.Top, top + at - lowest);
  }
}

TEST(Controls, StandInTheirOrderWithTheirTexts) {
  Desk desk(kScript);
  std::string texts;
  for (const ui::Control* control : desk.newAnalysis().Controls().all()) {
    if (const auto* label = dynamic_cast<const ui::Label*>(control)) texts += label->Caption.get() + "|";
    if (const auto* box = dynamic_cast<const ui::CheckBox*>(control)) texts += box->Caption.get() + "|";
    if (const auto* option = dynamic_cast<const ui::OptionButton*>(control))
      texts += option->Caption.get() + "|";
    if (const auto* button = dynamic_cast<const ui::CommandButton*>(control))
      texts += button->Caption.get() + "|";
  }
  EXPECT_EQ(
      texts,
      "Maximum Bin &Width|&Y Threshold|Dyes|D&1|D&2|D&3|D&4|Sample &Axis|Sample Bin: &Fragment Count|Sample "
      "Bin: "
      "&Binary Presence|Sample Bin: Fragment(s) &Max Y|Exclude Samples w/o &Qualifying Peaks|Exclude Fully "
      "&Populated Bins|Show &Excluded Elements|Well ID|Timestamp|&Help|");
  EXPECT_EQ(desk.control<ui::CheckBox>("chkDye(0)").ForeColor, 0U);
  desk.control<ui::CheckBox>("chkDye(0)").BackColor = 0x101010;
  desk.control<ui::CheckBox>("chkDye(0)").click();
  EXPECT_EQ(desk.control<ui::CheckBox>("chkDye(0)").ForeColor, 0xFFFFFFU);
  desk.control<ui::CheckBox>("chkDye(0)").click();
  EXPECT_EQ(desk.control<ui::CheckBox>("chkDye(0)").ForeColor, 0U);
}

// Where the indicator stands after each step of long work.
std::vector<double> progressOf(Desk& desk, const std::function<void()>& work) {
  std::vector<double> seen;
  const auto follows = desk.host.progress().Changed.connect(
      [&](const host::HostProgress& bar) { seen.push_back(bar.Position()); });
  work();
  return seen;
}

TEST(Progress, GivesEachDyeAShareAndStepsThroughRowsAndCells) {
  Desk desk({{0, {{100, {1, 1, 1}}, {200, {1, 0, 1}}}}, {1, {{300, {0, 5, 1}}}}, {3, {{300, {0, 5, 1}}}}});
  IAFLPResultsPage& page = desk.newAnalysis();
  host::HostProgress& bar = desk.host.progress();
  EXPECT_THAT(progressOf(desk, [&] { page.Analyze(true); }),
              ElementsAre(0, 0, 12.5, 25, 25, 50, 75, 75, 100, 0));
  // Within a run of somebody else, the start is taken off twice.
  EXPECT_THAT(progressOf(desk,
                         [&] {
                           bar.SetPosition(20);
                           page.Analyze(true);
                         }),
              ElementsAre(20, 20, 27.5, 35, 35, 50, 65, 65, 80, 0));
  desk.control<ui::OptionButton>("optSampleBin(1)").Value = true;
  EXPECT_THAT(progressOf(desk, [&] { desk.wait(); }), ElementsAre(0, 25, 50, 75, 100, 0));
  const auto cells = progressOf(desk, [&] { page.SetTranspose(true); });
  ASSERT_EQ(cells.size(), 1U + 65U + 1U);  // 5 rows and 13 columns with the headers
  EXPECT_FLOAT_EQ(static_cast<float>(cells[1]), 100.0F / 65);
  EXPECT_FLOAT_EQ(static_cast<float>(cells[65]), 100);

  std::vector<ScriptedBin> many(9, {100, {1, 0, 1}});
  Desk other({{0, many}});
  other.newAnalysis();
  EXPECT_THAT(progressOf(other,
                         [&] {
                           other.host.progress().SetPosition(20);
                           other.host.progress().SetSteps(8);  // two updates a dye: every 4.5 bins, to even
                           other.page().Analyze(true);
                         }),
              ElementsAre(20, 20, ::testing::DoubleNear(20 + 60.0 / 9, 1e-4),
                          ::testing::DoubleNear(20 + 120.0 / 9, 1e-4), 35, 50, 65, 80, 0));
}

}  // namespace
}  // namespace banddesk::test
