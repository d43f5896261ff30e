#include "desktop/views/sample_list.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {

SampleList::SampleList(const TraceSet& traces, QWidget* parent)
    : QWidget(parent), list_(new QListWidget(this)) {
  list_->setAccessibleName(QStringLiteral("Samples"));
  list_->setUniformItemSizes(true);
  list_->setTextElideMode(Qt::ElideRight);
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  for (const TraceSample& sample : traces.samples) {
    auto* item = new QListWidgetItem(toQString(sample.name), list_);
    item->setToolTip(toQString(sample.name));
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    item->setCheckState(Qt::Checked);
  }
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
    if (!isFilling_ && onCheck) onCheck();
  });
  connect(list_, &QListWidget::itemSelectionChanged, this, [this] {
    if (onSelect) onSelect();
  });
  isFilling_ = false;
}

QSize SampleList::sizeHint() const {
  const QFontMetrics metrics(font());
  return {metrics.averageCharWidth() * 26, metrics.height() * 12};
}

std::vector<std::size_t> SampleList::checked() const {
  std::vector<std::size_t> found;
  for (int i = 0; i < list_->count(); ++i) {
    if (list_->item(i)->checkState() == Qt::Checked) found.push_back(static_cast<std::size_t>(i));
  }
  return found;
}

std::optional<std::size_t> SampleList::selected() const {
  const auto items = list_->selectedItems();
  if (items.isEmpty() || items.first()->checkState() != Qt::Checked) return std::nullopt;
  return static_cast<std::size_t>(list_->row(items.first()));
}

void SampleList::checkAll(bool isChecked) {
  isFilling_ = true;
  for (int i = 0; i < list_->count(); ++i)
    list_->item(i)->setCheckState(isChecked ? Qt::Checked : Qt::Unchecked);
  isFilling_ = false;
  if (onCheck) onCheck();
}

}  // namespace banddesk::desktop
