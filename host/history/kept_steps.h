// The steps of a study that outlive a program: kept beside the study's file by those who change it and leave,
// as commands of a command line do. They are worth something only as long as nobody else has changed the
// study.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/history/step_log.h"
#include "host/store/store.h"

namespace banddesk::host {

inline constexpr const char* kKeptStepsExtension = "-history";  // behind the name of the study's file
inline constexpr const char* kUnsavedExtension = "-unsaved";

struct KeptSteps {
  std::vector<Step> steps;   // at least the present state
  std::size_t position = 0;  // of the present state
};

// All that the store holds; equal parts are shared with the other state.
StudyState storedState(Store& store, const StudyState& like);

// Those kept beside a study's file. Where none are kept, or none that end in what the store holds now, the
// present state alone; `lost` then tells why, where there were some.
KeptSteps readKeptSteps(const std::string& study, Store& store, std::string& lost);
void writeKeptSteps(const std::string& study, const KeptSteps& kept);

// The store becomes what it was at a step, in one write; gives the steps with that position. Error 9 for a step
// that there is not.
void goToStep(KeptSteps& kept, std::size_t position, Store& store);

}  // namespace banddesk::host
