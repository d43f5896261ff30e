// Writes simulated runs as instruments' software would: the combined table of Peak Scanner, tab-separated.
// It writes no other form.
#pragma once

#include <ostream>
#include <string>

#include "host/simulation/simulator.h"

namespace banddesk::host::simulation {

/// The whole table as text, the ladder's peaks as ordinary rows of their dye.
std::string peakTable(const SimulatedRuns& simulated);

/// The same, run by run; for tables too large to hold as one text.
void writePeakTable(std::ostream& out, const SimulatedRuns& simulated);

}  // namespace banddesk::host::simulation
