// The table of an analysis as it is shown, in arrays: what the figures of its quality are made from.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/framework/study_service.h"
#include "host/quality/table_quality.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

// Bins in the order of the rows, samples in the order of the results; what is hidden is left out.
struct ShownTable {
  std::vector<std::string> samples;  // full names
  std::vector<std::string> bins;     // dye and mean size: "D1-100.25"
  std::vector<BinExtent> extents;
  std::vector<std::int32_t> counts;  // a line of all samples for each bin
  // Where they stand in the logical table.
  std::vector<std::int32_t> rows;
  std::vector<std::int32_t> columns;

  TableView view() const { return {counts, extents, samples.size()}; }
};

ShownTable shownTable(const AFLP& analysis, IAFLPResultsPage& page);
// The same without blanks, which count in no figure.
ShownTable shownTable(const AFLP& analysis, IAFLPResultsPage& page, const HostStudyService& study);

}  // namespace banddesk::host
