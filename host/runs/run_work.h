// The steps of processing one run, apart from each other, so that a batch can look at other capillaries
// between them. For process_run.h; not for callers outside.
#pragma once

#include <string>
#include <vector>

#include "host/runs/process_run.h"

namespace banddesk::host::runs {

class RunWork {
 public:
  RunWork(RunFile run, const RunSettings& settings, RunEdits edits = {});

  /// The ladder's dye and list by the run itself. With `known`, a list that the run's first files agreed on,
  /// the others are tried only when it does not fit.
  void findLadder(const SizeStandard* known = nullptr);
  void setLadder(LadderAssignment ladder);
  /// Takes another assignment when the neighbours' ladders speak for it clearly.
  void askNeighbours(std::span<const LadderAssignment* const> neighbours);
  /// Finds, sizes and flags all peaks. The work is done then.
  ProcessedRun finish();

  const LadderAssignment& ladder() const { return out_.ladder; }
  /// Equal for files whose ladders should look alike.
  std::string group() const;

 private:
  const RunDye& dyeOf(int channel) const;
  std::vector<int> ladderChannels() const;
  bool isLadderLikely(int channel) const;
  std::vector<LadderCandidate> candidatesOf(int channel) const;
  LadderAssignment assignIn(int channel, const SizeStandard* known) const;
  LadderAssignment bestOfLists(const std::vector<LadderCandidate>& candidates, const RunDye& dye) const;
  std::vector<Peak> peaksOf(const RunDye& dye, double leastHeight, int window) const;
  std::vector<double> signalOf(const RunDye& dye) const;
  void applyLabels();
  std::vector<Peak> editedPeaksOf(const RunDye& dye) const;
  void measureWidth();
  void findHeightFactor();
  void findAllPeaks();
  void sizePeaks();
  void flagPeaks();

  ProcessedRun out_;
  const RunSettings& settings_;
  RunEdits edits_;
};

}  // namespace banddesk::host::runs
