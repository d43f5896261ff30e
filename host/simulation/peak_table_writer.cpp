#include "host/simulation/peak_table_writer.h"

#include <cstdint>
#include <fmt/compile.h>
#include <fmt/format.h>
#include <iterator>
#include <string_view>

namespace banddesk::host::simulation {
namespace {

constexpr std::string_view header =
    "Status\tSample Name\tSample Type\tSize Standard\tAnalysis "
    "Method\tSQI\tOffscale\tQuality\tUD1\tUD2\tUD3\t"
    "Dye/Sample Peak\tSample File Name\tSize\tHeight\tArea in Point\tArea in BP\tData Point\tBegin "
    "Point\tBegin BP\t"
    "End Point\tEnd BP\tWidth in Point\tWidth in BP\tUser Comments\tUser Edit\n";

using Text = fmt::memory_buffer;

/// A tenth of the runs has gone off scale somewhere, which every row of the run then says.
std::string_view offscale(const SimulatedRun& run) { return run.genotype % 10 == 9 ? "Check" : "Pass"; }

std::string_view sampleName(const SimulatedRun& run) {
  return std::string_view(run.name).substr(0, run.name.find('.'));
}

void appendDye(Text& text, const SimulatedRun& run, char dye, const std::vector<Peak>& peaks) {
  std::size_t number = 0;
  for (const Peak& peak : peaks) {
    const auto area = static_cast<std::int64_t>(peak.height * 9);
    const auto point = static_cast<std::int64_t>(1000 + peak.size * 12);
    // fmt writes the shortest text that reads back as the same number.
    fmt::format_to(
        std::back_inserter(text),
        FMT_COMPILE("Analyzed\t{}\tSample\tGS500\tAFLP\tfalse\t{}\tPass\t\t\t\t\"{}, {}\"\t{}.fsa\t{}\t{}\t"
                    "{}\t{}\t{}\t{}\t{:.4f}\t{}\t{:.4f}\t9\t0.75\t\t\n"),
        sampleName(run), offscale(run), dye, ++number, run.name, peak.size, peak.height, area, area / 12,
        point, point - 5, peak.size - 0.375, point + 5, peak.size + 0.375);
  }
}

void appendRun(Text& text, const SimulatedRuns& simulated, const SimulatedRun& run) {
  for (std::size_t dye = 0; dye < simulated.dyes.size(); ++dye)
    appendDye(text, run, simulated.dyes[dye], run.dyes[dye]);
  if (simulated.ladderDye) appendDye(text, run, *simulated.ladderDye, run.ladder);
}

}  // namespace

std::string peakTable(const SimulatedRuns& simulated) {
  Text text;
  text.append(header);
  for (const SimulatedRun& run : simulated.runs) appendRun(text, simulated, run);
  return fmt::to_string(text);
}

void writePeakTable(std::ostream& out, const SimulatedRuns& simulated) {
  out << header;
  Text text;
  for (const SimulatedRun& run : simulated.runs) {
    text.clear();
    appendRun(text, simulated, run);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
  }
}

}  // namespace banddesk::host::simulation
