#include "host/store/snapshot.h"

#include "host/study/analysis.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

// The fields of an object beside those of its snapshot: one list serves both directions.
template <class Column, class Snapshot, class Action>
void pairFields(Column& column, Snapshot& snapshot,
                Action act) requires std::is_same_v<std::remove_const_t<Column>, GridColumn> {
  act(column.TypeCode, snapshot.typeCode);
  act(column.Key, snapshot.key);
  act(column.ToolTip, snapshot.toolTip);
  act(column.Header, snapshot.header);
  act(column.ColumnOrder, snapshot.columnOrder);
  act(column.IsVisible, snapshot.isVisible);
  act(column.IsExcluded, snapshot.isExcluded);
  act(column.Width, snapshot.width);
  act(column.SortOrder, snapshot.sortOrder);
  act(column.SortPriority, snapshot.sortPriority);
  act(column.InteriorPattern, snapshot.interiorPattern);
  act(column.InteriorColor, snapshot.interiorColor);
  act(column.InteriorBkColor, snapshot.interiorBkColor);
  act(column.ReadOnly, snapshot.readOnly);
  act(column.WrapText, snapshot.wrapText);
  act(column.HorizontalAlignment, snapshot.horizontalAlignment);
  act(column.VerticalAlignment, snapshot.verticalAlignment);
  act(column.TextColor, snapshot.textColor);
  act(column.Format, snapshot.format);
  act(column.Places, snapshot.places);
  act(column.Draw3dFrame, snapshot.draw3dFrame);
  act(column.StyleToolTip, snapshot.styleToolTip);
}

template <class Analysis, class Snapshot, class Action>
void pairFields(Analysis& analysis, Snapshot& snapshot,
                Action act) requires std::is_same_v<std::remove_const_t<Analysis>, AFLP> {
  act(analysis.Name, snapshot.name);
  act(analysis.OwnerId, snapshot.ownerId);
  act(analysis.ResultStamp, snapshot.resultStamp);
  act(analysis.MaxBinWidth, snapshot.maxBinWidth);
  act(analysis.YThreshold, snapshot.yThreshold);
  act(analysis.ExcludeFullBins, snapshot.excludeFullBins);
  act(analysis.ExcludeEmptySamples, snapshot.excludeEmptySamples);
  act(analysis.ShowExcluded, snapshot.showExcluded);
  act(analysis.ShowTimestamp, snapshot.showTimestamp);
  act(analysis.ShowWellID, snapshot.showWellID);
  act(analysis.SamplesInRows, snapshot.samplesInRows);
  act(analysis.SampleBinOption, snapshot.sampleBinOption);
  act(analysis.IsPending, snapshot.isPending);
}

constexpr auto take = [](const auto& field, auto& value) { value = field.get(); };
constexpr auto put = [](auto& field, const auto& value) { field = value; };

LayoutSnapshot snapshotOf(const GridLayout& layout) {
  LayoutSnapshot snapshot;
  for (const auto& each : layout.Columns) {
    const GridColumn& column = *each;
    ColumnSnapshot& stored = snapshot.columns.emplace_back();
    pairFields(column, stored, take);
    if (column.TypeCode == GridColumn::kSampleColumn) stored.header.clear();
    if (layout.LockedColumn.get() == each) snapshot.lockedKey = column.Key;
  }
  return snapshot;
}

void restore(const LayoutSnapshot& snapshot, GridLayout& layout) {
  for (const ColumnSnapshot& stored : snapshot.columns) {
    auto column = std::make_shared<GridColumn>();
    pairFields(*column, stored, put);
    column->Definition = binColumnDefinition(stored.key);
    layout.Columns.Add(column);
    if (!snapshot.lockedKey.empty() && stored.key == snapshot.lockedKey) layout.LockedColumn = column;
  }
}

}  // namespace

AnalysisSnapshot snapshotOf(const AFLP& analysis) {
  AnalysisSnapshot snapshot;
  snapshot.id = analysis.ID();
  pairFields(analysis, snapshot, take);
  for (const auto& result : analysis.Results) snapshot.resultIds.push_back(result->ResultID);
  for (const auto& bin : analysis.AFLPBins) {
    snapshot.bins.push_back({bin->Key, bin->ManuallyExcluded, bin->ManuallyIncluded});
  }
  snapshot.binGrid = snapshotOf(*analysis.BinGrid);
  snapshot.sampleGrid = snapshotOf(*analysis.SampleGrid);
  snapshot.dyeGrid = snapshotOf(*analysis.DyeGrid);
  snapshot.styleGrid = snapshotOf(*analysis.StyleGrid);
  return snapshot;
}

void restore(const AnalysisSnapshot& snapshot, AFLP& analysis) {
  pairFields(analysis, snapshot, put);
  const Study& study = required(analysis.Study.get(), "Study");
  for (const std::int32_t id : snapshot.resultIds) {
    const std::string key = integerText(id);
    if (!study.Results.holdsKey(key)) {
      raise(ErrorNumber::InvalidArgument, "ObjectManager",
            "The analysis \"" + snapshot.name + "\" uses the result " + key +
                ", which the study does not hold.");
    }
    analysis.Results.Add(study.Results.Item(key));
  }
  for (const BinSnapshot& stored : snapshot.bins) {
    auto bin = std::make_shared<AFLPBin>();
    bin->Key = stored.key;
    bin->ManuallyExcluded = stored.manuallyExcluded;
    bin->ManuallyIncluded = stored.manuallyIncluded;
    analysis.AFLPBins.Add(std::move(bin));
  }
  restore(snapshot.binGrid, *analysis.BinGrid);
  restore(snapshot.sampleGrid, *analysis.SampleGrid);
  restore(snapshot.dyeGrid, *analysis.DyeGrid);
  restore(snapshot.styleGrid, *analysis.StyleGrid);
}

}  // namespace banddesk::host
