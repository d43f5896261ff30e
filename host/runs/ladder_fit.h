// Makes a proposal for a ladder good: looks for missing sizes where the others say they should be, drops what
// lies elsewhere, and scores the result as evidence against chance. It sizes nothing.
#pragma once

#include <cstddef>
#include <limits>
#include <span>
#include <vector>

#include "host/runs/ladder_search.h"

namespace banddesk::host::runs {

struct LadderFit {
  LadderPath matches;
  std::vector<double> residuals;     // nt, by match: from where the other matches predict it
  std::vector<std::size_t> doubted;  // indices of expected sizes for which two peaks are nearly as likely
  double score = -std::numeric_limits<double>::infinity();  // logarithm of the odds against chance
  double spread = 0;                                        // nt, of the matches around a smooth curve
};

/// Where a size should lie by other knowledge than this ladder's own peaks, such as another capillary's.
struct LadderPrediction {
  std::vector<double> scans;  // by expected size
  double spread = 0;          // nt
};

LadderFit fitLadder(std::span<const LadderCandidate> candidates, std::span<const ExpectedSize> sizes,
                    const LadderPath& proposal);

}  // namespace banddesk::host::runs
