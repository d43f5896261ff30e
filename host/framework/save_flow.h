// How the host saves: it asks the service what is unsaved, lets the user choose, and for each chosen item has
// its open page validated and stored into it before the service saves it. A page whose table is half made is
// not asked: it would take the decisions of the lines that it lacks away, and its item holds them still.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/framework/page_manager.h"
#include "plugin/shell/host_contract.h"

namespace banddesk::host {

// From the descriptions of all unsaved items, those to save.
using SaveChoice = std::function<std::vector<std::string>(const std::vector<std::string>&)>;

struct SaveOutcome {
  std::vector<std::string> saved;
  std::vector<std::string> refused;  // their page is not valid; they stay unsaved
};

// Analyses that are to be saved and that a save cannot tell apart, since it goes by what happened to them and
// by their names. Files of earlier times may hold such.
std::vector<std::shared_ptr<AFLP>> namesakes(Study& study);

std::vector<std::string> unsavedItems(ServiceBase& service);

// Without a choice everything is saved. An error of one item ends the save and goes to the caller.
SaveOutcome saveStudy(ServiceBase& service, HostPageManager& pages, const SaveChoice& choose);

}  // namespace banddesk::host
