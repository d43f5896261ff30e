// The service's side of the study's save: it lists what it has to save, saves or deletes what it is handed
// back, and closes the save. What an analysis writes is the object as it stands; its open page has put its
// state there before.
#include "plugin/base/numbers.h"
#include "plugin/shell/aflp_service.h"

namespace banddesk {

void AFLPService::m_oServiceBase_GetUnsavedItems(Dictionary<ObjectRef>& items) {
  frame_.procedure("m_oServiceBase_GetUnsavedItems", [&] {
    PersistentCollection<AFLP>* analyses = AFLPs();
    if (analyses == nullptr) return;
    for (const auto& analysis : *analyses) {
      const PersistentState& state = analysis->Persistent();
      if (state.IsNew) {
        items.Add("Add AFLP: " + analysis->Name.get(), analysis);
      } else if (state.IsDirty) {
        items.Add("Update AFLP: " + analysis->Name.get(), analysis);
      }
    }
    for (const auto& analysis : AFLPs()->DeletedItems()) {
      items.Add("Delete AFLP: " + analysis->Name.get(), analysis);
    }
  });
}

void AFLPService::m_oServiceBase_Save(const ObjectRef& object) {
  frame_.procedure("m_oServiceBase_Save", [&] {
    const auto analysis = cast<AFLP>(object, "AFLP");
    const std::string key = integerText(analysis->ID());
    PersistentCollection<AFLP>* analyses = AFLPs();
    if (services_.Framework().ItemExists(required(analyses, "AFLPs"), key)) {
      services_.ObjectManager().Save(analysis, true);
    } else {
      services_.ObjectManager().Delete(analysis);
      AFLPs()->DeletedItems().Remove(key);
    }
  });
}

void AFLPService::m_oServiceBase_SaveComplete() {
  frame_.procedure("m_oServiceBase_SaveComplete", [&] {
    if (PersistentCollection<AFLP>* analyses = AFLPs()) analyses->Commit(false);
  });
}

}  // namespace banddesk
