// `banddesk join`: one table of individuals over the analyses of several primer pairs, kept in the study and
// made anew whenever it is asked for.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/band_table.h"
#include "cli/study_commands.h"
#include "host/study/joined_table.h"

namespace banddesk::cli {

struct JoinArguments {
  std::filesystem::path study;
  std::string name;
  std::vector<std::string> analyses;
  std::string consensus = "all";
  std::string replicates;
  bool isRemoved = false;
};

void addJoinCommand(CLI::App& app, Chosen& chosen);
void runJoin(const JoinArguments& arguments);

std::optional<host::JoinedTable> findJoined(const std::filesystem::path& study, const std::string& name);

// The bins of each analysis under the name of its primer pair, and the individuals of all. What is not known
// of one is missing there, which is told on standard output.
host::statistics::BandMatrix joinBands(const std::filesystem::path& study, const host::JoinedTable& table,
                                       ExcludedBands excluded);

}  // namespace banddesk::cli
