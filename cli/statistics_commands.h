// `banddesk distances`, `pcoa`, `tree` and `diversity`: statistics of an analysis in a study file, as text on
// standard output, as JSON, and as pictures. What is excluded or hidden does not count.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>

#include "cli/band_table.h"
#include "cli/study_commands.h"
#include "host/statistics/bootstrap.h"
#include "host/statistics/ordination.h"

namespace banddesk::cli {

struct DistancesArguments : BandArguments {
  host::statistics::Measure measure = host::statistics::Measure::Jaccard;
  std::optional<std::filesystem::path> phylip;
};

struct PcoaArguments : BandArguments {
  host::statistics::Measure measure = host::statistics::Measure::Jaccard;
  host::statistics::Scale scale = host::statistics::Scale::AsIs;
  std::size_t axes = 3;
  std::optional<std::filesystem::path> svg;
};

struct TreeArguments : BandArguments {
  host::statistics::TreeRequest request;
  std::optional<std::filesystem::path> newick;
  std::optional<std::filesystem::path> svg;
};

struct DiversityArguments : BandArguments {
  double leastShare = 0;
  std::size_t permutations = 999;
  std::uint64_t seed = 1;
};

void addDistancesCommand(CLI::App& app, Chosen& chosen);
void addPcoaCommand(CLI::App& app, Chosen& chosen);
void addTreeCommand(CLI::App& app, Chosen& chosen);
void addDiversityCommand(CLI::App& app, Chosen& chosen);

void runDistances(const DistancesArguments& arguments);
void runPcoa(const PcoaArguments& arguments);
void runTree(const TreeArguments& arguments);
void runDiversity(const DiversityArguments& arguments);

}  // namespace banddesk::cli
