#include "desktop/dialogs/column_sorter.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "desktop/dialogs/dialog_parts.h"

namespace banddesk::desktop {

ColumnSorter::ColumnSorter(const host::ColumnSorting& draft, const ShowHelp& showHelp, QWidget* parent)
    : QDialog(parent),
      columns_(draft.columns()),
      available_(new ColumnListModel(columns_, this)),
      keys_(new SortKeyModel(draft, this)),
      list_(new FilteredList(*available_, QStringLiteral("Columns"), this)),
      keyView_(new QTreeView(this)) {
  setWindowTitle(QStringLiteral("Sort Columns"));
  available_->setCheckable(false);
  list_->setAlwaysHidden(
      [this](int row) { return keys_->isKey(*columns_[static_cast<std::size_t>(row)].column); });
  list_->refilter();
  connect(&list_->view(), &QListView::doubleClicked, this, [this] { addSelected(); });
  makeKeyView();

  auto* middle = new QHBoxLayout;
  middle->addWidget(list_, 1);
  middle->addLayout(makeButtonColumn());
  middle->addWidget(keyView_, 1);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(middle, 1);
  layout->addWidget(makeButtons(*this, "ColumnSort", showHelp));
  resize(sizeInText(*this, 150, 28));
  list_->view().setFocus();
}

void ColumnSorter::makeKeyView() {
  keyView_->setObjectName(QStringLiteral("keys"));
  keyView_->setAccessibleName(QStringLiteral("Sort keys"));
  keyView_->setRootIsDecorated(false);
  keyView_->setUniformRowHeights(true);
  keyView_->setTextElideMode(Qt::ElideRight);
  keyView_->setModel(keys_);
  keyView_->header()->setStretchLastSection(false);
  keyView_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  keyView_->header()->setSectionResizeMode(1, QHeaderView::Interactive);
  keyView_->header()->resizeSection(1, sizeInText(*this, 16, 1).width());
  keyView_->installEventFilter(this);
  connect(keyView_, &QTreeView::doubleClicked, this,
          [this](const QModelIndex& index) { keys_->reverse(index.row()); });
}

QLayout* ColumnSorter::makeButtonColumn() {
  auto* layout = new QVBoxLayout;
  layout->addStretch();
  addButton(*layout, QStringLiteral("&Add \u2192"), [this] { addSelected(); });
  addButton(*layout, QStringLiteral("\u2190 &Remove"),
            [this] { onCurrentKey([this](int row) { removeKey(row); }); });
  layout->addSpacing(fontMetrics().height());
  addButton(*layout, QStringLiteral("Re&verse Order"),
            [this] { onCurrentKey([this](int row) { keys_->reverse(row); }); });
  addButton(*layout, QStringLiteral("Move &Up"), [this] { moveKey(true); });
  addButton(*layout, QStringLiteral("Move &Down"), [this] { moveKey(false); });
  layout->addStretch();
  return layout;
}

bool ColumnSorter::eventFilter(QObject* watched, QEvent* event) {
  if (watched != keyView_ || event->type() != QEvent::KeyPress) return false;
  const auto* press = static_cast<const QKeyEvent*>(event);
  const int key = press->key();
  if (press->modifiers().testFlag(Qt::AltModifier) && (key == Qt::Key_Up || key == Qt::Key_Down)) {
    moveKey(key == Qt::Key_Up);
  } else if (key == Qt::Key_Space) {
    onCurrentKey([this](int row) { keys_->reverse(row); });
  } else if (key == Qt::Key_Delete || key == Qt::Key_Backspace) {
    onCurrentKey([this](int row) { removeKey(row); });
  } else {
    return false;
  }
  return true;
}

void ColumnSorter::addSelected() {
  for (const int row : list_->selectedRows()) keys_->add(columns_[static_cast<std::size_t>(row)].column);
  list_->refilter();
  keyView_->setCurrentIndex(keys_->index(keys_->rowCount() - 1, 0));
}

void ColumnSorter::onCurrentKey(const std::function<void(int row)>& act) {
  const QModelIndex current = keyView_->currentIndex();
  if (current.isValid()) act(current.row());
}

void ColumnSorter::removeKey(int row) {
  keys_->remove(row);
  list_->refilter();
}

void ColumnSorter::moveKey(bool up) {
  onCurrentKey([this, up](int row) { keys_->move(row, up); });
}

bool sortColumns(host::ColumnSorting& draft, const ShowHelp& showHelp, QWidget* parent) {
  ColumnSorter dialog(draft, showHelp, parent);
  if (dialog.exec() != QDialog::Accepted) return false;
  draft.keys = dialog.keys().keys();
  return true;
}

}  // namespace banddesk::desktop
