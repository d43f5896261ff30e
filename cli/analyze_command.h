// `banddesk analyze`: from peak tables to an exported table, by the pages' own road.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/analysis_request.h"
#include "host/import/dye.h"

namespace CLI {
class App;
}

namespace banddesk::cli {

struct AnalyzeArguments {
  std::vector<std::filesystem::path> files;
  std::optional<host::import::Dye> ladder;
  AnalysisRequest request;
  Outputs outputs;
  bool printHead = false;
};

// Adds the command and its options; they are read into `arguments` when the command line is parsed.
CLI::App& addAnalyzeCommand(CLI::App& app, AnalyzeArguments& arguments);

// Runs it; failures are errors of the import or of the system. Prints a short summary on standard output.
void runAnalyze(const AnalyzeArguments& arguments);

}  // namespace banddesk::cli
