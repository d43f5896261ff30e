#include "desktop/window/explorer_panel.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QStyledItemDelegate>
#include <QTimer>
#include <algorithm>
#include <vector>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

constexpr int kResultRole = Qt::UserRole + 1;
constexpr int kExcludedRole = Qt::UserRole + 2;
constexpr int kDyeRole = Qt::UserRole + 3;
constexpr int kVisibleRole = Qt::UserRole + 4;

}  // namespace

void follow(QAction& action, const Command& command) {
  action.setEnabled(command.Enabled);
  action.setVisible(command.Visible.get().value_or(false));
}

// The editor of a name. The host judges a new name, perhaps with a message: only after the editor is closed.
class NameEditor final : public QStyledItemDelegate {
 public:
  explicit NameEditor(ExplorerPanel& panel) : QStyledItemDelegate(&panel), panel_(panel) {
    connect(this, &QAbstractItemDelegate::closeEditor, this,
            [this](QWidget*, QAbstractItemDelegate::EndEditHint hint) {
              if (hint != QAbstractItemDelegate::RevertModelCache) return;
              QTimer::singleShot(0, &panel_, [this] { panel_.cancelEdit(); });
            });
  }

  void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex&) const override {
    const QString text = static_cast<const QLineEdit*>(editor)->text();
    QTimer::singleShot(0, &panel_, [this, text] { panel_.endEdit(text); });
  }

 private:
  ExplorerPanel& panel_;
};

ExplorerPanel::ExplorerPanel(Workbench& workbench, QWidget* parent)
    : QTreeWidget(parent), workbench_(workbench) {
  setHeaderHidden(true);
  setAccessibleName(QStringLiteral("Explorer"));
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setItemDelegate(new NameEditor(*this));
  setUniformRowHeights(true);
  setExpandsOnDoubleClick(false);
  connect(this, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) { activate(item); });
  treeChanges_ = workbench_.host().tree().Changed.connect([this] {
    // Within a change the items may still be on their way in or out.
    if (std::exchange(isRefreshWaiting_, true)) return;
    QTimer::singleShot(0, this, [this] { refreshAnalyses(); });
  });
}

QTreeWidgetItem* ExplorerPanel::makeGroup(const QString& name, QStyle::StandardPixmap icon) {
  auto* group = new QTreeWidgetItem(root_, {name});
  group->setIcon(0, style()->standardIcon(icon));
  group->setExpanded(true);
  return group;
}

void ExplorerPanel::refreshStudy() {
  clear();
  analyses_.clear();
  root_ = results_ = folder_ = dyes_ = nullptr;
  edited_ = nullptr;
  if (!workbench_.isOpen()) return;
  root_ = new QTreeWidgetItem(this, {toQString(workbench_.studyName())});
  root_->setIcon(0, style()->standardIcon(QStyle::SP_DriveHDIcon));
  QFont font = root_->font(0);
  font.setBold(true);
  root_->setFont(0, font);
  root_->setExpanded(true);
  folder_ = makeGroup(QStringLiteral("AFLP"), QStyle::SP_DirIcon);
  results_ = makeGroup(QStringLiteral("Results"), QStyle::SP_DirIcon);
  fillResults();
  fillDyes();
  refreshAnalyses();
}

void ExplorerPanel::fillResults() {
  QList<QTreeWidgetItem*> items;
  for (const auto& result : workbench_.study()->Results) {
    const bool isExcluded = result->IsExcluded.get().value_or(false);
    auto* item = new QTreeWidgetItem({toQString(result->Sample->Name.get())});
    item->setData(0, kResultRole, result->ResultID.get());
    item->setData(0, kExcludedRole, isExcluded);
    item->setIcon(0, style()->standardIcon(QStyle::SP_FileIcon));
    if (isExcluded) {
      QFont font = item->font(0);
      font.setStrikeOut(true);
      item->setFont(0, font);
      item->setForeground(0, palette().brush(QPalette::Disabled, QPalette::Text));
      item->setToolTip(0, QStringLiteral("Excluded: new analyses leave it out"));
    }
    items.append(item);
  }
  results_->setText(0, QStringLiteral("Results (%1)").arg(items.size()));
  results_->addChildren(items);
}

void ExplorerPanel::fillDyes() {
  dyes_ = makeGroup(QStringLiteral("Dyes"), QStyle::SP_DirIcon);
  const std::string letters = workbench_.host().study().dyeLetters();
  const auto study = workbench_.study();
  for (const auto& dye : study->Dyes) {
    const char letter = letters[static_cast<std::size_t>(dye->Index)];
    const QString name = QStringLiteral("D%1").arg(dye->Index + 1);
    auto* item = new QTreeWidgetItem(
        dyes_, {letter == '-' ? name : name + QStringLiteral(" (%1)").arg(QLatin1Char(letter))});
    item->setData(0, kDyeRole, dye->Index.get());
    showDye(*dye);
  }
  dyeChanges_ = study->DyeVisibibilityChanged.connect([this](const Dye& dye) { showDye(dye); });
}

void ExplorerPanel::showDye(const Dye& dye) {
  QTreeWidgetItem* item = dyes_ != nullptr ? dyes_->child(dye.Index) : nullptr;
  if (item == nullptr) return;
  QPixmap swatch(iconSize().isValid() ? iconSize() : QSize(16, 16));
  swatch.fill(toQColor(dye.Color));
  item->setIcon(0, swatch);
  item->setData(0, kVisibleRole, dye.Visible.get());
  item->setForeground(0, dye.Visible ? QBrush() : palette().brush(QPalette::Disabled, QPalette::Text));
  item->setToolTip(0, dye.Visible ? QString() : QStringLiteral("Hidden: tables show no bins of it"));
}

void ExplorerPanel::refreshAnalyses() {
  isRefreshWaiting_ = false;
  const auto& tree = workbench_.host().tree();
  if (folder_ == nullptr || !tree.folder()) return;
  guarded([&] {
    folder_->setText(0, toQString(tree.folder()->base->displayName()));
    std::map<IExplorerItemAccess*, QTreeWidgetItem*> shown;
    for (const auto& [item, analysis] : analyses_) shown[analysis.get()] = item;
    std::map<QTreeWidgetItem*, Item> kept;
    const host::HostExplorerTree::Node* toEdit = nullptr;
    QTreeWidgetItem* editedItem = nullptr;
    for (const auto& node : tree.children()) {
      QTreeWidgetItem*& item = shown[node.item.get()];
      if (item == nullptr) {
        item = new QTreeWidgetItem(folder_);
        item->setIcon(0, style()->standardIcon(QStyle::SP_FileDialogDetailedView));
        item->setFlags(item->flags() | Qt::ItemIsEditable);
      }
      kept[item] = node.item;
      if (!node.edited) {
        item->setText(0, toQString(node.base->displayName()));
      } else if (edited_ != node.item) {
        toEdit = &node, editedItem = item;
      }
    }
    for (const auto& [item, analysis] : analyses_) {
      if (!kept.contains(item)) delete item;
    }
    analyses_ = std::move(kept);
    if (toEdit != nullptr) beginEdit(*toEdit, *editedItem);
  });
}

void ExplorerPanel::beginEdit(const host::HostExplorerTree::Node& node, QTreeWidgetItem& item) {
  edited_ = node.item;
  item.setText(0, toQString(*node.edited));
  setCurrentItem(&item);
  setFocus();
  editItem(&item);
}

void ExplorerPanel::endEdit(const QString& text) {
  if (!edited_) return;
  const Item item = std::exchange(edited_, nullptr);
  guarded([&] { workbench_.host().tree().endRename(item, toText(text)); });
}

void ExplorerPanel::cancelEdit() {
  if (!edited_) return;
  const Item item = std::exchange(edited_, nullptr);
  guarded([&] { workbench_.host().tree().cancelRename(item); });
}

ExplorerPanel::Item ExplorerPanel::currentAnalysis() const {
  const auto found = analyses_.find(currentItem());
  return found == analyses_.end() ? nullptr : found->second;
}

void ExplorerPanel::activate(QTreeWidgetItem* item) {
  if (const Item analysis = currentAnalysis(); analysis && state() != QAbstractItemView::EditingState) {
    Q_EMIT commandChosen(analysis, "OpenAFLP");
  } else if (item != nullptr && item->data(0, kResultRole).isValid()) {
    Q_EMIT showResultChosen(item->data(0, kResultRole).toInt());
  } else if (item != nullptr && item->data(0, kDyeRole).isValid()) {
    Q_EMIT dyeColourChosen(item->data(0, kDyeRole).toInt());
  } else if (item != nullptr) {
    item->setExpanded(!item->isExpanded());
  }
}

void ExplorerPanel::keyPressEvent(QKeyEvent* event) {
  const Item analysis = currentAnalysis();
  if (analysis && event->key() == Qt::Key_F2) {
    Q_EMIT commandChosen(analysis, "RenameAFLP");
  } else if (analysis && event->key() == Qt::Key_Delete) {
    Q_EMIT commandChosen(analysis, "DeleteAFLP");
  } else {
    QTreeWidget::keyPressEvent(event);
  }
}

void ExplorerPanel::contextMenuEvent(QContextMenuEvent* event) {
  QTreeWidgetItem* item =
      event->reason() == QContextMenuEvent::Keyboard ? currentItem() : itemAt(event->pos());
  QPoint where = event->globalPos();
  if (event->reason() == QContextMenuEvent::Keyboard && item != nullptr)
    where = viewport()->mapToGlobal(visualItemRect(item).center());
  QMenu menu(this);
  fillMenu(menu, item);
  if (!menu.isEmpty()) menu.exec(where);
}

void ExplorerPanel::fillMenu(QMenu& menu, QTreeWidgetItem* item) {
  if (item == nullptr) return;
  if (analyses_.contains(item)) {
    const Item analysis = analyses_.at(item);
    const auto add = [&](const QString& caption, const char* command) {
      menu.addAction(caption, this, [this, analysis, command] { Q_EMIT commandChosen(analysis, command); });
    };
    add(QStringLiteral("&Open"), "OpenAFLP");
    menu.setDefaultAction(menu.actions().constFirst());
    add(QStringLiteral("&Rename"), "RenameAFLP");
    add(QStringLiteral("&Delete"), "DeleteAFLP");
    menu.addSeparator();
    add(QStringLiteral("New Re&port"), host::kNewReportCommand);
    follow(*menu.actions().constLast(), workbench_.host().command(host::kNewReportCommand));
  } else if (item->data(0, kResultRole).isValid()) {
    fillResultMenu(menu, *item);
  } else if (item->data(0, kDyeRole).isValid()) {
    fillDyeMenu(menu, *item);
  } else {
    follow(
        *menu.addAction(QStringLiteral("&New AFLP Analysis"), this, [this] { Q_EMIT newAnalysisChosen(); }),
        workbench_.host().command(host::kNewAnalysisCommand));
    menu.addAction(QStringLiteral("&Import Peak Tables..."), this, [this] { Q_EMIT importChosen(); });
  }
}

void ExplorerPanel::fillResultMenu(QMenu& menu, const QTreeWidgetItem& item) {
  const std::int32_t id = item.data(0, kResultRole).toInt();
  const bool isExcluded = item.data(0, kExcludedRole).toBool();
  menu.addAction(QStringLiteral("Show Single &Result..."), this, [this, id] { Q_EMIT showResultChosen(id); });
  menu.setDefaultAction(menu.actions().constFirst());
  menu.addSeparator();
  QAction* exclude = menu.addAction(QStringLiteral("&Exclude from New Analyses"), this,
                                    [this, id, isExcluded] { Q_EMIT excludeResultChosen(id, !isExcluded); });
  exclude->setCheckable(true);
  exclude->setChecked(isExcluded);
  menu.addAction(QStringLiteral("&Delete Result..."), this, [this, id] { Q_EMIT deleteResultChosen(id); });
}

void ExplorerPanel::fillDyeMenu(QMenu& menu, const QTreeWidgetItem& item) {
  const std::int32_t dye = item.data(0, kDyeRole).toInt();
  menu.addAction(QStringLiteral("&Colour..."), this, [this, dye] { Q_EMIT dyeColourChosen(dye); });
  menu.setDefaultAction(menu.actions().constFirst());
  QAction* visible = menu.addAction(QStringLiteral("&Show in Tables"));
  visible->setCheckable(true);
  visible->setChecked(item.data(0, kVisibleRole).toBool());
  connect(visible, &QAction::toggled, this, [this, dye](bool isOn) { Q_EMIT dyeVisibleChosen(dye, isOn); });
  menu.setEnabled(workbench_.whyReadOnly().empty());
}

}  // namespace banddesk::desktop
