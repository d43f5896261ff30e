// The runs of the open study sized again, with other settings or after the user has edited them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/framework/study_service.h"

namespace banddesk::host {

struct SizingRequest {
  runs::RunSettings settings;
  std::vector<std::string> samples;  // by name; none: all, also the runs that could not be sized before
  bool forgetsEdits = false;         // what the user changed by hand is taken back
  std::size_t jobs = 0;              // threads; 0: as many as the machine has
};

struct SizingOutcome {
  std::size_t runs = 0;
  std::size_t changed = 0;             // results that have other fragments now
  std::size_t added = 0;               // results of runs that could not be sized before
  std::vector<std::string> excluded;   // samples that cannot be sized any more
  std::vector<std::string> included;   // that could not be sized and can be now
  std::vector<std::string> outOfDate;  // analyses made before
};

// In one write of the store. Error 5 for a name that no run has, and in a study without runs. A sample that
// cannot be sized any more loses its fragments and is excluded, until it can be sized again.
SizingOutcome sizeRuns(HostStudyService& study, const SizingRequest& request,
                       const runs::RunProgress& progress = {});

// The trace of a stored run's dye.
std::vector<std::int32_t> traceOf(Store& store, std::int32_t runId, int channel);

// Lists that the user keeps, and those of the study that are not among them yet, behind the known ones.
std::vector<runs::SizeStandard> standardsFor(HostStudyService& study,
                                             const std::vector<runs::SizeStandard>& lists);

}  // namespace banddesk::host
