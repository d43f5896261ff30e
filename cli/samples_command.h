// `banddesk samples`: what the study says of its samples (role, group, individual, primer pair, note), and
// their names.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/study_commands.h"

namespace banddesk::cli {

struct SamplesArguments {
  std::filesystem::path study;
  std::optional<std::filesystem::path> table, rename, groups;
  std::optional<std::string> individuals, primerPairs, groupPattern;
  std::vector<std::string> blanks, references, ordinary;
};

void addSamplesCommand(CLI::App& app, Chosen& chosen);
// Without anything to change it lists them, as a table that --table reads. All is changed or nothing.
void runSamples(const SamplesArguments& arguments);

}  // namespace banddesk::cli
