// The table of an analysis as plain values that outlive its page and may go to another thread: what pictures
// and exports of the desktop are made from.
#pragma once

#include <cstdint>
#include <vector>

#include "host/statistics/band_matrix.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

struct PlainBin {
  std::int32_t bin = 0;      // its number in the analysis, from 1
  std::size_t dye = 0;       // 0 to 3
  double low = 0, high = 0;  // of its fragments, nt
  friend bool operator==(const PlainBin&, const PlainBin&) = default;
};

struct PlainTable {
  statistics::BandMatrix bands;       // without groups
  std::vector<std::int32_t> results;  // the id of each sample's result
  std::vector<PlainBin> bins;         // of each locus
  std::vector<std::int32_t> counts;   // fragments, as `bands.cells`
  std::vector<float> heights;         // of the highest of them, RFU
  friend bool operator==(const PlainTable&, const PlainTable&) = default;
};

// Bins dye by dye by size and samples in the order of the results, however the table is sorted. What is
// hidden or excluded is left out, whether it shows or not. There may be no samples or no bins.
PlainTable plainTable(const AFLP& analysis, IAFLPResultsPage& page);

}  // namespace banddesk::host
