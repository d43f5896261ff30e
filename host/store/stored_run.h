// The runs of instruments as a study keeps them: plain values for any store.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/runs/process_run.h"
#include "host/study/fragments.h"

namespace banddesk::host {

// Runs that are not in a study yet, all sized with the same settings.
struct NewRuns {
  struct Run {
    runs::ProcessedRun processed;       // without its traces
    std::vector<runs::Bytes> traces;    // packed, parallel to the dyes of `processed`
    std::optional<std::size_t> result;  // its place among the results that come with it; none: not sized
  };
  std::vector<Run> runs;
  runs::RunSettings settings;
};

struct StoredRun {
  std::int32_t id = 0;
  std::optional<std::int32_t> resultId;  // none: it could not be sized yet
  runs::ProcessedRun processed;          // without traces and peaks
};

// What a run becomes when it is sized again.
struct NewSizing {
  std::int32_t runId = 0;
  runs::ProcessedRun processed;              // without its traces
  SampleFragments fragments;                 // of its result
  std::string sampleName = {};               // of the result that is added where it has none and is sized now
  std::optional<runs::RunEdits> edits = {};  // what the user's edits are from now on; absent: as they were
};

}  // namespace banddesk::host
