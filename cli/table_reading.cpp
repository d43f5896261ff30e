#include "cli/table_reading.h"

#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::cli {

std::vector<BinReading> readBins(const Session& session) {
  IAFLPResultsPage& page = session.page();
  host::FinishedTable table(session.analysis(), page);
  const auto number = [&](const char* key, std::int32_t row) {
    return leadingNumber(page.CellText(key, row));
  };
  std::vector<BinReading> bins;
  for (std::int32_t row = 1; row <= page.NumRows(); ++row) {
    BinReading reading;
    reading.bin = page.Bin(row);
    reading.row = row;
    reading.dye = table.dyeOf(reading.bin);
    reading.number = roundToLong(number(kBinNumberKey, row));
    reading.meanText = page.CellText(kXMeanKey, row);
    reading.key = page.CellText(kDyeKey, row) + "-" + reading.meanText;
    reading.samples = roundToLong(number(kSampleCountKey, row));
    reading.fragments = roundToLong(number(kFragmentCountKey, row));
    reading.minSize = number(kXMinKey, row);
    reading.maxSize = number(kXMaxKey, row);
    reading.meanSize = number(kXMeanKey, row);
    reading.meanHeight = number(kYMeanKey, row);
    reading.sizeVariance = number(kXVarianceKey, row);
    reading.mark = table.markOf(row, reading.bin);
    reading.hidden = page.IsRowHidden(row);
    bins.push_back(reading);
  }
  return bins;
}

std::vector<SampleReading> readSamples(const Session& session) {
  std::vector<SampleReading> samples;
  for (const auto& column : session.analysis().SampleGrid->Columns) {
    samples.push_back({column->Key, column->ToolTip, column->ColumnOrder, column->IsExcluded,
                       column->IsAutoExcluded, session.page().IsColHidden(column->ColumnOrder)});
  }
  return samples;
}

}  // namespace banddesk::cli
