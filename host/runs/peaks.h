// Finds the peaks of one trace and tells their place, height, area and width in scans. Sizes and flags that
// need other dyes or a ladder are added by process_run.h.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "host/runs/run_settings.h"

namespace banddesk::host::runs {

struct Peak {
  int channel = 0;
  int scan = 0;  // of the highest value; whole, so that sizes equal those of other programs
  int begin = 0;
  int end = 0;                                             // both belong to the peak
  double height = 0;                                       // RFU above the baseline
  double area = 0;                                         // RFU x scans
  double width = 0;                                        // scans at half height
  double size = std::numeric_limits<double>::quiet_NaN();  // nt; none: the peak has no size
  bool isOutsideLadder = false;  // its size comes from a straight line beyond the ladder
  bool isOffScale = false;
  bool isBroad = false;
  bool isPullUp = false;
  bool isDouble = false;  // a second top stands within it: two fragments that ran nearly alike

  bool hasSize() const { return size == size; }
};

/// By scan. `window` is that of the polynomial in scans.
std::vector<Peak> findPeaks(std::span<const double> signal, const PeakSettings& settings, int window,
                            double leastHeight);

/// The typical width at half height of the tallest peaks, in scans, however ragged their tops are; 0 without
/// any of at least `leastHeight`.
double typicalWidth(std::span<const double> signal, double leastHeight);

/// The polynomial's window for peaks so wide: the one set, or wider for wide peaks.
int windowFor(double width, const PeakSettings& settings);

}  // namespace banddesk::host::runs
