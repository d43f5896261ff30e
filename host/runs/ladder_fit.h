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
  std::vector<std::size_t> doubted;  // expected sizes for which two peaks are nearly as likely, or run as one
  double score = -std::numeric_limits<double>::infinity();  // logarithm of the odds against chance
  double spread = 0;                                        // nt, of the matches around a smooth curve
};

LadderFit fitLadder(std::span<const LadderCandidate> candidates, std::span<const ExpectedSize> sizes,
                    const LadderPath& proposal);

}  // namespace banddesk::host::runs
