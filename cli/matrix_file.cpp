#include "cli/matrix_file.h"

#include <fmt/format.h>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cli/table_reading.h"
#include "plugin/base/numbers.h"

namespace banddesk::cli {
namespace {

// The cells of the bins that are to be seen, bin after bin: the file has a line for each sample, and the
// calculators answer bin by bin. Counts are whole in a double.
std::vector<double> shownCells(const Session& session, const std::vector<BinReading>& bins, Cells cells) {
  host::FinishedTable table(session.analysis(), session.page());
  std::vector<double> values;
  for (const BinReading& bin : bins) {
    const auto ofBin = table.cellsOf(bin.bin);
    if (cells == Cells::Height) {
      values.insert(values.end(), ofBin.heights.begin(), ofBin.heights.end());
    } else {
      for (const std::int32_t count : ofBin.counts)
        values.push_back(cells == Cells::Presence ? static_cast<double>(count != 0) : count);
    }
  }
  return values;
}

// Bins of the same name are counted: "D1_100.25", "D1_100.25_2". No other bin is named like the second.
std::string columnName(const BinReading& bin, std::unordered_map<std::string, int>& times) {
  const std::string name = fmt::format("D{}_{:.2f}", bin.dye + 1, bin.meanSize);
  const int time = ++times[name];
  return time == 1 ? name : fmt::format("{}_{}", name, time);
}

}  // namespace

// Fields that hold separators, quotes or line ends are quoted, quotes inside doubled.
std::string tableField(std::string_view text) {
  if (text.find_first_of("\t\"\r\n") == std::string_view::npos) return std::string(text);
  std::string field = "\"";
  for (const char c : text) {
    if (c == '"') field.push_back('"');
    field.push_back(c);
  }
  return field + "\"";
}

void writeMatrix(std::ostream& out, const Session& session, Cells cells) {
  auto bins = readBins(session);
  std::erase_if(bins, [](const BinReading& bin) { return bin.hidden; });
  const std::vector<double> values = shownCells(session, bins, cells);
  const auto results = static_cast<std::size_t>(session.analysis().Results.Count());
  std::unordered_map<std::string, int> times;
  out << "Sample";
  for (const BinReading& bin : bins) {
    out << '\t' << columnName(bin, times);
  }
  out << '\n';
  std::size_t result = 0;
  for (const SampleReading& sample : readSamples(session)) {
    const std::size_t at = result++;
    if (sample.hidden) continue;
    out << tableField(sample.name);
    for (std::size_t bin = 0; bin < bins.size(); ++bin) {
      const double value = values[bin * results + at];
      out << '\t' << (cells == Cells::Height ? generalText(value) : integerText(static_cast<int>(value)));
    }
    out << '\n';
  }
}

}  // namespace banddesk::cli
