#include "host/store/analysis_marks.h"

#include <algorithm>

#include "host/store/snapshot_fields.h"
#include "host/study/analysis.h"

namespace banddesk::host {
namespace {

// A put of an equal value would raise what a put raises.
constexpr auto putChanged = [](auto& field, const auto& value) {
  if (field.get() != value) field = value;
};

void putBack(const LayoutSnapshot& stored, GridLayout& layout) {
  auto from = stored.columns.begin();
  for (const auto& column : layout.Columns) pairFields(*column, *from++, putChanged);
}

}  // namespace

AnalysisMarks::AnalysisMarks(AFLP& analysis) : analysis_(analysis), fields_(snapshotOf(analysis)) {
  for (const auto& column : analysis.SampleGrid->Columns) sampleHeaders_.push_back(column->Header);
  for (const auto& bin : analysis.AFLPBins)
    decisions_.push_back({bin, {bin->Key, bin->ManuallyExcluded, bin->ManuallyIncluded}, bin->Saved});
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
    putChanged(decision.bin->ManuallyExcluded, decision.fields.manuallyExcluded);
    putChanged(decision.bin->ManuallyIncluded, decision.fields.manuallyIncluded);
    decision.bin->Saved = decision.saved;
  }
}

void AnalysisMarks::putBack() {
  pairFields(analysis_, fields_, putChanged);
  host::putBack(fields_.binGrid, *analysis_.BinGrid);
  host::putBack(fields_.sampleGrid, *analysis_.SampleGrid);
  host::putBack(fields_.dyeGrid, *analysis_.DyeGrid);
  host::putBack(fields_.styleGrid, *analysis_.StyleGrid);
  auto header = sampleHeaders_.begin();
  for (const auto& column : analysis_.SampleGrid->Columns) putChanged(column->Header, *header++);
  putDecisionsBack();
  for (const auto& [object, state] : states_) object->Persistent() = state;
}

}  // namespace banddesk::host
