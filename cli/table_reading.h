// The bin information and the samples of a finished table, read through the logical table: what the summary
// and the JSON report tell.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/session.h"
#include "host/framework/finished_table.h"

namespace banddesk::cli {

struct BinReading {
  std::int32_t bin = 0;  // its number in the analysis, from 1
  std::int32_t row = 0;
  std::int32_t dye = 0;  // slot
  std::int32_t number = 0;
  std::string key;       // dye and mean size: "D1-100.25"
  std::string meanText;  // in full precision
  std::int32_t samples = 0;
  std::int32_t fragments = 0;
  double minSize = 0, maxSize = 0, meanSize = 0, sizeVariance = 0;  // nt
  double meanHeight = 0;                                            // RFU
  host::BinMark mark = host::BinMark::None;
  bool hidden = false;
};

struct SampleReading {
  std::string key;
  std::string name;
  std::int32_t column = 0;  // logical
  bool excluded = false, filterExcluded = false, hidden = false;
};

std::vector<BinReading> readBins(const Session& session);        // in the order of the rows
std::vector<SampleReading> readSamples(const Session& session);  // in the order of the results

}  // namespace banddesk::cli
