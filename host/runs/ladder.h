// Which peaks of a run are which fragments of its size standard, and how far that can be trusted. A wrong
// assignment shifts every size of a sample, so doubt is always said.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/runs/ladder_search.h"
#include "host/runs/peaks.h"
#include "host/runs/run_settings.h"
#include "host/runs/sizing_curve.h"

namespace banddesk::host::runs {

enum class LadderQuality { Sized, LookAtIt, NotSized };

struct LadderPeak {
  double size = 0;  // nt
  int scan = 0;
  double height = 0;        // RFU
  double residual = 0;      // nt, from the size that the other peaks give it; 0 at both ends
  bool takesPart = true;    // in the sizing; unreliable and doubtful fragments are found and shown only
  bool isDoubtful = false;  // another peak may be the one
};

struct LadderAssignment {
  int channel = 0;  // of the ladder's dye; 0: none
  SizeStandard standard;
  std::vector<LadderPeak> peaks;  // ascending
  std::vector<double> missing;    // sizes of the standard that were not found
  LadderQuality quality = LadderQuality::NotSized;
  std::vector<std::string> reasons;   // why it is not simply sized, for the user
  double score = 0;                   // logarithm of the odds against chance
  double medianResidual = 0;          // nt
  double worstResidual = 0;           // nt
  double medianHeight = 0;            // RFU
  bool isByOtherCapillaries = false;  // the run's other ladders said where its peaks are
  bool isByHand = false;

  std::vector<LadderPoint> points() const;  // that take part
  const LadderPeak* peakOf(double size) const;
};

/// The peaks of a dye that may be a ladder's, the tallest if there are many. `others` are the peaks of the
/// other dyes, of which these may be shadows.
std::vector<LadderCandidate> ladderCandidates(std::span<const Peak> peaks, std::span<const Peak> others,
                                              double typicalWidth);

/// The best assignment of one list. Its quality is judged by itself.
LadderAssignment assignLadder(std::span<const LadderCandidate> candidates, const SizeStandard& standard,
                              bool usesUnreliable);

/// The best of several lists, of equal ones that of which the operator's word speaks, or the longer one.
/// Lists that fit nearly as well but differently are a reason for doubt.
LadderAssignment assignBestLadder(std::span<const LadderCandidate> candidates,
                                  std::span<const SizeStandard> standards, std::string_view operatorsWord,
                                  bool usesUnreliable);

/// An assignment that the user has made: peaks by size and scan. Throws std::invalid_argument when scans and
/// sizes do not ascend together.
LadderAssignment ladderByHand(const SizeStandard& standard, int channel, std::vector<LadderPeak> peaks,
                              bool usesUnreliable);

/// Places the standard's sizes where other capillaries of the same run have theirs, shifted and stretched to
/// fit. Nothing when too few of them fit. `neighbour` is an assignment of the same standard.
std::optional<LadderAssignment> assignLikeNeighbour(std::span<const LadderCandidate> candidates,
                                                    const LadderAssignment& neighbour, bool usesUnreliable);

/// Where sizes are missing within a ladder and other peaks as high as it abound, it is to be looked at.
void doubtAmongStrangers(std::span<const LadderCandidate> candidates, LadderAssignment& ladder);

/// Whether both place the sizes that they share on the same peaks.
bool agree(const LadderAssignment& a, const LadderAssignment& b);

}  // namespace banddesk::host::runs
