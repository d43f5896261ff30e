#include "host/framework/methods_text.h"

#include <cmath>
#include <fmt/format.h>
#include <map>

#include "host/framework/finished_table.h"
#include "host/framework/sample_list.h"
#include "host/framework/shown_table.h"
#include "host/study/analysis.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

using scoring::AnalysisScoring;
using scoring::Quantity;

std::string rangeText(const SizeRange& range) {
  if (std::isinf(range.to)) return fmt::format("{} nt or more", generalText(range.from));
  return fmt::format("{} to {} nt", generalText(range.from), generalText(range.to));
}

const char* levelOf(Normalisation normalisation) {
  return normalisation == Normalisation::Total ? "total" : "median";
}

std::string quantityText(const scoring::Rule& rule) {
  switch (rule.quantity) {
    case Quantity::Height:
      return "a mean height";
    case Quantity::Samples:
      return "a number of samples";
    case Quantity::Width:
      return "a width";
    case Quantity::Size:
      return "a mean size";
    case Quantity::Disagree:
      return "a share of disagreeing replicates";
    case Quantity::Blank:
      return "a number of blanks with a peak";
    case Quantity::Fragments:
      break;
  }
  return rule.percent ? "a number of fragments, in percent of the median," : "a number of fragments";
}

std::string unitOf(const scoring::Rule& rule) {
  if (rule.percent) return " %";
  if (rule.quantity == Quantity::Height) return " RFU";
  return rule.quantity == Quantity::Width || rule.quantity == Quantity::Size ? " nt" : "";
}

std::string ruleSentence(const scoring::Rule& rule) {
  return fmt::format("{} {} {}{}", quantityText(rule), rule.less ? "below" : "above", generalText(rule.limit),
                     unitOf(rule));
}

struct Tally {
  std::size_t all = 0, byHand = 0, byFilter = 0, byRule = 0;
};

Tally tallyBins(const AFLP& analysis, IAFLPResultsPage& page, const AnalysisScoring& scoring) {
  FinishedTable table(analysis, page);
  Tally tally;
  for (std::int32_t row = 1; row <= page.NumRows(); ++row) {
    const std::int32_t bin = page.Bin(row);
    if (!table.looksAt(table.dyeOf(bin))) continue;
    ++tally.all;
    const BinMark mark = table.markOf(row, bin);
    if (!isExcluded(mark)) continue;
    const bool isRules = scoring.marks.contains(page.CellText("7", row) + "-" + page.CellText("83", row));
    ++(isRules ? tally.byRule : mark == BinMark::ExcludedByHand ? tally.byHand : tally.byFilter);
  }
  return tally;
}

Tally tallySamples(const AFLP& analysis, const AnalysisScoring& scoring) {
  Tally tally;
  for (const auto& column : analysis.SampleGrid->Columns) {
    ++tally.all;
    if (scoring.marks.contains(column->Key))
      ++tally.byRule;
    else if (column->IsExcluded)
      ++tally.byHand;
    else if (column->IsAutoExcluded)
      ++tally.byFilter;
  }
  return tally;
}

std::string tallyText(const Tally& tally, const char* what, const char* filter) {
  std::string text = fmt::format("Of {} {}, {} were left out", tally.all, what,
                                 tally.byHand + tally.byFilter + tally.byRule);
  const char* separator = ": ";
  for (const auto& [why, count] : std::map<std::string, std::size_t>{
           {"by hand", tally.byHand}, {filter, tally.byFilter}, {"by rule", tally.byRule}}) {
    if (count == 0) continue;
    text += fmt::format("{}{} {}", separator, count, why);
    separator = ", ";
  }
  return text + ". ";
}

std::string makingText(const FinishedTable& table, const AnalysisScoring& scoring) {
  const CalculatorSettings& calculator = scoring.calculator;
  std::string text = "Fragments";
  if (calculator.sizeRange) text += " of " + rangeText(*calculator.sizeRange);
  text += fmt::format(" of at least {} RFU", generalText(table.yThreshold()));
  if (calculator.normalisation != Normalisation::None)
    text += fmt::format(" after dividing the heights of each sample by their {}",
                        levelOf(calculator.normalisation));
  text += calculator.bins.empty()
              ? fmt::format(" were grouped into bins of at most {} nt", generalText(table.maxBinWidth()))
              : fmt::format(" were scored in {} given bins", calculator.bins.size());
  if (calculator.alignsLanes) text += ", after the lanes were brought into line,";
  text += fmt::format(" with Banddesk {}. ", BANDDESK_VERSION);
  if (calculator.callPercent > 0)
    text += fmt::format("Fragments below {} % of the mean height of their bin were taken as absent. ",
                        generalText(calculator.callPercent));
  return text;
}

std::string rulesText(const AnalysisScoring& scoring) {
  if (scoring.rules.empty()) return {};
  std::string text = "The rules left out what has ";
  for (std::size_t i = 0; i < scoring.rules.size(); ++i)
    text += (i == 0 ? "" : ", or ") + ruleSentence(scoring.rules[i]);
  return text + ". ";
}

std::string replicateText(const AFLP& analysis, IAFLPResultsPage& page, const HostStudyService& study,
                          const AnalysisScoring& scoring) {
  const ShownTable table = shownTable(analysis, page, study);
  const SampleList samples = countedSamples(analysis, page, study);
  std::vector<ReplicatePair> pairs;
  try {
    pairs = scoring::pairsOf(individualsOf(samples, scoring.replicates).all);
  } catch (const std::invalid_argument&) {
    return {};
  }
  if (pairs.empty()) return {};
  const auto error = qualityOf(table.view(), pairs).replicates.value().jaccardError;
  if (!error.mean) return {};
  std::string text = fmt::format("The error between replicates was {:.2f} % (Jaccard, mean of {} pairs",
                                 100 * *error.mean, pairs.size());
  if (error.deviation) text += fmt::format(", standard deviation {:.2f} %", 100 * *error.deviation);
  return text + ").";
}

}  // namespace

std::vector<std::pair<std::string, std::string>> settingsOf(const AnalysisScoring& scoring) {
  std::vector<std::pair<std::string, std::string>> settings;
  const CalculatorSettings& calculator = scoring.calculator;
  const auto add = [&](const char* name, std::string value) {
    settings.emplace_back(name, std::move(value));
  };
  if (!scoring.primerPair.empty()) add("Samples of the primer pair", scoring.primerPair);
  if (calculator.sizeRange) add("Fragments count from and to", rangeText(*calculator.sizeRange));
  if (calculator.normalisation != Normalisation::None)
    add("Heights are compared by the sample's", levelOf(calculator.normalisation));
  if (calculator.callPercent > 0)
    add("A fragment counts from", generalText(calculator.callPercent) + " % of its bin's mean height");
  if (!calculator.bins.empty()) {
    add("Bins that are given", integerText(static_cast<std::int64_t>(calculator.bins.size())));
    add("Between them", calculator.findsBinsBetween ? "bins are found" : "nothing counts");
  }
  if (calculator.alignsLanes) add("Lanes", "brought into line");
  std::string rules;
  for (const scoring::Rule& rule : scoring.rules) rules += (rules.empty() ? "" : ", ") + ruleText(rule);
  if (!rules.empty()) add("Rules exclude", rules);
  if (!scoring.replicates.empty()) add("Replicates are told by", scoring.replicates);
  return settings;
}

std::string methodsText(const AFLP& analysis, IAFLPResultsPage& page, const HostStudyService& study) {
  const AnalysisScoring& scoring = hostSide(analysis).scoring();
  return makingText(FinishedTable(analysis, page), scoring) + rulesText(scoring) +
         tallyText(tallyBins(analysis, page, scoring), "bins", "as every sample has them") +
         tallyText(tallySamples(analysis, scoring), "samples", "as they have no fragment") +
         replicateText(analysis, page, study, scoring);
}

}  // namespace banddesk::host
