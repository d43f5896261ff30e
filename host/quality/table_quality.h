// How good a finished table of bins and samples is, in figures: how the bins are filled, what they tell the
// samples apart by, and how well replicates agree. It reads and writes nothing, and judges the table as
// given: bins that should not count are left out by the caller.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/quality/replicates.h"

namespace banddesk::host {

struct BinExtent {
  double xMin = 0;  // nt
  double xMax = 0;
};

/// A table in place. `fragmentCounts` holds one line of `sampleCount` entries for each of `bins`, as the
/// array of the same name of an analysis does; a cell is filled when its count is not 0.
struct TableView {
  std::span<const std::int32_t> fragmentCounts;
  std::span<const BinExtent> bins;
  std::size_t sampleCount = 0;
};

/// Both and neither: cells in which the two of a pair agree. Rates of no cells have no value.
struct Agreement {
  std::size_t both = 0;
  std::size_t differing = 0;
  std::size_t neither = 0;

  /// Differing cells of all cells.
  std::optional<double> mismatchError() const;
  /// Differing cells of those that at least one of the two fills.
  std::optional<double> jaccardError() const;
  Agreement& operator+=(const Agreement& other);
};

/// Of one bin, by the counts of the two samples there.
Agreement agreementOf(std::int32_t first, std::int32_t second);

struct PairQuality {
  ReplicatePair samples;
  Agreement agreement;
};

struct BinQuality {
  std::size_t bin = 0;  // its line in the table
  Agreement agreement;  // over all pairs
};

/// Of the pairs that have a value, each pair counting alike.
struct MeanOfPairs {
  std::optional<double> mean;
  std::optional<double> deviation;  // the standard deviation of a sample: nothing below two pairs
};

MeanOfPairs meanOf(std::span<const double> values);

struct ReplicateQuality {
  MeanOfPairs jaccardError;
  Agreement overall;               // pooled: all cells of all pairs taken together
  std::vector<PairQuality> pairs;  // every pair given, also one that fills no cell; worst first
  std::vector<BinQuality> bins;    // every bin; worst first
};

struct TableQuality {
  std::size_t samples = 0;
  std::size_t bins = 0;
  std::size_t singleFragmentBins = 0;
  std::size_t fragments = 0;
  std::size_t filledCells = 0;
  std::optional<double> fragmentsPerFilledCell;  // 1 is ideal; nothing without a filled cell
  std::optional<double> meanWidth;               // nt, from the least to the largest size of a bin
  std::optional<double> largestWidth;            // nt
  /// Median over the samples of their mean Manhattan distance to the others, divided by the number of bins;
  /// nothing below two samples or without bins.
  std::optional<double> informationContent;
  std::optional<ReplicateQuality> replicates;  // when pairs were given
};

/// Throws std::invalid_argument when the table's parts do not fit each other or a pair names a sample beyond
/// it.
TableQuality qualityOf(const TableView& table, std::span<const ReplicatePair> replicates = {});

}  // namespace banddesk::host
