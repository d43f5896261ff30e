// Simulates the raw traces of a capillary whose truth is known: which peak is which fragment of the ladder,
// and where the sample's fragments lie. For tests, figures and examples; it imitates what an instrument
// records, not its physics.
#pragma once

#include <cstdint>
#include <vector>

namespace banddesk::host::simulation {

struct TraceSettings {
  std::uint64_t seed = 1;
  std::vector<double> ladderSizes;    // nt
  std::vector<double> strayingSizes;  // of them, those that run some nt before their length, as 250 does
  std::vector<std::vector<double>>
      dyes;  // sizes of the sample's fragments by dye, the ladder's dye not among them
  std::vector<std::vector<double>> heights;  // RFU of those, parallel and by ascending size; none: drawn

  double scansPerNt = 9;
  double firstScan = 900;      // where 0 nt would lie
  double bend = 0.08;          // relative change of the scans a nt over 500 nt, drawn between -bend and +bend
  double jitterNt = 0.2;       // of single fragments around the curve
  double widthNt = 0.45;       // of a peak at half height
  std::size_t missing = 0;     // ladder fragments left out
  std::size_t falsePeaks = 0;  // further peaks in the ladder's dye, as high as the ladder's

  double ladderHeight = 900;  // RFU, the median
  double sampleHeight = 1500;
  double heightSigma = 0.25;  // of the logarithm
  double noise = 3;           // RFU
  double drift = 200;         // RFU, of the baseline over the run
  double pullUp = 0;          // share of each sample peak that shows in the ladder's dye
  double saturation = 32767;  // RFU
};

struct TrueFragment {
  double size = 0;  // nt
  double scan = 0;
  double height = 0;  // RFU
};

struct SimulatedTraces {
  std::vector<std::vector<std::int32_t>> dyes;       // of the sample, then the ladder's
  std::vector<std::vector<TrueFragment>> fragments;  // of the sample, by dye, ascending
  std::vector<TrueFragment> ladder;                  // ascending, without the missing ones
  std::vector<std::int32_t> saturatedScans;
};

/// The same traces for the same settings on every machine.
SimulatedTraces simulateTraces(const TraceSettings& settings);

}  // namespace banddesk::host::simulation
