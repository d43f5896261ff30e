#include "host/framework/page_hand.h"

#include <utility>

#include "plugin/page_names.h"

namespace banddesk::host {
namespace {

constexpr std::int32_t kAnyBinColumn = 1;

}  // namespace

PageHand::PageHand(IAFLPResultsPage& page, HostPlatform& platform)
    : page_(page),
      platform_(platform),
      grid_(required(page.Controls().find<GridControl>(names::kGrid), "Grid")) {}

// What is to change sides shows for the moment: the menu passes over what is hidden.
void PageHand::toggleBins(const std::vector<std::int32_t>& rows) {
  if (rows.empty()) return;
  for (const std::int32_t row : rows) page_.HideRows(row, row, false);
  select(rows, page_.Transpose());
  choose(rows.front(), kAnyBinColumn, names::kExcludeBin);
}

void PageHand::toggleSamples(const std::vector<std::int32_t>& columns) {
  if (columns.empty()) return;
  for (const std::int32_t column : columns) page_.HideCols(column, column, false);
  select(columns, !page_.Transpose());
  choose(0, columns.front(), names::kExcludeColumn);
}

void PageHand::select(const std::vector<std::int32_t>& lines, bool areColumns) {
  bool adds = false;
  for (std::size_t begin = 0; begin < lines.size();) {
    std::size_t end = begin + 1;
    while (end < lines.size() && lines[end] == lines[end - 1] + 1) ++end;
    const bool more = std::exchange(adds, true);
    areColumns ? grid_.user().selectCols(lines[begin], lines[end - 1], more)
               : grid_.user().selectRows(lines[begin], lines[end - 1], more);
    begin = end;
  }
}

void PageHand::choose(std::int32_t row, std::int32_t column, const char* item) {
  if (page_.Transpose()) std::swap(row, column);
  platform_.withoutPopups([&] { grid_.user().rightClick(row, column); });
  required(page_.Controls().find<ui::MenuItem>(item), item).choose();
}

}  // namespace banddesk::host
