#include "desktop/dialogs/mouse_pointer.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include "plugin/ui/platform.h"

namespace banddesk::desktop {
namespace {

bool isModalWindow(const QObject* object) {
  const auto* widget = qobject_cast<const QWidget*>(object);
  return widget != nullptr && widget->isWindow() && widget->isModal();
}

}  // namespace

MousePointer::MousePointer() { qApp->installEventFilter(this); }

MousePointer::~MousePointer() {
  if (isOverriding_) QApplication::restoreOverrideCursor();
}

void MousePointer::set(std::int32_t pointer) {
  pointer_ = pointer;
  follow();
}

bool MousePointer::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Show && isModalWindow(watched)) {
    modalWindows_.insert(watched);
    follow();
  } else if (event->type() == QEvent::Hide && modalWindows_.erase(watched) > 0) {
    follow();
  }
  return false;
}

void MousePointer::follow() {
  const bool shouldOverride = pointer_ == ui::kPointerHourglass && modalWindows_.empty();
  if (shouldOverride == isOverriding_) return;
  isOverriding_ = shouldOverride;
  if (shouldOverride) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
}

}  // namespace banddesk::desktop
