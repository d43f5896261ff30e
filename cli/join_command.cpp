#include "cli/join_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <memory>
#include <set>

#include "cli/open_study.h"
#include "cli/say.h"
#include "cli/session.h"
#include "cli/study_analysis.h"
#include "host/framework/sample_list.h"
#include "host/scoring/joined_bands.h"
#include "plugin/base/text.h"

namespace banddesk::cli {
namespace {

constexpr std::size_t kNamesTold = 5;

using host::JoinedTable;
using host::SqliteStore;

// The pair that the analysis was made of or whose samples it has; else its name.
std::string pairOf(const Session& session) {
  const std::string& own = host::hostSide(session.analysis()).scoring().primerPair;
  if (!own.empty()) return own;
  std::set<std::string> pairs;
  for (const auto& facts : host::allSamples(session.analysis(), session.host().study()).facts)
    pairs.insert(facts.primerPair);
  if (pairs.size() > 1)
    raise(
        ErrorNumber::InvalidArgument, "Join",
        fmt::format("The analysis \"{}\" has samples of several primer pairs: analyse each pair apart, with "
                    "--primer-pair.",
                    session.analysis().Name.get()));
  return pairs.empty() || pairs.begin()->empty() ? session.analysis().Name.get() : *pairs.begin();
}

const host::AnalysisSnapshot* named(const std::vector<host::AnalysisSnapshot>& analyses,
                                    const std::string& name) {
  const auto found =
      std::ranges::find_if(analyses, [&](const auto& each) { return equalsIgnoringCase(each.name, name); });
  return found == analyses.end() ? nullptr : &*found;
}

// One line a pair, with the first names.
void tellMissing(const std::vector<std::pair<std::string, std::string>>& missing) {
  std::map<std::string, std::vector<std::string>> ofPair;
  for (const auto& [individual, pair] : missing) ofPair[pair].push_back(individual);
  for (auto& [pair, names] : ofPair) {
    const std::size_t count = names.size();
    if (count > kNamesTold) names.resize(kNamesTold);
    say("without a sample of {}, and missing there: {}{}\n", pair, fmt::join(names, ", "),
        count > kNamesTold ? fmt::format(" and {} more", count - kNamesTold) : "");
  }
}

std::vector<host::AnalysisSnapshot> analysesOf(SqliteStore& store) {
  std::vector<host::AnalysisSnapshot> analyses;
  for (const std::int32_t id : store.analysisIds()) analyses.push_back(store.readAnalysis(id));
  return analyses;
}

JoinedTable tableOf(const JoinArguments& arguments) {
  SqliteStore store(arguments.study.string(), SqliteStore::Access::Read);
  const auto analyses = analysesOf(store);
  if (named(analyses, arguments.name) != nullptr)
    raise(ErrorNumber::InvalidArgument, "Join",
          fmt::format("--name: an analysis is named \"{}\" already", arguments.name));
  JoinedTable table{arguments.name, arguments.consensus, arguments.replicates, {}};
  for (const std::string& name : arguments.analyses) {
    const auto* const analysis = named(analyses, name);
    if (analysis == nullptr)
      raise(ErrorNumber::InvalidArgument, "Join", fmt::format("--of: there is no analysis \"{}\"", name));
    Session session;
    openAsStored(session, arguments.study, name);
    table.parts.push_back({analysis->id, pairOf(session)});
    for (std::size_t i = 0; i + 1 < table.parts.size(); ++i) {
      if (table.parts[i].primerPair == table.parts.back().primerPair)
        raise(ErrorNumber::InvalidArgument, "Join",
              fmt::format("--of: two analyses are of the primer pair \"{}\"", table.parts[i].primerPair));
    }
  }
  return table;
}

}  // namespace

void addJoinCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("join", "Join the analyses of several primer pairs in one table");
  auto arguments = std::make_shared<JoinArguments>();
  command.final_callback([arguments, &chosen] { chosen = [arguments] { runJoin(*arguments); }; });
  command.add_option("STUDY", arguments->study, "The study file")->required();
  command.add_option("--name", arguments->name, "The name of the joined table")
      ->type_name("NAME")
      ->required();
  command
      .add_option("--of", arguments->analyses, "An analysis, one for each primer pair; given several times")
      ->type_name("ANALYSIS")
      ->allow_extra_args(false);
  command
      .add_option(
          "--consensus", arguments->consensus,
          "From when on an individual has a band: in all its runs, most, so many; or missing where they "
          "disagree [all]")
      ->type_name("all|most|N|missing");
  command
      .add_option("--replicates", arguments->replicates,
                  "Which samples are one individual: an ending, endings or an expression [as stored]")
      ->type_name("PATTERN");
  command.add_flag("--remove", arguments->isRemoved, "Take the joined table out of the study");
  command.footer(
      "Example:\n  banddesk join primula.study --name Both --of E32 --of E35 --consensus all\n"
      "  banddesk export primula.study --name Both --matrix both.tsv");
}

void runJoin(const JoinArguments& arguments) {
  if (arguments.isRemoved) {
    host::Host host({});
    host.openStudy(openForWriting(arguments.study));
    host.study().removeJoinedTable(arguments.name);
    return;
  }
  if (arguments.analyses.size() < 2)
    raise(ErrorNumber::InvalidArgument, "Join", "--of: name two analyses or more");
  const JoinedTable table = tableOf(arguments);
  const auto bands = joinBands(arguments.study, table, ExcludedBands::LeftOut);
  host::Host host({});
  host.openStudy(openForWriting(arguments.study));
  host.study().keepJoinedTable(table);
  say("joined \"{}\": {} individuals, {} bins of {} primer pairs\n", table.name, bands.samples.size(),
      bands.loci.size(), table.parts.size());
}

std::optional<JoinedTable> findJoined(const std::filesystem::path& study, const std::string& name) {
  SqliteStore store(study.string(), SqliteStore::Access::Read);
  for (const JoinedTable& table : store.readStudy().joined) {
    if (equalsIgnoringCase(table.name, name)) return table;
  }
  return std::nullopt;
}

host::statistics::BandMatrix joinBands(const std::filesystem::path& study, const JoinedTable& table,
                                       ExcludedBands excluded) {
  std::vector<host::scoring::PairBands> parts;
  for (const host::JoinedPart& part : table.parts) {
    std::string name;
    {
      SqliteStore store(study.string(), SqliteStore::Access::Read);
      name = store.readAnalysis(part.analysisId).name;
    }
    Session session;
    openAsStored(session, study, name);
    BandOptions options;
    options.consensus = table.consensus;
    if (!table.individuals.empty()) options.replicates = table.individuals;
    parts.push_back({part.primerPair, readBands(session, excluded, options)});
  }
  host::scoring::JoinedBands joined = host::scoring::joinBands(parts);
  tellMissing(joined.missing);
  return std::move(joined.bands);
}

}  // namespace banddesk::cli
