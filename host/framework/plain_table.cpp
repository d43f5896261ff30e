#include "host/framework/plain_table.h"

#include <algorithm>

#include "host/framework/finished_table.h"
#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::host {
namespace {

// Places of the samples that are in the table among all results.
std::vector<std::size_t> takeSamples(PlainTable& table, const AFLP& analysis, IAFLPResultsPage& page) {
  std::vector<std::size_t> places;
  std::size_t result = 0;
  for (const auto& column : analysis.SampleGrid->Columns) {
    const std::size_t place = result++;
    if (column->IsExcluded || column->IsAutoExcluded || page.IsColHidden(column->ColumnOrder)) continue;
    places.push_back(place);
    table.bands.samples.push_back(column->ToolTip);
    table.results.push_back(static_cast<std::int32_t>(-leadingNumber(page.Key(column->ColumnOrder))));
  }
  return places;
}

struct BinRow {
  std::int32_t bin, row;
};

std::vector<BinRow> rowsByBin(IAFLPResultsPage& page, FinishedTable& finished) {
  std::vector<BinRow> rows;
  for (std::int32_t row = 1; row <= page.NumRows(); ++row) {
    const std::int32_t bin = page.Bin(row);
    if (!page.IsRowHidden(row) && finished.holds(bin) && !isExcluded(finished.markOf(row, bin)))
      rows.push_back({bin, row});
  }
  std::ranges::sort(rows, {}, &BinRow::bin);
  return rows;
}

}  // namespace

PlainTable plainTable(const AFLP& analysis, IAFLPResultsPage& page) {
  using statistics::Band;
  PlainTable table;
  const std::vector<std::size_t> places = takeSamples(table, analysis, page);
  FinishedTable finished(analysis, page);
  const std::vector<BinRow> rows = rowsByBin(page, finished);
  const std::size_t cells = places.size() * rows.size();
  table.bands.cells.resize(cells, Band::Absent);
  table.counts.resize(cells);
  table.heights.resize(cells);
  for (std::size_t locus = 0; locus < rows.size(); ++locus) {
    const auto [bin, row] = rows[locus];
    table.bands.loci.push_back({page.CellText(kDyeKey, row), leadingNumber(page.CellText(kXMeanKey, row))});
    table.bins.push_back({bin, static_cast<std::size_t>(finished.dyeOf(bin)),
                          leadingNumber(page.CellText(kXMinKey, row)),
                          leadingNumber(page.CellText(kXMaxKey, row))});
    const auto [counts, heights] = finished.cellsOf(bin);
    for (std::size_t sample = 0; sample < places.size(); ++sample) {
      const std::size_t cell = sample * rows.size() + locus;
      table.counts[cell] = counts[places[sample]];
      table.heights[cell] = static_cast<float>(heights[places[sample]]);
      if (table.counts[cell] != 0) table.bands.cells[cell] = Band::Present;
    }
  }
  return table;
}

}  // namespace banddesk::host
