// `banddesk search`: an analysis over a grid of parameters, and how good each table would be.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/study_commands.h"

namespace banddesk::cli {

struct SearchArguments {
  std::filesystem::path study;
  std::optional<std::string> name;
  std::string maxBinWidths = "0.5:2:0.25", yThresholds, callPercents;
  std::vector<std::string> rules;
  std::optional<std::string> replicates;
  std::size_t leastBins = 1;
  std::optional<std::filesystem::path> json;
};

void addSearchCommand(CLI::App& app, Chosen& chosen);
void runSearch(const SearchArguments& arguments);

}  // namespace banddesk::cli
