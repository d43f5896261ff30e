#include "cli/reading_options.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

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
              throw CLI::ValidationError(name, fmt::format("\"{}\" is none of the dyes B, G, Y, R, O", text));
          },
          help)
      ->type_name("DYE");
}

}  // namespace

void addReadingOptions(CLI::App& command, host::import::Options& options) {
  addDyeOption(command, "--ladder", options.ladder,
               "The size standard's dye, which is left out: B, G, Y, R or O");
  addDyeOption(command, "--dye", options.dye, "The dye of all peaks in tables without a dye column");
  command.add_option("--sheet", options.sheet, "The sheet of .xlsx files [the first]")->type_name("NAME");
}

}  // namespace banddesk::cli
