// Finds in a list of peaks those that may be the fragments of a size standard, by the spacing that the
// standard's sizes ask for. It proposes; which proposal is right, and how sure that is, is for ladder_fit.h.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace banddesk::host::runs {

struct LadderCandidate {
  double scan = 0;
  double height = 0;         // RFU, above 0
  double width = 0;          // scans at half height; 0 where unknown
  bool isSuspect = false;    // looks like the shadow of another dye's peak
  bool isSatellite = false;  // stands at the foot of a much taller peak: taken only where nothing else fits
  bool isDouble = false;
};

struct ExpectedSize {
  double size = 0;      // nt, as the standard lists it
  double apparent = 0;  // nt, where it usually runs
  double jitter = 0;    // nt, how far it strays from there
};

struct LadderMatch {
  std::size_t size = 0;       // index into the expected sizes
  std::size_t candidate = 0;  // index into the candidates
  friend bool operator==(const LadderMatch&, const LadderMatch&) = default;
};

using LadderPath = std::vector<LadderMatch>;  // both indices ascend

/// Up to `most` paths, the best first, that differ from each other in more than a third of their matches.
/// Satellites are left out. Candidates by ascending scan. Time grows with the third power of their number;
/// give it at most some 70 that are none.
std::vector<LadderPath> findLadderPaths(std::span<const LadderCandidate> candidates,
                                        std::span<const ExpectedSize> sizes, std::size_t most);

}  // namespace banddesk::host::runs
