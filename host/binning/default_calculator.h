// The bin calculator that the host uses when nobody asks for another. It only chooses; the rules stand with
// their calculators.
#pragma once

#include <memory>

#include "host/binning/partition_bin_calculator.h"

namespace banddesk::host {

std::shared_ptr<PartitionBinCalculator> makeBinCalculator(CalculatorSettings settings = {});

}  // namespace banddesk::host
