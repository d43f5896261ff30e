#include "plugin/analysis/bin_statistics.h"

#include <algorithm>

#include "plugin/base/numbers.h"
#include "plugin/base/text.h"
#include "plugin/page_names.h"

namespace banddesk {
namespace {

constexpr std::int32_t kKeepStyle = -1;
constexpr std::size_t kOneFragment = 1;
constexpr std::size_t kSeveralFragments = 2;
constexpr std::int32_t kShowPresence = 1;
constexpr std::int32_t kShowMaxY = 2;

// Heights are looked at only where they are shown: they are the larger part of the arrays.
inline std::int32_t cellValue(std::int32_t option, std::int32_t count, std::span<const double> heights,
                              std::size_t result) {
  if (option == kShowPresence) return 1;
  return option == kShowMaxY ? roundToLong(heights[result]) : count;
}

}  // namespace

std::vector<std::int32_t> BinStatistics::resultColumns() const {
  const AFLP& analysis = page_.analysis();
  const auto& columns = analysis.SampleGrid->Columns;
  std::vector<std::int32_t> places;
  places.reserve(static_cast<std::size_t>(analysis.Results.Count()));
  for (const auto& result : analysis.Results) {
    const std::string key = sampleKey(result->ResultID);
    places.push_back(page_.framework().ItemExists(columns, key) ? table_.Col(key) : 0);
  }
  return places;
}

void BinStatistics::CalcBin(std::int32_t row, std::int32_t bin, std::span<const std::int32_t> counts,
                            std::span<const double> heights, std::span<const std::int32_t> columns) {
  page_.frame.procedure("CalcBin", [&] {
    const bool refresh = bin == kRefresh;
    const std::int32_t shown = refresh ? table_.Bin(row) : bin;
    if (!refresh) storeBin(shown, counts, heights);
    const auto stored = std::as_const(bins_).fragmentCounts(shown);
    const auto highest = std::as_const(bins_).maxYHeights(shown);
    const std::int32_t option = page_.analysis().SampleBinOption;
    const std::int32_t one = refresh ? kKeepStyle : styles_.baseStyle(kOneFragment);
    const std::int32_t several = refresh ? kKeepStyle : styles_.baseStyle(kSeveralFragments);
    findFilled(stored);
    line_.resize(filled_.size());
    auto* cell = line_.data();
    for (const std::uint32_t i : filled_) {
      const std::int32_t count = stored[i];
      const std::int32_t col = i < columns.size() ? columns[i] : 0;
      if (col == 0) raiseMissingColumn(static_cast<std::int32_t>(i) + 1);
      *cell++ = {col, cellValue(option, count, highest, i), count == 1 ? one : several};
    }
    if (!line_.empty()) table_.writeRow(row, line_);
  });
}

// Which results have a fragment is chance, so no branch asks for it.
void BinStatistics::findFilled(std::span<const std::int32_t> counts) {
  filled_.resize(counts.size());
  std::size_t found = 0;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    filled_[found] = static_cast<std::uint32_t>(i);
    found += counts[i] != 0 ? 1U : 0U;
  }
  filled_.resize(found);
}

// The look-up says what is missing: the result, or its column.
void BinStatistics::raiseMissingColumn(std::int32_t result) const {
  const std::int32_t id = page_.analysis().Results.Item(result)->ResultID;
  page_.frame.procedure("CellText (Let)", [&] { table_.Col(sampleKey(id)); });
}

void BinStatistics::storeBin(std::int32_t bin, std::span<const std::int32_t> counts,
                             std::span<const double> heights) {
  const auto results = static_cast<std::size_t>(bins_.resultCount());
  if (counts.size() < results || heights.size() < results) {
    raise(ErrorNumber::SubscriptOutOfRange, "CalcBin", "The bin's data do not cover all results.");
  }
  std::copy_n(counts.begin(), results, bins_.fragmentCounts(bin).begin());
  std::copy_n(heights.begin(), results, bins_.maxYHeights(bin).begin());
}

void BinStatistics::CalcAFLP() {
  page_.frame.procedure("CalcAFLP", [&] {
    Progress& progress = page_.progress();
    progress.Start(100.0, 0);
    const std::int32_t rows = table_.NumRows();
    const auto step = static_cast<float>(progress.Maximum() / page_.framework().Max(rows, 1));
    table_.style().Free();
    const auto columns = resultColumns();
    for (std::int32_t row = 1; row <= rows; ++row) {
      CalcBin(row, kRefresh, {}, {}, columns);
      progress.SetPosition(static_cast<double>(step) * row);
    }
    sizing_.ResizeCols();
    progress.Finish();
    pending_.clear(kPendingCalcAFLP);
  });
}

std::shared_ptr<Collection<std::shared_ptr<Bin>>> BinStatistics::Bins() {
  return page_.frame.procedure("Bins", [&] {
    Grid& grid = table_.grid();
    const bool locked = grid.LockUpdate(true);
    auto records = std::make_shared<Collection<std::shared_ptr<Bin>>>();
    const std::int32_t rows = table_.NumRows();
    for (std::int32_t row = 1; row <= rows; ++row) {
      if (!table_.IsRowHidden(row)) records->Add(binOfRow(row));
    }
    grid.LockUpdate(locked);
    return records;
  });
}

std::shared_ptr<Bin> BinStatistics::binOfRow(std::int32_t row) {
  const auto whole = [&](const char* key) {
    return roundToLong(leadingNumber(table_.CurrentCellText(key, row)));
  };
  const auto number = [&](const char* key) {
    return static_cast<float>(leadingNumber(table_.CurrentCellText(key, row)));
  };
  auto record = std::make_shared<Bin>();
  record->BinNumber = whole(kBinNumberKey);
  record->Dye = table_.CurrentCellText(kDyeKey, row);
  record->SampleCount = whole(kSampleCountKey);
  record->FragmentCount = whole(kFragmentCountKey);
  record->XMin = number(kXMinKey);
  record->XMax = number(kXMaxKey);
  record->XMean = number(kXMeanKey);
  record->XVariance = number(kXVarianceKey);
  record->YMean = number(kYMeanKey);
  addResults(*record, table_.Bin(row));
  return record;
}

// The index into the bin's data stands still at a hidden column: behind one, results are read one position to
// the left of their own data. Callers rely on it.
void BinStatistics::addResults(Bin& record, std::int32_t bin) {
  const AFLP& analysis = page_.analysis();
  std::int32_t index = 0;
  for (const auto& result : analysis.Results) {
    const auto column = analysis.SampleGrid->Columns.Item(sampleKey(result->ResultID));
    if (table_.IsColHidden(column->ColumnOrder)) continue;
    const std::size_t at = bins_.resultAt(index);
    AFLPResult entry;
    entry.FragmentCount = bins_.fragmentCounts(bin)[at];
    entry.BinaryPresence = entry.FragmentCount != 0 ? 1 : 0;
    entry.MaxYHeight = bins_.maxYHeights(bin)[at];
    record.AFLPResults.Add(entry);
    ++index;
  }
}

std::shared_ptr<Collection<std::shared_ptr<AFLPStudyResult>>> BinStatistics::AFLPStudyResults() {
  return page_.frame.procedure("AFLPStudyResults", [&] {
    auto records = std::make_shared<Collection<std::shared_ptr<AFLPStudyResult>>>();
    const AFLP& analysis = page_.analysis();
    for (const auto& result : analysis.Results) {
      const auto column = analysis.SampleGrid->Columns.Item(sampleKey(result->ResultID));
      if (table_.IsColHidden(column->ColumnOrder)) continue;
      auto record = std::make_shared<AFLPStudyResult>();
      record->Name = trimRight(required(result->Sample, "Sample").Name.get());
      records->Add(record);
    }
    return records;
  });
}

}  // namespace banddesk
