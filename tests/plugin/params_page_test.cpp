// The parameters page of a new analysis.
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;

const Script kOneBin{{0, {{100, {1, 1, 0}}}}};

struct Boxes {
  explicit Boxes(const std::shared_ptr<host::HostPage>& page)
      : width(Desk::control<ui::TextBox>(*page->control(), "txtMaxBinWidth")),
        threshold(Desk::control<ui::TextBox>(*page->control(), "txtYThreshold")) {}
  ui::TextBox& width;
  ui::TextBox& threshold;
};

// The page's boxes and swatches, each with its caption and value or colour.
std::string designOf(const IPageControl& page) {
  std::string text;
  for (const ui::Control* control : page.Controls().all()) {
    if (const auto* box = dynamic_cast<const ui::CheckBox*>(control)) {
      text += box->Caption.get() + "=" + std::to_string(box->Value) + "|";
    } else if (const auto* label = dynamic_cast<const ui::Label*>(control)) {
      text += label->Caption.get() + "|";
    } else if (const auto* frame = dynamic_cast<const ui::Frame*>(control)) {
      text += frame->Caption.get() + "|";
    } else if (const auto* input = dynamic_cast<const ui::TextBox*>(control)) {
      text += input->Text.get() + (input->RightAligned ? " right|" : "|");
    } else if (const auto* swatch = dynamic_cast<const ui::PictureBox*>(control)) {
      text += std::to_string(swatch->BackColor) + "|";
    }
  }
  return text;
}

TEST(ParamsPage, KeepsItsDesignWithoutAStudyAndTakesTheDyesOfTheNextOne) {
  Desk desk(kOneBin);
  desk.host.pages().OpenPage("AFLPParams", nullptr, nullptr, true, true, true, true, true, true, nullptr,
                             false, 0);
  const auto page = desk.pageNamed("AFLPParams");
  EXPECT_EQ(designOf(*page->control()),
            "Analysis Parameters|Maximum Bin &Width|1.00 right|nt|&Y Threshold|0 right|RFU|Exclude &Fully "
            "Populated "
            "Bins=1|Exclude Samples w/o &Qualifying "
            "Peaks=1|Dyes|D&1=0|D&2=1|D&3=1|D&4=1|255|2147483663|49152|16711680|");
  EXPECT_TRUE(desk.front.messages.empty());
  const auto& picture = Desk::control<ui::Image>(*page->control(), "imgAFLP");
  EXPECT_TRUE(picture.Width == 425 && picture.Height == 88);
  desk.host.study().open(desk.store);
  desk.host.study().setDyeColor(2, 0x123456);
  EXPECT_EQ(Desk::control<ui::PictureBox>(*page->control(), "picDye(2)").BackColor, 0x123456U);
}

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
    EXPECT_EQ(boxes.width.BackColor, c.widthIsGood ? 0xFFFFFFU : 0x00FFFFU) << c.width;
    EXPECT_EQ(boxes.threshold.BackColor, c.thresholdIsGood ? 0xFFFFFFU : 0x00FFFFU) << c.threshold;
  }
}

TEST(ParamsPage, BeepsForTheUserWhoLeavesABadBoxAndNotForTheHost) {
  Desk desk(kOneBin);
  const auto page = desk.parametersPage();
  Boxes boxes(page);
  boxes.width.Text = "11";
  boxes.threshold.Text = "-1";
  EXPECT_FALSE(desk.host.pages().validate(*page));
  EXPECT_EQ(desk.front.beeps, 0);
  EXPECT_EQ(desk.front.focus, "txtYThreshold");
  EXPECT_FALSE(boxes.width.leave());
  EXPECT_EQ(desk.front.focus, "txtMaxBinWidth");
  EXPECT_FALSE(boxes.threshold.leave());
  EXPECT_EQ(desk.front.beeps, 2);
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
  for (const auto& [from, up, to] : {std::tuple("0", true, "100"),
                                     {"100", false, "0"},
                                     {"0", false, "0"},
                                     {"2147483600", true, "2147483647"}}) {
    boxes.threshold.Text = from;
    up ? buddy.up() : buddy.down();
    EXPECT_EQ(boxes.threshold.Text.get(), to);
  }
}

TEST(ParamsPage, IsMarkedChangedByWhatIsTyped) {
  for (const char* box : {"txtMaxBinWidth", "txtYThreshold"}) {
    Desk desk(kOneBin);
    const auto page = desk.parametersPage();
    auto& state = dynamic_cast<AFLP&>(*page->bound()).Persistent();
    state.IsDirty = false;
    Desk::control<ui::TextBox>(*page->control(), box).Text = "3";
    EXPECT_TRUE(state.IsDirty) << box;
  }
}

TEST(ParamsPage, WritesTheWholeFirstConfiguration) {
  struct Case {
    const char *width, *threshold;
    double maxBinWidth;
    std::int32_t yThreshold;
  };
  for (const Case& c : {Case{"1.25", "50.5", 1.25, 50}, Case{"10", "51.5", 10, 52}}) {  // ties to even
    Desk desk(kOneBin);
    desk.openStudy();
    desk.host.study().setDyeColor(3, 0x101010);
    desk.host.study().Study()->ResultStamp = 77;
    const auto page = desk.parametersPage();
    Boxes boxes(page);
    boxes.width.Text = c.width;
    boxes.threshold.Text = c.threshold;
    const bool turnsFull = c.yThreshold == 50;
    Desk::control<ui::CheckBox>(*page->control(), turnsFull ? "chkExcludeFullBins" : "chkExcludeEmptySamples")
        .click();
    Desk::control<ui::CheckBox>(*page->control(), "chkDye(1)").click();
    const auto bound = std::dynamic_pointer_cast<AFLP>(page->bound());
    bound->ShowExcluded = bound->ShowTimestamp = bound->SamplesInRows = true;
    bound->ShowWellID = false;
    bound->SampleBinOption = 2;
    page->base()->Save.raise();
    EXPECT_EQ(bound->MaxBinWidth, c.maxBinWidth);
    EXPECT_EQ(bound->YThreshold, c.yThreshold);
    EXPECT_EQ(bound->ExcludeFullBins, !turnsFull);
    EXPECT_EQ(bound->ExcludeEmptySamples, turnsFull);
    EXPECT_TRUE(bound->ShowWellID && bound->IsPending);
    EXPECT_FALSE(bound->ShowTimestamp || bound->ShowExcluded || bound->SamplesInRows);
    EXPECT_EQ(bound->SampleBinOption, 0);
    EXPECT_EQ(bound->ResultStamp, 77);
    std::string dyes;
    for (const auto& column : bound->DyeGrid->Columns) {
      dyes += column->Key.get() + column->Header.get() + column->ToolTip.get() +
              (column->IsVisible ? "+" : "-") + std::to_string(column->TypeCode) + "@" +
              std::to_string(column->ColumnOrder) + " ";
      const Colour colour = desk.host.study().Study()->Dyes.Item(column->Key.get())->Color;
      EXPECT_TRUE(column->InteriorColor == colour && column->InteriorBkColor == colour);
      EXPECT_EQ(column->TextColor, desk.host.GridUtilities().ContrastColor(colour));
    }
    EXPECT_EQ(dyes, "0D1Dye 1+306@1 1D2Dye 2-306@2 2D3Dye 3+306@3 3D4Dye 4+306@4 ");
  }
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
  desk.openStudy();
  desk.host.study().setDyeVisible(0, false);
  const auto page = desk.parametersPage();
  for (int i = 0; i < 4; ++i) {
    const std::string number = "(" + std::to_string(i) + ")";
    EXPECT_EQ(Desk::control<ui::CheckBox>(*page->control(), "chkDye" + number).Value, i == 0 ? 0 : 1);
    EXPECT_EQ(Desk::control<ui::PictureBox>(*page->control(), "picDye" + number).BackColor,
              desk.host.study().Study()->Dyes.Item(std::to_string(i))->Color);
  }
  auto& box = Desk::control<ui::CheckBox>(*page->control(), "chkDye(2)");
  auto& swatch = Desk::control<ui::PictureBox>(*page->control(), "picDye(2)");
  Dye dye;
  const auto follow = [&](std::int32_t index, Colour colour, bool isVisible) {
    dye.Index = index;
    dye.Color = colour;
    dye.Visible = isVisible;
    desk.host.study().Study()->DyeVisibibilityChanged.raise(dye);
    return std::pair(box.Value.get(), swatch.BackColor.get());
  };
  const Colour first = swatch.BackColor;
  EXPECT_EQ(follow(2, first, false), std::pair(0, first));
  EXPECT_EQ(follow(2, 0x123456, true), std::pair(0, Colour{0x123456})) << "both at once: the colour alone";
  EXPECT_EQ(follow(2, 0x123456, true), std::pair(1, Colour{0x123456}));
  for (const std::int32_t index : {-1, 4}) EXPECT_EQ(follow(index, 0, false), std::pair(1, Colour{0x123456}));
  EXPECT_TRUE(desk.host.framework().reports().empty());
}

TEST(ParamsPage, CannotOpenOverAStudyWithoutOneOfTheDyes) {
  Desk desk(kOneBin);
  desk.openStudy();
  desk.host.study().Study()->Dyes.Remove("2");
  EXPECT_THROW(desk.parametersPage(), Error);
  std::vector<std::string> procedures;
  for (const auto& report : desk.host.framework().reports()) procedures.push_back(report.procedure);
  EXPECT_THAT(procedures, ElementsAre("InitDyes", "m_oPageBase_Initialize", "NewAFLP", "NewAFLP"));
}

}  // namespace
}  // namespace banddesk::test
