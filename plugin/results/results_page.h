// The page that shows one analysis. It is a face: it owns the controls and the parts below, wires events to
// them and forwards its public operations. The parts are made in the order of their declaration, and each
// knows only parts above it. On the face itself stand the page's life with the host, the timer's work and the
// handlers of clicks.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "plugin/analysis/analyze.h"
#include "plugin/banddesk.h"
#include "plugin/output/copy_and_print.h"
#include "plugin/output/export.h"
#include "plugin/results/mouse_and_menus.h"
#include "plugin/shell/live_object.h"
#include "plugin/shell/mglobals.h"
#include "plugin/table/grid_fill.h"
#include "plugin/table/transposition.h"
#include "plugin/views/result_views.h"

namespace banddesk {

class AFLPResultsPage final : public IAFLPResultsPage, private LiveObject {
 public:
  explicit AFLPResultsPage(MGlobals& globals);

  // ---- the host's calls
  void UserControl_Initialize() override;
  const ui::ControlSet& Controls() const override { return controlSet_; }
  void UserControl_KeyDown(std::int32_t& key) override;
  void UserControl_KeyPress(std::int32_t& key) override;
  void UserControl_Resize(double scaleWidth, double scaleHeight) override;
  std::shared_ptr<PageBase> Page() override { return IPageAccess_Page(); }

  // ---- the logical table
  void Init(const std::shared_ptr<GridLayout>& layout) override { table_.Init(layout); }
  std::shared_ptr<GridLayout> ColumnSet(std::string_view key) override { return table_.ColumnSet(key); }
  std::int32_t Col(std::string_view key) override { return table_.Col(key); }
  std::string Key(std::int32_t col) override { return table_.Key(col); }
  std::int32_t Bin(std::int32_t row) override { return table_.Bin(row); }
  void SetBin(std::int32_t row, std::int32_t bin) override { table_.SetBin(row, bin); }
  std::int32_t NumCols() override { return table_.NumCols(); }
  void SetNumCols(std::int32_t count) override { table_.SetNumCols(count); }
  std::int32_t NumRows() override { return table_.NumRows(); }
  void SetNumRows(std::int32_t count) override { table_.SetNumRows(count); }
  std::string CurrentCellText(std::string_view key, std::int32_t index) override {
    return table_.CurrentCellText(key, index);
  }
  std::string CellText(std::string_view key, std::int32_t index) override {
    return table_.CellText(key, index);
  }
  void SetCellText(std::string_view key, std::int32_t index, std::string_view text) override {
    table_.SetCellText(key, index, text);
  }
  void SetCellToolTip(std::string_view key, std::int32_t index, std::string_view text) override {
    table_.SetCellToolTip(key, index, text);
  }
  std::string CellUserAttribute(std::string_view key, std::int32_t index) override {
    return table_.CellUserAttribute(key, index);
  }
  void SetCellUserAttribute(std::string_view key, std::int32_t index, std::string_view text) override {
    table_.SetCellUserAttribute(key, index, text);
  }
  void InitRange(GridRange& range, std::int32_t startCol, std::int32_t startRow, std::int32_t endCol,
                 std::int32_t endRow) override {
    table_.InitRange(range, startCol, startRow, endCol, endRow);
  }
  bool SetStyleRange(const GridRange& range, const GridStyle& style, StyleMode mode) override {
    return table_.SetStyleRange(range, style, mode);
  }
  bool StoreStyleRowCol(std::int32_t row, std::int32_t col, const GridStyle& style, StyleMode mode,
                        std::int32_t type) override {
    return table_.StoreStyleRowCol(row, col, style, mode, type);
  }
  std::shared_ptr<Collection<std::int32_t>> GetSelected(std::int32_t axis, std::int32_t raw) override {
    return table_.GetSelected(axis, raw);
  }
  bool IsColHidden(std::int32_t col) override { return table_.IsColHidden(col); }
  bool IsRowHidden(std::int32_t row) override { return table_.IsRowHidden(row); }
  bool HideCols(std::int32_t startCol, std::int32_t endCol, bool hide) override {
    return table_.HideCols(startCol, endCol, hide);
  }
  bool HideRows(std::int32_t startRow, std::int32_t endRow, bool hide) override {
    return table_.HideRows(startRow, endRow, hide);
  }
  bool RemoveRows(std::int32_t from, std::int32_t to) override { return table_.RemoveRows(from, to); }

  // ---- records and work
  std::shared_ptr<Collection<std::shared_ptr<banddesk::Bin>>> Bins() override { return statistics_.Bins(); }
  std::shared_ptr<Collection<std::shared_ptr<AFLPStudyResult>>> AFLPStudyResults() override {
    return statistics_.AFLPStudyResults();
  }
  void Analyze(bool force) override { analysis_.Analyze(force); }
  bool Transpose() const override { return table_.m_bTransposed; }
  void SetTranspose(bool transposed) override { transposition_.SetTranspose(transposed); }
  void SortRow(std::int32_t row) override { sort_.SortRow(row); }
  void SortCol(std::int32_t col) override { sort_.SortCol(col); }
  std::string ExcludeColumn(std::int32_t col, bool exclude) override {
    return byHand_.ExcludeColumn(col, exclude);
  }
  bool AnyManualExclusions() override { return byHand_.AnyManualExclusions(); }
  std::int32_t LockedCol() override { return table_.LockedCol(); }
  void SetLockedCol(std::int32_t col) override { table_.SetLockedCol(col); }

  // ---- output
  void Export() override { export_.run(); }
  void ExportCSV(const std::string& fileName) override { csv_.ExportCSV(fileName); }
  void ExportNTSYSpc(const std::string& fileName) override { ntsys_.ExportNTSYSpc(fileName); }
  void ExportExcel(const std::string& fileName) override { copyAndPrint_.ExportExcel(fileName); }
  void CopyGrid() override { copyAndPrint_.CopyGrid(); }
  void PrintGrid(bool color) override { copyAndPrint_.PrintGrid(color); }
  std::int32_t VisibleBinCount() override { return files_.VisibleBinCount(); }
  std::int32_t VisibleSampleCount() override { return files_.VisibleSampleCount(); }

 private:
  std::shared_ptr<PageBase> IPageAccess_Page();

  // ---- the page's life (results_page_lifecycle.cpp)
  void m_oPageBase_Initialize();
  void bind();
  void reconcileResults();
  void loadResults();
  void takeOver(const std::shared_ptr<Result>& result);
  void loadFragments(const Result& result, std::int32_t index);
  bool isInStudy(const std::string& resultKey);
  void InitControls();
  bool m_oPageBase_Validate();
  void m_oPageBase_Save();
  void saveDyes();
  void m_oPageBase_OnExit(banddesk::Page& childPage, bool cancelled);
  void m_oPageBase_Terminate();
  void m_oStudyService_StudyOpened(const std::shared_ptr<Study>& study);
  void followStudy(const std::shared_ptr<Study>& study);
  void m_oAFLP_Rename(const std::string& name);
  void m_oStudy_ResultChanged();
  void m_oStudy_DyeVisibibilityChanged(const Dye& dye);

  // ---- handlers (results_page_handlers.cpp)
  void listenToHost();
  void listenToControls();
  void listenToMenus();
  void listenToGrid();
  void ctlTimer_Timer();
  void runPendingWork();
  void lowestEdge();
  void resizeControl(ui::Control& control, std::int32_t delta);
  void resizeGrid(std::int32_t delta);

  void txtMaxBinWidth_Change();
  void txtYThreshold_Change();
  void txtMaxBinWidth_LostFocus();
  void txtYThreshold_LostFocus();
  void udMaxBinWidth_DownClick();
  void udMaxBinWidth_UpClick();
  void udYThreshold_DownClick();
  void udYThreshold_UpClick();
  void chkDye_Click(std::int32_t index);
  void chkExcludeEmptySamples_Click();
  void chkExcludeFullBins_Click();
  void chkShowExcluded_Click();
  void chkShowWellID_Click();
  void chkShowTimestamp_Click();
  void optSampleBin_Click(std::int32_t index);
  void cmdHelp_Click();

  void mnuSortColumns_Click();
  void mnuSelectColumns_Click();
  void mnuTransposeCell_Click();
  void mnuTransposeColumn_Click();
  void mnuTransposeRow_Click();
  void mnuFormatCell_Click();
  void mnuFormatColumn_Click();
  void mnuFormatRow_Click();
  void mnuSingleCell_Click();
  void mnuSingleColumn_Click();
  void mnuEgramCell_Click();
  void mnuEgramColumn_Click();
  void mnuOverlayCell_Click();
  void mnuOverlayColumn_Click();
  void mnuCopy1_Click();
  void mnuCopy2_Click();
  void mnuCopy3_Click();
  void mnuExport1_Click();
  void mnuExport2_Click();
  void mnuExport3_Click();
  void mnuPrintBW1_Click();
  void mnuPrintBW2_Click();
  void mnuPrintBW3_Click();
  void mnuPrintColor1_Click();
  void mnuPrintColor2_Click();
  void mnuPrintColor3_Click();

  PageContext page_;
  PageControls controls_{page_};
  PendingCommands pending_{page_};
  std::shared_ptr<Grid> grdAFLP;
  LogicalTable table_;
  BinTable bins_;
  Styles styles_{page_, table_, controls_};
  ColumnSizing sizing_{page_, table_};
  SampleLabels labels_{page_, table_, controls_, sizing_, pending_};
  BinStatistics statistics_{page_, table_, bins_, styles_, sizing_, pending_};
  Exclusion exclusion_{page_, table_, bins_, controls_, sizing_, pending_};
  ManualExclusion byHand_{page_, table_, bins_, controls_, exclusion_};
  BinPersistence persistence_{page_, table_, bins_};
  SortAndMove sort_{page_, table_, controls_, sizing_, exclusion_};
  banddesk::Analysis analysis_{page_,       table_,     bins_,   styles_,      controls_, pending_,
                               statistics_, exclusion_, byHand_, persistence_, sort_};
  GridFill fill_{page_, table_, controls_, labels_};
  Transposition transposition_{page_, table_, controls_, sizing_, labels_};
  FileExport files_{page_, table_, labels_};
  CsvExport csv_{page_, table_, labels_, fill_, files_};
  NtsysExport ntsys_{page_, table_, bins_, fill_, files_};
  banddesk::Export export_{page_, table_, controls_, csv_, ntsys_};
  CopyAndPrint copyAndPrint_{page_, table_, labels_, fill_, analysis_};
  ResultViews views_{page_, table_};
  MouseAndMenus mouse_{page_, table_, controls_, bins_, sort_, sizing_};

  std::int32_t m_lLastHeight = 0;
  float m_sGridHeightDebt = 0;  // negative height that the grid could not give up yet

  ui::ControlSet controlSet_;
  Connections connections_;
  Connections studyConnections_;
  Connection renameConnection_;
};

}  // namespace banddesk
