#include "host/framework/column_pages.h"

#include <algorithm>

namespace banddesk::host {
namespace {

constexpr std::int32_t kAscending = 0;
constexpr std::int32_t kDescending = 1;
constexpr std::int32_t kUnsorted = 2;

}  // namespace

ColumnSelection::ColumnSelection(const GridLayout& layout) {
  for (const auto& column : layout.Columns) {
    const std::string& header = column->Header;
    entries.push_back({column, header.empty() ? column->ToolTip.get() : header, column->IsVisible});
  }
  std::ranges::stable_sort(entries, {}, [](const Entry& entry) { return entry.column->ColumnOrder.get(); });
}

void ColumnSelection::accept() {
  std::ranges::stable_partition(entries, &Entry::isVisible);
  std::int32_t order = 0;
  for (const Entry& entry : entries) {
    entry.column->ColumnOrder = ++order;
    entry.column->IsVisible = entry.isVisible;
  }
}

ColumnSorting::ColumnSorting(const GridLayout& layout) : columns_(ColumnSelection(layout).entries) {
  for (const auto& entry : columns_) {
    const GridColumn& column = *entry.column;
    if (column.SortPriority > 0 && column.SortOrder != kUnsorted) {
      keys.push_back({entry.column, column.SortOrder == kDescending});
    }
  }
  std::ranges::stable_sort(keys, {}, [](const Key& key) { return key.column->SortPriority.get(); });
}

void ColumnSorting::accept() {
  for (const auto& entry : columns_) {
    const auto key = std::ranges::find(keys, entry.column, &Key::column);
    if (key == keys.end()) {
      entry.column->SortPriority = 0;
      entry.column->SortOrder = kUnsorted;
    } else {
      entry.column->SortPriority = static_cast<std::int32_t>(key - keys.begin()) + 1;
      entry.column->SortOrder = key->isDescending ? kDescending : kAscending;
    }
  }
}

}  // namespace banddesk::host
