#include "desktop/dialogs/sort_key_model.h"

#include <algorithm>
#include <utility>

#include "desktop/dialogs/column_list_model.h"

namespace banddesk::desktop {

SortKeyModel::SortKeyModel(const host::ColumnSorting& draft, QObject* parent)
    : QAbstractTableModel(parent), keys_(draft.keys) {
  for (const auto& entry : draft.columns()) names_[entry.column.get()] = listText(entry);
}

bool SortKeyModel::isKey(const GridColumn& column) const {
  return std::ranges::any_of(keys_, [&](const SortKey& key) { return key.column.get() == &column; });
}

void SortKeyModel::add(std::shared_ptr<GridColumn> column) {
  if (isKey(*column)) return;
  beginInsertRows({}, rowCount(), rowCount());
  keys_.push_back({std::move(column), false});
  endInsertRows();
}

void SortKeyModel::remove(int row) {
  beginRemoveRows({}, row, row);
  keys_.erase(keys_.begin() + row);
  endRemoveRows();
}

void SortKeyModel::reverse(int row) {
  bool& isDescending = keys_[static_cast<std::size_t>(row)].isDescending;
  isDescending = !isDescending;
  Q_EMIT dataChanged(index(row, 1), index(row, 1));
}

bool SortKeyModel::move(int row, bool up) {
  const int other = up ? row - 1 : row + 1;
  if (other < 0 || other >= rowCount()) return false;
  beginMoveRows({}, row, row, {}, up ? other : other + 1);
  std::swap(keys_[static_cast<std::size_t>(row)], keys_[static_cast<std::size_t>(other)]);
  endMoveRows();
  return true;
}

int SortKeyModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(keys_.size());
}

QVariant SortKeyModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || role != Qt::DisplayRole) return {};
  const SortKey& key = keys_[static_cast<std::size_t>(index.row())];
  if (index.column() == 1) {
    return key.isDescending ? QStringLiteral("Descending") : QStringLiteral("Ascending");
  }
  const auto name = names_.find(key.column.get());
  return name == names_.end() ? QString() : name->second;
}

QVariant SortKeyModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return section == 0 ? QStringLiteral("Sort by") : QStringLiteral("Order");
}

}  // namespace banddesk::desktop
