// What single bins and single samples of a table tell of its quality, the worst first: where a scientist
// looks before trusting the whole. Like the overall figures it reads the table as given.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "host/quality/table_quality.h"

namespace banddesk::host {

struct BinFigures {
  std::size_t bin = 0;  // its line in the table
  std::size_t filledCells = 0;
  std::size_t doubledCells = 0;  // with more than one fragment: two bands that the bin cannot tell apart
  double width = 0;              // nt
  Agreement replicates;          // over all pairs
};

struct SampleFigures {
  std::size_t sample = 0;  // its column in the table
  std::size_t filledCells = 0;
  std::size_t doubledCells = 0;
  double distance = 0;   // share of the bins in which it differs from another sample, on average
  Agreement replicates;  // over the pairs that it is part of
};

/// Worst first: bins in which replicates differ, then those with doubled cells, then those that one sample
/// alone fills.
std::vector<BinFigures> worstBins(const TableView& table, std::span<const ReplicatePair> replicates = {});

/// Worst first: samples that differ from their replicates, then those with doubled cells, then those farthest
/// from all others.
std::vector<SampleFigures> worstSamples(const TableView& table,
                                        std::span<const ReplicatePair> replicates = {});

}  // namespace banddesk::host
