#include "host/binning/default_calculator.h"

#include "host/binning/partition_bin_calculator.h"

namespace banddesk::host {

std::shared_ptr<BinCalculator> makeBinCalculator(const BinningOptions& options) {
  auto calculator = std::make_shared<PartitionBinCalculator>();
  calculator->setAlignsLanes(options.alignLanes);
  return calculator;
}

}  // namespace banddesk::host
