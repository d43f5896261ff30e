// The bin calculator that the host uses when nobody asks for another. It only chooses; the rules stand with
// their calculators.
#pragma once

#include <memory>

#include "plugin/analysis/bin_calculator.h"

namespace banddesk::host {

std::shared_ptr<BinCalculator> makeBinCalculator();

}  // namespace banddesk::host
