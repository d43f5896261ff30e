// `banddesk analyze`: from peak tables to an exported table, by the pages' own road.
#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/analysis_request.h"
#include "host/import/read_files.h"

namespace CLI {
class App;
}

namespace banddesk::cli {

struct AnalyzeArguments {
  std::vector<std::filesystem::path> files;
  host::import::Options reading;
  std::optional<std::string> name;  // of the analysis in a study file
  AnalysisRequest request;
  std::set<std::string> given;  // the options that stand on the command line
  Outputs outputs;
  bool printHead = false;
  bool isPreview = false;  // of the rules; nothing is saved or written
};

class Session;

// The options that name outputs, and the writing of those that were given; `dyes` are the letters of the four
// slots. What is unsaved must be saved before.
void addOutputOptions(CLI::App& command, Outputs& outputs);
// "count", "presence" or "height"; any other text is an error of the option --cells.
Cells readCells(const std::string& text);
std::vector<std::filesystem::path> pathsOf(const Outputs& outputs);
void writeOutputs(const Outputs& outputs, Session& session, const std::string& dyes);
// The first lines of the table, for --head.
std::string printedHead(const Session& session);

// Adds the command and its options; they are read into `arguments` when the command line is parsed.
CLI::App& addAnalyzeCommand(CLI::App& app, AnalyzeArguments& arguments);

// Runs it; failures are errors of the import or of the system. Prints a short summary on standard output.
void runAnalyze(const AnalyzeArguments& arguments);

}  // namespace banddesk::cli
