// How good the bins of a pool are: against the truth where it is known, and by the figures of the table.
// It makes no bins.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "bench/binning_rules.h"
#include "host/quality/table_quality.h"

namespace banddesk::bench {

/// Hubert's and Arabie's index over all peaks; each false peak is a class of its own.
double adjustedRandIndex(const Pool& pool, const BinNumbers& bins);

struct LocusShares {
  double split = 0;   // loci of which a tenth of the peaks, and at least two, lie outside their main bin
  double merged = 0;  // loci whose main bin is that of another locus too
};
/// Of all loci with at least two peaks. The main bin is the one with most of a locus' peaks, the first of
/// equal ones.
LocusShares locusShares(const Pool& pool, const BinNumbers& bins);

/// How well the replicates of a simulated case repeat, whatever the bins: over the loci that both have, by
/// how much their sizes differ (in nt), and of all cells of the loci that anybody has the share that differs.
struct Repeatability {
  double meanDifference = 0;
  double largestDifference = 0;
  double locusError = 0;
};
Repeatability repeatabilityOf(const Pool& pool, std::span<const host::ReplicatePair> replicates);

/// Neighbouring bins that could as well be one: together they are not wider than the maximum, and no sample
/// has fragments in both.
struct JoinableNeighbours {
  std::size_t pairs = 0;
  std::size_t partedReplicates =
      0;  // of them, where one has its fragment in the left bin and the other in the right
};
JoinableNeighbours joinableNeighbours(const Pool& pool, const BinNumbers& bins, double maxWidth,
                                      std::span<const host::ReplicatePair> replicates);

/// The Jaccard error of the pairs of replicates that fill a cell: its mean over them and its standard
/// deviation between them, as shares of 1; -1 where there are too few.
struct ReplicateError {
  double mean = -1;
  double deviation = -1;
};
ReplicateError replicateErrorOf(const host::TableQuality& quality);

host::TableQuality tableQuality(const Pool& pool, const BinNumbers& bins, std::size_t samples,
                                std::span<const host::ReplicatePair> replicates);

}  // namespace banddesk::bench
