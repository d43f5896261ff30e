// From a run's traces to sized peaks: ladder, sizing curve, peaks and flags of one file or of a whole batch.
// Plain values in, plain values out; it stores nothing and knows no study.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/runs/ladder.h"
#include "host/runs/peaks.h"
#include "host/runs/run_edits.h"
#include "host/runs/run_file.h"
#include "host/runs/run_settings.h"
#include "host/runs/sizing_curve.h"
#include "host/runs/trace_codec.h"

namespace banddesk::host::runs {

struct ProcessedRun {
  RunFile run;
  LadderAssignment ladder;
  SizingCurve curve;        // empty when the ladder is not sized
  std::vector<Peak> peaks;  // of all dyes, the ladder's too, by channel and scan
  double typicalWidth = 0;  // scans at half height, of the ladder's peaks
  int window = 0;           // of the polynomial that found the peaks
  double heightFactor = 1;  // by which heights and areas were multiplied

  bool isSized() const { return ladder.quality != LadderQuality::NotSized; }
};

ProcessedRun processRun(RunFile run, const RunSettings& settings, const RunEdits& edits = {});

/// Sizes and flags the peaks of a run by a ladder that is given, such as the user's own.
ProcessedRun processRunWithLadder(RunFile run, const RunSettings& settings, LadderAssignment ladder);

struct RunOutcome {
  std::string path;
  std::optional<ProcessedRun> processed;
  std::vector<Bytes> traces;  // packed, parallel to the dyes, where asked for: those of `processed` are empty
  std::string error;          // why the file could not be read, without its name; empty when it was
};

/// Told how many files of how many are done, from one thread at a time. An exception from it ends the work.
using RunProgress = std::function<void(std::size_t done, std::size_t total)>;

/// Gives the run of a number; called once for each, from several threads. Throws RunError.
using RunLoader = std::function<RunFile(std::size_t number)>;

enum class TracesOut { Whole, Packed, None };

struct BatchOptions {
  std::size_t jobs = 0;                  // threads; 0: as many as the machine has
  TracesOut traces = TracesOut::Whole;   // how they are handed out
  std::span<const RunEdits> edits = {};  // of the runs by number; none: nothing was edited
};

/// Processes so many runs. In a run, the first files decide on the size standard, and capillaries with a good
/// ladder help those with a bad one. The result does not depend on the number of threads.
std::vector<RunOutcome> processRuns(std::size_t count, const RunLoader& load, const RunSettings& settings,
                                    const BatchOptions& options, const RunProgress& progress = {});

/// The same for files.
std::vector<RunOutcome> processRuns(std::span<const std::string> paths, const RunSettings& settings,
                                    std::size_t jobs = 0, const RunProgress& progress = {});

}  // namespace banddesk::host::runs
