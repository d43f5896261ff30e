// From a peak table to the results of a study. A study has four dye slots for good: B, G and Y hold the first
// three, and the fourth is R's, or O's where R is the size standard or absent.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "host/import/peak_table.h"
#include "host/study/study.h"

namespace banddesk::host {

struct TableImport {
  std::vector<NewResult> results;                           // one per sample, in the table's order
  std::array<std::optional<import::Dye>, kDyeCount> slots;  // which dye of the table each slot holds
  std::optional<import::Dye> leftOver;                      // a dye with peaks that found no slot
};

// Takes the peaks out of the table. Its ladder must have been left out when it was read. `fourth` is what the
// study's fourth slot holds already: dyes never move.
TableImport importTable(import::PeakTable table, std::optional<import::Dye> fourth = std::nullopt);

}  // namespace banddesk::host
