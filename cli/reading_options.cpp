#include "cli/reading_options.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <string>

#include "cli/run_options.h"
#include "host/runs/own_standards.h"
#include "host/study/fragments.h"

namespace banddesk::cli {
namespace {

void addDyeOption(CLI::App& command, const std::string& name, std::optional<host::import::Dye>& dye,
                  const std::string& help) {
  command
      .add_option_function<std::string>(
          name,
          [name, &dye](const std::string& text) {
            dye = host::import::dyeOf(text);
            if (!dye)
              throw CLI::ValidationError(name,
                                         fmt::format("\"{}\" is none of the dyes B, G, Y, R, O, P", text));
          },
          help)
      ->type_name("DYE");
}

void addRunOptions(CLI::App& command, host::import::RunOptions& runs) {
  addRunSettingOptions(
      command, [&runs](const SettingsChange& change) { change(runs.settings, host::runs::allStandards()); });
  addJobsOption(command, runs.jobs);
  command.add_flag("--leave-out-unreadable", runs.leavesOutUnreadable,
                   "Of runs: go on without files that cannot be read");
}

}  // namespace

std::string readDyeLetters(const std::string& text) {
  std::string letters;
  for (const std::string& part : CLI::detail::split(text, ',')) {
    const auto dye = host::import::dyeOf(CLI::detail::trim_copy(part));
    if (!dye || letters.find(letterOf(*dye)) != std::string::npos) letters.clear();
    if (!dye) break;
    letters += letterOf(*dye);
  }
  if (letters.size() != host::kDyeCount)
    throw CLI::ValidationError("--dyes", fmt::format("\"{}\" is not four dyes such as B,G,Y,R", text));
  return letters;
}

void addReadingOptions(CLI::App& command, host::import::Options& options) {
  addDyeOption(command, "--ladder", options.ladder,
               "The size standard's dye, which is left out: B, G, Y, R, O or P");
  addDyeOption(command, "--dye", options.dye, "The dye of all peaks in tables without a dye column");
  command.add_option("--sheet", options.sheet, "The sheet of .xlsx files [the first]")->type_name("NAME");
  addRunOptions(command, options.runs);
}

}  // namespace banddesk::cli
