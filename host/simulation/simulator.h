// Simulates AFLP runs whose truth is known: which locus each peak came from. For tests, benchmarks and trials
// of the binning; it imitates what a fragment table shows, not the chemistry.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace banddesk::host::simulation {

struct Settings {
  std::uint64_t seed = 1;
  std::size_t samples = 48;  // without replicates
  std::size_t replicates =
      0;                 // so many of the first samples are run a second time, their names with an added "b"
  std::size_t dyes = 3;  // 1 to 4: the first of B, G, Y, R, O that are not the ladder's
  std::optional<char> ladderDye = 'R';  // the size standard's peaks are made too; nothing: none
  std::size_t lociPerDye = 120;
  std::size_t peaksPerSample =
      0;  // when not 0: loci enough for about so many in each dye of a sample, before near ones merge

  double shortestNt = 50;
  double longestNt = 500;
  double sizeScaleNt = 150;      // loci thin out by e in this many nt: more short ones than long ones
  double homoplasyShare = 0.05;  // of the loci, those made nearly as long as another
  double homoplasyNt = 0.4;      // and by how much at most they differ from it
  double resolutionNt = 0.5;     // peaks of a sample nearer than this come out as the higher one

  double sigmaAt100Nt = 0.06;  // sizing noise of a peak of 100 nt
  double sigmaGrowth = 0.25;   // relative growth of the noise for every further 100 nt
  double laneDriftNt = 0.08;   // typical shift of a whole sample, changing smoothly with size

  // What real runs show beside that; by default nothing of it.
  std::size_t tailDegrees =
      0;  // the noise has Student's tails of so many degrees of freedom; 0: it is normal
  std::size_t lanesPerRun = 0;  // after so many lanes a new run begins, with a shift of its own; 0: one run
  double runShiftNt = 0;        // typical shift of a run in the middle of the size range
  double runSlopeNt = 0;        // and how much more or less it is at the ends
  double laneCurveNt = 0;       // typical height of the curve of a single lane
  std::size_t laneCurveKnots = 7;
  double splitRate = 0;  // chance that a peak comes out as two, from the resolution to splitNt apart
  double splitNt = 0.9;
  double stutterShare = 0;     // of the loci, those with a shadow one nucleotide shorter
  double detectionRfu = 0;     // lower peaks are not seen
  double laneHeightSigma = 0;  // of the logarithm, between lanes: how much was loaded

  // Samples come from populations in turn.
  std::size_t populations = 1;
  double privateShare = 0;  // of the loci, those that some of the populations lack
  double variantShare =
      0;  // of the loci, length variants of another, which only the populations without that have

  double frequencyAlpha = 0.8;  // shape of the loci's frequencies, read as of a beta distribution
  double frequencyBeta = 1.2;
  double fixedShare = 0.1;     // loci that every sample has
  double lostRate = 0.02;      // chance that a present peak is missed
  double spuriousRate = 0.02;  // false peaks for each true one

  double medianHeightRfu = 600;
  double locusHeightSigma = 0.7;  // of the logarithm, between loci
  double peakHeightSigma = 0.3;   // of the logarithm, between the samples of a locus
  bool roundSizes = true;
  int sizeDecimals = 2;      // 0 to 6, where sizes are rounded
  bool roundHeights = true;  // to whole RFU
  bool runSuffix = true;     // names end in a well and time stamp: ".A01_12345678AB"
};

inline constexpr std::int32_t spuriousLocus = -1;

struct Locus {
  double sizeNt = 0;
  double frequency = 0;
  double logHeight = 0;                    // natural logarithm of its median height
  std::uint32_t populations = UINT32_MAX;  // a bit for each that may have it
  std::optional<std::size_t>
      shadowOf;  // the locus whose stutter it is, by index: its peaks follow that one's
};

struct Peak {
  double size = 0;
  double height = 0;
  std::int32_t locus = spuriousLocus;  // index into the dye's loci
};

struct SimulatedRun {
  std::string name;
  std::size_t genotype = 0;             // equal for a sample and its replicate
  std::vector<std::vector<Peak>> dyes;  // parallel to SimulatedRuns::dyes, by ascending size
  std::vector<Peak> ladder;
};

struct SimulatedRuns {
  std::string dyes;  // letters
  std::optional<char> ladderDye;
  std::vector<std::vector<Locus>> loci;  // by dye, by ascending size
  std::vector<SimulatedRun> runs;
};

/// The same runs for the same settings on every machine. Throws std::invalid_argument for settings that make
/// no sense.
SimulatedRuns simulate(const Settings& settings);

}  // namespace banddesk::host::simulation
