// The commands around a study file: new, import, list, results. None of them needs the analysis' pages.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/import/read_files.h"

namespace CLI {
class App;
}

namespace banddesk::cli {

struct NewArguments {
  std::filesystem::path study;
};

struct ImportArguments {
  std::filesystem::path study;
  std::vector<std::filesystem::path> files;
  host::import::Options reading;
  bool again = false;
};

struct ListArguments {
  std::filesystem::path study;
};

struct ResultsArguments {
  std::filesystem::path study;
  std::vector<std::string> exclude, include, remove;  // names of samples
};

// Each adds a command and its options; when the command line that is parsed has the command, `chosen` gets
// what it does.
using Chosen = std::function<void()>;
void addNewCommand(CLI::App& app, Chosen& chosen);
void addImportCommand(CLI::App& app, Chosen& chosen);
void addListCommand(CLI::App& app, Chosen& chosen);
void addResultsCommand(CLI::App& app, Chosen& chosen);

void runNew(const NewArguments& arguments);
void runImport(const ImportArguments& arguments);
void runList(const ListArguments& arguments);
void runResults(const ResultsArguments& arguments);

}  // namespace banddesk::cli
