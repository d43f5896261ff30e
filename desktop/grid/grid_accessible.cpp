#include "desktop/grid/grid_accessible.h"

#include <QAccessibleWidget>

#include "desktop/grid/grid_view.h"

namespace banddesk::desktop {
namespace {

class GridAccessible final : public QAccessibleWidget {
 public:
  explicit GridAccessible(GridView& view) : QAccessibleWidget(&view, QAccessible::Table) {}

  QString text(QAccessible::Text kind) const override {
    if (kind == QAccessible::Value) return static_cast<GridView*>(widget())->currentText();
    return QAccessibleWidget::text(kind);
  }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  auto* const view = qobject_cast<GridView*>(object);
  return view == nullptr ? nullptr : new GridAccessible(*view);
}

}  // namespace

void installGridAccessibility() { QAccessible::installFactory(makeInterface); }

void announceCurrentCell(GridView& view) {
  if (!QAccessible::isActive()) return;
  QAccessibleValueChangeEvent event(&view, view.currentText());
  QAccessible::updateAccessibility(&event);
}

}  // namespace banddesk::desktop
