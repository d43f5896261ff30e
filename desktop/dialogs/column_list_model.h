// The columns of a set as a list with check marks whose order the user changes: a working copy of the draft's
// entries.
#pragma once

#include <QAbstractListModel>
#include <functional>

#include "host/framework/column_pages.h"

namespace banddesk::desktop {

using ColumnEntry = host::ColumnSelection::Entry;

// How a column is called in a list: its label, and its tool tip where that tells more.
QString listText(const ColumnEntry& column);

class ColumnListModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  ColumnListModel(std::vector<ColumnEntry> entries, QObject* parent)
      : QAbstractListModel(parent), entries_(std::move(entries)) {}

  const std::vector<ColumnEntry>& entries() const { return entries_; }
  void setCheckable(bool checkable) { isCheckable_ = checkable; }
  int checkedCount() const;
  void setChecked(const std::vector<int>& rows, const std::function<bool(bool wasChecked)>& rule);
  // Rows in ascending order, which they keep; they end up in front of `target`. Answers their new places.
  std::vector<int> moveInFrontOf(const std::vector<int>& rows, int target);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
  bool moveRows(const QModelIndex& parent, int from, int count, const QModelIndex& toParent, int to) override;

 private:
  std::vector<ColumnEntry> entries_;
  bool isCheckable_ = true;
};

}  // namespace banddesk::desktop
