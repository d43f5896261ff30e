#include "host/binning/default_calculator.h"

#include "host/binning/partition_bin_calculator.h"

namespace banddesk::host {

std::shared_ptr<BinCalculator> makeBinCalculator() { return std::make_shared<PartitionBinCalculator>(); }

}  // namespace banddesk::host
