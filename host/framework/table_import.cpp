#include "host/framework/table_import.h"

#include <algorithm>
#include <utility>

namespace banddesk::host {
namespace {

bool hasPeaks(const import::PeakTable& table, import::Dye dye) {
  return std::any_of(table.samples.begin(), table.samples.end(),
                     [&](const import::Sample& sample) { return !sample.peaks(dye).sizes.empty(); });
}

}  // namespace

TableImport importTable(import::PeakTable table, std::optional<import::Dye> fourth) {
  using import::Dye;
  TableImport imported;
  const bool hasR = hasPeaks(table, Dye::R);
  const bool hasO = hasPeaks(table, Dye::O);
  const Dye last = fourth ? *fourth : hasO && !hasR ? Dye::O : Dye::R;
  imported.slots = {Dye::B, Dye::G, Dye::Y, last};
  if (last == Dye::R ? hasO : hasR) imported.leftOver = last == Dye::R ? Dye::O : Dye::R;

  imported.results.reserve(table.samples.size());
  for (import::Sample& sample : table.samples) {
    NewResult result;
    result.sampleName = std::move(sample.name);
    for (std::size_t slot = 0; slot < kDyeCount; ++slot) {
      import::DyePeaks& peaks = sample.peaks(*imported.slots[slot]);
      result.fragments.dyes[slot] = {std::move(peaks.sizes), std::move(peaks.heights)};
    }
    imported.results.push_back(std::move(result));
  }
  return imported;
}

}  // namespace banddesk::host
