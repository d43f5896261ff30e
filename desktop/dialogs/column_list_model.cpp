#include "desktop/dialogs/column_list_model.h"

#include <algorithm>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {

QString listText(const ColumnEntry& column) {
  const QString label = toQString(column.label);
  const QString toolTip = toQString(column.column->ToolTip.get());
  if (label.isEmpty()) return QStringLiteral("(no name)");
  return toolTip.isEmpty() || toolTip == label ? label : QStringLiteral("%1 \u2013 %2").arg(label, toolTip);
}

int ColumnListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant ColumnListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const ColumnEntry& entry = entries_[static_cast<std::size_t>(index.row())];
  if (role == Qt::DisplayRole) return listText(entry);
  if (role == Qt::CheckStateRole && isCheckable_) return entry.isVisible ? Qt::Checked : Qt::Unchecked;
  return {};
}

bool ColumnListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || role != Qt::CheckStateRole) return false;
  entries_[static_cast<std::size_t>(index.row())].isVisible = value.toInt() == Qt::Checked;
  Q_EMIT dataChanged(index, index, {Qt::CheckStateRole});
  return true;
}

// Nothing is dropped onto a row, only between rows.
Qt::ItemFlags ColumnListModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::ItemIsDropEnabled;
  Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
  if (isCheckable_) flags |= Qt::ItemIsUserCheckable | Qt::ItemIsDragEnabled;
  return flags;
}

bool ColumnListModel::moveRows(const QModelIndex& parent, int from, int count, const QModelIndex& toParent,
                               int to) {
  if (count < 1 || from < 0 || from + count > rowCount() || to < 0 || to > rowCount()) return false;
  if (!beginMoveRows(parent, from, from + count - 1, toParent, to)) return false;
  const auto first = entries_.begin() + from;
  if (to < from) {
    std::rotate(entries_.begin() + to, first, first + count);
  } else {
    std::rotate(first, first + count, entries_.begin() + to);
  }
  endMoveRows();
  return true;
}

std::vector<int> ColumnListModel::moveInFrontOf(const std::vector<int>& rows, int target) {
  int place = target;
  const auto above = std::ranges::lower_bound(rows, target);
  // From the target outwards, so that no row that is still to be moved changes its place.
  for (auto row = above; row != rows.begin();) moveRow({}, *--row, {}, place--);
  const int first = place;
  place = target;
  for (auto row = above; row != rows.end(); ++row) moveRow({}, *row, {}, place++);
  std::vector<int> places(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) places[i] = first + static_cast<int>(i);
  return places;
}

int ColumnListModel::checkedCount() const {
  return static_cast<int>(std::ranges::count_if(entries_, &ColumnEntry::isVisible));
}

void ColumnListModel::setChecked(const std::vector<int>& rows,
                                 const std::function<bool(bool wasChecked)>& rule) {
  if (rows.empty()) return;
  for (const int row : rows) {
    bool& isChecked = entries_[static_cast<std::size_t>(row)].isVisible;
    isChecked = rule(isChecked);
  }
  const auto [lowest, highest] = std::ranges::minmax(rows);
  Q_EMIT dataChanged(index(lowest), index(highest), {Qt::CheckStateRole});
}

}  // namespace banddesk::desktop
