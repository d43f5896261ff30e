#include "host/binning/default_calculator.h"

#include "host/binning/gap_bin_calculator.h"

namespace banddesk::host {

std::shared_ptr<BinCalculator> makeBinCalculator() { return std::make_shared<GapBinCalculator>(); }

}  // namespace banddesk::host
