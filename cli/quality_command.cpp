#include "cli/quality_command.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <vector>

#include "cli/output_file.h"
#include "cli/say.h"
#include "cli/session.h"
#include "cli/study_analysis.h"
#include "host/framework/shown_table.h"
#include "host/import/pair_file.h"
#include "plugin/base/text.h"

namespace banddesk::cli {
namespace {

using host::ShownTable;
using nlohmann::ordered_json;

constexpr std::size_t kPairsTold = 5;
constexpr std::size_t kBinsTold = 10;

bool isFile(const std::string& text) {
  std::error_code trouble;
  return std::filesystem::is_regular_file(text, trouble);
}

host::Replicates replicatesOf(const ShownTable& table, const std::string& wanted) {
  if (wanted.empty()) return {};
  if (!isFile(wanted)) return host::replicatesOfRuns(table.samples, wanted);
  return host::replicatesByName(table.samples, host::import::readPairs(wanted, "two sample names"));
}

std::string figure(const std::optional<double>& value, int decimals) {
  return value ? fmt::format("{:.{}f}", *value, decimals) : "-";
}

std::string percent(const std::optional<double>& value) {
  return value ? fmt::format("{:.2f} %", *value * 100) : "-";
}

std::string replicateText(const host::ReplicateQuality& quality, const ShownTable& table) {
  std::string text = fmt::format(
      "replicates: {} pairs\n  Jaccard error: {} on average, standard deviation {}; all pairs pooled {}\n"
      "  mismatch error: {}\n",
      quality.pairs.size(), percent(quality.jaccardError.mean), percent(quality.jaccardError.deviation),
      percent(quality.overall.jaccardError()), percent(quality.overall.mismatchError()));
  for (std::size_t i = 0; i < std::min(kPairsTold, quality.pairs.size()); ++i) {
    const host::PairQuality& pair = quality.pairs[i];
    text += fmt::format("  {} and {}: Jaccard error {}, {} cells differ\n", table.samples[pair.samples.first],
                        table.samples[pair.samples.second], percent(pair.agreement.jaccardError()),
                        pair.agreement.differing);
  }
  for (std::size_t i = 0; i < std::min(kBinsTold, quality.bins.size()); ++i) {
    const host::BinQuality& bin = quality.bins[i];
    if (bin.agreement.differing == 0) break;
    text += fmt::format("  bin {}: {} of {} pairs differ\n", table.bins[bin.bin], bin.agreement.differing,
                        quality.pairs.size());
  }
  return text;
}

std::string qualityText(const host::TableQuality& quality, const host::Replicates& replicates,
                        const ShownTable& table) {
  std::string text = fmt::format(
      "{} samples, {} bins, {} of them with a single fragment\n"
      "fragments per filled cell: {}\nbin width: {} nt on average, {} nt at most\ninformation content: {}\n",
      quality.samples, quality.bins, quality.singleFragmentBins, figure(quality.fragmentsPerFilledCell, 4),
      figure(quality.meanWidth, 3), figure(quality.largestWidth, 3), figure(quality.informationContent, 4));
  if (quality.replicates) text += replicateText(*quality.replicates, table);
  for (const host::UnmadePair& unmade : replicates.unmade) {
    text += fmt::format("no pair of \"{}\" and \"{}\": {}\n", unmade.first, unmade.second, unmade.reason);
  }
  return text;
}

ordered_json number(const std::optional<double>& value) {
  return value ? ordered_json(*value) : ordered_json();
}

ordered_json agreementJson(const host::Agreement& agreement) {
  return {{"both", agreement.both},
          {"differing", agreement.differing},
          {"neither", agreement.neither},
          {"mismatchError", number(agreement.mismatchError())},
          {"jaccardError", number(agreement.jaccardError())}};
}

ordered_json qualityJson(const host::TableQuality& quality, const host::Replicates& replicates,
                         const ShownTable& table) {
  ordered_json json = {{"samples", quality.samples},
                       {"bins", quality.bins},
                       {"singleFragmentBins", quality.singleFragmentBins},
                       {"fragments", quality.fragments},
                       {"filledCells", quality.filledCells},
                       {"fragmentsPerFilledCell", number(quality.fragmentsPerFilledCell)},
                       {"meanWidthNt", number(quality.meanWidth)},
                       {"largestWidthNt", number(quality.largestWidth)},
                       {"informationContent", number(quality.informationContent)}};
  if (quality.replicates) {
    ordered_json pairs = ordered_json::array();
    for (const auto& pair : quality.replicates->pairs) {
      ordered_json entry = agreementJson(pair.agreement);
      entry["first"] = table.samples[pair.samples.first];
      entry["second"] = table.samples[pair.samples.second];
      pairs.push_back(entry);
    }
    ordered_json bins = ordered_json::array();
    for (const auto& bin : quality.replicates->bins) {
      ordered_json entry = agreementJson(bin.agreement);
      entry["bin"] = table.bins[bin.bin];
      bins.push_back(entry);
    }
    json["replicates"] = {{"jaccardErrorMean", number(quality.replicates->jaccardError.mean)},
                          {"jaccardErrorDeviation", number(quality.replicates->jaccardError.deviation)},
                          {"pooled", agreementJson(quality.replicates->overall)},
                          {"pairs", pairs},
                          {"bins", bins}};
  }
  ordered_json unmade = ordered_json::array();
  for (const auto& pair : replicates.unmade) {
    unmade.push_back({{"first", pair.first}, {"second", pair.second}, {"reason", pair.reason}});
  }
  if (!unmade.empty()) json["unmadePairs"] = unmade;
  return json;
}

}  // namespace

void addQualityCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("quality", "Tell how good the table of an analysis is");
  auto arguments = std::make_shared<QualityArguments>();
  command.final_callback([arguments, &chosen] { chosen = [arguments] { runQuality(*arguments); }; });
  command.add_option("STUDY", arguments->study, "The study file")->required();
  command.add_option("--name", arguments->name, "The analysis [the only one]")->type_name("NAME");
  command
      .add_option("--replicates", arguments->replicates,
                  "Which samples are replicates: an ending of their names, or a file with two names a line")
      ->type_name("SUFFIX-or-FILE");
  command.add_option("--json", arguments->json, "Write all figures, those of every pair and bin too")
      ->type_name("OUT");
  command.footer("Example:\n  banddesk quality primula.study --name First --replicates b");
}

void runQuality(const QualityArguments& arguments) {
  if (arguments.json) requireDistinct({*arguments.json}, {arguments.study});
  Session session;
  openAsStored(session, arguments.study, arguments.name);
  const ShownTable table = host::shownTable(session.analysis(), session.page());
  const host::Replicates replicates = replicatesOf(table, arguments.replicates);
  const host::TableQuality quality = host::qualityOf(table.view(), replicates.pairs);
  if (arguments.json) {
    const std::string text =
        qualityJson(quality, replicates, table).dump(1, ' ', false, ordered_json::error_handler_t::replace);
    writeWholeText(*arguments.json, [&](std::ostream& out) { out << text << '\n'; });
  }
  say(qualityText(quality, replicates, table));
  if (!arguments.replicates.empty() && replicates.pairs.empty() && !isFile(arguments.replicates))
    say("no replicates: \"{}\" is no file, and no shown sample's name ends in it beside one without it\n",
        arguments.replicates);
}

}  // namespace banddesk::cli
