// From a peak table to the results of a study. A study has four dye slots for good: B, G and Y, and R, or
// O where R is the size standard or absent, unless the user chooses four others.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/import/peak_table.h"
#include "host/store/stored_run.h"
#include "host/study/study.h"

namespace banddesk::host {

struct TableImport {
  std::vector<NewResult> results;     // one per sample, in the table's order
  NewRuns runs;                       // that the table holds; their settings are for the caller to tell
  std::string letters;                // of the dye in each slot
  std::vector<import::Dye> leftOver;  // dyes with peaks that found no slot
};

// What decides on the slots.
struct DyeChoice {
  std::string taken = "BGY-";         // the dyes of the study, '-' for a slot that waits for one
  bool isSettled = false;             // the study has results: dyes never move
  std::optional<std::string> chosen;  // by the user
};

// Takes the peaks and the runs out of the table. Its ladder must have been left out when it was read. Error 5
// where the choice is another than what is settled, and where runs have more than four dyes and none were
// chosen.
TableImport importTable(import::PeakTable table, const DyeChoice& dyes = {});

// The same for one run: its sized peaks but for the size standard's, by slot.
SampleFragments fragmentsOf(const runs::ProcessedRun& run, const std::string& letters);

}  // namespace banddesk::host
