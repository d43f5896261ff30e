// Compares the analysis of real runs with the tables that other programs made of them: ladder, sizes, peaks,
// heights. Figures only; what they should be is for who prints or asserts them.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/run_tables.h"
#include "host/runs/process_run.h"

namespace banddesk::bench {

/// A folder of real runs and how the other program was set when it made its table.
struct OtherProgram {
  std::string folder;
  host::runs::RunSettings settings;
  std::vector<int> channels;           // that its table is complete for
  double largestLadderSize = 100'000;  // nt; it drew straight lines from there on
};

std::vector<OtherProgram> otherPrograms();

struct RunFigures {
  std::size_t files = 0;
  std::size_t sized = 0, toLookAt = 0;
  std::size_t laddersRight = 0, laddersWrong = 0;  // wrong only where it was called sized
  std::vector<double> sizeErrors;                  // nt, at the other's scan with its list, inside the ladder
  std::vector<double> ownSizeErrors;               // nt, end to end, of matched peaks inside the ladder
  std::size_t wanted = 0, found = 0, more = 0;     // peaks of at least 1.5 times the least height
  std::size_t matched = 0, sameScan = 0;           // of all matched ones
  std::vector<double> heightErrors;                // relative, of matched ones inside the ladder
  std::vector<std::string> details;                // files to look at and what is wrong
};

/// All files of the folder for which the other program has peaks, each by itself.
RunFigures figuresOf(const OtherProgram& other, const std::filesystem::path& runs, bool withResults);

/// The value below which so large a share of them lie; 0 of none.
double quantile(std::vector<double> values, double share);
double shareBelow(const std::vector<double>& values, double limit);

}  // namespace banddesk::bench
