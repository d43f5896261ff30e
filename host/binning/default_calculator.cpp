#include "host/binning/default_calculator.h"

#include <utility>

namespace banddesk::host {

std::shared_ptr<PartitionBinCalculator> makeBinCalculator(CalculatorSettings settings) {
  auto calculator = std::make_shared<PartitionBinCalculator>();
  calculator->setSettings(std::move(settings));
  return calculator;
}

}  // namespace banddesk::host
