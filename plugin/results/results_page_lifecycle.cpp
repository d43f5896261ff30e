// The page's life with the host: it is bound to an analysis, takes over the study's results, restores its
// controls, and writes its state back when the host saves.
#include <unordered_map>
#include <vector>

#include "plugin/base/numbers.h"
#include "plugin/base/text.h"
#include "plugin/results/results_page.h"
#include "plugin/table/page_guards.h"

namespace banddesk {
namespace {

bool isMarked(const Result& result) {
  return result.IsExcluded.get().value_or(false) || result.IsDeleted.get().value_or(false);
}

}  // namespace

void AFLPResultsPage::m_oPageBase_Initialize() {
  page_.frame.procedure("m_oPageBase_Initialize", [&] {
    Hourglass hourglass(page_.platform());
    UpdateLock lock(table_.grid());
    bind();
    styles_.InitStyles();
    fill_.InitGrid();

    AFLP& analysis = page_.analysis();
    const bool pending = analysis.IsPending;
    page_.progress().Start(100.0, 0);
    page_.progress().SetSteps(pending ? page_.study().Results.Count() : analysis.Results.Count());
    if (pending && analysis.Results.Count() > 0) reconcileResults();
    loadResults();
    analysis.IsPending = false;

    InitControls();
    page_.m_bInitialized = true;
    labels_.SetSampleAbbreviations(table_.m_bTransposed, true);
    table_.Init(analysis.SampleGrid);
    table_.SetNumCols(table_.m_lFirstSampleCol + analysis.SampleGrid->Columns.Count() - 1);
    analysis_.Analyze(false);
    lock.release();
    hourglass.restore();
  });
}

void AFLPResultsPage::bind() {
  page_.m_oStudyService = &page_.services.StudyService();
  connections_.push_back(page_.m_oStudyService->StudyOpened.connect(
      [this](const auto& study) { m_oStudyService_StudyOpened(study); }));
  followStudy(page_.m_oStudyService->Study());
  page_.m_oProgress = &page_.services.Application().Progress();
  page_.m_oAFLP = cast<AFLP>(required(page_.m_oPageBase, "PageBase").BoundObject(), "AFLP");
  renameConnection_ =
      page_.m_oAFLP->Rename.connect([this](const std::string& name) { m_oAFLP_Rename(name); });
  page_.m_oAFLP->ResultsPage = static_cast<Object*>(this);
}

bool AFLPResultsPage::isInStudy(const std::string& resultKey) {
  const auto& results = page_.study().Results;
  return page_.framework().ItemExists(results, resultKey) && !isMarked(*results.Item(resultKey));
}

// An analysis that is made anew lets go of results that the study no longer offers.
void AFLPResultsPage::reconcileResults() {
  AFLP& analysis = page_.analysis();
  auto& columns = analysis.SampleGrid->Columns;
  std::vector<std::int32_t> gone;
  for (const auto& result : analysis.Results) {
    if (!isInStudy(integerText(result->ResultID))) gone.push_back(result->ResultID);
  }
  for (const std::int32_t id : gone) {
    analysis.Results.Remove(integerText(id));
    if (page_.framework().ItemExists(columns, sampleKey(id))) columns.Remove(sampleKey(id));
  }
  std::int32_t order = table_.m_lFirstSampleCol;
  for (const auto& column : page_.framework().SortedBy(columns, 0, 0, "ColumnOrder", 0)) {
    column->ColumnOrder = order++;
  }
}

// A result's index is its place in the analysis. With a result taken back into the study that is not its
// place in the study's order, and its data would stand under another sample's name.
void AFLPResultsPage::loadResults() {
  AFLP& analysis = page_.analysis();
  const bool pending = analysis.IsPending;
  std::unordered_map<std::int32_t, std::int32_t> indexOfResult;
  for (const auto& result : analysis.Results) {
    const auto index = static_cast<std::int32_t>(indexOfResult.size());
    indexOfResult.emplace(result->ResultID, index);
  }
  for (const auto& result : pending ? page_.study().Results : analysis.Results) {
    if (!pending || !isMarked(*result)) {
      if (pending) takeOver(result);
      const auto last = static_cast<std::int32_t>(indexOfResult.size());
      loadFragments(*result, indexOfResult.emplace(result->ResultID, last).first->second);
    }
    page_.progress().Step();
  }
}

void AFLPResultsPage::takeOver(const std::shared_ptr<Result>& result) {
  AFLP& analysis = page_.analysis();
  Framework& framework = page_.framework();
  if (!framework.ItemExists(analysis.Results, integerText(result->ResultID))) analysis.Results.Add(result);
  auto& columns = analysis.SampleGrid->Columns;
  const std::string key = sampleKey(result->ResultID);
  if (framework.ItemExists(columns, key)) return;
  const auto column = cast<GridColumn>(page_.services.ObjectManager().Create("GridColumn"), "GridColumn");
  column->TypeCode = GridColumn::kSampleColumn;
  column->ToolTip = std::string(trimRight(required(result->Sample, "Sample").Name.get()));
  column->Key = key;
  column->ColumnOrder = table_.m_lFirstSampleCol + columns.Count();
  columns.Add(column);
}

void AFLPResultsPage::loadFragments(const Result& result, std::int32_t index) {
  for (std::int16_t dye = 0; dye < kDyeCount; ++dye) {
    const FragmentTable& fragments = required(result.Sample, "Sample").Data().Fragments();
    analysis_.calculator(dye).AddFragments(index, 0, fragments, dye, 1, 1);
  }
}

// Putting the list index transposes a table stored with samples in rows, while it holds only its fixed
// columns.
void AFLPResultsPage::InitControls() {
  page_.frame.procedure("InitControls", [&] {
    const AFLP& analysis = page_.analysis();
    const auto value = [](bool checked) { return checked ? ui::kChecked : ui::kUnchecked; };
    controls_.cbxSampleAxis.AddItem("Columns");
    controls_.cbxSampleAxis.AddItem("Rows");
    controls_.cbxSampleAxis.ListIndex = analysis.SamplesInRows ? 1 : 0;
    controls_.txtMaxBinWidth.Text = twoDecimals(analysis.MaxBinWidth);
    controls_.txtYThreshold.Text = integerText(analysis.YThreshold);
    controls_.chkExcludeFullBins.Value = value(analysis.ExcludeFullBins);
    controls_.chkExcludeEmptySamples.Value = value(analysis.ExcludeEmptySamples);
    controls_.chkShowExcluded.Value = value(analysis.ShowExcluded);
    controls_.chkShowTimestamp.Value = value(analysis.ShowTimestamp);
    controls_.chkShowWellID.Value = value(analysis.ShowWellID);
    const std::int32_t option = analysis.SampleBinOption;
    if (option < 0 || option >= static_cast<std::int32_t>(controls_.optSampleBin.size())) {
      raise(ErrorNumber::SubscriptOutOfRange, "optSampleBin",
            "There is no option " + integerText(option) + ".");
    }
    controls_.optSampleBin[static_cast<std::size_t>(option)].Value = true;
  });
}

bool AFLPResultsPage::m_oPageBase_Validate() {
  return page_.frame.procedure("m_oPageBase_Validate", [&] {
    controls_.m_bValidating = true;
    bool cancel = false;
    controls_.txtYThreshold_Validate(cancel);
    controls_.txtMaxBinWidth_Validate(cancel);
    controls_.m_bValidating = false;
    return !cancel;
  });
}

void AFLPResultsPage::m_oPageBase_Save() {
  page_.frame.procedure("m_oPageBase_Save", [&] {
    AFLP& analysis = page_.analysis();
    analysis.MaxBinWidth = controls_.maxBinWidth();
    analysis.YThreshold = roundToLong(controls_.yThreshold());
    analysis.ExcludeFullBins = controls_.chkExcludeFullBins.Value != ui::kUnchecked;
    analysis.ExcludeEmptySamples = controls_.chkExcludeEmptySamples.Value != ui::kUnchecked;
    analysis.SamplesInRows = controls_.cbxSampleAxis.ListIndex != 0;
    analysis.ShowExcluded = controls_.chkShowExcluded.Value != ui::kUnchecked;
    analysis.ShowTimestamp = controls_.chkShowTimestamp.Value != ui::kUnchecked;
    analysis.ShowWellID = controls_.chkShowWellID.Value != ui::kUnchecked;
    // Abbreviations are never saved.
    for (const auto& column : analysis.SampleGrid->Columns) column->Header = "";
    saveDyes();
    persistence_.SaveAFLPBins();
  });
}

void AFLPResultsPage::saveDyes() {
  for (std::int32_t dye = 0; dye < kDyeCount; ++dye) {
    const auto column = page_.analysis().DyeGrid->Columns.Item(integerText(dye));
    const ui::CheckBox& box = controls_.chkDye[static_cast<std::size_t>(dye)];
    column->InteriorColor = box.BackColor;
    column->InteriorBkColor = box.BackColor;
    column->TextColor = page_.services.GridUtilities().ContrastColor(box.BackColor);
    column->IsVisible = box.Value != ui::kUnchecked;
  }
}

void AFLPResultsPage::m_oPageBase_OnExit(banddesk::Page& childPage, bool cancelled) {
  page_.frame.procedure("m_oPageBase_OnExit", [&] {
    UpdateLock lock(table_.grid());
    const std::string& name = childPage.DefinitionName();
    if (equalsIgnoringCase(name, "ColumnSelector")) {
      byHand_.SwapVisibleExcluded(!cancelled);
      if (!cancelled) {
        table_.Init(table_.ColumnSet(table_.Key(table_.m_lMenuCol)));
        analysis_.Analyze(true);
      }
    } else if (equalsIgnoringCase(name, "ColumnSort") && !cancelled) {
      sort_.ClearSortOrder(page_.analysis().SampleGrid, -1);
      sort_.SortCols();
    }
    if (!lock.release() && !cancelled) table_.grid().Redraw(2.0);
  });
}

void AFLPResultsPage::m_oPageBase_Terminate() {
  page_.frame.procedure("m_oPageBase_Terminate", [&] {
    if (page_.m_oAFLP) page_.m_oAFLP->ResultsPage = nullptr;  // a page that failed early was never bound
  });
}

void AFLPResultsPage::m_oStudyService_StudyOpened(const std::shared_ptr<Study>& study) {
  page_.frame.procedure("m_oStudyService_StudyOpened", [&] { followStudy(study); });
}

void AFLPResultsPage::followStudy(const std::shared_ptr<Study>& study) {
  page_.m_oStudy = study;
  studyConnections_.clear();
  if (!study) return;
  studyConnections_.push_back(study->ResultChanged.connect([this] { m_oStudy_ResultChanged(); }));
  studyConnections_.push_back(
      study->DyeVisibibilityChanged.connect([this](Dye& dye) { m_oStudy_DyeVisibibilityChanged(dye); }));
}

void AFLPResultsPage::m_oAFLP_Rename(const std::string& name) {
  page_.frame.procedure("m_oAFLP_Rename",
                        [&] { required(page_.m_oPageBase, "PageBase").SetCaption("AFLP - " + name); });
}

// Without a frame of its own.
void AFLPResultsPage::m_oStudy_ResultChanged() { page_.analysis().Persistent().IsDirty = true; }

void AFLPResultsPage::m_oStudy_DyeVisibibilityChanged(const Dye& dye) {
  page_.frame.procedure("m_oStudy_DyeVisibibilityChanged", [&] {
    if (dye.Index < 0 || dye.Index >= kDyeCount) return;
    const auto entry = page_.analysis().DyeGrid->Columns.Item(integerText(dye.Index));
    if (controls_.chkDye[static_cast<std::size_t>(dye.Index.get())].BackColor == dye.Color) {
      entry->IsVisible = dye.Visible;
    } else {
      entry->InteriorColor = dye.Color;
      entry->InteriorBkColor = dye.Color;
      entry->TextColor = page_.services.GridUtilities().ContrastColor(dye.Color);
    }
    styles_.InitDye(entry);
  });
}

}  // namespace banddesk
