// What reading peak tables gives: samples with their peaks by dye, and a report of what was read and left
// out. No study, no store: these are plain values.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/import/dye.h"
#include "host/runs/process_run.h"

namespace banddesk::host::import {

/// Parallel vectors in the order of the file: sizes in nt, heights in RFU.
struct DyePeaks {
  std::vector<double> sizes;
  std::vector<double> heights;
};

struct Sample {
  std::string name;
  std::string sourceFile;  // the path of the table it came from
  std::array<DyePeaks, dyeCount> dyes;

  DyePeaks& peaks(Dye dye) { return dyes[indexOf(dye)]; }
  const DyePeaks& peaks(Dye dye) const { return dyes[indexOf(dye)]; }
};

/// Rows left out for one reason.
struct LeftOut {
  std::string reason;
  std::size_t count = 0;
  std::vector<std::size_t> firstLines;   // up to five, 1-based
  std::vector<std::string> quotes = {};  // the first different cells for which they were, up to five
};

struct FileReport {
  std::filesystem::path file;
  std::uint64_t size = 0;  // bytes
  std::uint64_t hash = 0;  // of the content; 0 where nobody asked for it
  std::string form;        // such as "Peak Scanner combined table, tab-separated, UTF-8"
  std::size_t rows = 0;
  std::size_t samples = 0;
  std::array<std::size_t, dyeCount> peaks{};
  std::vector<LeftOut> leftOut;
  std::vector<std::string> notes;
};

/// The dye that looks like the size standard: nearly the same sizes in nearly every sample.
struct LadderProposal {
  Dye dye = Dye::R;
  std::size_t commonSizes = 0;  // sizes that nearly every sample has
  double shareOfPeaks = 0;      // of the dye's peaks, those at such sizes
  double spreadNt = 0;          // typical deviation from the common size
};

struct Report {
  std::vector<FileReport> files;
  std::string dyeNames;  // how names of dyes were read, in words; empty where there were none
  std::optional<LadderProposal> ladder;
};

/// A run of an instrument as a study keeps it.
struct ReadRun {
  runs::ProcessedRun processed;       // without its traces
  std::vector<runs::Bytes> traces;    // packed, parallel to its dyes
  std::optional<std::size_t> sample;  // its place in the table; none: it was not sized
};

struct RunDyeName {
  char letter = 0;
  std::string name;
};

struct PeakTable {
  std::vector<Sample> samples;
  Report report;
  std::vector<ReadRun> runs;        // where they are asked for
  std::vector<RunDyeName> runDyes;  // of the run with most of them, without its size standard's
};

}  // namespace banddesk::host::import
