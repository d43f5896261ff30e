#include "host/framework/shown_table.h"

#include "host/framework/finished_table.h"
#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::host {

namespace {

template <class Wanted>
ShownTable tableOf(const AFLP& analysis, IAFLPResultsPage& page, Wanted isWanted) {
  ShownTable table;
  std::vector<std::size_t> results;
  std::size_t result = 0;
  for (const auto& column : analysis.SampleGrid->Columns) {
    const std::size_t at = result++;
    if (page.IsColHidden(column->ColumnOrder) || !isWanted(*column)) continue;
    results.push_back(at);
    table.samples.push_back(column->ToolTip);
    table.columns.push_back(column->ColumnOrder);
  }
  FinishedTable finished(analysis, page);
  for (std::int32_t row = 1; row <= page.NumRows(); ++row) {
    if (page.IsRowHidden(row)) continue;
    table.rows.push_back(row);
    table.bins.push_back(page.CellText(kDyeKey, row) + "-" + page.CellText(kXMeanKey, row));
    table.extents.push_back(
        {leadingNumber(page.CellText(kXMinKey, row)), leadingNumber(page.CellText(kXMaxKey, row))});
    const auto counts = finished.cellsOf(page.Bin(row)).counts;
    for (const std::size_t at : results) table.counts.push_back(counts[at]);
  }
  return table;
}

}  // namespace

ShownTable shownTable(const AFLP& analysis, IAFLPResultsPage& page) {
  return tableOf(analysis, page, [](const GridColumn&) { return true; });
}

ShownTable shownTable(const AFLP& analysis, IAFLPResultsPage& page, const HostStudyService& study) {
  return tableOf(analysis, page, [&](const GridColumn& column) {
    return study.factsOf(-toLong(column.Key.get())).role != SampleRole::Blank;
  });
}

}  // namespace banddesk::host
