// What a user has changed by hand in one run: peaks added and taken away, and which scan is which size of the
// standard. Kept apart from what the program finds, so that it can be applied again to whatever is found
// under other settings.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "host/runs/ladder.h"

namespace banddesk::host::runs {

struct PeakEdit {
  int channel = 0;
  int scan = 0;
  bool isAdded = false;  // else the peak that reaches over the scan is taken away
  friend bool operator==(const PeakEdit&, const PeakEdit&) = default;
};

struct LadderLabel {
  double size = 0;          // nt, of the standard
  std::optional<int> scan;  // none: the size takes no part
  friend bool operator==(const LadderLabel&, const LadderLabel&) = default;
};

struct RunEdits {
  std::vector<PeakEdit> peaks;
  std::vector<LadderLabel> labels;

  bool isEmpty() const { return peaks.empty() && labels.empty(); }
  friend bool operator==(const RunEdits&, const RunEdits&) = default;
};

/// The assignment with the user's labels in place of its own; labels of sizes that the standard does not have
/// are left out. `signal` is that of the ladder's dye. Where labels and peaks do not ascend together, the
/// assignment stays as it was found and is to be looked at.
LadderAssignment withLabels(LadderAssignment found, std::span<const LadderLabel> labels,
                            std::span<const double> signal, bool usesUnreliable);

/// Takes peaks of one dye away and adds others, by scan. An added peak reaches as far as one that was found
/// there with no least height, or over its scan alone.
void applyEdits(std::span<const PeakEdit> edits, int channel, std::span<const Peak> everyPeak,
                std::span<const double> signal, std::vector<Peak>& peaks);

}  // namespace banddesk::host::runs
