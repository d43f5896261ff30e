// What a step is called in a menu and in lists, by what it changed: such as Exclude 3 Bins.
#pragma once

#include <string>

#include "host/history/study_state.h"

namespace banddesk::host {

// Of the first kind of change that is found, the farthest-reaching kinds first; "Change the Table" where only
// looks differ. Error 51 for states whose parts are damaged.
std::string stepLabel(const StudyState& before, const StudyState& after);

}  // namespace banddesk::host
