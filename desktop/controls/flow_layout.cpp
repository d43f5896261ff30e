#include "desktop/controls/flow_layout.h"

#include <algorithm>

namespace banddesk::desktop {

FlowLayout::FlowLayout(QWidget* parent, int horizontalGap, int verticalGap)
    : QLayout(parent), horizontalGap_(horizontalGap), verticalGap_(verticalGap) {}

FlowLayout::~FlowLayout() = default;

void FlowLayout::addItem(QLayoutItem* item) { items_.emplace_back(item); }

QLayoutItem* FlowLayout::itemAt(int index) const {
  return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)].get() : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
  if (index < 0 || index >= count()) return nullptr;
  auto item = std::move(items_[static_cast<std::size_t>(index)]);
  items_.erase(items_.begin() + index);
  return item.release();
}

int FlowLayout::heightForWidth(int width) const { return lay(QRect(0, 0, width, 0), false); }

QSize FlowLayout::sizeHint() const {
  int width = contentsMargins().left() + contentsMargins().right();
  for (const auto& item : items_) width += item->sizeHint().width();
  width += horizontalGap_ * std::max(count() - 1, 0);
  return {width, heightForWidth(width)};
}

QSize FlowLayout::minimumSize() const {
  QSize most(0, 0);
  for (const auto& item : items_) most = most.expandedTo(item->sizeHint());
  const QMargins margins = contentsMargins();
  return most + QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
}

void FlowLayout::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  lay(rect, true);
}

int FlowLayout::lay(const QRect& rect, bool place) const {
  const QRect inside = rect.marginsRemoved(contentsMargins());
  int y = inside.top();
  for (std::size_t first = 0; first < items_.size();) {
    int width = 0;
    int height = 0;
    std::size_t end = first;
    for (; end < items_.size(); ++end) {
      const QSize size = items_[end]->sizeHint();
      const int with = width + (end == first ? 0 : horizontalGap_) + size.width();
      if (end != first && with > inside.width()) break;
      width = with;
      height = std::max(height, size.height());
    }
    int x = inside.left();
    for (std::size_t i = first; i < end; ++i) {
      const int itemWidth = items_[i]->sizeHint().width();
      if (place) items_[i]->setGeometry(QRect(x, y, itemWidth, height));
      x += itemWidth + horizontalGap_;
    }
    first = end;
    y += height + (end < items_.size() ? verticalGap_ : 0);
  }
  return y - rect.top() + contentsMargins().bottom();
}

}  // namespace banddesk::desktop
