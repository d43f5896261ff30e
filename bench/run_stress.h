// Ladders of simulated runs in which peaks are missing and false ones stand between them: how often they are
// found, how often doubt is said, and how often they are wrong without a word.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/runs/size_standard.h"
#include "host/simulation/traces.h"

namespace banddesk::bench {

struct Stress {
  std::string name;
  std::size_t falsePeaks = 0, missing = 0;
  double scansPerNt = 9;
};

std::vector<Stress> stresses();

struct StressFigures {
  std::size_t runs = 0;
  std::size_t right = 0;         // sized, every peak the right one
  std::size_t rightFlagged = 0;  // the right peaks, but to be looked at
  std::size_t wrongFlagged = 0;  // wrong or none, and said so
  std::size_t silentlyWrong = 0;
};

/// As many capillaries, each by itself, or as one run whose capillaries help each other.
StressFigures stressFigures(const Stress& stress, const host::runs::SizeStandard& standard, std::size_t runs,
                            bool isOneRun, std::uint64_t seed = 1);

}  // namespace banddesk::bench
