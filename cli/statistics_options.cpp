// The options of the commands that calculate with an analysis' bands.
#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <map>
#include <memory>

#include "cli/statistics_commands.h"

namespace banddesk::cli {
namespace {

using host::statistics::Measure;
using host::statistics::TreeMethod;

constexpr std::size_t kMostDraws = 1'000'000;

// The arguments live as long as the command that fills them.
template <class Arguments>
std::shared_ptr<Arguments> argumentsOf(CLI::App& command, Chosen& chosen, void (*run)(const Arguments&)) {
  auto arguments = std::make_shared<Arguments>();
  command.final_callback([arguments, run, &chosen] { chosen = [arguments, run] { run(*arguments); }; });
  addBandOptions(command, *arguments);
  return arguments;
}

// An option whose value is one of these words.
template <class Value>
CLI::Option* addChoice(CLI::App& command, const char* option, Value& value,
                       std::map<std::string, Value> words, const char* what) {
  const auto choose = [&value, words, option](const std::string& word) {
    const auto found = words.find(word);
    if (found != words.end()) {
      value = found->second;
      return;
    }
    std::string names;
    for (const auto& [name, each] : words) names += (names.empty() ? "" : ", ") + name;
    throw CLI::ValidationError(option, fmt::format("\"{}\" is none of {}", word, names));
  };
  return command.add_option_function<std::string>(option, choose, what);
}

void addMeasureOption(CLI::App& command, Measure& measure) {
  addChoice<Measure>(command, "--measure", measure,
                     {{"jaccard", Measure::Jaccard},
                      {"dice", Measure::Dice},
                      {"simple-matching", Measure::SimpleMatching},
                      {"euclidean", Measure::Euclidean}},
                     "Distance: jaccard, dice, simple-matching or euclidean [jaccard]")
      ->type_name("MEASURE");
}

void addSeedOption(CLI::App& command, std::uint64_t& seed) {
  command.add_option("--seed", seed, "Another seed, other random numbers [1]")->type_name("NUMBER");
}

}  // namespace

void addDistancesCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("distances", "Distances of the samples by their bands");
  const auto arguments = argumentsOf<DistancesArguments>(command, chosen, runDistances);
  addMeasureOption(command, arguments->measure);
  command.add_option("--phylip", arguments->phylip, "Write them for PHYLIP")->type_name("OUT");
  command.footer("Example:\n  banddesk distances primula.study --name First --measure dice");
}

void addPcoaCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("pcoa", "Principal coordinates of the samples");
  const auto arguments = argumentsOf<PcoaArguments>(command, chosen, runPcoa);
  addMeasureOption(command, arguments->measure);
  command.add_flag_callback(
      "--square-root",
      [arguments = arguments.get()] { arguments->scale = host::statistics::Scale::SquareRoot; },
      "Take the distances' square roots, which gives no negative eigenvalues");
  command.add_option("--axes", arguments->axes, "How many axes to tell [3]")
      ->type_name("COUNT")
      ->check(CLI::Range(std::size_t{1}, std::size_t{1000}).description(""));
  addGroupsOption(command, arguments->groups);
  command.add_option("--svg", arguments->svg, "Write a picture of the first two axes")->type_name("OUT");
  command.footer("Example:\n  banddesk pcoa primula.study --name First --groups sites.txt --svg pcoa.svg");
}

void addTreeCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("tree", "A tree of the samples, by UPGMA or neighbour joining");
  const auto arguments = argumentsOf<TreeArguments>(command, chosen, runTree);
  addChoice<TreeMethod>(command, "--method", arguments->request.method,
                        {{"upgma", TreeMethod::Upgma}, {"nj", TreeMethod::NeighbourJoining}},
                        "How it is made: upgma or nj [upgma]")
      ->type_name("METHOD");
  addMeasureOption(command, arguments->request.measure);
  command
      .add_option("--bootstrap", arguments->request.bootstraps, "Draw the bins so often for the support [0]")
      ->type_name("COUNT")
      ->check(CLI::Range(std::size_t{0}, kMostDraws).description(""));
  addSeedOption(command, arguments->request.seed);
  addGroupsOption(command, arguments->groups);
  command.add_option("--newick", arguments->newick, "Write the tree as Newick")->type_name("OUT");
  command.add_option("--svg", arguments->svg, "Write a picture of it")->type_name("OUT");
  command.footer("Example:\n  banddesk tree primula.study --name First --bootstrap 1000 --svg tree.svg");
}

void addDiversityCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command =
      *app.add_subcommand("diversity", "Diversity of groups, and the variance among and within them");
  const auto arguments = argumentsOf<DiversityArguments>(command, chosen, runDiversity);
  addGroupsOption(command, arguments->groups);
  command
      .add_option("--least-share", arguments->leastShare,
                  "A bin is polymorphic where its rarer state has more than this share of the samples [0]")
      ->type_name("SHARE")
      ->check(CLI::Range(0.0, 0.5).description(""));
  command.add_option("--permutations", arguments->permutations, "Of the samples among the groups [999]")
      ->type_name("COUNT")
      ->check(CLI::Range(std::size_t{0}, kMostDraws).description(""));
  addSeedOption(command, arguments->seed);
  command.footer("Example:\n  banddesk diversity primula.study --name First --groups sites.txt");
}

}  // namespace banddesk::cli
