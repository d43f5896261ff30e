// The grid control's rows and columns: insert, remove, hide, freeze, move and sort.
#include <limits>
#include <numeric>

#include "host/grid/grid_control.h"
#include "plugin/base/numbers.h"
#include "plugin/base/text.h"

namespace banddesk::host {
namespace {

constexpr std::int32_t kUnsorted = 2;

// What one text counts in a comparison. Numbers stand before other texts.
struct SortValue {
  bool isText = true;
  double number = 0;
  std::string text;

  SortValue(std::string_view from, bool withCase) {
    if (isNumeric(from)) {
      isText = false;
      number = leadingNumber(from);
    } else {
      text = withCase ? std::string(from) : foldCase(from);
    }
  }

  int compare(const SortValue& other) const {
    if (isText != other.isText) return isText ? 1 : -1;
    if (isText) return text.compare(other.text);
    return number < other.number ? -1 : number > other.number ? 1 : 0;
  }
};

struct SortKey {
  bool isDescending;
  std::vector<SortValue> values;  // one for each line that is sorted
};

bool standsBefore(const std::vector<SortKey>& keys, std::size_t a, std::size_t b) {
  for (const SortKey& key : keys) {
    const int order = key.values[a].compare(key.values[b]);
    if (order != 0) return key.isDescending ? order > 0 : order < 0;
  }
  return false;
}

}  // namespace

bool GridControl::InsertRows(std::int32_t start, std::int32_t count) {
  if (count > std::numeric_limits<std::int32_t>::max() - 1 - rows_.count) return false;
  if (count <= 0) return true;
  user_.endEdit(false);
  start = std::max(start, 1);
  rows_.insert(start, count);
  rows_.count += count;
  coverings_.insertLines(Axis::Rows, start, count);
  selection_.insertLines(Axis::Rows, start, count);
  return true;
}

void GridControl::moveLines(Axis which, std::int32_t first, std::int32_t last, std::int32_t target) {
  if (target >= first && target <= last + 1) return;
  user_.endEdit(false);
  axis(which).move(first, last, target);
  const std::int32_t start = target < first ? target : target - (last - first + 1);
  Block moved{1, 1, rows_.count, cols_.count};
  moved.first(which) = start;
  moved.last(which) = start + last - first;
  selection_.clear();
  selection_.add(moved);
}

bool GridControl::removeLines(Axis which, std::int32_t from, std::int32_t to) {
  from = std::max(from, 1);
  if (to < from) return true;
  discard(which, from, to);
  std::int32_t& count = axis(which).count;
  count -= std::max(std::min(to, count) - from + 1, 0);
  keepViewInside();
  return true;
}

bool GridControl::HideRows(std::int32_t from, std::int32_t to, bool hide) {
  rows_.visibility.hide(from, to, hide);
  return true;
}

bool GridControl::HideCols(std::int32_t from, std::int32_t to, bool hide) {
  cols_.visibility.hide(from, to, hide);
  return true;
}

void GridControl::SetFrozenRows(std::int32_t count, std::int32_t) { rows_.frozen = std::max(count, 0); }

void GridControl::SetFrozenCols(std::int32_t count, std::int32_t) { cols_.frozen = std::max(count, 0); }

bool GridControl::SetColWidth(std::int32_t from, std::int32_t to, std::int32_t width) {
  if (width < 0) return false;
  cols_.setWidth(from, to, width);
  return true;
}

bool GridControl::SortRows(const GridRange& range, std::int32_t count, std::span<const SortInfo> keys,
                           double) {
  return sortLines(Axis::Rows, blockOf(range), count, keys);
}

bool GridControl::SortColumns(const GridRange& range, std::int32_t count, std::span<const SortInfo> keys,
                              double) {
  return sortLines(Axis::Columns, blockOf(range), count, keys);
}

void GridControl::arrange(Axis which, std::int32_t first, std::span<const std::int32_t> order) {
  user_.endEdit(false);
  axis(which).order.permute(first, order);
}

bool GridControl::sortLines(Axis which, Block block, std::int32_t count, std::span<const SortInfo> infos) {
  const std::int32_t first = std::max(block.first(which), 1);  // the header stays where it is
  const std::int32_t last = block.last(which);
  if (block.isEmpty() || last < first) return true;
  checkReach(last);
  std::vector<SortKey> keys;
  NumberText buffer;
  for (const SortInfo& info :
       infos.first(std::min(infos.size(), static_cast<std::size_t>(std::max(count, 0))))) {
    if (info.SortOrder == kUnsorted || info.nRC < 0) continue;
    SortKey& key = keys.emplace_back(SortKey{info.SortOrder == 1, {}});
    for (std::int32_t line = first; line <= last; ++line) {
      const auto text = which == Axis::Rows ? textAt(line, info.nRC, buffer) : textAt(info.nRC, line, buffer);
      key.values.emplace_back(text, info.bCase);
    }
  }
  if (keys.empty()) return false;
  user_.endEdit(false);
  std::vector<Position> order(static_cast<std::size_t>(last - first) + 1);
  std::iota(order.begin(), order.end(), first);
  std::ranges::stable_sort(order, [&](Position a, Position b) {
    return standsBefore(keys, static_cast<std::size_t>(a - first), static_cast<std::size_t>(b - first));
  });
  axis(which).order.permute(first, order);
  return true;
}

}  // namespace banddesk::host
