#include "cli/matrix_file.h"

#include <fmt/format.h>
#include <string>
#include <string_view>
#include <unordered_map>

#include "cli/table_reading.h"
#include "plugin/base/numbers.h"

namespace banddesk::cli {
namespace {

// Fields that hold separators, quotes or line ends are quoted, quotes inside doubled.
std::string escaped(std::string_view text) {
  if (text.find_first_of("\t\"\r\n") == std::string_view::npos) return std::string(text);
  std::string field = "\"";
  for (const char c : text) {
    if (c == '"') field.push_back('"');
    field.push_back(c);
  }
  return field + "\"";
}

std::string cellText(const AnalysisView& view, std::int32_t bin, std::size_t result, Cells cells) {
  const std::size_t at = static_cast<std::size_t>(bin) * static_cast<std::size_t>(view.resultCount) + result;
  const std::int32_t count = view.fragmentCounts[at];
  switch (cells) {
    case Cells::Count:
      return integerText(count);
    case Cells::Presence:
      return count != 0 ? "1" : "0";
    case Cells::Height:
      return generalText(view.maxYHeights[at]);
  }
  return {};
}

// Bins of the same name are counted: "D1_100.25", "D1_100.25_2". No other bin is named like the second.
std::string columnName(const BinReading& bin, std::unordered_map<std::string, int>& times) {
  const std::string name = fmt::format("D{}_{:.2f}", bin.dye + 1, bin.meanSize);
  const int time = ++times[name];
  return time == 1 ? name : fmt::format("{}_{}", name, time);
}

}  // namespace

void writeMatrix(std::ostream& out, const Session& session, Cells cells) {
  const AnalysisView view = session.page().Analysis();
  const auto bins = readBins(session);
  std::unordered_map<std::string, int> times;
  out << "Sample";
  for (const BinReading& bin : bins) {
    if (!bin.hidden) out << '\t' << columnName(bin, times);
  }
  out << '\n';
  std::size_t result = 0;
  for (const SampleReading& sample : readSamples(session)) {
    const std::size_t at = result++;
    if (sample.hidden) continue;
    out << escaped(sample.name);
    for (const BinReading& bin : bins) {
      if (!bin.hidden) out << '\t' << cellText(view, bin.bin, at, cells);
    }
    out << '\n';
  }
}

}  // namespace banddesk::cli
