#include "cli/quality_command.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <vector>

#include "cli/output_file.h"
#include "cli/say.h"
#include "cli/scoring_options.h"
#include "cli/session.h"
#include "cli/study_analysis.h"
#include "host/framework/shown_table.h"
#include "host/import/pair_file.h"
#include "plugin/base/text.h"

namespace banddesk::cli {
namespace {

using host::ShownTable;
using host::scoring::FigureMeans;
using host::scoring::Individual;
using host::scoring::Individuals;
using host::scoring::PairFigures;
using nlohmann::ordered_json;

constexpr std::size_t kPairsTold = 5;
constexpr std::size_t kBinsTold = 10;

// The individuals, and how far their runs agree: in all bins, and in those of each dye.
struct Replicated {
  Individuals individuals;
  std::vector<PairFigures> figures;
  std::vector<std::pair<std::string, FigureMeans>> parts;
};

Replicated compared(const ShownTable& table, Individuals individuals) {
  Replicated made{std::move(individuals), {}, {}};
  const auto pairs = pairsOf(made.individuals.all);
  std::map<std::string, std::vector<std::size_t>> dyes;
  std::vector<std::size_t> all(table.bins.size());
  for (std::size_t bin = 0; bin < all.size(); ++bin) {
    all[bin] = bin;
    dyes[table.bins[bin].substr(0, table.bins[bin].find('-'))].push_back(bin);
  }
  made.figures = host::scoring::figuresOf(table.view(), pairs, all);
  if (pairs.empty() || dyes.size() < 2) return made;
  for (const auto& [dye, bins] : dyes)
    made.parts.emplace_back(dye, meansOf(host::scoring::figuresOf(table.view(), pairs, bins)));
  return made;
}

std::string figure(const std::optional<double>& value, int decimals) {
  return value ? fmt::format("{:.{}f}", *value, decimals) : "-";
}

std::string percent(const std::optional<double>& value) {
  return value ? fmt::format("{:.2f} %", *value * 100) : "-";
}

std::string replicateText(const host::ReplicateQuality& quality, const FigureMeans& means,
                          const ShownTable& table) {
  std::string text = fmt::format(
      "replicates: {} pairs\n  Jaccard error: {} on average, standard deviation {}; all pairs pooled {}\n"
      "  mismatch error: {} on average, standard deviation {}; all pairs pooled {}\n"
      "  Euclidean distance: {} on average, standard deviation {}\n",
      quality.pairs.size(), percent(means.jaccard.mean), percent(means.jaccard.deviation),
      percent(quality.overall.jaccardError()), percent(means.simpleMatching.mean),
      percent(means.simpleMatching.deviation), percent(quality.overall.mismatchError()),
      figure(means.euclidean.mean, 4), figure(means.euclidean.deviation, 4));
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

std::string qualityText(const host::TableQuality& quality, const Replicated& replicates,
                        const ShownTable& table) {
  std::string text = fmt::format(
      "{} samples, {} bins, {} of them with a single fragment\n"
      "fragments per filled cell: {}\nbin width: {} nt on average, {} nt at most\ninformation content: {}\n",
      quality.samples, quality.bins, quality.singleFragmentBins, figure(quality.fragmentsPerFilledCell, 4),
      figure(quality.meanWidth, 3), figure(quality.largestWidth, 3), figure(quality.informationContent, 4));
  if (quality.replicates) text += replicateText(*quality.replicates, meansOf(replicates.figures), table);
  for (const auto& [part, means] : replicates.parts)
    text += fmt::format("  {}: Jaccard error {} on average, standard deviation {}\n", part,
                        percent(means.jaccard.mean), percent(means.jaccard.deviation));
  for (const host::UnmadePair& unmade : replicates.individuals.unmade) {
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

ordered_json meanJson(const FigureMeans& means) {
  return {{"jaccardMean", number(means.jaccard.mean)},
          {"jaccardDeviation", number(means.jaccard.deviation)},
          {"simpleMatchingMean", number(means.simpleMatching.mean)},
          {"simpleMatchingDeviation", number(means.simpleMatching.deviation)},
          {"euclideanMean", number(means.euclidean.mean)},
          {"euclideanDeviation", number(means.euclidean.deviation)}};
}

// By individual, sample and dye.
ordered_json comparedJson(const Replicated& replicates, const ShownTable& table) {
  ordered_json json = {{"overall", meanJson(meansOf(replicates.figures))}};
  for (const Individual& each : replicates.individuals.all) {
    ordered_json samples = ordered_json::array();
    for (const std::size_t sample : each.samples) samples.push_back(table.samples[sample]);
    json["individuals"].push_back({{"name", each.name}, {"samples", samples}});
    for (const std::size_t sample : each.samples) {
      if (each.samples.size() < 2) continue;
      ordered_json entry = {{"sample", table.samples[sample]}};
      entry.update(meanJson(meansOfSample(replicates.figures, sample)));
      json["bySample"].push_back(entry);
    }
  }
  for (const PairFigures& pair : replicates.figures)
    json["pairs"].push_back({{"first", table.samples[pair.samples.first]},
                             {"second", table.samples[pair.samples.second]},
                             {"jaccard", number(pair.jaccard)},
                             {"simpleMatching", number(pair.simpleMatching)},
                             {"euclidean", pair.euclidean}});
  for (const auto& [dye, means] : replicates.parts) json["byDye"][dye] = meanJson(means);
  return json;
}

ordered_json qualityJson(const host::TableQuality& quality, const Replicated& replicates,
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
    json["agreement"] = comparedJson(replicates, table);
  }
  ordered_json unmade = ordered_json::array();
  for (const auto& pair : replicates.individuals.unmade) {
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
  addReplicatesOption(command, arguments->replicates);
  command.add_option("--json", arguments->json, "Write all figures, those of every pair and bin too")
      ->type_name("OUT");
  command.footer("Example:\n  banddesk quality primula.study --name First --replicates b");
}

void runQuality(const QualityArguments& arguments) {
  if (arguments.json) requireDistinct({*arguments.json}, {arguments.study});
  Session session;
  openAsStored(session, arguments.study, arguments.name);
  const ShownTable table = host::shownTable(session.analysis(), session.page(), session.host().study());
  const Replicated replicates =
      compared(table, individualsIn(session, Listed::Counted, arguments.replicates));
  const host::TableQuality quality = host::qualityOf(table.view(), pairsOf(replicates.individuals.all));
  if (arguments.json) {
    const std::string text =
        qualityJson(quality, replicates, table).dump(1, ' ', false, ordered_json::error_handler_t::replace);
    writeWholeText(*arguments.json, [&](std::ostream& out) { out << text << '\n'; });
  }
  say(qualityText(quality, replicates, table));
}

}  // namespace banddesk::cli
