#include "cli/json_report.h"

#include <nlohmann/json.hpp>

#include "plugin/page_names.h"

namespace banddesk::cli {
namespace {

using nlohmann::ordered_json;

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
  return {{"name", analysis.Name.get()},
          {"study", studyName},
          {"maxBinWidthNt", table.maxBinWidth()},
          {"yThresholdRfu", table.yThreshold()},
          {"dyes", dyes},
          {"cells", kCells[analysis.SampleBinOption.get()]},
          {"excludeFullBins", isChecked(names::kExcludeFullBins)},
          {"excludeEmptySamples", isChecked(names::kExcludeEmptySamples)},
          {"showExcluded", isChecked(names::kShowExcluded)}};
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
  for (const SampleReading& sample : readSamples(session)) {
    out << separator << sampleJson(sample).dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    separator = ",\n";
  }
  out << "\n],\n\"bins\": [";
  separator = "\n";
  for (const BinReading& bin : readBins(session)) {
    out << separator << binJson(bin, table.cellsOf(bin.bin), dyes).dump();
    separator = ",\n";
  }
  out << "\n]\n}\n";
}

}  // namespace banddesk::cli
