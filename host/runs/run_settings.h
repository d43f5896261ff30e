// How runs are analysed: what a user can set, with the values that commercial programs document as theirs.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/runs/run_file.h"
#include "host/runs/size_standard.h"

namespace banddesk::host::runs {

enum class Smoothing { None, Light, Heavy };
enum class SizeMethod { LocalSouthern, ThirdOrder };
enum class OutsideLadder { NoSize, StraightLine };
enum class Normalisation { AsTheFileSays, Always, Never };

struct PeakSettings {
  int baselineWindow = 51;  // scans
  Smoothing smoothing = Smoothing::None;
  int polynomialWindow = 15;  // scans; it grows with the peaks' width where an instrument has wide ones
  int polynomialDegree = 3;
  bool doesWindowFollowWidth = true;
  std::array<double, kMostDyes> leastHeight{50, 50, 50, 50, 50, 50};  // RFU as heights are shown, by channel
  double leastWidth = 2;                                              // scans at half height
  double leastSize = 0;                                               // nt; both ends belong to the range
  double largestSize = 100'000;
  bool keepsUnsized = true;   // peaks without a size are kept in the list of peaks
  double pullUpRatio = 0.05;  // a peak not higher than this share of another dye's at its scan is its shadow
  int pullUpScans = 1;
  double broadNt = 1.5;
};

struct LadderSettings {
  /// The list to use; nothing: the best of the lists.
  std::optional<SizeStandard> standard;
  std::vector<SizeStandard> lists = knownStandards();
  std::optional<int> channel;   // of the ladder's dye; nothing: found
  bool usesUnreliable = false;  // 250 and 340 take part in the sizing
  double leastHeight = 50;      // RFU
};

struct RunSettings {
  PeakSettings peaks;
  LadderSettings ladder;
  SizeMethod method = SizeMethod::LocalSouthern;
  OutsideLadder outside = OutsideLadder::NoSize;
  Normalisation normalisation = Normalisation::AsTheFileSays;
};

}  // namespace banddesk::host::runs
