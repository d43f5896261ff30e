// A list of many rows with a box above it that leaves only the rows holding the typed text. What its owner
// does to "the shown rows" spares the others.
#pragma once

#include <QLineEdit>
#include <QListView>
#include <functional>
#include <vector>

namespace banddesk::desktop {

class FilteredList final : public QWidget {
  Q_OBJECT

 public:
  // The model outlives the list. `what` names the rows for the box and for assistive programs.
  FilteredList(QAbstractItemModel& model, const QString& what, QWidget* parent);

  QListView& view() { return *view_; }
  QLineEdit& filter() { return *filter_; }
  // In ascending order. A row that does not show is never selected.
  std::vector<int> selectedRows() const;
  std::vector<int> shownRows() const;
  // Rows that `hide` tells stay away whatever is typed; call refilter() when its answers change.
  void setAlwaysHidden(std::function<bool(int row)> hide) { alwaysHidden_ = std::move(hide); }
  void refilter();
  void select(const std::vector<int>& rows);

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;

  QAbstractItemModel& model_;
  QLineEdit* filter_;
  QListView* view_;
  std::function<bool(int row)> alwaysHidden_;
};

}  // namespace banddesk::desktop
