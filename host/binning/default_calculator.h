// The bin calculator that the host uses when nobody asks for another. It only chooses; the rules stand with
// their calculators.
#pragma once

#include <memory>

#include "plugin/analysis/bin_calculator.h"

namespace banddesk::host {

struct BinningOptions {
  /// Bring the lanes of each dye into line first: bins are made of moved sizes, and tell those.
  bool alignLanes = false;
};

std::shared_ptr<BinCalculator> makeBinCalculator(const BinningOptions& options = {});

}  // namespace banddesk::host
