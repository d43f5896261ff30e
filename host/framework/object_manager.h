// Makes, loads, stores and removes the persistent objects of the open study, on a store.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/store/store.h"
#include "host/study/analysis.h"
#include "host/study/fault_injector.h"
#include "plugin/shell/host_contract.h"

namespace banddesk::host {

class HostObjectManager final : public ObjectManager {
 public:
  // The hooks go to every analysis; they and the injector outlive all of them.
  HostObjectManager(FaultInjector& faults, const AnalysisHooks& hooks) : faults_(faults), hooks_(hooks) {}
  ~HostObjectManager() override { detach(); }

  // Takes over the store of a study that opens, and fills its analyses from it.
  void attach(std::shared_ptr<Store> store, std::shared_ptr<Study> study);
  // Parts the analyses from the study, which nobody holds through them any more, and lets the store go.
  void detach();

  // Makes an analysis of the study what the snapshot tells, as the same object, with columns and decisions of
  // its own; it counts as stored.
  void refill(AFLP& analysis, const AnalysisSnapshot& snapshot);

  // Gives the sample columns of all analyses the names that the samples have now; to the store that is no
  // change, as it is done anew at each loading.
  void nameColumns();
  // An analysis of the open study as the snapshot tells, under the id that it has there; it is in no collection
  // yet.
  std::shared_ptr<AFLP> remake(const AnalysisSnapshot& snapshot);
  bool isStored(std::int32_t id) const;

  // An analysis can be made only while a study is open (error 91).
  std::shared_ptr<PersistentObject> Create(const std::string& typeName) override;
  // The stored analyses, each as the one object that stands for it.
  std::vector<std::shared_ptr<PersistentObject>> Query(const std::string& what, const std::string&,
                                                       const std::string&, const std::string&, bool,
                                                       bool) override;
  void Save(const std::shared_ptr<PersistentObject>& object, bool) override;
  void Delete(const std::shared_ptr<PersistentObject>& object) override;

 private:
  std::shared_ptr<HostAFLP> makeAnalysis(std::int32_t id);
  std::shared_ptr<HostAFLP> load(std::int32_t id);
  std::vector<std::shared_ptr<HostAFLP>> loadAll();
  // The analysis and all that belongs to it, as they lie in the store.
  void settle(AFLP& analysis);

  FaultInjector& faults_;
  const AnalysisHooks& hooks_;
  std::shared_ptr<Store> store_;
  std::shared_ptr<Study> study_;
  std::vector<std::weak_ptr<HostAFLP>> analyses_;  // all that were made for this study
};

}  // namespace banddesk::host
