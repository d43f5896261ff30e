// `banddesk quality`: how good the table of an analysis is, in figures, and how well replicates agree.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "cli/study_commands.h"

namespace banddesk::cli {

struct QualityArguments {
  std::filesystem::path study;
  std::optional<std::string> name;
  std::optional<std::string> replicates;  // a pattern or a file; absent: as the analysis or the study says
  std::optional<std::filesystem::path> json;
};

void addQualityCommand(CLI::App& app, Chosen& chosen);
// What the table shows counts: bins and samples that are hidden are left out.
void runQuality(const QualityArguments& arguments);

}  // namespace banddesk::cli
