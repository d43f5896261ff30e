#include "host/store/snapshot.h"

#include "host/store/snapshot_fields.h"
#include "host/study/analysis.h"
#include "host/study/study.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

LayoutSnapshot snapshotOf(const GridLayout& layout) {
  LayoutSnapshot snapshot;
  for (const auto& each : layout.Columns) {
    const GridColumn& column = *each;
    ColumnSnapshot& stored = snapshot.columns.emplace_back();
    takeFields(kColumnFields, column, stored);
    if (column.TypeCode == GridColumn::kSampleColumn) stored.header.clear();
    if (layout.LockedColumn.get() == each) snapshot.lockedKey = column.Key;
  }
  return snapshot;
}

void restore(const LayoutSnapshot& snapshot, GridLayout& layout) {
  for (const ColumnSnapshot& stored : snapshot.columns) {
    auto column = std::make_shared<GridColumn>();
    putFields(kColumnFields, *column, stored);
    column->Definition = binColumnDefinition(stored.key);
    layout.Columns.Add(column);
    if (!snapshot.lockedKey.empty() && stored.key == snapshot.lockedKey) layout.LockedColumn = column;
  }
}

}  // namespace

AnalysisSnapshot snapshotOf(const AFLP& analysis) {
  AnalysisSnapshot snapshot;
  snapshot.id = analysis.ID();
  takeFields(kAnalysisFields, analysis, snapshot);
  for (const auto& result : analysis.Results) snapshot.resultIds.push_back(result->ResultID);
  for (const auto& bin : analysis.AFLPBins) takeFields(kBinFields, *bin, snapshot.bins.emplace_back());
  if (const auto* own = dynamic_cast<const HostAFLP*>(&analysis)) snapshot.scoring = own->scoring();
  snapshot.binGrid = snapshotOf(*analysis.BinGrid);
  snapshot.sampleGrid = snapshotOf(*analysis.SampleGrid);
  snapshot.dyeGrid = snapshotOf(*analysis.DyeGrid);
  snapshot.styleGrid = snapshotOf(*analysis.StyleGrid);
  return snapshot;
}

void restore(const AnalysisSnapshot& snapshot, AFLP& analysis) {
  putFields(kAnalysisFields, analysis, snapshot);
  Study& study = required(analysis.Study.get(), "Study");
  for (const std::int32_t id : snapshot.resultIds) {
    const auto result = resultOf(study, id);
    if (!result) {
      raise(ErrorNumber::InvalidArgument, "ObjectManager",
            "The analysis \"" + snapshot.name + "\" uses the result " + integerText(id) +
                ", which the study does not hold.");
    }
    analysis.Results.Add(result);
  }
  for (const BinSnapshot& stored : snapshot.bins) {
    auto bin = std::make_shared<AFLPBin>();
    putFields(kBinFields, *bin, stored);
    analysis.AFLPBins.Add(std::move(bin));
  }
  if (auto* own = dynamic_cast<HostAFLP*>(&analysis)) own->setScoring(snapshot.scoring);
  restore(snapshot.binGrid, *analysis.BinGrid);
  restore(snapshot.sampleGrid, *analysis.SampleGrid);
  restore(snapshot.dyeGrid, *analysis.DyeGrid);
  restore(snapshot.styleGrid, *analysis.StyleGrid);
}

}  // namespace banddesk::host
