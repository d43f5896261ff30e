#include "cli/search_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/output_file.h"
#include "cli/progress_line.h"
#include "cli/say.h"
#include "cli/study_analysis.h"
#include "host/framework/searched_study.h"
#include "host/scoring/search.h"
#include "host/store/sqlite_store.h"
#include "plugin/base/numbers.h"

namespace banddesk::cli {
namespace {

using namespace host::scoring;
using nlohmann::ordered_json;

template <class Read>
auto readOption(const char* option, Read read) {
  try {
    return read();
  } catch (const std::invalid_argument& error) {
    raise(ErrorNumber::InvalidArgument, "Search", fmt::format("{}: {}", option, error.what()));
  }
}

// Every rule with every other; each keeps the place of its option.
std::vector<std::vector<Rule>> ruleSets(const std::vector<std::string>& texts) {
  std::vector<std::vector<Rule>> sets(1);
  for (const std::string& text : texts) {
    const std::vector<Rule> choices = readOption("--rule", [&] { return parseRules(text); });
    std::vector<std::vector<Rule>> wider;
    for (const auto& set : sets) {
      for (const Rule& rule : choices) {
        wider.push_back(set);
        wider.back().push_back(rule);
      }
    }
    sets = std::move(wider);
  }
  return sets;
}

SearchGrid gridOf(const SearchArguments& arguments) {
  const auto values = [](const char* option, const std::string& text) {
    return text.empty() ? std::vector<double>() : readOption(option, [&] { return parseValues(text); });
  };
  SearchGrid grid{values("--max-bin-width", arguments.maxBinWidths),
                  values("--y-threshold", arguments.yThresholds),
                  values("--call-percent", arguments.callPercents), ruleSets(arguments.rules)};
  const auto isOutside = [](double width) { return width < 0.05 || width > 10; };
  if (std::ranges::any_of(grid.maxBinWidths, isOutside))
    raise(ErrorNumber::InvalidArgument, "Search", "--max-bin-width: a width is from 0.05 to 10 nt");
  return grid;
}

std::string rulesText(const std::vector<Rule>& rules) {
  std::string text;
  for (const Rule& rule : rules) text += (text.empty() ? "" : ", ") + ruleText(rule);
  return text.empty() ? "-" : text;
}

std::string figure(const std::optional<double>& value, double factor, int decimals) {
  return value ? fmt::format("{:.{}f}", *value * factor, decimals) : "-";
}

std::string lineOf(const SearchFigures& each, const SearchGrid& grid) {
  return fmt::format("{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\n", generalText(each.point.maxBinWidth),
                     generalText(each.point.yThreshold), generalText(each.point.callPercent),
                     rulesText(grid.ruleSets[each.point.ruleSet]), each.bins, each.singleFragmentBins,
                     figure(each.fragmentsPerFilledCell, 1, 4), figure(each.error.mean, 100, 2),
                     figure(each.error.deviation, 100, 2), figure(each.informationContent, 1, 4));
}

ordered_json jsonOf(const SearchFigures& each, const SearchGrid& grid) {
  const auto number = [](const std::optional<double>& value) {
    return value ? ordered_json(*value) : ordered_json();
  };
  ordered_json rules = ordered_json::array();
  for (const Rule& rule : grid.ruleSets[each.point.ruleSet]) rules.push_back(ruleText(rule));
  return {{"maxBinWidthNt", each.point.maxBinWidth},
          {"yThresholdRfu", each.point.yThreshold},
          {"callPercent", each.point.callPercent},
          {"rules", rules},
          {"bins", each.bins},
          {"singleFragmentBins", each.singleFragmentBins},
          {"fragmentsPerFilledCell", number(each.fragmentsPerFilledCell)},
          {"jaccardErrorMean", number(each.error.mean)},
          {"jaccardErrorDeviation", number(each.error.deviation)},
          {"informationContent", number(each.informationContent)}};
}

}  // namespace

void addSearchCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command =
      *app.add_subcommand("search", "Try many parameters and tell how good each table would be");
  auto arguments = std::make_shared<SearchArguments>();
  command.final_callback([arguments, &chosen] { chosen = [arguments] { runSearch(*arguments); }; });
  command.add_option("STUDY", arguments->study, "The study file")->required();
  command
      .add_option("--name", arguments->name,
                  "The analysis whose other settings, dyes and replicates count [those of a new one]")
      ->type_name("NAME");
  command
      .add_option("--max-bin-width", arguments->maxBinWidths,
                  "Widths in nt: a list (1,1.5) or from, to and step (0.5:2:0.25) [0.5:2:0.25]")
      ->type_name("VALUES");
  command.add_option("--y-threshold", arguments->yThresholds, "Thresholds in RFU, likewise [0]")
      ->type_name("VALUES");
  command
      .add_option("--call-percent", arguments->callPercents, "Percentages of a bin's mean height, likewise")
      ->type_name("VALUES");
  command
      .add_option("--rule", arguments->rules,
                  "A rule, or one with several limits: 'height<{0,50,100}'; may be given several times")
      ->type_name("RULE")
      ->allow_extra_args(false);
  command
      .add_option("--replicates", arguments->replicates,
                  "Which samples are replicates: an ending, endings or an expression [as stored]")
      ->type_name("PATTERN");
  command.add_option("--least-bins", arguments->leastBins, "The best has at least so many bins [1]")
      ->type_name("COUNT");
  command.add_option("--json", arguments->json, "Write all figures")->type_name("OUT");
  command.footer(
      "Example:\n  banddesk search primula.study --max-bin-width 0.5:2:0.25 --y-threshold 0:300:50 --rule "
      "'height<{0,50,100}'");
}

void runSearch(const SearchArguments& arguments) {
  if (arguments.json) requireDistinct({*arguments.json}, {arguments.study});
  SearchGrid grid = gridOf(arguments);
  host::SqliteStore store(arguments.study.string(), host::SqliteStore::Access::Read);
  const host::SearchedStudy searched = readOption(
      "--replicates", [&] { return host::SearchedStudy(store, arguments.name, arguments.replicates); });
  if (grid.yThresholds.empty()) grid.yThresholds = {0};
  if (grid.callPercents.empty()) grid.callPercents = {searched.data().settings.callPercent};
  ProgressLine bar;
  bar.begin("Searching");
  const auto started = std::chrono::steady_clock::now();
  const auto figures = search(searched.data(), grid, [&](double share) {
    bar.show(share);
    return true;
  });
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - started;
  bar.clear();
  const auto best = bestOf(figures, arguments.leastBins);
  if (arguments.json) {
    ordered_json json = {{"settings", ordered_json::array()}};
    for (const SearchFigures& each : figures) json["settings"].push_back(jsonOf(each, grid));
    json["best"] = best ? ordered_json(*best) : ordered_json();
    writeWholeText(*arguments.json, [&](std::ostream& out) { out << json.dump(1) << '\n'; });
  }
  std::string text = "Width\tThreshold\tCall %\tRules\tBins\tSingle\tPer cell\tError %\tsd %\tInformation\n";
  for (const SearchFigures& each : figures) text += lineOf(each, grid);
  if (best) text += "\nleast error:\n" + lineOf(figures[*best], grid);
  say("{}{} settings, {} replicate pairs, time: {:.2f} s\n", text, figures.size(),
      pairsOf(searched.data().individuals).size(), taken.count());
}

}  // namespace banddesk::cli
