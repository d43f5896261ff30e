#include "cli/band_table.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <set>

#include "cli/pair_file.h"
#include "cli/say.h"
#include "cli/session.h"
#include "cli/study_analysis.h"
#include "host/framework/shown_bands.h"

namespace banddesk::cli {
namespace {

using host::statistics::BandMatrix;

// Groups in the order in which the file names them first, without those of other samples alone.
void takeGroups(BandMatrix& bands, const std::filesystem::path& file) {
  const auto refuse = [&](const std::string& sample, const char* why) {
    raise(ErrorNumber::InvalidArgument, "Groups",
          fmt::format("{}: the sample \"{}\" {}", file.string(), sample, why));
  };
  const std::set<std::string> samples(bands.samples.begin(), bands.samples.end());
  std::map<std::string, std::size_t> groupOf;
  std::set<std::string> strangers;
  for (const auto& [sample, group] : readPairs(file, "a sample's name and its group")) {
    if (!samples.contains(sample)) {
      strangers.insert(sample);
      continue;
    }
    const auto at = std::ranges::find(bands.groups, group);
    const auto index = static_cast<std::size_t>(at - bands.groups.begin());
    if (at == bands.groups.end()) bands.groups.push_back(group);
    if (groupOf.emplace(sample, index).first->second != index) refuse(sample, "is in two groups");
  }
  for (const std::string& sample : bands.samples) {
    const auto found = groupOf.find(sample);
    if (found == groupOf.end()) refuse(sample, "has no group");
    bands.groupOf.push_back(found->second);
  }
  if (!strangers.empty())
    say("{}: {} names are no sample's of this table\n", file.string(), strangers.size());
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
