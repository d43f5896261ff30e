#include "desktop/views/sample_list.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

constexpr int kSampleRole = Qt::UserRole + 1;

std::size_t sampleOf(const QListWidgetItem& item) { return item.data(kSampleRole).toULongLong(); }

}  // namespace

SampleList::SampleList(const TraceSet& traces, QWidget* parent)
    : QWidget(parent), list_(new QListWidget(this)) {
  list_->setAccessibleName(QStringLiteral("Samples"));
  list_->setUniformItemSizes(true);
  list_->setTextElideMode(Qt::ElideRight);
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  fill(traces);
  auto* all = new QPushButton(QStringLiteral("All"), this);
  auto* none = new QPushButton(QStringLiteral("None"), this);
  auto* line = new QHBoxLayout;
  line->addWidget(all);
  line->addWidget(none);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(list_);
  column->addLayout(line);
  connect(all, &QPushButton::clicked, this, [this] { checkAll(true); });
  connect(none, &QPushButton::clicked, this, [this] { checkAll(false); });
  connect(list_, &QListWidget::itemChanged, this, [this] {
    if (!isFilling_) Q_EMIT checksChanged();
  });
  connect(list_, &QListWidget::itemSelectionChanged, this, [this] { Q_EMIT selectionChanged(); });
  isFilling_ = false;
}

void SampleList::fill(const TraceSet& traces) {
  for (std::size_t i = 0; i < traces.samples.size(); ++i) {
    const QString name = toQString(traces.samples[i].name);
    auto* item = new QListWidgetItem(name, list_);
    item->setToolTip(name);
    item->setData(kSampleRole, QVariant::fromValue<qulonglong>(i));
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    item->setCheckState(Qt::Checked);
  }
}

// The items themselves move, and the selected one stays selected.
void SampleList::arrange(const std::vector<std::size_t>& order, const std::vector<bool>& checked) {
  const QSignalBlocker quiet(list_);
  QListWidgetItem* const selected = list_->selectedItems().value(0);
  std::vector<QListWidgetItem*> items(order.size());
  while (QListWidgetItem* item = list_->takeItem(list_->count() - 1)) items[sampleOf(*item)] = item;
  for (const std::size_t sample : order) {
    items[sample]->setCheckState(checked[sample] ? Qt::Checked : Qt::Unchecked);
    list_->addItem(items[sample]);
  }
  if (selected != nullptr) list_->setCurrentItem(selected);
  list_->scrollToTop();
}

QSize SampleList::sizeHint() const {
  const QFontMetrics metrics(font());
  return {metrics.averageCharWidth() * 26, metrics.height() * 12};
}

std::vector<std::size_t> SampleList::checked() const {
  std::vector<std::size_t> found;
  for (int i = 0; i < list_->count(); ++i) {
    if (list_->item(i)->checkState() == Qt::Checked) found.push_back(sampleOf(*list_->item(i)));
  }
  return found;
}

std::optional<std::size_t> SampleList::selected() const {
  const auto items = list_->selectedItems();
  if (items.isEmpty() || items.first()->checkState() != Qt::Checked) return std::nullopt;
  return sampleOf(*items.first());
}

void SampleList::checkAll(bool isChecked) {
  isFilling_ = true;
  for (int i = 0; i < list_->count(); ++i)
    list_->item(i)->setCheckState(isChecked ? Qt::Checked : Qt::Unchecked);
  isFilling_ = false;
  Q_EMIT checksChanged();
}

}  // namespace banddesk::desktop
