// The peak tables that other programs made of real runs, where they are at hand, and copies of those runs
// without the results that a program left in the file itself. For figures and tests; copied into nothing.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace banddesk::bench {

struct OtherPeak {
  int channel = 0;
  int scan = 0;
  std::optional<double> size;  // nt
  double height = 0;
  std::optional<double> ladderSize;  // nt, when the program used the peak as that fragment
};

/// By file name. Throws std::runtime_error when the table cannot be read.
std::map<std::string, std::vector<OtherPeak>> readOtherPeaks(const std::filesystem::path& table);

/// The folder of the real runs, beside the source tree or where BANDDESK_SHARED points; empty when it is
/// absent.
std::filesystem::path realRuns();

std::string bytesOf(const std::filesystem::path& file);

/// The bytes of a run with the tags of results (peaks, map of sizes) renamed, so that nothing can read them.
std::string withoutResults(std::string bytes);

}  // namespace banddesk::bench
