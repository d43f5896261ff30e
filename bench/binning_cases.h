// The cases on which rules of binning are compared: a grid of simulated studies whose truth is known, and
// real tables where they are at hand. The grid was fixed before the host's rule was tuned.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/binning_rules.h"
#include "host/binning/lane_alignment.h"
#include "host/quality/replicates.h"

namespace banddesk::bench {

struct Case {
  std::string name;
  Pool pool;
  std::size_t samples = 0;
  std::vector<host::ReplicatePair> replicates;
};

/// Standard deviations in nt, in the middle of the size range, of what is measured about what is true: the
/// peak's own noise and the lane's drift, in equal parts. At 500 nt it is 1.4 times as much, at 50 nt 0.6
/// times.
inline constexpr double kNoises[] = {0.05, 0.10, 0.15, 0.20, 0.25, 0.30, 0.35};
/// Loci of a dye between 50 and 500 nt. A crowded dye of real AFLP has about 360, a thin one 90.
inline constexpr std::size_t kDensities[] = {90, 180, 360, 720};
inline constexpr std::size_t kRealDensity = 360;
inline constexpr std::uint64_t kSeeds[] = {101, 202, 303, 404, 505};  // others may be asked for, as a trial

/// The width that a user would choose who knows the noise: three standard deviations to each side, to a
/// tenth, and nobody goes below half a nucleotide.
double usualWidth(double noise);

/// As many samples, and a replicate of each of the first quarter.
inline constexpr std::size_t kUsualSamples = 48;
Case simulatedCase(double noise, std::size_t loci, std::uint64_t seed, std::size_t samples = kUsualSamples);

/// How the same study comes out of real runs: two plates and the replicates on a third, each with its shift;
/// a curve for each lane; noise with heavy tails; weak loci that come and go with the height of their peaks;
/// split peaks and stutter; three populations with loci, and length variants of loci, of their own. What it
/// is scaled by is what two runs of a sample differ by, in nt, as a mean over their common fragments:
/// published is 0.08, 0.66 at most, with 2 to 5 % of the cells of a locus differing.
struct RealConditions {
  double difference = 0.08;
  std::size_t loci = kRealDensity;
  int sizeDecimals = 2;
};
inline constexpr double kDifferences[] = {0.04, 0.08, 0.16, 0.3};
inline constexpr std::size_t kRealDensities[] = {90, 180, 360};
inline constexpr int kSizeDecimals[] = {2, 1};
/// Nobody knows the width that fits a run beforehand: all are tried that users choose.
inline constexpr double kRealWidths[] = {0.5, 0.75, 1, 1.5, 2};
Case realisticCase(const RealConditions& conditions, std::uint64_t seed);

/// The same case with its lanes brought into line, and how far that moved the sizes.
Case alignedCase(const Case& one, host::AlignmentFigures& figures);

/// One case for each dye of the real tables under the folder, sizes from 50 to 500 nt and heights from 50
/// RFU, the replicates told by the ending that each table uses.
std::vector<Case> realCases(const std::filesystem::path& shared);

}  // namespace banddesk::bench
