// The options of `banddesk analyze`.
#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/analyze_command.h"
#include "cli/reading_options.h"

namespace banddesk::cli {
namespace {

std::array<bool, 4> readDyes(const std::string& digits) {
  std::array<bool, 4> dyes{};
  for (const char digit : digits) {
    if (digit < '1' || digit > '4') {
      throw CLI::ValidationError("--dyes", fmt::format("\"{}\" is not made of the digits 1 to 4", digits));
    }
    dyes[static_cast<std::size_t>(digit - '1')] = true;
  }
  return dyes;
}

void addParameterOptions(CLI::App& command, AnalyzeArguments& arguments) {
  AnalysisRequest& request = arguments.request;
  command.add_option("--max-bin-width", request.maxBinWidth, "Largest width of a bin in nt, 0.05 to 10")
      ->type_name("NT")
      ->capture_default_str();
  command.add_option("--y-threshold", request.yThreshold, "Height in RFU from which a fragment counts")
      ->type_name("RFU")
      ->capture_default_str();
  command
      .add_option_function<std::string>(
          "--dyes",
          [&arguments](const std::string& text) {
            if (text.find(',') == std::string::npos)
              arguments.request.dyes = readDyes(text);
            else
              arguments.reading.dyes = readDyeLetters(text);
          },
          "The dyes to look at, such as 123 [those with fragments], or which four dyes of the files these "
          "are, such as B,G,Y,R")
      ->type_name("DIGITS|DYES");
  addReadingOptions(command, arguments.reading);
  addScoringOptions(command, request.scoring);
  command.add_flag("--preview", arguments.isPreview,
                   "Only tell what each rule would take; nothing is saved or written");
}

void addViewOptions(CLI::App& command, AnalyzeArguments& arguments) {
  AnalysisRequest& request = arguments.request;
  command
      .add_option_function<std::string>(
          "--cells",
          [&arguments](const std::string& text) {
            arguments.request.cells = arguments.outputs.matrixCells = readCells(text);
          },
          "What the cells hold: count, presence or height [count; presence in --matrix]")
      ->type_name("WHAT");
  command.add_flag("--keep-full-bins", request.keepFullBins,
                   "Keep bins in which every sample has a fragment");
  command.add_flag("--keep-empty-samples", request.keepEmptySamples,
                   "Keep samples without a fragment in any bin");
  command.add_flag("--show-excluded", request.showExcluded, "Show excluded bins and samples, in grey");
  command.add_flag("--transpose", request.transposed, "Samples in rows");
  command
      .add_option("--sort", request.sortBy,
                  "Sort by a column: its header, key or sample name; :desc behind it")
      ->type_name("KEY");
  command
      .add_option("--exclude-bin", request.excludedBins,
                  "Exclude a bin, named by dye and mean size (D1-100.25); may be given several times")
      ->type_name("KEY")
      ->allow_extra_args(false);
  command
      .add_option("--exclude-sample", request.excludedSamples,
                  "Exclude a sample by name; may be given several times")
      ->type_name("NAME")
      ->allow_extra_args(false);
}

}  // namespace

Cells readCells(const std::string& text) {
  if (text == "count") return Cells::Count;
  if (text == "presence") return Cells::Presence;
  if (text == "height") return Cells::Height;
  throw CLI::ValidationError("--cells", fmt::format("\"{}\" is none of count, presence and height", text));
}

void addOutputOptions(CLI::App& command, Outputs& outputs) {
  command.add_option("--csv", outputs.csv, "Write the table as it is shown")->type_name("OUT");
  command.add_option("--nts", outputs.nts, "Write presence as a labelled matrix for NTSYSpc")
      ->type_name("OUT");
  command
      .add_option("--matrix", outputs.matrix, "Write a tab-separated table for statistics, a row a sample")
      ->type_name("OUT");
  command.add_option("--json", outputs.json, "Write the analysis itself: bins, samples, counts, heights")
      ->type_name("OUT");
  command.add_option("--xlsx", outputs.xlsx, "Write the table as a spreadsheet")->type_name("OUT");
}

CLI::App& addAnalyzeCommand(CLI::App& app, AnalyzeArguments& arguments) {
  CLI::App& command = *app.add_subcommand("analyze", "Analyse peak tables or runs and export the AFLP table");
  command
      .add_option("FILE", arguments.files,
                  "Peak tables or runs of an instrument, or folders of them; or one study file")
      ->required();
  command
      .add_option("--name", arguments.name, "In a study: the analysis to open again or to make [a new one]")
      ->type_name("NAME");
  addParameterOptions(command, arguments);
  addViewOptions(command, arguments);
  addOutputOptions(command, arguments.outputs);
  command.add_flag("--head", arguments.printHead, "Print the head of the table");
  command.footer(
      "Example:\n  banddesk analyze run1.txt run2.txt --ladder R --max-bin-width 1.5 --y-threshold 50 --csv "
      "table.csv\n  banddesk analyze primula.study --name First --y-threshold 50");
  command.final_callback([&command, &arguments] {
    for (const CLI::Option* option : command.get_options()) {
      if (option->count() > 0) arguments.given.insert(option->get_name());
    }
  });
  return command;
}

}  // namespace banddesk::cli
