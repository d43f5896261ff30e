// The sort keys of a draft as a table of two columns, the column's name and the direction. The first key
// decides first. A working copy.
#pragma once

#include <QAbstractTableModel>
#include <map>

#include "host/framework/column_pages.h"

namespace banddesk::desktop {

using SortKey = host::ColumnSorting::Key;

class SortKeyModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  SortKeyModel(const host::ColumnSorting& draft, QObject* parent);

  const std::vector<SortKey>& keys() const { return keys_; }
  bool isKey(const GridColumn& column) const;
  void add(std::shared_ptr<GridColumn> column);
  void remove(int row);
  void reverse(int row);
  // By one place; false at the end.
  bool move(int row, bool up);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 2; }
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  std::vector<SortKey> keys_;
  std::map<const GridColumn*, QString> names_;
};

}  // namespace banddesk::desktop
