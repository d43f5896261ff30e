// Decisions about the bins of one run taken to the bins of another one over the same results: each goes to the
// bin of the same dye that holds most of the fragments of the old one.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/store/snapshot.h"
#include "plugin/analysis/bin_calculator.h"

namespace banddesk::host {

struct DecisionTransfer {
  std::vector<BinSnapshot> decisions;  // about the new bins
  std::vector<std::string> homeless;   // keys of old bins of which no new one holds a fragment
};

struct RunParameters {
  double maxBinWidth = 0;  // nt
  double yThreshold = 0;   // RFU
};

// A calculator as the analysis has it.
using CalculatorMaker = std::function<std::shared_ptr<BinCalculator>(const AFLP& analysis)>;

// Both runs are calculated anew, dye by dye. The analysis holds the results; where two old bins come to one
// new bin, the first decision counts.
DecisionTransfer transferDecisions(const std::vector<BinSnapshot>& decisions, const RunParameters& before,
                                   const RunParameters& now, const AFLP& analysis,
                                   const CalculatorMaker& makeCalculator);

}  // namespace banddesk::host
