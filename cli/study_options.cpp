// The options of the commands around a study file.
#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <memory>

#include "cli/band_table.h"
#include "cli/history_commands.h"
#include "cli/reading_options.h"
#include "cli/study_analysis.h"
#include "cli/study_commands.h"

namespace banddesk::cli {
namespace {

// The arguments live as long as the command that fills them.
template <class Arguments>
std::shared_ptr<Arguments> argumentsOf(CLI::App& command, Chosen& chosen, void (*run)(const Arguments&)) {
  auto arguments = std::make_shared<Arguments>();
  command.final_callback([arguments, run, &chosen] { chosen = [arguments, run] { run(*arguments); }; });
  command.add_option("STUDY", arguments->study, "The study file")->required();
  return arguments;
}

void addNameOption(CLI::App& command, std::optional<std::string>& name) {
  command.add_option("--name", name, "The analysis [the only one]")->type_name("NAME");
}

}  // namespace

void addNewCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("new", "Make an empty study file");
  argumentsOf<NewArguments>(command, chosen, runNew);
  command.footer("Example:\n  banddesk new primula.study");
}

void addImportCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("import", "Import peak tables or runs into a study");
  const auto arguments = argumentsOf<ImportArguments>(command, chosen, runImport);
  command.add_option("FILE", arguments->files, "Peak tables or runs of an instrument, or folders of them")
      ->required();
  command
      .add_option_function<std::string>(
          "--dyes",
          [to = arguments.get()](const std::string& text) { to->reading.dyes = readDyeLetters(text); },
          "The four dyes that the study holds, where there are more [B,G,Y and R, else O]")
      ->type_name("DYES");
  addReadingOptions(command, arguments->reading);
  command.add_flag("--again", arguments->again, "Read files once more that the study has already");
  command.footer("Example:\n  banddesk import primula.study run1.txt run2.txt --ladder R");
}

void addListCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("list", "Show what a study holds");
  argumentsOf<ListArguments>(command, chosen, runList);
  command.footer("Example:\n  banddesk list primula.study");
}

void addResultsCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("results", "List, exclude, include or delete a study's results");
  const auto arguments = argumentsOf<ResultsArguments>(command, chosen, runResults);
  const auto add = [&](const char* option, std::vector<std::string>& names, const char* what) {
    command.add_option(option, names, what)->type_name("NAME")->allow_extra_args(false);
  };
  add("--exclude", arguments->exclude, "Leave this sample out of new analyses; may be given several times");
  add("--include", arguments->include, "Take an excluded sample in again");
  add("--delete", arguments->remove, "Delete this sample's result");
  command.footer("Example:\n  banddesk results primula.study --exclude \"Plant 7\" --exclude \"Plant 12\"");
}

void addExportCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("export", "Export the table of an analysis");
  const auto arguments = argumentsOf<ExportArguments>(command, chosen, runExport);
  command.get_option("STUDY")->required(false);  // --format list needs none
  addNameOption(command, arguments->name);
  addOutputOptions(command, arguments->outputs);
  command
      .add_option_function<std::string>(
          "--cells",
          [arguments = arguments.get()](const std::string& text) {
            arguments->outputs.matrixCells = readCells(text);
          },
          "What the cells of --matrix hold: count, presence or height [presence]")
      ->type_name("WHAT");
  command
      .add_option(
          "--format", arguments->formats,
          "Write the bands for another program; may be given several times. \"list\" tells the formats")
      ->type_name("FORMAT OUT")
      ->type_size(1, 2)
      ->allow_extra_args(false);
  addGroupsOption(command, arguments->bands.groups);
  addIndividualOptions(command, arguments->bands);
  CLI::Option* const show = command.add_flag_callback(
      "--show-excluded", [arguments = arguments.get()] { arguments->showExcluded = true; },
      "With excluded bins and samples [as stored]");
  command
      .add_flag_callback(
          "--hide-excluded", [arguments = arguments.get()] { arguments->showExcluded = false; },
          "Without them")
      ->excludes(show);
  command.footer(
      "Example:\n  banddesk export primula.study --name First --csv table.csv\n"
      "  banddesk export primula.study --groups sites.txt --format structure table.str");
}

void addReportCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("report", "Write a report of an analysis as an HTML page");
  const auto arguments = argumentsOf<ReportArguments>(command, chosen, runReport);
  addNameOption(command, arguments->name);
  command.add_option("OUT", arguments->out, "The page to write")->required();
  command.footer("Example:\n  banddesk report primula.study --name First report.html");
}

void addUndoCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("undo", "Take back what the last commands did to a study");
  const auto arguments = argumentsOf<UndoArguments>(command, chosen, runUndo);
  command.add_option("--steps", arguments->steps, "How many steps [1]")->type_name("N");
  command.footer("Example:\n  banddesk undo primula.study");
}

void addRedoCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("redo", "Do again what was taken back");
  const auto arguments = argumentsOf<UndoArguments>(command, chosen, runRedo);
  command.add_option("--steps", arguments->steps, "How many steps [1]")->type_name("N");
  command.footer("Example:\n  banddesk redo primula.study --steps 2");
}

void addHistoryCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("history", "List the steps of a study that can be undone");
  argumentsOf<HistoryArguments>(command, chosen, runHistory);
  command.footer("Example:\n  banddesk history primula.study");
}

void addCompactCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command =
      *app.add_subcommand("compact", "Make a study's file as small as it can be; its steps are given up");
  argumentsOf<HistoryArguments>(command, chosen, runCompact);
  command.footer("Example:\n  banddesk compact primula.study");
}

}  // namespace banddesk::cli
