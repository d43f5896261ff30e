// The parameters page of a new analysis.
#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

const Script kOneBin{{0, {{100, {1, 1, 0}}}}};

struct Boxes {
  explicit Boxes(const std::shared_ptr<host::HostPage>& page)
      : width(Desk::control<ui::TextBox>(*page->control(), "txtMaxBinWidth")),
        threshold(Desk::control<ui::TextBox>(*page->control(), "txtYThreshold")) {}
  ui::TextBox& width;
  ui::TextBox& threshold;
};

TEST(ParamsPage, ChecksItsTwoNumbers) {
  Desk desk(kOneBin);
  const auto page = desk.parametersPage();
  Boxes boxes(page);
  struct Case {
    const char* width;
    const char* threshold;
    bool widthIsGood, thresholdIsGood;
  };
  for (const Case& c :
       {Case{"0.05", "0", true, true}, Case{"10", "100000", true, true}, Case{"10.00", " 5 ", true, true},
        Case{"0.04", "-1", false, false}, Case{"10.01", "", false, false}, Case{"", "12a", false, false},
        Case{"x", "&H10", false, false}, Case{"1.2a", "1e3", true, true}, Case{"1,5", "1,5", true, false}}) {
    boxes.width.Text = c.width;
    boxes.threshold.Text = c.threshold;
    EXPECT_EQ(desk.host.pages().validate(*page), c.widthIsGood && c.thresholdIsGood)
        << c.width << "|" << c.threshold;
    EXPECT_EQ(boxes.width.BackColor, c.widthIsGood ? ui::kWhite : ui::kYellow) << c.width;
    EXPECT_EQ(boxes.threshold.BackColor, c.thresholdIsGood ? ui::kWhite : ui::kYellow) << c.threshold;
  }
}

TEST(ParamsPage, BeepsForTheUserWhoLeavesABadBoxAndNotForTheHost) {
  Desk desk(kOneBin);
  const auto page = desk.parametersPage();
  Boxes boxes(page);
  boxes.width.Text = "11";
  boxes.threshold.Text = "-1";
  EXPECT_FALSE(desk.host.pages().validate(*page));
  EXPECT_EQ(desk.host.platform().beeps(), 0);
  EXPECT_EQ(desk.host.platform().focus(), "txtYThreshold");
  EXPECT_FALSE(boxes.width.leave());
  EXPECT_EQ(desk.host.platform().beeps(), 1);
  EXPECT_EQ(desk.host.platform().focus(), "txtMaxBinWidth");
}

TEST(ParamsPage, StepsTheWidthByFiveHundredthsAndTheThresholdByItsBuddy) {
  Desk desk(kOneBin);
  const auto page = desk.parametersPage();
  Boxes boxes(page);
  auto& spin = Desk::control<ui::UpDown>(*page->control(), "udMaxBinWidth");
  struct Case {
    const char* from;
    bool up;
    const char* to;
  };
  for (const Case& c : {Case{"0.05", false, "0.05"}, Case{"0.10", false, "0.05"}, Case{"0.06", false, "0.01"},
                        Case{"10.00", true, "10.00"}, Case{"9.95", true, "10.00"},
                        Case{"9.99", true, "10.04"}, Case{"1abc", true, "1.05"}}) {
    boxes.width.Text = c.from;
    c.up ? spin.up() : spin.down();
    EXPECT_EQ(boxes.width.Text.get(), c.to);
  }
  auto& buddy = Desk::control<ui::UpDown>(*page->control(), "udYThreshold");
  buddy.up();
  EXPECT_EQ(boxes.threshold.Text.get(), "100");
  buddy.down();
  buddy.down();
  EXPECT_EQ(boxes.threshold.Text.get(), "0");
}

TEST(ParamsPage, WritesTheWholeFirstConfiguration) {
  Desk desk(kOneBin);
  const auto page = desk.parametersPage();
  Boxes boxes(page);
  boxes.width.Text = "1.25";
  boxes.threshold.Text = "50.5";
  Desk::control<ui::CheckBox>(*page->control(), "chkExcludeFullBins").click();
  Desk::control<ui::CheckBox>(*page->control(), "chkDye(1)").click();
  desk.accept(page);
  AFLP& analysis = desk.analysis();
  EXPECT_EQ(analysis.MaxBinWidth, 1.25);
  EXPECT_EQ(analysis.YThreshold, 50);  // ties to even
  EXPECT_FALSE(analysis.ExcludeFullBins);
  EXPECT_TRUE(analysis.ExcludeEmptySamples);
  EXPECT_TRUE(analysis.ShowWellID);
  EXPECT_FALSE(analysis.ShowTimestamp || analysis.ShowExcluded || analysis.SamplesInRows);
  EXPECT_EQ(analysis.ResultStamp, desk.host.study().Study()->ResultStamp);
  std::string dyes;
  for (const auto& column : analysis.DyeGrid->Columns) {
    dyes += column->Key.get() + column->Header.get() + column->ToolTip.get() +
            (column->IsVisible ? "+" : "-") + std::to_string(column->TypeCode) + " ";
  }
  EXPECT_EQ(dyes, "0D1Dye 1+306 1D2Dye 2-306 2D3Dye 3+306 3D4Dye 4+306 ");
}

TEST(ParamsPage, ReadsStrictlyWhenItSaves) {
  Desk desk(kOneBin);
  const auto page = desk.parametersPage();
  Boxes boxes(page);
  // Valid to the check, but no number as a whole, or too large.
  for (const auto& [width, threshold, number] :
       {std::tuple("1.2a", "0", ErrorNumber::TypeMismatch), {"1.5", "3000000000", ErrorNumber::Overflow}}) {
    boxes.width.Text = width;
    boxes.threshold.Text = threshold;
    try {
      desk.accept(page);
      FAIL() << "was saved";
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), number);
    }
  }
  const auto& analysis = dynamic_cast<AFLP&>(*page->bound());
  EXPECT_EQ(analysis.MaxBinWidth, 1.5);  // what came before the failure is written
  EXPECT_EQ(analysis.DyeGrid->Columns.Count(), 0);
}

TEST(ParamsPage, FollowsTheStudysDyesByColourOrByVisibility) {
  Desk desk(kOneBin);
  const auto page = desk.parametersPage();
  auto& box = Desk::control<ui::CheckBox>(*page->control(), "chkDye(2)");
  auto& swatch = Desk::control<ui::PictureBox>(*page->control(), "picDye(2)");
  EXPECT_EQ(box.Value, 1);
  desk.host.study().setDyeVisible(2, false);
  EXPECT_EQ(box.Value, 0);
  desk.host.study().setDyeColor(2, 0x123456);
  EXPECT_EQ(swatch.BackColor, 0x123456U);
  EXPECT_EQ(box.Value, 0);
}

}  // namespace
}  // namespace banddesk::test
