// The studies on which the road is measured: simulated runs of a given size, written as an instrument's
// table.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace banddesk::bench {

struct StudySize {
  std::string name;
  std::size_t samples;
  std::size_t peaks;  // of each dye of a sample, about
  bool isSkewed = false;
  bool isJudged = false;  // the limits are made for it; for the others they are a hint
};

/// One dye has nine tenths of the fragments, and the first sample a hundred times the peaks of the others.
inline constexpr std::size_t kCrowdedSample = 100;

/// Writes the study's peak table, always the same for the same size.
void writeStudyTable(const std::filesystem::path& file, const StudySize& size);

}  // namespace banddesk::bench
