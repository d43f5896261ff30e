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

host::TableQuality tableQuality(const Pool& pool, const BinNumbers& bins, std::size_t samples,
                                std::span<const host::ReplicatePair> replicates);

}  // namespace banddesk::bench
