#include "cli/reading_options.h"

#include <CLI/CLI.hpp>
#include <array>
#include <fmt/format.h>
#include <stdexcept>
#include <string_view>

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

host::runs::SizeStandard readStandard(const std::string& text) {
  using namespace host::runs;
  if (const SizeStandard* known = findStandard(knownStandards(), text)) return *known;
  try {
    return standardOfSizes("own sizes", text);
  } catch (const std::invalid_argument& error) {
    std::string names;
    for (const SizeStandard& standard : knownStandards())
      names += (names.empty() ? "" : ", ") + standard.name;
    throw CLI::ValidationError(
        "--standard",
        fmt::format("\"{}\" is neither a list of sizes ({}) nor one of {}", text, error.what(), names));
  }
}

double readHeight(const std::string& text) {
  double height = 0;
  if (!CLI::detail::lexical_cast(text, height) || !(height > 0))
    throw CLI::ValidationError("--least-height", fmt::format("\"{}\" is no height", text));
  return height;
}

/// "50", or "B=50,G=100": the dyes' letters in the order of their channels.
void readLeastHeights(const std::string& text, std::array<double, host::runs::kMostDyes>& heights) {
  constexpr std::string_view letters = "BGYROP";
  if (text.find('=') == std::string::npos) return heights.fill(readHeight(text));
  for (const std::string& part : CLI::detail::split(text, ',')) {
    const std::size_t at = part.size() > 2 && part[1] == '=' ? letters.find(part[0]) : std::string_view::npos;
    if (at == std::string_view::npos)
      throw CLI::ValidationError("--least-height", fmt::format("\"{}\" is not such as B=50", part));
    heights[at] = readHeight(part.substr(2));
  }
}

void addRunOptions(CLI::App& command, host::import::RunOptions& runs) {
  host::runs::RunSettings& settings = runs.settings;
  command
      .add_option_function<std::string>(
          "--standard",
          [&settings](const std::string& text) { settings.ladder.standard = readStandard(text); },
          "Of runs: the size standard, by name or as a list of its sizes [found]")
      ->type_name("NAME|SIZES");
  command
      .add_option_function<std::string>(
          "--least-height",
          [&settings](const std::string& text) { readLeastHeights(text, settings.peaks.leastHeight); },
          "Of runs: the least height of a peak in RFU, for all dyes or such as B=50,G=100 [50]")
      ->type_name("RFU");
  command.add_flag("--with-250", settings.ladder.usesUnreliable,
                   "Of runs: size with the standard's 250 (and 340) nt too, which run unreliably");
  command.add_flag_callback(
      "--beyond-standard", [&settings] { settings.outside = host::runs::OutsideLadder::StraightLine; },
      "Of runs: size peaks outside the standard by straight lines");
  command
      .add_option("--jobs", runs.jobs, "Of runs: how many are analysed at once [as many as there are cores]")
      ->type_name("N");
  command.add_flag("--leave-out-unreadable", runs.leavesOutUnreadable,
                   "Of runs: go on without files that cannot be read");
}

}  // namespace

void addReadingOptions(CLI::App& command, host::import::Options& options) {
  addDyeOption(command, "--ladder", options.ladder,
               "The size standard's dye, which is left out: B, G, Y, R or O");
  addDyeOption(command, "--dye", options.dye, "The dye of all peaks in tables without a dye column");
  command.add_option("--sheet", options.sheet, "The sheet of .xlsx files [the first]")->type_name("NAME");
  addRunOptions(command, options.runs);
}

}  // namespace banddesk::cli
