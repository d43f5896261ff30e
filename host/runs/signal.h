// Filters over a trace: baseline, smoothing, slope. Parallel to the trace and of its length; windows are odd
// counts of scans and shrink at both ends of the trace.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/runs/run_settings.h"

namespace banddesk::host::runs {

/// The trace above its baseline, which is the opening (least, then largest value in the window) of its
/// five-scan mean; never below 0.
std::vector<double> aboveBaseline(std::span<const std::int32_t> trace, int window);

void smooth(std::vector<double>& signal, Smoothing smoothing);

/// The first derivative, in RFU a scan, of the polynomial that fits the window around each scan best. A
/// window too small for the degree is widened.
std::vector<double> slope(std::span<const double> signal, int window, int degree);

}  // namespace banddesk::host::runs
