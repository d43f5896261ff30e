// What the user asks of an analysis on the command line, as typed; the pages check it.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/scoring_options.h"

namespace banddesk::cli {

enum class Cells { Count = 0, Presence = 1, Height = 2 };

struct AnalysisRequest {
  std::string maxBinWidth = "1.00";         // nt
  std::string yThreshold = "0";             // RFU
  std::optional<std::array<bool, 4>> dyes;  // which slots take part; absent: those with fragments
  Cells cells = Cells::Count;
  bool keepFullBins = false;
  bool keepEmptySamples = false;
  bool showExcluded = false;
  bool transposed = false;                   // samples in rows
  std::vector<std::string> excludedSamples;  // by name
  std::vector<std::string> excludedBins;     // "D1-100.25", or "D1-100" where one bin has that number
  ScoringChanges scoring;
  std::optional<std::string> sortBy;  // a column's header, key or sample name; ":desc" behind it
};

// A file that is made already and only waits to be written.
struct ReadyOutput {
  std::filesystem::path path;
  std::string content;
};

struct Outputs {
  std::optional<std::filesystem::path> csv;
  std::optional<std::filesystem::path> nts;
  std::optional<std::filesystem::path> matrix;
  Cells matrixCells = Cells::Presence;
  std::optional<std::filesystem::path> json;
  std::optional<std::filesystem::path> xlsx;
  std::vector<ReadyOutput> ready;
};

}  // namespace banddesk::cli
