#include "cli/json_report.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "host/binning/height_factors.h"
#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::cli {
namespace {

using host::scoring::AnalysisScoring;
using nlohmann::ordered_json;

const char* nameOf(host::Normalisation normalisation) {
  if (normalisation == host::Normalisation::None) return "none";
  return normalisation == host::Normalisation::Total ? "total" : "median";
}

// What is as it is at first is not told.
void addScoring(ordered_json& json, const AnalysisScoring& scoring) {
  const host::CalculatorSettings& calculator = scoring.calculator;
  if (calculator.sizeRange) {
    json["sizeRangeNt"] = {calculator.sizeRange->from, nullptr};
    if (std::isfinite(calculator.sizeRange->to)) json["sizeRangeNt"][1] = calculator.sizeRange->to;
  }
  if (calculator.normalisation != host::Normalisation::None)
    json["normalisation"] = nameOf(calculator.normalisation);
  if (calculator.callPercent > 0) json["callPercent"] = calculator.callPercent;
  if (!calculator.bins.empty()) {
    json["givenBins"] = calculator.bins.size();
    json["findsBinsBetween"] = calculator.findsBinsBetween;
  }
  if (calculator.alignsLanes) json["alignsLanes"] = true;
  for (const auto& rule : scoring.rules) json["rules"].push_back(ruleText(rule));
  if (!scoring.replicates.empty()) json["replicates"] = scoring.replicates;
  if (!scoring.primerPair.empty()) json["primerPair"] = scoring.primerPair;
}

ordered_json parameters(const Session& session, const std::string& studyName) {
  const AFLP& analysis = session.analysis();
  const host::FinishedTable table(analysis, session.page());
  const ui::ControlSet& controls = session.page().Controls();
  ordered_json dyes = ordered_json::array();
  for (int dye = 0; dye < kDyeCount; ++dye) {
    if (control<ui::CheckBox>(controls, names::element(names::kDye, dye)).Value == ui::kChecked) {
      dyes.push_back("D" + std::to_string(dye + 1));
    }
  }
  const auto isChecked = [&](const char* name) {
    return control<ui::CheckBox>(controls, name).Value == ui::kChecked;
  };
  static constexpr const char* kCells[] = {"count", "presence", "height"};
  ordered_json json = {{"name", analysis.Name.get()},
                       {"study", studyName},
                       {"maxBinWidthNt", table.maxBinWidth()},
                       {"yThresholdRfu", table.yThreshold()},
                       {"dyes", dyes},
                       {"cells", kCells[analysis.SampleBinOption.get()]},
                       {"excludeFullBins", isChecked(names::kExcludeFullBins)},
                       {"excludeEmptySamples", isChecked(names::kExcludeEmptySamples)},
                       {"showExcluded", isChecked(names::kShowExcluded)}};
  addScoring(json, host::hostSide(analysis).scoring());
  return json;
}

ordered_json binJson(const BinReading& bin, const host::FinishedTable::ResultCells& cells,
                     const std::string& dyes) {
  using host::BinMark;
  return {{"bin", bin.bin},
          {"key", bin.key},
          {"row", bin.row},
          {"dye", "D" + std::to_string(bin.dye + 1)},
          {"tableDye", dyes.substr(static_cast<std::size_t>(bin.dye), 1)},
          {"number", bin.number},
          {"samples", bin.samples},
          {"fragments", bin.fragments},
          {"minSizeNt", bin.minSize},
          {"maxSizeNt", bin.maxSize},
          {"meanSizeNt", bin.meanSize},
          {"sizeVarianceNt2", bin.sizeVariance},
          {"meanHeightRfu", bin.meanHeight},
          {"manuallyExcluded", bin.mark == BinMark::ExcludedByHand},
          {"manuallyIncluded", bin.mark == BinMark::BroughtBack},
          {"filterExcluded", bin.mark == BinMark::ExcludedByFilter || bin.mark == BinMark::BroughtBack},
          {"suppressed", isExcluded(bin.mark)},
          {"hidden", bin.hidden},
          {"counts", cells.counts},
          {"maxHeightsRfu", cells.heights}};
}

// Whether the bins are made of other sizes or heights than were measured, or of given limits.
bool isChanged(const host::CalculatorSettings& settings) {
  return settings.alignsLanes || settings.normalisation != host::Normalisation::None ||
         settings.callPercent > 0 || !settings.bins.empty();
}

void addMeasured(ordered_json& json, const host::FinishedTable::OwnBin& own,
                 const host::CalculatorSettings& settings, double maxBinWidth) {
  const auto measured = own.calculator.measuredIn(own.number);
  json["measured"] = {{"minSizeNt", measured.xMin},
                      {"maxSizeNt", measured.xMax},
                      {"meanSizeNt", measured.xMean},
                      {"meanHeightRfu", measured.yMean}};
  const auto cells = own.calculator.cellsOf(own.number);
  if (settings.normalisation != host::Normalisation::None) {
    for (const auto& cell : cells) json["measured"]["maxHeightsRfu"].push_back(cell.tallest);
  }
  if (settings.callPercent > 0) {
    json["thresholdRfu"] = own.calculator.thresholdOf(own.number);
    for (const auto& cell : cells) json["takenByThreshold"].push_back(cell.taken);
  }
  if (settings.bins.empty()) return;
  if (!own.calculator.nameOf(own.number).empty()) json["name"] = own.calculator.nameOf(own.number);
  const double width = own.calculator.XMax(own.number) - own.calculator.XMin(own.number);
  if (width > maxBinWidth + 1e-9) json["isWiderThanMaximum"] = true;
}

// By dye, what was added to the sizes at the knots of each lane, and what its heights were multiplied by.
void addOfCalculators(ordered_json& json, const host::FinishedTable& table, std::size_t result) {
  for (std::int32_t dye = 0; dye < static_cast<std::int32_t>(host::kDyeCount); ++dye) {
    const auto* const calculator = table.ownCalculator(dye);
    if (calculator == nullptr) continue;
    const std::string name = "D" + std::to_string(dye + 1);
    if (result < calculator->factors().size()) {
      const double factor = calculator->factors()[result];
      json["heightFactors"][name] = factor;
      if (factor > host::kFarFactor || factor < 1 / host::kFarFactor) json["hasFarFactor"] = true;
    }
    if (result >= calculator->laneShifts().size()) continue;
    const host::ShiftCurve& curve = calculator->laneShifts()[result];
    for (std::size_t knot = 0; knot < curve.shifts().size(); ++knot)
      json["laneShiftsNt"][name].push_back({curve.knotSize(knot), curve.shifts()[knot]});
  }
}

void addFacts(ordered_json& json, const host::SampleFacts& facts) {
  if (facts.role != host::SampleRole::Sample)
    json["role"] = facts.role == host::SampleRole::Blank ? "blank" : "reference";
  if (!facts.group.empty()) json["group"] = facts.group;
  if (!facts.individual.empty()) json["individual"] = facts.individual;
  if (!facts.primerPair.empty()) json["primerPair"] = facts.primerPair;
  if (!facts.note.empty()) json["note"] = facts.note;
}

void addReason(ordered_json& json, const AnalysisScoring& scoring, const std::string& key) {
  if (const auto why = scoring.marks.find(key); why != scoring.marks.end())
    json["excludedByRule"] = why->second;
}

ordered_json sampleJson(const SampleReading& sample) {
  return {{"key", sample.key},
          {"name", sample.name},
          {"column", sample.column},
          {"excluded", sample.excluded},
          {"filterExcluded", sample.filterExcluded},
          {"hidden", sample.hidden}};
}

}  // namespace

// Bin by bin: a large analysis is never held a second time as a whole document.
void writeJson(std::ostream& out, const Session& session, const std::string& studyName,
               const std::string& dyes) {
  host::FinishedTable table(session.analysis(), session.page());
  out << "{\n\"parameters\": "
      << parameters(session, studyName).dump(-1, ' ', false, ordered_json::error_handler_t::replace)
      << ",\n\"samples\": [";
  const char* separator = "\n";
  const AnalysisScoring& scoring = host::hostSide(session.analysis()).scoring();
  std::size_t result = 0;
  for (const SampleReading& sample : readSamples(session)) {
    ordered_json json = sampleJson(sample);
    addReason(json, scoring, sample.key);
    addFacts(json, session.host().study().factsOf(-toLong(sample.key)));
    addOfCalculators(json, table, result++);
    out << separator << json.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    separator = ",\n";
  }
  out << "\n],\n\"bins\": [";
  separator = "\n";
  for (const BinReading& bin : readBins(session)) {
    ordered_json json = binJson(bin, table.cellsOf(bin.bin), dyes);
    addReason(json, scoring, bin.key);
    if (isChanged(scoring.calculator))
      addMeasured(json, table.ownBin(bin.bin), scoring.calculator, table.maxBinWidth());
    out << separator << json.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    separator = ",\n";
  }
  out << "\n]\n}\n";
}

}  // namespace banddesk::cli
