// What the page does when the user acts: the wiring of controls, menus and grid, and their handlers.
#include "plugin/base/numbers.h"
#include "plugin/results/results_page.h"
#include "plugin/table/page_guards.h"

namespace banddesk {

void AFLPResultsPage::listenToHost() {
  PageBase& base = required(page_.m_oPageBase, "PageBase");
  connections_.push_back(base.Initialize.connect([this] { m_oPageBase_Initialize(); }));
  connections_.push_back(base.Validate.connect([this](bool& isValid) { isValid = m_oPageBase_Validate(); }));
  connections_.push_back(base.Save.connect([this] { m_oPageBase_Save(); }));
  connections_.push_back(base.OnExit.connect(
      [this](banddesk::Page& page, bool cancelled) { m_oPageBase_OnExit(page, cancelled); }));
  connections_.push_back(base.Terminate.connect([this] { m_oPageBase_Terminate(); }));
  connections_.push_back(pending_.ctlTimer.Tick.connect([this] { ctlTimer_Timer(); }));
}

void AFLPResultsPage::listenToControls() {
  const auto on = [this](Event<>& event, void (AFLPResultsPage::*handler)()) {
    connections_.push_back(event.connect([this, handler] { (this->*handler)(); }));
  };
  PageControls& c = controls_;
  on(c.txtMaxBinWidth.Change, &AFLPResultsPage::txtMaxBinWidth_Change);
  on(c.txtYThreshold.Change, &AFLPResultsPage::txtYThreshold_Change);
  on(c.txtMaxBinWidth.LostFocus, &AFLPResultsPage::txtMaxBinWidth_LostFocus);
  on(c.txtYThreshold.LostFocus, &AFLPResultsPage::txtYThreshold_LostFocus);
  connections_.push_back(
      c.txtMaxBinWidth.Validate.connect([this](bool& cancel) { controls_.txtMaxBinWidth_Validate(cancel); }));
  connections_.push_back(
      c.txtYThreshold.Validate.connect([this](bool& cancel) { controls_.txtYThreshold_Validate(cancel); }));
  on(c.udMaxBinWidth.DownClick, &AFLPResultsPage::udMaxBinWidth_DownClick);
  on(c.udMaxBinWidth.UpClick, &AFLPResultsPage::udMaxBinWidth_UpClick);
  on(c.udYThreshold.DownClick, &AFLPResultsPage::udYThreshold_DownClick);
  on(c.udYThreshold.UpClick, &AFLPResultsPage::udYThreshold_UpClick);
  for (std::int32_t i = 0; i < kDyeCount; ++i) {
    connections_.push_back(
        c.chkDye[static_cast<std::size_t>(i)].Click.connect([this, i] { chkDye_Click(i); }));
  }
  for (std::int32_t i = 0; i < static_cast<std::int32_t>(c.optSampleBin.size()); ++i) {
    connections_.push_back(
        c.optSampleBin[static_cast<std::size_t>(i)].Click.connect([this, i] { optSampleBin_Click(i); }));
  }
  connections_.push_back(c.cbxSampleAxis.Click.connect([this] { transposition_.cbxSampleAxis_Click(); }));
  on(c.chkExcludeEmptySamples.Click, &AFLPResultsPage::chkExcludeEmptySamples_Click);
  on(c.chkExcludeFullBins.Click, &AFLPResultsPage::chkExcludeFullBins_Click);
  on(c.chkShowExcluded.Click, &AFLPResultsPage::chkShowExcluded_Click);
  on(c.chkShowWellID.Click, &AFLPResultsPage::chkShowWellID_Click);
  on(c.chkShowTimestamp.Click, &AFLPResultsPage::chkShowTimestamp_Click);
  on(c.cmdHelp.Click, &AFLPResultsPage::cmdHelp_Click);
}

void AFLPResultsPage::listenToMenus() {
  const auto on = [this](ui::MenuItem& item, void (AFLPResultsPage::*handler)()) {
    connections_.push_back(item.Click.connect([this, handler] { (this->*handler)(); }));
  };
  PageMenus& m = controls_.menus;
  connections_.push_back(m.mnuSortColumn.Click.connect([this] { mouse_.mnuSortColumn_Click(); }));
  connections_.push_back(m.mnuSortBin.Click.connect([this] { mouse_.mnuSortBin_Click(); }));
  connections_.push_back(m.mnuLockColumn.Click.connect([this] { mouse_.mnuLockColumn_Click(); }));
  connections_.push_back(m.mnuExcludeBin.Click.connect([this] { byHand_.mnuExcludeBin_Click(); }));
  connections_.push_back(m.mnuExcludeColumn.Click.connect([this] { byHand_.mnuExcludeColumn_Click(); }));
  on(m.mnuSortColumns, &AFLPResultsPage::mnuSortColumns_Click);
  on(m.mnuSelectColumns, &AFLPResultsPage::mnuSelectColumns_Click);
  on(m.mnuTransposeCell, &AFLPResultsPage::mnuTransposeCell_Click);
  on(m.mnuTransposeColumn, &AFLPResultsPage::mnuTransposeColumn_Click);
  on(m.mnuTransposeRow, &AFLPResultsPage::mnuTransposeRow_Click);
  on(m.mnuFormatCell, &AFLPResultsPage::mnuFormatCell_Click);
  on(m.mnuFormatColumn, &AFLPResultsPage::mnuFormatColumn_Click);
  on(m.mnuFormatRow, &AFLPResultsPage::mnuFormatRow_Click);
  on(m.mnuSingleCell, &AFLPResultsPage::mnuSingleCell_Click);
  on(m.mnuSingleColumn, &AFLPResultsPage::mnuSingleColumn_Click);
  on(m.mnuEgramCell, &AFLPResultsPage::mnuEgramCell_Click);
  on(m.mnuEgramColumn, &AFLPResultsPage::mnuEgramColumn_Click);
  on(m.mnuOverlayCell, &AFLPResultsPage::mnuOverlayCell_Click);
  on(m.mnuOverlayColumn, &AFLPResultsPage::mnuOverlayColumn_Click);
  on(m.output1.mnuCopy, &AFLPResultsPage::mnuCopy1_Click);
  on(m.output1.mnuExport, &AFLPResultsPage::mnuExport1_Click);
  on(m.output1.mnuPrintBW, &AFLPResultsPage::mnuPrintBW1_Click);
  on(m.output1.mnuPrintColor, &AFLPResultsPage::mnuPrintColor1_Click);
  on(m.output2.mnuCopy, &AFLPResultsPage::mnuCopy2_Click);
  on(m.output2.mnuExport, &AFLPResultsPage::mnuExport2_Click);
  on(m.output2.mnuPrintBW, &AFLPResultsPage::mnuPrintBW2_Click);
  on(m.output2.mnuPrintColor, &AFLPResultsPage::mnuPrintColor2_Click);
  on(m.output3.mnuCopy, &AFLPResultsPage::mnuCopy3_Click);
  on(m.output3.mnuExport, &AFLPResultsPage::mnuExport3_Click);
  on(m.output3.mnuPrintBW, &AFLPResultsPage::mnuPrintBW3_Click);
  on(m.output3.mnuPrintColor, &AFLPResultsPage::mnuPrintColor3_Click);
}

void AFLPResultsPage::listenToGrid() {
  Grid& grid = table_.grid();
  connections_.push_back(grid.OnRButtonClickedRowCol.connect(
      [this](double row, double col) { mouse_.grdAFLP_OnRButtonClickedRowCol(row, col); }));
  connections_.push_back(grid.OnLButtonDblClkRowCol.connect(
      [this](double row, double col) { mouse_.grdAFLP_OnLButtonDblClkRowCol(row, col); }));
  connections_.push_back(grid.OnLButtonDown.connect([this] { sizing_.grdAFLP_OnLButtonDown(); }));
  connections_.push_back(grid.OnLButtonUp.connect([this] { sizing_.grdAFLP_OnLButtonUp(); }));
  connections_.push_back(grid.OnTrackColWidth.connect(
      [this](double col, double& value) { sizing_.grdAFLP_OnTrackColWidth(col, value); }));
  connections_.push_back(grid.OnTrackColWidthEnd.connect(
      [this](double col, double width) { sizing_.grdAFLP_OnTrackColWidthEnd(col, width); }));
  connections_.push_back(grid.OnSelDragColsStart.connect(
      [this](double a, double b, double& value) { sort_.grdAFLP_OnSelDragColsStart(a, b, value); }));
  connections_.push_back(grid.OnSelDragColsMove.connect([this](double a, double b, double to, double& value) {
    sort_.grdAFLP_OnSelDragColsMove(a, b, to, value);
  }));
  connections_.push_back(grid.OnSelDragColsDrop.connect(
      [this](double a, double b, double to) { sort_.grdAFLP_OnSelDragColsDrop(a, b, to); }));
  connections_.push_back(grid.OnSelDragRowsStart.connect(
      [this](double a, double b, double& value) { sort_.grdAFLP_OnSelDragRowsStart(a, b, value); }));
  connections_.push_back(grid.OnSelDragRowsMove.connect([this](double a, double b, double to, double& value) {
    sort_.grdAFLP_OnSelDragRowsMove(a, b, to, value);
  }));
  connections_.push_back(grid.OnSelDragRowsDrop.connect(
      [this](double a, double b, double to) { sort_.grdAFLP_OnSelDragRowsDrop(a, b, to); }));
}

void AFLPResultsPage::ctlTimer_Timer() {
  page_.frame.handler("ctlTimer_Timer", [&] {
    pending_.ctlTimer.Enabled = false;
    Hourglass hourglass(page_.platform());
    UpdateLock lock(table_.grid());
    WriteAccess access(table_.grid());
    runPendingWork();
    pending_.m_lPendingCommands = 0;
    access.restore();
    lock.restore();
    hourglass.restore();
  });
}

// Each test reads what is still pending: work may clear the bits of what it has made obsolete.
void AFLPResultsPage::runPendingWork() {
  if (pending_.isPending(kPendingAnalyze)) analysis_.Analyze(false);
  if (pending_.isPending(kPendingCalcAFLP)) statistics_.CalcAFLP();
  if (pending_.isPending(kPendingCalcExcluded)) exclusion_.CalcExcluded();
  if (pending_.isPending(kPendingShowExcluded)) exclusion_.ShowExcluded();
  if (pending_.isPending(kPendingShowSuffix)) labels_.ShowSuffix();
}

void AFLPResultsPage::txtMaxBinWidth_Change() {
  page_.frame.handler("txtMaxBinWidth_Change",
                      [&] { required(page_.m_oPageBase, "PageBase").MarkChanged(); });
}

void AFLPResultsPage::txtYThreshold_Change() {
  page_.frame.handler("txtYThreshold_Change", [&] { required(page_.m_oPageBase, "PageBase").MarkChanged(); });
}

void AFLPResultsPage::txtMaxBinWidth_LostFocus() {
  page_.frame.handler("txtMaxBinWidth_LostFocus", [&] { analysis_.Analyze(false); });
}

void AFLPResultsPage::txtYThreshold_LostFocus() {
  page_.frame.handler("txtYThreshold_LostFocus", [&] { analysis_.Analyze(false); });
}

void AFLPResultsPage::udMaxBinWidth_DownClick() {
  page_.frame.handler("udMaxBinWidth_DownClick", [&] {
    if (controls_.boxes().stepMaxBinWidthDown()) pending_.DelayedCommand(kPendingAnalyze);
  });
}

void AFLPResultsPage::udMaxBinWidth_UpClick() {
  page_.frame.handler("udMaxBinWidth_UpClick", [&] {
    if (controls_.boxes().stepMaxBinWidthUp()) pending_.DelayedCommand(kPendingAnalyze);
  });
}

void AFLPResultsPage::udYThreshold_DownClick() {
  page_.frame.handler("udYThreshold_DownClick", [&] {
    const double value = controls_.yThreshold();
    if (value < kYThresholdStep) return;
    controls_.txtYThreshold.Text = generalText(value - kYThresholdStep);
    pending_.DelayedCommand(kPendingAnalyze);
  });
}

void AFLPResultsPage::udYThreshold_UpClick() {
  page_.frame.handler("udYThreshold_UpClick", [&] {
    controls_.txtYThreshold.Text = generalText(controls_.yThreshold() + kYThresholdStep);
    pending_.DelayedCommand(kPendingAnalyze);
  });
}

void AFLPResultsPage::chkDye_Click(std::int32_t index) {
  page_.frame.handler("chkDye_Click", [&] {
    ui::CheckBox& box = controls_.chkDye[static_cast<std::size_t>(index)];
    box.ForeColor = box.Value != ui::kUnchecked ? ui::kWindowText
                                                : page_.services.GridUtilities().ContrastColor(box.BackColor);
    pending_.DelayedCommand(kPendingCalcExcluded);
  });
}

void AFLPResultsPage::chkExcludeEmptySamples_Click() {
  page_.frame.handler("chkExcludeEmptySamples_Click", [&] { pending_.DelayedCommand(kPendingCalcExcluded); });
}

void AFLPResultsPage::chkExcludeFullBins_Click() {
  page_.frame.handler("chkExcludeFullBins_Click", [&] { pending_.DelayedCommand(kPendingCalcExcluded); });
}

void AFLPResultsPage::chkShowExcluded_Click() {
  page_.frame.handler("chkShowExcluded_Click", [&] { pending_.DelayedCommand(kPendingShowExcluded); });
}

void AFLPResultsPage::chkShowWellID_Click() {
  page_.frame.handler("chkShowWellID_Click", [&] { pending_.DelayedCommand(kPendingShowSuffix); });
}

void AFLPResultsPage::chkShowTimestamp_Click() {
  page_.frame.handler("chkShowTimestamp_Click", [&] { pending_.DelayedCommand(kPendingShowSuffix); });
}

void AFLPResultsPage::optSampleBin_Click(std::int32_t index) {
  page_.frame.handler("optSampleBin_Click", [&] {
    page_.analysis().SampleBinOption = index;
    pending_.DelayedCommand(kPendingCalcAFLP);
  });
}

void AFLPResultsPage::cmdHelp_Click() {
  page_.frame.handler("cmdHelp_Click", [&] { required(page_.m_oPageBase, "PageBase").ShowHelp(1, 0); });
}

}  // namespace banddesk
