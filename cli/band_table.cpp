#include "cli/band_table.h"

#include <CLI/CLI.hpp>

#include "cli/say.h"
#include "cli/session.h"
#include "cli/study_analysis.h"
#include "host/framework/shown_bands.h"
#include "host/import/pair_file.h"
#include "host/statistics/groups.h"
#include "plugin/page_names.h"

namespace banddesk::cli {

using host::statistics::BandMatrix;

BandMatrix readBands(Session& session, ExcludedBands excluded,
                     const std::optional<std::filesystem::path>& groups) {
  const bool before = control<ui::CheckBox>(session.page().Controls(), names::kShowExcluded).Value != 0;
  session.showExcluded(excluded == ExcludedBands::TakenIn);
  BandMatrix bands = host::shownBands(session.analysis(), session.page());
  session.showExcluded(before);
  requireSound(bands);
  if (groups) {
    const auto pairs = host::import::readPairs(*groups, "a sample's name and its group");
    const std::size_t strangers = host::statistics::takeGroups(bands, pairs, groups->string());
    if (strangers > 0) say("{}: {} names are no sample's of this table\n", groups->string(), strangers);
  }
  return bands;
}

void addGroupsOption(CLI::App& command, std::optional<std::filesystem::path>& groups) {
  command.add_option("--groups", groups, "The samples' groups: a file with a name, a tab and a group a line")
      ->type_name("FILE");
}

void addBandOptions(CLI::App& command, BandArguments& arguments) {
  command.add_option("STUDY", arguments.study, "The study file")->required();
  command.add_option("--name", arguments.name, "The analysis [the only one]")->type_name("NAME");
  command.add_option("--json", arguments.json, "Write all figures")->type_name("OUT");
}

BandMatrix openBands(const BandArguments& arguments) {
  Session session;
  openAsStored(session, arguments.study, arguments.name);
  return readBands(session, ExcludedBands::LeftOut, arguments.groups);
}

}  // namespace banddesk::cli
