#include "cli/band_table.h"

#include <CLI/CLI.hpp>

#include "cli/join_command.h"
#include "cli/matrix_file.h"
#include "cli/say.h"
#include "cli/scoring_options.h"
#include "cli/session.h"
#include "cli/study_analysis.h"
#include "host/framework/shown_bands.h"
#include "host/import/pair_file.h"
#include "host/statistics/groups.h"
#include "plugin/page_names.h"

namespace banddesk::cli {

using host::statistics::BandMatrix;

namespace {

BandMatrix consensus(const BandMatrix& bands, std::span<const host::scoring::Individual> individuals,
                     const std::string& rule) {
  try {
    return consensusOf(bands, individuals, host::scoring::parseConsensus(rule));
  } catch (const std::invalid_argument& error) {
    raise(ErrorNumber::InvalidArgument, "Consensus", fmt::format("--consensus: {}", error.what()));
  }
}

// Those of the file take the place of the study's.
void takeGroups(BandMatrix& bands, const std::filesystem::path& file) {
  bands.groups.clear();
  bands.groupOf.clear();
  const auto pairs = host::import::readPairs(file, "a sample's name and its group");
  const std::size_t strangers = host::statistics::takeGroups(bands, pairs, file.string());
  if (strangers > 0) say("{}: {} names are no sample's of this table\n", file.string(), strangers);
}

}  // namespace

BandMatrix readBands(Session& session, ExcludedBands excluded, const BandOptions& options) {
  const bool before = control<ui::CheckBox>(session.page().Controls(), names::kShowExcluded).Value != 0;
  session.showExcluded(excluded == ExcludedBands::TakenIn);
  BandMatrix bands = host::shownBands(session.analysis(), session.page(), session.host().study());
  if (options.consensus) {
    const auto individuals = individualsIn(session, Listed::Shown, options.replicates);
    bands = consensus(bands, individuals.all, *options.consensus);
  }
  session.showExcluded(before);
  requireSound(bands);
  if (options.groups) takeGroups(bands, *options.groups);
  return bands;
}

std::string matrixText(const BandMatrix& bands) {
  std::string text = "Sample";
  std::map<std::string, int> times;
  for (const auto& locus : bands.loci) {
    const int time = ++times[locus.name()];
    text += "\t" + locus.name() + (time == 1 ? "" : fmt::format("_{}", time));
  }
  for (std::size_t sample = 0; sample < bands.samples.size(); ++sample) {
    text += "\n" + tableField(bands.samples[sample]);
    for (const auto band : bands.line(sample)) (text += '\t') += "01?"[static_cast<int>(band)];
  }
  return text + '\n';
}

void addIndividualOptions(CLI::App& command, BandOptions& options) {
  addReplicatesOption(command, options.replicates);
  addConsensusOption(command, options.consensus);
}

void addGroupsOption(CLI::App& command, std::optional<std::filesystem::path>& groups) {
  command.add_option("--groups", groups, "The samples' groups: a file with a name, a tab and a group a line")
      ->type_name("FILE");
}

void addBandOptions(CLI::App& command, BandArguments& arguments) {
  command.add_option("STUDY", arguments.study, "The study file")->required();
  command.add_option("--name", arguments.name, "The analysis [the only one]")->type_name("NAME");
  command.add_option("--json", arguments.json, "Write all figures")->type_name("OUT");
  addIndividualOptions(command, arguments);
}

BandMatrix openBands(const std::filesystem::path& study, const std::optional<std::string>& name,
                     ExcludedBands excluded, const BandOptions& options) {
  if (name) {
    if (const auto joined = findJoined(study, *name)) {
      BandMatrix bands = joinBands(study, *joined, excluded);
      if (options.groups) takeGroups(bands, *options.groups);
      return bands;
    }
  }
  Session session;
  openAsStored(session, study, name);
  return readBands(session, excluded, options);
}

BandMatrix openBands(const BandArguments& arguments) {
  return openBands(arguments.study, arguments.name, ExcludedBands::LeftOut, arguments);
}

}  // namespace banddesk::cli
