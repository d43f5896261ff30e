#include "cli/band_table.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <map>

#include "cli/pair_file.h"
#include "cli/say.h"
#include "cli/session.h"
#include "cli/study_analysis.h"
#include "host/framework/shown_bands.h"

namespace banddesk::cli {
namespace {

using host::statistics::BandMatrix;

// Groups in the order in which the file names them first.
void takeGroups(BandMatrix& bands, const std::filesystem::path& file) {
  std::map<std::string, std::string> groupOf;
  std::vector<std::string> order;
  for (const auto& [sample, group] : readPairs(file, "a sample's name and its group")) {
    const auto [known, isNew] = groupOf.emplace(sample, group);
    if (!isNew && known->second != group)
      raise(ErrorNumber::InvalidArgument, "Groups",
            fmt::format("{}: the sample \"{}\" is in two groups", file.string(), sample));
    if (std::ranges::find(order, group) == order.end()) order.push_back(group);
  }
  for (const std::string& sample : bands.samples) {
    const auto found = groupOf.find(sample);
    if (found == groupOf.end())
      raise(ErrorNumber::InvalidArgument, "Groups",
            fmt::format("{}: the sample \"{}\" has no group", file.string(), sample));
    bands.groupOf.push_back(
        static_cast<std::size_t>(std::ranges::find(order, found->second) - order.begin()));
  }
  bands.groups = order;
  const auto strangers = std::ranges::count_if(groupOf, [&](const auto& entry) {
    return std::ranges::find(bands.samples, entry.first) == bands.samples.end();
  });
  if (strangers > 0) say("{}: {} names are no sample's of this table\n", file.string(), strangers);
}

}  // namespace

BandMatrix readBands(Session& session, ExcludedBands excluded,
                     const std::optional<std::filesystem::path>& groups) {
  const bool before = control<ui::CheckBox>(session.page().Controls(), "chkShowExcluded").Value != 0;
  session.showExcluded(excluded == ExcludedBands::TakenIn);
  BandMatrix bands = host::shownBands(session.analysis(), session.page());
  session.showExcluded(before);
  requireSound(bands);
  if (groups) takeGroups(bands, *groups);
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
