#include "host/framework/object_manager.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

#include "host/store/snapshot.h"
#include "plugin/base/numbers.h"
#include "plugin/base/text.h"

namespace banddesk::host {
namespace {

// What was taken out of an analysis is gone with its rows: nobody will ask for it.
void forgetRemoved(AFLP& analysis) {
  const auto forget = [](auto& collection) {
    auto& removed = collection.DeletedItems();
    while (removed.Count() > 0) removed.Remove(removed.Count());
  };
  forget(analysis.Results);
  forget(analysis.AFLPBins);
  for (const auto& layout : {analysis.BinGrid, analysis.SampleGrid, analysis.DyeGrid, analysis.StyleGrid})
    forget(layout->Columns);
}

void nameColumnsOf(AFLP& analysis) {
  auto& columns = analysis.SampleGrid->Columns;
  const PersistentState ofAnalysis = analysis.persistentState();
  const PersistentState ofLayout = analysis.SampleGrid->persistentState();
  for (const auto& result : analysis.Results) {
    const std::string key = "-" + integerText(result->ResultID);
    if (!columns.holdsKey(key)) continue;
    const auto& column = columns.Item(key);
    const PersistentState ofColumn = column->persistentState();
    const std::string name(trimRight(result->Sample->Name.get()));
    if (column->ToolTip.get() != name) column->ToolTip = name;
    column->Persistent() = ofColumn;
  }
  analysis.SampleGrid->Persistent() = ofLayout;
  analysis.Persistent() = ofAnalysis;
}

}  // namespace

void HostObjectManager::nameColumns() {
  for (const auto& each : analyses_) {
    if (const auto analysis = each.lock()) nameColumnsOf(*analysis);
  }
}

void HostObjectManager::attach(std::shared_ptr<Store> store, std::shared_ptr<Study> study) {
  store_ = std::move(store);
  study_ = std::move(study);
  study_->setGuard(nullptr);
  for (auto& analysis : loadAll()) study_->AFLPs.Add(std::move(analysis));
  study_->setGuard(&faults_);
  study_->Persistent().IsDirty = false;
}

void HostObjectManager::detach() {
  for (const auto& each : std::exchange(analyses_, {})) {
    if (const auto analysis = each.lock()) analysis->leaveStudy();
  }
  study_.reset();
  store_.reset();
}

std::shared_ptr<PersistentObject> HostObjectManager::Create(const std::string& typeName) {
  faults_.check("ObjectManager", "Create");
  std::shared_ptr<PersistentObject> object;
  if (typeName == "AFLP") {
    const auto analysis = makeAnalysis(required(store_, "Study").newAnalysisId());
    fillNewLayouts(*analysis);
    visitOwned(*analysis, [&](PersistentObject& owned) { owned.setGuard(&faults_); });
    object = analysis;
  } else if (typeName == "GridColumn") {
    // A dye or a sample: the others come with the analysis.
    auto column = std::make_shared<GridColumn>();
    centre(*column);
    object = column;
  } else if (typeName == "AFLPBin") {
    object = std::make_shared<AFLPBin>();
  } else {
    raise(ErrorNumber::NotFoundInRegistry, "ObjectManager",
          fmt::format("There is no type {} of persistent objects.", typeName));
  }
  object->setGuard(&faults_);
  return object;
}

std::vector<std::shared_ptr<PersistentObject>> HostObjectManager::Query(const std::string& what,
                                                                        const std::string&,
                                                                        const std::string&,
                                                                        const std::string&, bool, bool) {
  faults_.check("ObjectManager", "Query");
  if (what != "AFLPs") {
    raise(ErrorNumber::InvalidArgument, "ObjectManager", fmt::format("{} cannot be queried.", what));
  }
  const auto analyses = loadAll();
  return {analyses.begin(), analyses.end()};
}

void HostObjectManager::Save(const std::shared_ptr<PersistentObject>& object, bool) {
  faults_.check("ObjectManager", "Save");
  const auto analysis = cast<AFLP>(object, "AFLP");
  required(store_, "Study").writeAnalysis(snapshotOf(*analysis));
  settle(*analysis);
  forgetRemoved(*analysis);
}

void HostObjectManager::Delete(const std::shared_ptr<PersistentObject>& object) {
  faults_.check("ObjectManager", "Delete");
  const auto analysis = cast<AFLP>(object, "AFLP");
  required(store_, "Study").removeAnalysis(analysis->ID());
}

std::shared_ptr<HostAFLP> HostObjectManager::makeAnalysis(std::int32_t id) {
  auto analysis = std::make_shared<HostAFLP>(id, hooks_);
  std::erase_if(analyses_, [](const auto& each) { return each.expired(); });
  analyses_.push_back(analysis);
  return analysis;
}

std::vector<std::shared_ptr<HostAFLP>> HostObjectManager::loadAll() {
  std::vector<std::shared_ptr<HostAFLP>> analyses;
  for (const std::int32_t id : required(store_, "Study").analysisIds()) analyses.push_back(load(id));
  return analyses;
}

std::shared_ptr<HostAFLP> HostObjectManager::load(std::int32_t id) {
  for (const auto& each : analyses_) {
    if (auto analysis = each.lock(); analysis && analysis->ID() == id) return analysis;
  }
  auto analysis = makeAnalysis(id);
  analysis->Study = study_;
  restore(store_->readAnalysis(id), *analysis);
  nameColumnsOf(*analysis);
  for (const auto& dye : analysis->DyeGrid->Columns) centre(*dye);  // older studies hold none of it
  settle(*analysis);
  return analysis;
}

std::shared_ptr<AFLP> HostObjectManager::remake(const AnalysisSnapshot& snapshot) {
  auto analysis = makeAnalysis(snapshot.id);
  analysis->Study = study_;
  restore(snapshot, *analysis);
  settle(*analysis);
  return analysis;
}

bool HostObjectManager::isStored(std::int32_t id) const {
  const auto ids = required(store_, "Study").analysisIds();
  return std::ranges::find(ids, id) != ids.end();
}

void HostObjectManager::refill(AFLP& analysis, const AnalysisSnapshot& snapshot) {
  const auto empty = [](auto& collection) {
    while (collection.Count() > 0) collection.Remove(collection.Count());
  };
  empty(analysis.Results);
  empty(analysis.AFLPBins);
  for (const auto& layout : {analysis.BinGrid, analysis.SampleGrid, analysis.DyeGrid, analysis.StyleGrid}) {
    layout->LockedColumn = nullptr;
    empty(layout->Columns);
  }
  forgetRemoved(analysis);
  restore(snapshot, analysis);
  settle(analysis);
}

void HostObjectManager::settle(AFLP& analysis) {
  visitOwned(analysis, [&](PersistentObject& owned) {
    owned.Persistent() = {.IsNew = false, .IsDirty = false};
    owned.setGuard(&faults_);
  });
}

}  // namespace banddesk::host
