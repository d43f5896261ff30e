// The bands of an analysis in a study file for the commands that calculate with them or write them for other
// programs, with the samples' groups.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "host/statistics/band_matrix.h"
#include "host/statistics/progress.h"

namespace CLI {
class App;
}

namespace banddesk::cli {

class Session;

enum class ExcludedBands { LeftOut, TakenIn };

// Bins and samples that are excluded are left out though they may show. Every sample must have a group where
// a file of groups is given; names in it that are no sample's are counted on standard output.
host::statistics::BandMatrix readBands(Session& session, ExcludedBands excluded,
                                       const std::optional<std::filesystem::path>& groups);

// What the commands that calculate have in common.
struct BandArguments {
  std::filesystem::path study;
  std::optional<std::string> name;
  std::optional<std::filesystem::path> groups;
  std::optional<std::filesystem::path> json;
};

void addGroupsOption(CLI::App& command, std::optional<std::filesystem::path>& groups);
// The study, --name and --json.
void addBandOptions(CLI::App& command, BandArguments& arguments);
host::statistics::BandMatrix openBands(const BandArguments& arguments);

}  // namespace banddesk::cli
