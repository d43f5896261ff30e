// Runs of known truth for the tests: simulated traces, written and read as a file.
#pragma once

#include <string>
#include <vector>

#include "host/runs/process_run.h"
#include "host/simulation/abif_writer.h"

namespace banddesk::test {

struct SimulatedRun {
  host::simulation::SimulatedTraces traces;
  std::string bytes;
  host::runs::RunFile file;
};

/// Settings of a run of two sample dyes whose ladder is that of the standard.
inline host::simulation::TraceSettings traceSettings(const char* standard, std::uint64_t seed) {
  using namespace host::runs;
  const SizeStandard& list = *findStandard(knownStandards(), standard);
  host::simulation::TraceSettings settings;
  settings.seed = seed;
  settings.ladderSizes = list.sizes;
  settings.strayingSizes = list.unreliable;
  settings.dyes = {{88.3, 120.1, 171.5, 244.2, 333.7, 401.9}, {95.5, 203.4, 310.2}};
  return settings;
}

inline SimulatedRun simulatedRun(const host::simulation::TraceSettings& settings,
                                 std::vector<std::string> dyes = {"6-FAM", "VIC", "LIZ"}) {
  SimulatedRun run;
  run.traces = simulateTraces(settings);
  run.bytes = abifFile(runTags(run.traces, {"sample", "A1", "run", "", std::move(dyes)}));
  run.file = host::runs::readRun(run.bytes, "simulated.fsa");
  return run;
}

}  // namespace banddesk::test
