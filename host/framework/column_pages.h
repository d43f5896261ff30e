// The host's two pages over a set of columns: which of them show and in what order, and by which of them the
// table is sorted. They hold a draft; only an accepted draft reaches the columns.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "plugin/shell/persistent.h"

namespace banddesk::host {

class ColumnSelection final {
 public:
  struct Entry {
    std::shared_ptr<GridColumn> column;
    std::string label;  // the header, or the tool tip where that is empty
    bool isVisible;
  };

  explicit ColumnSelection(const GridLayout& layout);

  // In the order in which they are to stand; the user may change it and each entry's visibility.
  std::vector<Entry> entries;

  // Numbers the columns from 1, the visible ones first.
  void accept();
};

class ColumnSorting final {
 public:
  struct Key {
    std::shared_ptr<GridColumn> column;
    bool isDescending;
  };

  explicit ColumnSorting(const GridLayout& layout);

  const std::vector<ColumnSelection::Entry>& columns() const { return columns_; }
  std::vector<Key> keys;  // the first one decides first

  // Columns that are no key become unsorted.
  void accept();

 private:
  std::vector<ColumnSelection::Entry> columns_;
};

}  // namespace banddesk::host
