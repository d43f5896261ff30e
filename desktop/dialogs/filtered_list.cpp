#include "desktop/dialogs/filtered_list.h"

#include <QKeyEvent>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>

namespace banddesk::desktop {

FilteredList::FilteredList(QAbstractItemModel& model, const QString& what, QWidget* parent)
    : QWidget(parent), model_(model), filter_(new QLineEdit(this)), view_(new QListView(this)) {
  filter_->setPlaceholderText(QStringLiteral("Find %1").arg(what.toLower()));
  filter_->setAccessibleName(filter_->placeholderText());
  filter_->setClearButtonEnabled(true);
  filter_->setObjectName(QStringLiteral("filter"));
  view_->setAccessibleName(what);
  view_->setObjectName(QStringLiteral("list"));
  view_->setUniformItemSizes(true);
  view_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  view_->setTextElideMode(Qt::ElideMiddle);
  view_->setModel(&model);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(filter_);
  layout->addWidget(view_);
  setFocusProxy(view_);

  filter_->installEventFilter(this);
  connect(filter_, &QLineEdit::textChanged, this, [this] { refilter(); });
  auto* find = new QShortcut(QKeySequence::Find, this);
  find->setContext(Qt::WindowShortcut);
  connect(find, &QShortcut::activated, filter_, [this] {
    filter_->setFocus();
    filter_->selectAll();
  });
}

// From the box, Enter and the arrow lead to the first row found; Enter must not close the dialog.
bool FilteredList::eventFilter(QObject* watched, QEvent* event) {
  if (watched != filter_ || event->type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent*>(event)->key();
  if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_Down) return false;
  const std::vector<int> shown = shownRows();
  if (!shown.empty()) select({shown.front()});
  view_->setFocus();
  return true;
}

void FilteredList::refilter() {
  const QString wanted = filter_->text().trimmed();
  QItemSelection gone;
  for (int row = 0; row < model_.rowCount(); ++row) {
    const QModelIndex index = model_.index(row, 0);
    const bool isHidden = (alwaysHidden_ && alwaysHidden_(row)) ||
                          !index.data().toString().contains(wanted, Qt::CaseInsensitive);
    if (isHidden) gone.select(index, index);
    if (isHidden != view_->isRowHidden(row)) view_->setRowHidden(row, isHidden);
  }
  view_->selectionModel()->select(gone, QItemSelectionModel::Deselect);
}

std::vector<int> FilteredList::selectedRows() const {
  std::vector<int> rows;
  for (const QModelIndex& index : view_->selectionModel()->selectedIndexes()) {
    if (!view_->isRowHidden(index.row())) rows.push_back(index.row());
  }
  std::ranges::sort(rows);
  return rows;
}

std::vector<int> FilteredList::shownRows() const {
  std::vector<int> rows;
  for (int row = 0; row < model_.rowCount(); ++row) {
    if (!view_->isRowHidden(row)) rows.push_back(row);
  }
  return rows;
}

void FilteredList::select(const std::vector<int>& rows) {
  QItemSelection selection;
  for (const int row : rows) selection.select(model_.index(row, 0), model_.index(row, 0));
  view_->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
  if (rows.empty()) return;
  view_->selectionModel()->setCurrentIndex(model_.index(rows.front(), 0), QItemSelectionModel::NoUpdate);
  view_->scrollTo(model_.index(rows.front(), 0));
}

}  // namespace banddesk::desktop
