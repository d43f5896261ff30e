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

// What is made of the bands: groups from a file instead of the study's, and replicates made one line.
struct BandOptions {
  std::optional<std::filesystem::path> groups;
  std::optional<std::string> replicates;  // a pattern or a file; absent: as the analysis or the study says
  std::optional<std::string> consensus;   // as parseConsensus reads it; absent: a line for each sample
};

// Bins and samples that are excluded are left out though they may show. Every sample must have a group where
// a file of groups is given; names in it that are no sample's are counted on standard output.
host::statistics::BandMatrix readBands(Session& session, ExcludedBands excluded, const BandOptions& options);

// Presence as a tab-separated table, a line a sample; "?" is a band that is missing.
std::string matrixText(const host::statistics::BandMatrix& bands);

// What the commands that calculate have in common.
struct BandArguments : BandOptions {
  std::filesystem::path study;
  std::optional<std::string> name;
  std::optional<std::filesystem::path> json;
};

// --replicates and --consensus.
void addIndividualOptions(CLI::App& command, BandOptions& options);

void addGroupsOption(CLI::App& command, std::optional<std::filesystem::path>& groups);
// The study, --name, --json and those of individuals.
void addBandOptions(CLI::App& command, BandArguments& arguments);
// Of an analysis, or of a joined table of that name.
host::statistics::BandMatrix openBands(const BandArguments& arguments);
host::statistics::BandMatrix openBands(const std::filesystem::path& study,
                                       const std::optional<std::string>& name, ExcludedBands excluded,
                                       const BandOptions& options);

}  // namespace banddesk::cli
