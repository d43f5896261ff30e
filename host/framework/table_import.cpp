#include "host/framework/table_import.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

#include "plugin/base/error.h"

namespace banddesk::host {
namespace {

using import::Dye;

bool hasPeaks(const import::PeakTable& table, Dye dye) {
  return std::any_of(table.samples.begin(), table.samples.end(),
                     [&](const import::Sample& sample) { return !sample.peaks(dye).sizes.empty(); });
}

// A dye that is left out would be missed too late, so the user is asked.
void requireChoice(const import::PeakTable& table) {
  if (table.runDyes.size() <= kDyeCount) return;
  std::string names;
  for (const import::RunDyeName& dye : table.runDyes)
    names += fmt::format("{}{} ({})", names.empty() ? "" : ", ", dye.letter, dye.name);
  raise(ErrorNumber::InvalidArgument, "Import",
        fmt::format("The runs have {} dyes beside the size standard, {}, and a study has four: choose them, "
                    "such as --dyes B,G,Y,R",
                    table.runDyes.size(), names));
}

std::string spelled(const std::string& letters) {
  std::string text;
  for (const char letter : letters) text += (text.empty() ? "" : ",") + std::string(1, letter);
  return text;
}

std::string lettersFor(const import::PeakTable& table, const DyeChoice& dyes) {
  std::string letters = dyes.taken;
  if (dyes.chosen) {
    for (std::size_t slot = 0; slot < kDyeCount && dyes.isSettled; ++slot)
      if (letters[slot] != kNoDye && letters[slot] != dyes.chosen->at(slot))
        raise(ErrorNumber::InvalidArgument, "Import",
              fmt::format("The study's dyes are {} and stay so; {} was chosen", spelled(letters),
                          spelled(*dyes.chosen)));
    return *dyes.chosen;
  }
  if (letters.back() != kNoDye) return letters;
  requireChoice(table);
  Dye last = Dye::R;
  for (const Dye dye : {Dye::P, Dye::O, Dye::R})
    if (hasPeaks(table, dye)) last = dye;
  letters.back() = import::letterOf(last);
  return letters;
}

NewRuns::Run newRun(import::ReadRun run) {
  return {std::move(run.processed), std::move(run.traces), run.sample};
}

}  // namespace

TableImport importTable(import::PeakTable table, const DyeChoice& dyes) {
  TableImport imported;
  imported.letters = lettersFor(table, dyes);
  for (const Dye dye : import::allDyes)
    if (imported.letters.find(import::letterOf(dye)) == std::string::npos && hasPeaks(table, dye))
      imported.leftOver.push_back(dye);

  imported.results.reserve(table.samples.size());
  for (import::Sample& sample : table.samples) {
    NewResult result;
    result.sampleName = std::move(sample.name);
    for (std::size_t slot = 0; slot < kDyeCount; ++slot) {
      const auto dye = import::dyeOf(std::string_view(&imported.letters[slot], 1));
      if (!dye) continue;
      import::DyePeaks& peaks = sample.peaks(*dye);
      result.fragments.dyes[slot] = {std::move(peaks.sizes), std::move(peaks.heights)};
    }
    imported.results.push_back(std::move(result));
  }
  for (import::ReadRun& run : table.runs) imported.runs.runs.push_back(newRun(std::move(run)));
  return imported;
}

SampleFragments fragmentsOf(const runs::ProcessedRun& run, const std::string& letters) {
  SampleFragments fragments;
  for (const runs::Peak& peak : run.peaks) {
    if (!peak.hasSize() || peak.channel == run.ladder.channel) continue;
    const auto dye = std::ranges::find(run.run.dyes, peak.channel, &runs::RunDye::channel);
    const std::size_t slot = dye == run.run.dyes.end() ? std::string::npos : letters.find(dye->letter);
    if (slot == std::string::npos) continue;
    fragments.dyes.at(slot).sizes.push_back(peak.size);
    fragments.dyes.at(slot).heights.push_back(peak.height);
  }
  return fragments;
}

}  // namespace banddesk::host
