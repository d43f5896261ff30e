// The commands around the runs of instruments that a study keeps: size, runs, peaks; and the user's own size
// standards.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/run_options.h"
#include "cli/study_commands.h"

namespace banddesk::cli {

struct SizeArguments {
  std::filesystem::path study;
  std::vector<SettingsChange> changes;
  std::vector<std::string> samples;
  bool forgetsEdits = false;
  std::size_t jobs = 0;
};

struct PeaksArguments {
  std::filesystem::path study;
  std::optional<std::filesystem::path> out;
  std::vector<std::string> samples;
  bool all = false;  // with the standard's and those without a size
};

struct StandardsArguments {
  std::vector<std::string> added;  // name and sizes, one after the other
  std::vector<std::string> removed;
  std::string dyes;  // of those that are added, between commas
};

void addSizeCommand(CLI::App& app, Chosen& chosen);
void addRunsCommand(CLI::App& app, Chosen& chosen);
void addPeaksCommand(CLI::App& app, Chosen& chosen);
void addStandardsCommand(CLI::App& app, Chosen& chosen);

void runSize(const SizeArguments& arguments);
void runRuns(const ListArguments& arguments);
void runPeaks(const PeaksArguments& arguments);
void runStandards(const StandardsArguments& arguments);

}  // namespace banddesk::cli
