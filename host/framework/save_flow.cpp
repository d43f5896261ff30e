#include "host/framework/save_flow.h"

#include <algorithm>
#include <map>
#include <utility>

namespace banddesk::host {
namespace {

std::vector<std::string> descriptionsOf(const Dictionary<ObjectRef>& items) {
  std::vector<std::string> descriptions;
  for (const auto& [description, item] : items) descriptions.push_back(description);
  return descriptions;
}

// An analysis that was taken out of its study has nothing left to be stored into it.
bool isDeleted(const ObjectRef& item) {
  const auto* analysis = dynamic_cast<const AFLP*>(item.get());
  if (analysis == nullptr || !analysis->Study.get()) return false;
  return !analysis->Study.get()->AFLPs.holdsKey(analysis->collectionKey());
}

bool storePages(HostPageManager& pages, const ObjectRef& item) {
  for (const auto& page : pages.openPages()) {
    if (page->bound() != item || !page->base() || page->isHalfMade()) continue;
    if (!pages.validate(*page)) return false;
    page->base()->Save.raise();
  }
  return true;
}

}  // namespace

std::vector<std::shared_ptr<AFLP>> namesakes(Study& study) {
  std::map<std::pair<bool, std::string>, std::vector<std::shared_ptr<AFLP>>> named;
  for (const auto& analysis : study.AFLPs) {
    const PersistentState& state = analysis->persistentState();
    if (state.IsNew || state.IsDirty) named[{state.IsNew, analysis->Name.get()}].push_back(analysis);
  }
  std::vector<std::shared_ptr<AFLP>> equal;
  for (const auto& [name, analyses] : named) {
    if (analyses.size() > 1) equal.insert(equal.end(), analyses.begin(), analyses.end());
  }
  return equal;
}

std::vector<std::string> unsavedItems(ServiceBase& service) {
  Dictionary<ObjectRef> items;
  service.GetUnsavedItems.raise(items);
  return descriptionsOf(items);
}

SaveOutcome saveStudy(ServiceBase& service, HostPageManager& pages, const SaveChoice& choose) {
  Dictionary<ObjectRef> items;
  service.GetUnsavedItems.raise(items);
  std::vector<std::string> chosen = descriptionsOf(items);
  if (choose) chosen = choose(chosen);

  SaveOutcome outcome;
  for (const std::string& description : chosen) {
    const ObjectRef& item = items.Item(description);
    if (!isDeleted(item) && !storePages(pages, item)) {
      outcome.refused.push_back(description);
      continue;
    }
    service.Save.raise(item);
    outcome.saved.push_back(description);
  }
  service.SaveComplete.raise();
  return outcome;
}

}  // namespace banddesk::host
