#include "host/store/analysis_marks.h"

#include <algorithm>

#include "host/store/snapshot_fields.h"
#include "host/study/analysis.h"

namespace banddesk::host {
namespace {

void putBack(const LayoutSnapshot& stored, GridLayout& layout) {
  auto from = stored.columns.begin();
  for (const auto& column : layout.Columns) putFields(kColumnFields, *column, *from++);
}

}  // namespace

AnalysisMarks::AnalysisMarks(AFLP& analysis) : analysis_(analysis), fields_(snapshotOf(analysis)) {
  for (const auto& column : analysis.SampleGrid->Columns) sampleHeaders_.push_back(column->Header);
  for (const auto& bin : analysis.AFLPBins) {
    Decision& decision = decisions_.emplace_back(Decision{bin, {}, bin->Saved});
    takeFields(kBinFields, *bin, decision.fields);
  }
  for (const auto& bin : analysis.AFLPBins.DeletedItems()) deleted_.push_back(bin);
  visitOwned(analysis,
             [&](PersistentObject& owned) { states_.emplace_back(&owned, owned.persistentState()); });
}

bool AnalysisMarks::holdsSameDecisions() const {
  std::vector<std::shared_ptr<AFLPBin>> bins;
  for (const auto& bin : analysis_.AFLPBins) bins.push_back(bin);
  return std::ranges::equal(bins, decisions_, {}, {}, &Decision::bin);
}

void AnalysisMarks::putDecisionsBack() {
  auto& bins = analysis_.AFLPBins;
  if (!holdsSameDecisions()) {
    while (bins.Count() > 0) bins.Remove(bins.Count());
    for (const Decision& decision : decisions_) bins.Add(decision.bin);
    auto& deleted = bins.DeletedItems();
    while (deleted.Count() > 0) deleted.Remove(deleted.Count());
    for (const auto& bin : deleted_) deleted.Add(bin, bin->collectionKey());
  }
  for (const Decision& decision : decisions_) {
    putFields(kBinFields, *decision.bin, decision.fields);
    decision.bin->Saved = decision.saved;
  }
}

void AnalysisMarks::putBack() {
  putFields(kAnalysisFields, analysis_, fields_);
  host::putBack(fields_.binGrid, *analysis_.BinGrid);
  host::putBack(fields_.sampleGrid, *analysis_.SampleGrid);
  host::putBack(fields_.dyeGrid, *analysis_.DyeGrid);
  host::putBack(fields_.styleGrid, *analysis_.StyleGrid);
  auto header = sampleHeaders_.begin();
  for (const auto& column : analysis_.SampleGrid->Columns) {
    if (column->Header.get() != *header) column->Header = *header;
    ++header;
  }
  putDecisionsBack();
  for (const auto& [object, state] : states_) object->Persistent() = state;
}

}  // namespace banddesk::host
