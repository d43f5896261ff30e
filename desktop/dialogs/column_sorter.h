// The dialog in which the user chooses by which columns the table is sorted.
#pragma once

#include <QTreeView>

#include "desktop/dialogs/column_selector.h"
#include "desktop/dialogs/sort_key_model.h"

namespace banddesk::desktop {

class ColumnSorter final : public QDialog {
  Q_OBJECT

 public:
  ColumnSorter(const host::ColumnSorting& draft, const ShowHelp& showHelp, QWidget* parent);

  const SortKeyModel& keys() const { return *keys_; }

 private:
  QLayout* makeButtonColumn();
  void makeKeyView();
  bool eventFilter(QObject* watched, QEvent* event) override;
  void addSelected();
  void onCurrentKey(const std::function<void(int row)>& act);
  void removeKey(int row);
  void moveKey(bool up);

  std::vector<ColumnEntry> columns_;
  ColumnListModel* available_;
  SortKeyModel* keys_;
  FilteredList* list_;
  QTreeView* keyView_;
};

// Modal over the parent. True if the user accepted; the draft is untouched otherwise.
bool sortColumns(host::ColumnSorting& draft, const ShowHelp& showHelp, QWidget* parent);

}  // namespace banddesk::desktop
