// Runs of instruments as samples of a peak table: their peaks by dye, with the size standard's dye left out.
// How traces become peaks is the runs module's work; here its results are taken, counted and reported.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "host/import/peak_table.h"
#include "host/runs/process_run.h"

namespace banddesk::host::import {

/// By content, or by an ending that only runs have: then the reason why it is none can be told.
bool isRunFile(const std::filesystem::path& file);

struct RunOptions {
  runs::RunSettings settings = {};
  std::size_t jobs = 0;              // threads; 0: as many as the machine has
  bool leavesOutUnreadable = false;  // files that cannot be read are noted instead of ending the import
  bool keepsRuns = false;            // runs are handed out beside their samples, with their traces
};

/// Reads and analyses the files and appends their samples, and the runs if they are to be kept, to the table;
/// a run that could not be sized gives no sample and is noted. `reports` are those of the files, in their
/// order, and stand in the table already.
/// Throws ImportError when a file cannot be read, unless such files are to be left out.
void readRuns(std::span<const std::filesystem::path> files, const RunOptions& options,
              std::span<FileReport* const> reports, PeakTable& table, const runs::RunProgress& progress);

}  // namespace banddesk::host::import
