#include "plugin/params/params_page.h"

#include "plugin/base/numbers.h"

namespace banddesk {
namespace {

constexpr std::int32_t kLargestYThreshold = 2147483647;

}  // namespace

AFLPParamsPage::AFLPParamsPage(MGlobals& globals)
    : services_(globals.services()),
      frame_(services_.Framework(), "AFLPParamsPage"),
      boxes_(services_.Platform(), txtMaxBinWidth, txtYThreshold) {
  txtMaxBinWidth.RightAligned = true;
  txtYThreshold.RightAligned = true;
  udYThreshold.Increment = kYThresholdStep;
  udYThreshold.Max = kLargestYThreshold;
  udYThreshold.setBuddy(txtYThreshold);
  picDye[0].BackColor = 0x0000FF;
  picDye[2].BackColor = 0x00C000;
  picDye[3].BackColor = 0xFF0000;
  imgAFLP.Width = 425;
  imgAFLP.Height = 88;

  for (ui::Control* control :
       {static_cast<ui::Control*>(&frmAnalysisParams), static_cast<ui::Control*>(&lblMaxBinWidth),
        static_cast<ui::Control*>(&txtMaxBinWidth), static_cast<ui::Control*>(&udMaxBinWidth),
        static_cast<ui::Control*>(&lblNT), static_cast<ui::Control*>(&lblYThreshold),
        static_cast<ui::Control*>(&txtYThreshold), static_cast<ui::Control*>(&udYThreshold),
        static_cast<ui::Control*>(&lblRFU), static_cast<ui::Control*>(&chkExcludeFullBins),
        static_cast<ui::Control*>(&chkExcludeEmptySamples), static_cast<ui::Control*>(&frmDyes)}) {
    controls_.add(*control);
  }
  for (ui::CheckBox& box : chkDye) controls_.add(box);
  for (ui::PictureBox& swatch : picDye) controls_.add(swatch);
  controls_.add(imgAFLP);
}

void AFLPParamsPage::UserControl_Initialize() {
  frame_.handler("UserControl_Initialize", [&] {
    m_oPageBase = services_.NewPageBase();
    PageBase& base = required(m_oPageBase, "PageBase");
    connections_.push_back(base.Initialize.connect([this] { m_oPageBase_Initialize(); }));
    connections_.push_back(base.Validate.connect([this](bool& isValid) { m_oPageBase_Validate(isValid); }));
    connections_.push_back(base.Save.connect([this] { m_oPageBase_Save(); }));
    listenToControls();
  });
}

void AFLPParamsPage::listenToControls() {
  connections_.push_back(txtMaxBinWidth.Change.connect([this] { txtMaxBinWidth_Change(); }));
  connections_.push_back(txtYThreshold.Change.connect([this] { txtYThreshold_Change(); }));
  connections_.push_back(
      txtMaxBinWidth.Validate.connect([this](bool& cancel) { txtMaxBinWidth_Validate(cancel); }));
  connections_.push_back(
      txtYThreshold.Validate.connect([this](bool& cancel) { txtYThreshold_Validate(cancel); }));
  connections_.push_back(udMaxBinWidth.DownClick.connect([this] { udMaxBinWidth_DownClick(); }));
  connections_.push_back(udMaxBinWidth.UpClick.connect([this] { udMaxBinWidth_UpClick(); }));
}

std::shared_ptr<PageBase> AFLPParamsPage::IPageAccess_Page() {
  return frame_.procedure("IPageAccess_Page (Get)", [&] { return m_oPageBase; });
}

void AFLPParamsPage::m_oPageBase_Initialize() {
  frame_.procedure("m_oPageBase_Initialize", [&] {
    m_oStudyService = &services_.StudyService();
    connections_.push_back(m_oStudyService->StudyOpened.connect(
        [this](const auto& study) { m_oStudyService_StudyOpened(study); }));
    // With no study the page keeps its design values, without a message.
    if (!m_oStudyService->IsStudyOpen()) return;
    followStudy(m_oStudyService->Study());
    InitDyes();
  });
}

void AFLPParamsPage::m_oStudyService_StudyOpened(const std::shared_ptr<Study>& study) {
  frame_.procedure("m_oStudyService_StudyOpened", [&] { followStudy(study); });
}

void AFLPParamsPage::followStudy(const std::shared_ptr<Study>& study) {
  m_oStudy = study;
  studyConnections_.clear();
  if (!study) return;
  studyConnections_.push_back(
      study->DyeVisibibilityChanged.connect([this](Dye& dye) { m_oStudy_DyeVisibibilityChanged(dye); }));
}

void AFLPParamsPage::InitDyes() {
  frame_.procedure("InitDyes", [&] {
    for (std::int32_t i = 0; i < kDyeCount; ++i) {
      const auto at = static_cast<std::size_t>(i);
      const auto dye = required(m_oStudy, "Study").Dyes.Item(integerText(i));
      if (dye) chkDye[at].Value = dye->Visible ? 1 : 0;
      picDye[at].BackColor = required(dye, "Dye").Color.get();
    }
  });
}

// One event carries either change; with both at once only the colour follows.
void AFLPParamsPage::m_oStudy_DyeVisibibilityChanged(const Dye& dye) {
  frame_.procedure("m_oStudy_DyeVisibibilityChanged", [&] {
    if (dye.Index < 0 || dye.Index >= kDyeCount) return;
    const auto at = static_cast<std::size_t>(dye.Index.get());
    if (picDye[at].BackColor == dye.Color) {
      chkDye[at].Value = dye.Visible ? 1 : 0;
    } else {
      picDye[at].BackColor = dye.Color;
    }
  });
}

void AFLPParamsPage::txtMaxBinWidth_Change() {
  frame_.handler("txtMaxBinWidth_Change", [&] { required(m_oPageBase, "PageBase").MarkChanged(); });
}

void AFLPParamsPage::txtYThreshold_Change() {
  frame_.handler("txtYThreshold_Change", [&] { required(m_oPageBase, "PageBase").MarkChanged(); });
}

void AFLPParamsPage::txtMaxBinWidth_Validate(bool& cancel) {
  frame_.handler("txtMaxBinWidth_Validate", [&] { boxes_.validateMaxBinWidth(cancel, m_bValidating); });
}

void AFLPParamsPage::txtYThreshold_Validate(bool& cancel) {
  frame_.handler("txtYThreshold_Validate", [&] { boxes_.validateYThreshold(cancel, m_bValidating); });
}

void AFLPParamsPage::udMaxBinWidth_DownClick() {
  frame_.handler("udMaxBinWidth_DownClick", [&] { boxes_.stepMaxBinWidthDown(); });
}

void AFLPParamsPage::udMaxBinWidth_UpClick() {
  frame_.handler("udMaxBinWidth_UpClick", [&] { boxes_.stepMaxBinWidthUp(); });
}

void AFLPParamsPage::m_oPageBase_Validate(bool& isValid) {
  frame_.procedure("m_oPageBase_Validate", [&] {
    m_bValidating = true;
    bool cancel = false;
    txtMaxBinWidth_Validate(cancel);
    txtYThreshold_Validate(cancel);
    isValid = !cancel;
    m_bValidating = false;
  });
}

void AFLPParamsPage::m_oPageBase_Save() {
  frame_.procedure("m_oPageBase_Save", [&] {
    const auto analysis = cast<AFLP>(required(m_oPageBase, "PageBase").BoundObject(), "AFLP");
    saveParameters(*analysis);
    for (std::int32_t i = 0; i < kDyeCount; ++i) saveDye(*analysis, i);
  });
}

void AFLPParamsPage::saveParameters(AFLP& analysis) {
  const char separator = services_.Platform().DecimalSeparator();
  analysis.MaxBinWidth = strictNumber(txtMaxBinWidth.Text.get(), separator);
  analysis.YThreshold = roundToLong(strictNumber(txtYThreshold.Text.get(), separator));
  analysis.ExcludeFullBins = chkExcludeFullBins.Value != 0;
  analysis.ExcludeEmptySamples = chkExcludeEmptySamples.Value != 0;
  // How a new analysis is shown first.
  analysis.ShowExcluded = false;
  analysis.ShowTimestamp = false;
  analysis.ShowWellID = true;
  analysis.SamplesInRows = false;
  analysis.SampleBinOption = 0;
  analysis.ResultStamp = required(m_oStudy, "Study").ResultStamp;
}

// An unchecked dye gives an invisible column, not a missing one.
void AFLPParamsPage::saveDye(AFLP& analysis, std::int32_t index) {
  const auto at = static_cast<std::size_t>(index);
  const auto column = cast<GridColumn>(services_.ObjectManager().Create("GridColumn"), "GridColumn");
  column->TypeCode = GridColumn::kDyeColumn;
  column->ToolTip = "Dye " + integerText(index + 1);
  column->Header = "D" + integerText(index + 1);
  column->Key = integerText(index);
  column->ColumnOrder = index + 1;
  column->IsVisible = chkDye[at].Value != 0;
  column->InteriorColor = picDye[at].BackColor;
  column->InteriorBkColor = picDye[at].BackColor;
  column->TextColor = services_.GridUtilities().ContrastColor(picDye[at].BackColor);
  analysis.DyeGrid->Columns.Add(column);
}

}  // namespace banddesk
