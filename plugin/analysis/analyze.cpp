#include "plugin/analysis/analyze.h"

#include "plugin/analysis/aflp_warning.h"
#include "plugin/base/numbers.h"
#include "plugin/page_names.h"
#include "plugin/table/page_guards.h"

namespace banddesk {
namespace {

constexpr std::size_t kEmptyCell = 3;

}  // namespace

struct Analysis::Columns {
  explicit Columns(const LogicalTable& table)
      : binNumber(table.Col(kBinNumberKey)),
        dye(table.Col(kDyeKey)),
        sampleCount(table.Col(kSampleCountKey)),
        fragmentCount(table.Col(kFragmentCountKey)),
        xMin(table.Col(kXMinKey)),
        xMax(table.Col(kXMaxKey)),
        xMean(table.Col(kXMeanKey)),
        yMean(table.Col(kYMeanKey)),
        xVariance(table.Col(kXVarianceKey)) {}

  std::int32_t binNumber, dye, sampleCount, fragmentCount, xMin, xMax, xMean, yMean, xVariance;
};

// Each dye has an equal share of the range. The start is taken off twice; from a start of 0 the four shares
// end exactly at the maximum.
struct Analysis::Indicator {
  Indicator(Progress& bar, Framework& host) : progress(bar), framework(host) {
    start = toFloat(progress.Position());
    if (start == 0) progress.Start(100.0, 0);
    const float range = toFloat(progress.Maximum() - static_cast<double>(start));
    dyeShare = toFloat((range - start) / kDyeCount);
    updates = roundToLong(framework.Max(progress.Steps() / kDyeCount, 1));
  }

  void beginDye(std::int32_t which, std::int32_t count) {
    dye = static_cast<float>(which);
    binShare = toFloat(dyeShare / static_cast<float>(framework.Max(count, 1)));
    interval = roundToLong(framework.Max(count / framework.Max(updates, 1), 1));
  }
  void laidBin(std::int32_t bin) {
    if (bin % interval == 0)
      progress.SetPosition(toFloat(start + dyeShare * dye + binShare * static_cast<float>(bin)));
  }
  void endDye() { progress.SetPosition(toFloat(start + dyeShare * (dye + 1))); }

  Progress& progress;
  Framework& framework;
  float start = 0;
  float dyeShare = 0;
  float binShare = 0;
  float dye = 0;
  std::int32_t updates = 1;
  std::int32_t interval = 1;
};

BinCalculator& Analysis::calculator(std::int32_t dye) {
  auto& calculator = m_aoBinCalculators[static_cast<std::size_t>(dye)];
  if (!calculator) calculator = page_.services.NewBinCalculator();
  return required(calculator, "BinCalculator");
}

void Analysis::Analyze(bool force) {
  page_.frame.procedure("Analyze", [&] {
    if (!parametersAreValid() || !mustRun(force) || !mayLoseDecisions()) return;
    run();
  });
}

bool Analysis::parametersAreValid() {
  bool cancel = false;
  controls_.txtMaxBinWidth_Validate(cancel);
  controls_.txtYThreshold_Validate(cancel);
  return !cancel;
}

bool Analysis::mustRun(bool force) {
  const std::int32_t results = page_.analysis().Results.Count();
  const bool unchanged =
      controls_.maxBinWidth() == bins_.m_dMaxBinWidth && controls_.yThreshold() == bins_.m_dYThreshold;
  return (force || !unchanged) && results > 0;
}

bool Analysis::mayLoseDecisions() {
  if (!page_.services.StudyService().Options().ShowInclusionWarning() || !byHand_.AnyManualExclusions())
    return true;
  if (m_bWarningActive) return false;  // provoked while the dialog is open
  m_bWarningActive = true;
  AFLPWarning warning(page_.services, m_bWarningAccepted);
  warning.ShowModal(page_.platform());
  if (!m_bWarningAccepted) restoreParameters();
  m_bWarningActive = false;
  return m_bWarningAccepted;
}

void Analysis::restoreParameters() {
  controls_.txtMaxBinWidth.Text = twoDecimals(bins_.m_dMaxBinWidth);
  controls_.txtYThreshold.Text = generalText(bins_.m_dYThreshold);
}

void Analysis::run() {
  Hourglass hourglass(page_.platform());
  UpdateLock lock(table_.grid());
  WriteAccess access(table_.grid());
  bins_.m_dMaxBinWidth = controls_.maxBinWidth();
  bins_.m_dYThreshold = controls_.yThreshold();
  table_.SetNumRows(0);
  bins_.m_lBinCount = 0;
  sort_.m_lSortedRow = 0;
  sort_.m_lSortedRowOrder = 0;
  Indicator indicator(page_.progress(), page_.framework());

  calculate();
  bins_.allocate(page_.analysis().Results.Count());
  initSampleCells();
  const auto columnStyle = table_.grid().NewStyle();
  layDyes(required(columnStyle, "Style"), indicator);
  table_.SetNumRows(bins_.m_lBinCount);
  applyColumnStyles(*columnStyle);

  persistence_.LoadAFLPBins();
  exclusion_.CalcExcluded();
  sort_.SortCols();

  access.restore();
  lock.restore();
  page_.progress().Finish();
  hourglass.restore();
  pending_.clear(kPendingAnalyze | kPendingCalcExcluded | kPendingCalcAFLP | kPendingShowExcluded);
}

void Analysis::calculate() {
  for (std::int32_t dye = 0; dye < kDyeCount; ++dye) {
    BinCalculator& bins = calculator(dye);
    bins.SetMaxBinWidth(bins_.m_dMaxBinWidth);
    bins.SetYThreshold(bins_.m_dYThreshold);
    bins.Calculate();
    bins_.m_alDyeFirstRow[static_cast<std::size_t>(dye)] = addLongs(bins_.m_lBinCount, 1);
    bins_.m_lBinCount = addLongs(bins_.m_lBinCount, bins.BinCount());
  }
}

// Every sample cell reads "0" in the style of the empty cell, in one stroke.
void Analysis::initSampleCells() {
  GridStyle& style = table_.style();
  style.Free();
  table_.InitRange(table_.range(), table_.m_lFirstSampleCol, 1, table_.NumCols(), bins_.m_lBinCount);
  style.SetBaseStyle(styles_.baseStyle(kEmptyCell));
  style.SetValue("0");
  table_.SetStyleRange(table_.range(), style, StyleMode::Override);
  style.SetIncludeValue(false);
}

void Analysis::layDyes(GridStyle& style, Indicator& indicator) {
  std::optional<Columns> columns;  // looked up with the first bin
  resultColumns_ = statistics_.resultColumns();
  for (std::int32_t dye = 0; dye < kDyeCount; ++dye) layDye(dye, columns, style, indicator);
}

void Analysis::layDye(std::int32_t dye, std::optional<Columns>& columns, GridStyle& style,
                      Indicator& indicator) {
  const std::int32_t count = calculator(dye).BinCount();
  const std::int32_t first = bins_.m_alDyeFirstRow[static_cast<std::size_t>(dye)];
  indicator.beginDye(dye, count);
  table_.HideRows(first, first + count - 1, controls_.dyeValue(dye) != ui::kChecked);
  for (std::int32_t bin = 0; bin < count; ++bin) {
    if (!columns) page_.frame.procedure("CellText (Let)", [&] { columns.emplace(table_); });
    layBin(first + bin, dye, bin, *columns);
    indicator.laidBin(bin);
  }
  indicator.endDye();
  // One row beyond the block: the next dye's own style covers it.
  style.SetBaseStyle(styles_.m_alDyeStyles[static_cast<std::size_t>(dye)]);
  applyToColumn(style, table_.Col(kDyeKey), first, first + count);
}

void Analysis::layBin(std::int32_t row, std::int32_t dye, std::int32_t bin, const Columns& columns) {
  const BinCalculator& bins = calculator(dye);
  const double mean = bins.XMean(bin);
  table_.writeCell(row, columns.binNumber, integerText(roundToLong(mean)));
  table_.writeCell(row, columns.dye, "D" + integerText(dye + 1));
  table_.writeCell(row, columns.sampleCount, integerText(bins.SampleCount(bin)));
  table_.writeCell(row, columns.fragmentCount, integerText(bins.FragmentCount(bin)));
  table_.writeCell(row, columns.xMin, generalText(bins.XMin(bin)));
  table_.writeCell(row, columns.xMax, generalText(bins.XMax(bin)));
  table_.writeCell(row, columns.xMean, generalText(mean));
  table_.writeCell(row, columns.yMean, generalText(bins.YMean(bin)));
  table_.writeCell(row, columns.xVariance, generalText(bins.XVariance(bin)));
  table_.SetBin(row, row);
  bins_.m_aiBinDye[bins_.at(row)] = static_cast<std::int16_t>(dye);
  bins.GetResultData(bin, counts_, heights_);
  statistics_.CalcBin(row, row, counts_, heights_, resultColumns_);
}

void Analysis::applyColumnStyles(GridStyle& style) {
  if (!styles_.m_colColumnStyles) return;
  for (const auto& column : page_.analysis().BinGrid->Columns) {
    const std::string& key = column->Key;
    if (!column->IsVisible || leadingNumber(key) <= 0 || key == kDyeKey) continue;
    if (!page_.framework().ItemExists(*styles_.m_colColumnStyles, key)) continue;
    style.SetBaseStyle(styles_.m_colColumnStyles->Item(key));
    applyToColumn(style, table_.Col(key), 1, bins_.m_lBinCount);
  }
}

void Analysis::applyToColumn(const GridStyle& style, std::int32_t col, std::int32_t firstRow,
                             std::int32_t lastRow) {
  table_.InitRange(table_.range(), col, firstRow, col, lastRow);
  table_.SetStyleRange(table_.range(), style, StyleMode::Override);
}

}  // namespace banddesk
