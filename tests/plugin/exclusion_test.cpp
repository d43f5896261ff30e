// What leaves the table: by the two filters, by dye, by hand; how that shows, and what is kept of it.
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;

// An analysis with all excluded elements shown, so that grey tells what is excluded.
struct Shown {
  explicit Shown(Script script, const std::vector<std::string>& samples = {"a", "b", "c"})
      : desk(std::move(script), samples), page(desk.newAnalysis()) {
    desk.control<ui::CheckBox>("chkShowExcluded").click();
    desk.wait();
    page.HideCols(1, 9, true);
  }
  void set(const std::string& box, int value) {
    desk.control<ui::CheckBox>(box).Value = value;
    desk.wait();
  }
  void excludeBin(std::int32_t row) { desk.chooseAt(row, 1, "mnuExcludeBin"); }
  void excludeSample(std::int32_t col) { desk.chooseAt(0, col, "mnuExcludeColumn"); }
  // Rows and samples that are hidden.
  std::string hidden() {
    std::string text;
    for (std::int32_t row = 1; row <= page.NumRows(); ++row)
      text += page.IsRowHidden(row) ? std::to_string(row) : "";
    for (std::int32_t col = 10; col <= page.NumCols(); ++col)
      text += page.IsColHidden(col) ? page.Key(col) : "";
    return text;
  }
  // The logical rows and samples whose header is grey; filters and dyes leave it as it is.
  std::string greyHeaders() {
    std::string text;
    const auto isGrey = [&](std::int32_t row, std::int32_t col) {
      return (page.Transpose() ? desk.grid().look(col, row) : desk.grid().look(row, col)).interior->bkColor ==
             0xC0C0C0;
    };
    for (std::int32_t row = 1; row <= page.NumRows(); ++row)
      text += isGrey(row, 0) ? std::to_string(row) : "";
    for (std::int32_t col = 0; col <= page.NumCols(); ++col) text += isGrey(0, col) ? page.Key(col) : "";
    return text;
  }

  Desk desk;
  IAFLPResultsPage& page;
};

TEST(Filters, TakeTurnsUntilNothingChanges) {
  // b's only bin is full once c, which has none, is out; then b has none left.
  Shown t({{0, {{100, {1, 1, 0}}, {200, {1, 0, 0}}}}});
  EXPECT_EQ(t.desk.visibleTable(), "1 2 3\n1* 1* 0*\n1* 0* 0*\n");
  t.set("chkExcludeEmptySamples", 0);
  EXPECT_EQ(t.desk.visibleTable(), "1 2 3\n1 1 0\n1 0 0\n");
  t.set("chkExcludeEmptySamples", 1);
  t.set("chkExcludeFullBins", 0);
  EXPECT_EQ(t.desk.visibleTable(), "1 2 3\n1 1 0*\n1 0 0*\n") << "one filter runs once";
}

TEST(Filters, TakeEveryKindOfTable) {
  struct Case {
    const char* what;
    std::vector<ScriptedBin> bins;
    std::function<void(Shown&)> act;
    const char *table, *hidden;  // with the excluded elements shown, and without
  };
  const std::vector<ScriptedBin> two{{100, {1, 0, 1}}, {200, {0, 1, 1}}};
  for (const Case& c : std::initializer_list<Case>{
           {"none full, none empty", two, [](Shown&) {}, "1 2 3\n1 0 1\n0 1 1\n", ""},
           {"a bin excluded by hand counts for neither", two, [](Shown& t) { t.excludeBin(2); },
            "1 2 3\n1* 0* 1*\n0* 1* 1*\n", "12-1-2-3"},
           {"a bin that was brought back stays",
            {{100, {1, 1, 1}}, {200, {1, 0, 0}}, {300, {0, 1, 1}}},
            [](Shown& t) { t.excludeBin(1); },
            "1 2 3\n1 1 1\n1 0 0\n0 1 1\n",
            ""},
           {"a sample excluded by hand proves nothing",
            {{100, {1, 0, 1}}, {200, {0, 1, 1}}, {300, {1, 1, 0}}},
            [](Shown& t) { t.excludeSample(11); },
            "1 2* 3\n1* 0* 1*\n0 1* 1\n1 1* 0\n",
            "1-2"},
           {"all samples excluded: every bin is full", two,
            [](Shown& t) { t.excludeSample(10), t.excludeSample(11), t.excludeSample(12); },
            "1* 2* 3*\n1* 0* 1*\n0* 1* 1*\n", "12-1-2-3"},
           {"no bin valid: every sample is empty", two, [](Shown& t) { t.set("chkDye(0)", 0); }, "1 2 3\n",
            "12-1-2-3"}}) {
    Shown t({{0, c.bins}});
    c.act(t);
    EXPECT_EQ(t.desk.visibleTable(), c.table) << c.what;
    t.set("chkShowExcluded", 0);
    EXPECT_EQ(t.hidden(), c.hidden) << c.what;
  }
}

TEST(Filters, TakeNoNoticeOfBinsWhoseDyeIsHidden) {
  Shown t({{0, {{100, {1, 0, 0}}, {200, {0, 1, 0}}}}, {1, {{150, {0, 0, 1}}, {250, {1, 1, 1}}}}});
  EXPECT_EQ(t.desk.visibleTable(), "1 2 3\n1 0 0\n0 1 0\n0 0 1\n1* 1* 1*\n");
  t.set("chkDye(1)", 0);
  EXPECT_EQ(t.desk.visibleTable(), "1 2 3\n1 0 0*\n0 1 0*\n");
  t.set("chkDye(1)", 1);
  t.set("chkDye(0)", 2);
  EXPECT_EQ(t.hidden(), "12") << "a grey box hides, and its bins still count";
  EXPECT_EQ(t.desk.visibleTable(), "1 2 3\n0 0 1\n1* 1* 1*\n");
}

TEST(Suppressed, ElementsAreGreyOrHiddenAndThoseOfAnUncheckedDyeStayHidden) {
  Shown t({{0, {{100, {1, 1, 0}}, {200, {1, 0, 0}}, {300, {0, 1, 0}}}},
           {1, {{150, {1, 1, 0}}, {250, {1, 0, 0}}}}});
  EXPECT_EQ(t.hidden(), "");
  EXPECT_EQ(t.desk.visibleTable(), "1 2 3\n1* 1* 0*\n1 0 0*\n0 1 0*\n1* 1* 0*\n1 0 0*\n");
  EXPECT_EQ(t.greyHeaders(), "14") << "of a suppressed row column 0 is grey, of a sample the header is not";
  t.set("chkDye(1)", 0);
  EXPECT_EQ(t.hidden(), "45");
  t.set("chkShowExcluded", 0);
  EXPECT_EQ(t.hidden(), "145-3");
  t.set("chkShowExcluded", 1);
  EXPECT_EQ(t.hidden(), "45");
  t.set("chkShowExcluded", 0);
  t.set("chkDye(1)", 1);
  EXPECT_EQ(t.hidden(), "14-3");
  t.set("chkShowExcluded", 1);
  EXPECT_EQ(t.desk.visibleTable(), "1 2 3\n1* 1* 0*\n1 0 0*\n0 1 0*\n1* 1* 0*\n1 0 0*\n");
  t.page.SetTranspose(true);
  t.set("chkShowExcluded", 0);
  EXPECT_EQ(t.hidden(), "14-3");
}

TEST(Dyes, FollowTheStudyByColourOrByVisibility) {
  Shown t({{0, {{100, {1, 0, 2}}}}, {2, {{300, {0, 5, 1}}}}});
  const auto& dye = t.desk.analysis().DyeGrid->Columns.Item("0");
  auto& box = t.desk.control<ui::CheckBox>("chkDye(0)");
  auto& colours = t.desk.host.study().Study()->Dyes.Item("0")->Color;
  EXPECT_EQ(box.BackColor, colours.get());
  t.desk.host.study().setDyeVisible(0, false);
  EXPECT_TRUE(!dye->IsVisible && box.Value == 0);
  t.desk.wait();
  EXPECT_EQ(t.hidden(), "1");
  t.desk.host.study().setDyeColor(0, 0x101010);
  EXPECT_EQ(box.BackColor, 0x101010U);
  EXPECT_EQ(box.ForeColor, 0xFFFFFFU);
  EXPECT_TRUE(dye->InteriorColor == 0x101010U && dye->InteriorBkColor == 0x101010U &&
              dye->TextColor == 0xFFFFFFU);
  EXPECT_FALSE(dye->IsVisible);
  t.desk.host.study().setDyeVisible(0, true);
  EXPECT_TRUE(dye->IsVisible && box.Value == 1 && box.ForeColor == 0U);
  // Both at once: the colour alone.
  auto& both = *t.desk.host.study().Study()->Dyes.Item("0");
  both.Color = 0xF0F0F0;
  both.Visible = false;
  t.desk.host.study().Study()->DyeVisibibilityChanged.raise(both);
  EXPECT_TRUE(dye->IsVisible && box.Value == 1 && box.BackColor == 0xF0F0F0U && dye->TextColor == 0U);
  for (const std::int32_t index : {-1, 4}) {
    Dye strange;
    strange.Index = index;
    t.desk.host.study().Study()->DyeVisibibilityChanged.raise(strange);
  }
  EXPECT_TRUE(t.desk.host.framework().reports().empty());
}

TEST(ByHand, ABinIsExcludedBroughtBackAndBoth) {
  for (const bool transposed : {false, true}) {
    Shown t({{0, {{100, {1, 1, 1}}, {200, {1, 0, 1}}, {300, {0, 1, 1}}}}});
    if (transposed) t.page.SetTranspose(true);
    t.set("chkExcludeEmptySamples", 0);
    t.set("chkShowExcluded", 0);
    EXPECT_EQ(t.hidden() + "|" + t.greyHeaders(), "1|1");
    t.excludeBin(1);  // the item is checked: the bin comes back
    EXPECT_EQ(t.hidden() + "|" + t.greyHeaders(), "|");
    EXPECT_TRUE(t.page.AnyManualExclusions());
    t.excludeBin(1);
    EXPECT_EQ(t.hidden() + "|" + t.greyHeaders(), "1|1");
    EXPECT_FALSE(t.page.AnyManualExclusions());
    t.excludeBin(3);
    EXPECT_TRUE(t.page.AnyManualExclusions());
    EXPECT_EQ(t.hidden() + "|" + t.greyHeaders(), "13|13");
    t.excludeBin(3);
    EXPECT_EQ(t.hidden() + "|" + t.greyHeaders(), "1|1");
    EXPECT_FALSE(t.page.AnyManualExclusions());
  }
}

TEST(ByHand, SeveralRowsTakeTheStateOfTheOneThatWasClicked) {
  Shown t({{0, {{100, {1, 1, 1}}, {200, {1, 0, 1}}, {300, {0, 1, 1}}, {400, {0, 1, 0}}}}});
  t.set("chkExcludeEmptySamples", 0);
  t.desk.grid().user().selectRows(1, 3);
  t.excludeBin(2);
  EXPECT_EQ(t.greyHeaders(), "123");
  t.desk.grid().user().selectRows(1, 4);
  t.excludeBin(1);
  EXPECT_EQ(t.greyHeaders(), "") << "brought back, and the others no longer excluded";
  EXPECT_TRUE(t.page.AnyManualExclusions());
  t.desk.grid().user().selectCols(10, 11);
  t.excludeSample(11);
  EXPECT_EQ(t.greyHeaders(), "23-1-2") << "two bins are full by what is left";
  t.excludeSample(10);
  EXPECT_EQ(t.greyHeaders(), "23") << "the header of a sample comes back with it";
}

TEST(ByHand, ASampleIsExcludedAndABinColumnHidden) {
  Shown t({{0, {{100, {1, 0, 2}}, {200, {0, 3, 0}}, {300, {1, 1, 0}}}}});
  t.set("chkExcludeEmptySamples", 0);
  t.set("chkExcludeFullBins", 0);
  t.page.HideCols(1, 9, false);
  const auto state = [&](std::int32_t col) {
    const std::string key = t.page.Key(col);
    const auto column = t.page.ColumnSet(key)->Columns.Item(key);
    return std::string(column->IsVisible ? "visible" : "") + (column->IsExcluded ? " excluded" : "") +
           (t.page.IsColHidden(col) ? " hidden" : "");
  };
  EXPECT_EQ(t.page.ExcludeColumn(12, true), "-3");
  EXPECT_EQ(state(12), " excluded") << "while excluded ones are shown";
  EXPECT_EQ(t.page.ExcludeColumn(5, true), "9");
  EXPECT_EQ(state(5), " hidden");
  t.page.ExcludeColumn(5, false);
  EXPECT_EQ(state(5), "visible");
  t.excludeSample(12);
  EXPECT_EQ(state(12), "visible");
  t.set("chkShowExcluded", 0);
  t.excludeSample(12);
  EXPECT_EQ(state(12), " excluded hidden");
  t.page.ExcludeColumn(12, false);
  EXPECT_EQ(state(12), "visible");
  for (const char* then : {" excluded hidden", "visible"}) {
    t.excludeSample(12);
    EXPECT_EQ(state(12), then);
  }
  t.excludeSample(5);
  EXPECT_EQ(state(5), " hidden");
  EXPECT_EQ(t.greyHeaders(), "") << "bin information is never grey";
}

TEST(Decisions, AreStoredByDyeAndMeanAndFoundOncePerPage) {
  const Script script{{0, {{100.5, {1, 1, 1}}, {200, {1, 0, 1}}, {300, {0, 1, 1}}}},
                      {1, {{100.5, {0, 1, 0}}}}};
  Shown t(script);
  t.set("chkExcludeEmptySamples", 0);
  t.excludeBin(1);
  t.excludeBin(3);
  t.excludeBin(4);
  t.set("chkDye(1)", 0);
  const auto analysis = t.desk.host.study().Study()->AFLPs.Item(1);
  const auto stored = [&] {
    std::string text;
    for (const auto& record : analysis->AFLPBins) {
      text += record->Key.get() + (record->ManuallyExcluded ? "x" : "") +
              (record->ManuallyIncluded ? "i" : "") + " ";
    }
    return text;
  };
  const auto save = [&] { EXPECT_TRUE(t.desk.host.pages().end(t.desk.pageNamed("AFLP"), true)); };
  save();
  EXPECT_EQ(stored(), "D1-100.5i D1-300x D2-100.5x ");

  // Of an unchecked dye they come back too.
  IAFLPResultsPage* page = &t.desk.reopen(analysis);
  EXPECT_TRUE(page->AnyManualExclusions());
  const auto greys = [&] {
    std::string text;
    for (std::int32_t row = 1; row <= page->NumRows(); ++row) {
      text += t.desk.grid().look(row, 10).interior->bkColor == 0xC0C0C0 ? std::to_string(row) : "";
    }
    return text;
  };
  EXPECT_EQ(greys(), "34");
  // A bin that goes from one mark to the other keeps the record that it has.
  t.desk.chooseAt(3, 1, "mnuExcludeBin");
  t.desk.chooseAt(1, 1, "mnuExcludeBin");
  t.desk.control<ui::CheckBox>("chkExcludeFullBins").click();
  t.desk.wait();
  t.desk.chooseAt(1, 1, "mnuExcludeBin");
  EXPECT_EQ(greys(), "14");
  save();
  EXPECT_EQ(stored(), "D1-100.5i D2-100.5x ");

  page = &t.desk.reopen(analysis);
  t.desk.host.study().options().SetShowInclusionWarning(false);
  page->Analyze(true);
  EXPECT_FALSE(page->AnyManualExclusions()) << "found a second time";
  page->SetNumRows(0);
  save();
  EXPECT_EQ(stored(), "");

  // An analysis without records has looked for them too.
  page = &t.desk.reopen(analysis);
  const auto late = std::dynamic_pointer_cast<AFLPBin>(t.desk.host.objects().Create("AFLPBin"));
  late->Key = "D1-200";
  late->ManuallyExcluded = true;
  analysis->AFLPBins.Add(late);
  page->Analyze(true);
  EXPECT_FALSE(page->AnyManualExclusions());
}

TEST(Warning, GuardsDecisionsAndPutsTheParametersBack) {
  Shown t({{0, {{100, {1, 1, 1}}, {200, {1, 0, 1}}}}});
  auto& width = t.desk.control<ui::TextBox>("txtMaxBinWidth");
  auto& threshold = t.desk.control<ui::TextBox>("txtYThreshold");
  threshold.Text = "12.5";
  t.page.Analyze(false);
  auto& platform = t.desk.host.platform();
  int asked = 0;
  const auto runWith = [&](const char* button, const char* text, bool dontShow) {
    t.desk.front.formAnswers = {[=, &t, &platform, &asked](ui::Form& form) {
      ++asked;
      EXPECT_EQ(form.Caption(), "Inclusion/Exclusion Warning");
      EXPECT_EQ(platform.MousePointer(), 0);
      const auto runs = t.desk.calculators->calculated.size();
      t.page.Analyze(true);  // provoked while the dialog is open
      EXPECT_EQ(t.desk.calculators->calculated.size(), runs);
      if (dontShow) form.Controls().find<ui::CheckBox>("chkDontShow")->click();
      if (button != nullptr) form.Controls().find<ui::CommandButton>(button)->Click.raise();
    }};
    platform.SetMousePointer(5);
    width.Text = "2.5";
    threshold.Text = text;
    t.page.Analyze(false);
    EXPECT_EQ(platform.MousePointer(), 5);
    return t.page.AnyManualExclusions();
  };
  t.excludeBin(2);
  EXPECT_TRUE(runWith("btnCancel", "13", false));
  EXPECT_EQ(width.Text.get(), "1.00");
  EXPECT_EQ(threshold.Text.get(), "12.5");
  EXPECT_FALSE(runWith("btnOK", "13", false));
  EXPECT_EQ(t.desk.calculators->calculated.back(), std::pair(2.5, 13.0));
  t.excludeBin(2);
  EXPECT_FALSE(runWith(nullptr, "14", false)) << "closed by its frame: as it was answered last";
  t.excludeBin(2);
  EXPECT_TRUE(runWith("btnCancel", "15", true));
  EXPECT_EQ(asked, 4);
  EXPECT_FALSE(t.desk.host.study().options().ShowInclusionWarning()) << "Cancel does not undo it";
  EXPECT_FALSE(runWith("btnCancel", "15", false)) << "nobody asks any more";
  EXPECT_EQ(asked, 4);
}

TEST(Warning, HasItsTextsAndHelpUnlessAPressCameBefore) {
  Shown t({{0, {{100, {1, 1, 1}}, {200, {1, 0, 1}}}}});
  t.excludeBin(2);
  const auto& help = t.desk.front.help;
  std::vector<std::size_t> helps;
  t.desk.front.formAnswers = {[&](ui::Form& form) {
    EXPECT_EQ(form.Controls().find<ui::Label>("lblWarning")->Caption.get(),
              "This action will cause all manually included and excluded bins to be lost. Are you sure that "
              "you want to "
              "continue?");
    EXPECT_EQ(form.Controls().find<ui::CheckBox>("chkDontShow")->Caption.get(),
              "Do not show this dialog in the future");
    for (const bool pressed : {true, false, false, true}) {
      if (pressed) form.MouseDown();
      form.MouseUp(nullptr);
      helps.push_back(help.size());
    }
    auto& box = *form.Controls().find<ui::CheckBox>("chkDontShow");
    box.click();
    EXPECT_FALSE(t.desk.host.study().options().ShowInclusionWarning());
    box.click();
    EXPECT_TRUE(t.desk.host.study().options().ShowInclusionWarning());
  }};
  t.page.Analyze(true);
  EXPECT_THAT(helps, ElementsAre(0, 1, 2, 2));
  EXPECT_TRUE(help[0].topic == "AFLPWarning" && help[0].command == 1 && help[0].data == 0);
}

}  // namespace
}  // namespace banddesk::test
