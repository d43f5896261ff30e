// Analyses in a study file: made or opened again, saved, exported, reported. Like all analyses they go the
// pages' own road.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "cli/analyze_command.h"
#include "cli/band_table.h"
#include "cli/study_commands.h"

namespace banddesk::cli {

struct ExportArguments {
  std::filesystem::path study;
  std::optional<std::string> name;
  Outputs outputs;
  std::optional<bool> showExcluded;
  std::vector<std::string> formats;  // the name of a format and the file to write, or "list" alone
  BandOptions bands;
};

struct ReportArguments {
  std::filesystem::path study;
  std::optional<std::string> name;
  std::filesystem::path out;
};

void addExportCommand(CLI::App& app, Chosen& chosen);
void addReportCommand(CLI::App& app, Chosen& chosen);

class Session;

// Opens an analysis of a study as it is stored, whatever the results are by now; nothing of it is saved.
// Without a name it is the only one.
void openAsStored(Session& session, const std::filesystem::path& study,
                  const std::optional<std::string>& name);

// The same request with rules that do not act.
AnalysisRequest withoutRules(AnalysisRequest request);

// Whether the file to analyse is a study and no peak table, by its content.
bool isStudyFile(const std::filesystem::path& file);
// `banddesk analyze` on a study file: makes the analysis, or opens the one of that name again, brings it up
// to date, and saves it.
void runStudyAnalysis(const AnalyzeArguments& arguments);
void runExport(const ExportArguments& arguments);
void runReport(const ReportArguments& arguments);

}  // namespace banddesk::cli
