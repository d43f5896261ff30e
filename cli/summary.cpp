#include "cli/summary.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <vector>

#include "cli/table_reading.h"
#include "plugin/base/text.h"
#include "plugin/page_names.h"

namespace banddesk::cli {
namespace {

constexpr std::size_t kWidestCell = 14;

struct DyeCounts {
  std::size_t fragments = 0;  // that count, in bins
  std::size_t bins = 0;
};

std::string cut(std::string_view text) {
  const auto all = characters(text);
  if (all.size() <= kWidestCell) return std::string(text);
  std::string shortened;
  for (std::size_t i = 0; i + 1 < kWidestCell; ++i) shortened.append(all[i]);
  return shortened + "…";
}

std::string aligned(const std::vector<std::vector<std::string>>& lines) {
  std::vector<std::size_t> widths;
  for (const auto& line : lines) {
    widths.resize(std::max(widths.size(), line.size()));
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], characterCount(line[i]));
  }
  std::string text;
  for (const auto& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      text.append(widths[i] - characterCount(line[i]) + (i > 0 ? 2 : 0), ' ').append(line[i]);
    }
    text.push_back('\n');
  }
  return text;
}

}  // namespace

namespace {

std::string counted(std::size_t count, const char* what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

bool isLookedAt(const Session& session, int dye) {
  return control<ui::CheckBox>(session.page().Controls(), names::element(names::kDye, dye)).Value ==
         ui::kChecked;
}

}  // namespace

// Of the dyes that the analysis looks at.
std::string summaryText(const Session& session, const std::string& dyes) {
  auto bins = readBins(session);
  std::erase_if(bins, [&](const BinReading& bin) { return !isLookedAt(session, bin.dye); });
  const auto samples = readSamples(session);
  std::array<DyeCounts, 4> counts{};
  for (const BinReading& bin : bins) {
    DyeCounts& count = counts[static_cast<std::size_t>(bin.dye)];
    count.fragments += static_cast<std::size_t>(bin.fragments);
    ++count.bins;
  }
  std::string text = counted(samples.size(), "sample") + "\n";
  for (std::size_t dye = 0; dye < counts.size(); ++dye) {
    if (counts[dye].bins == 0) continue;
    text += fmt::format("D{} ({}): {} in {}\n", dye + 1, dyes.substr(dye, 1),
                        counted(counts[dye].fragments, "fragment"), counted(counts[dye].bins, "bin"));
  }
  const auto excludedBins = static_cast<std::size_t>(
      std::ranges::count_if(bins, [](const BinReading& bin) { return isExcluded(bin.mark); }));
  const auto excludedSamples = static_cast<std::size_t>(
      std::ranges::count_if(samples, [](const auto& each) { return each.excluded || each.filterExcluded; }));
  text += fmt::format("excluded: {} of {}, {} of {}\n", excludedBins, counted(bins.size(), "bin"),
                      excludedSamples, counted(samples.size(), "sample"));
  if (excludedBins == bins.size() || excludedSamples == samples.size())
    text +=
        "nothing is left in the table; --keep-full-bins and --keep-empty-samples switch the filters off\n";
  return text;
}

std::string tableHead(const Session& session, int rows, int columns) {
  const Grid& grid = session.grid();
  const std::int32_t firstCol = grid.RowHeadersVisible() ? 0 : 1;
  std::vector<std::vector<std::string>> lines;
  for (std::int32_t row = grid.ColHeadersVisible() ? 0 : 1; row <= grid.RowCount(); ++row) {
    if (static_cast<int>(lines.size()) > rows) break;
    if (grid.IsRowHidden(row)) continue;
    std::vector<std::string>& line = lines.emplace_back();
    for (std::int32_t col = firstCol; col <= grid.ColCount(); ++col) {
      if (static_cast<int>(line.size()) == columns) break;
      if (!grid.IsColHidden(col)) line.push_back(cut(grid.GetValue(row, col)));
    }
  }
  return aligned(lines);
}

}  // namespace banddesk::cli
