// Which widget shows which control, for whoever must give a control the focus. It owns neither; a widget that
// is gone is found no more.
#pragma once

#include <QPointer>
#include <QWidget>
#include <map>

#include "plugin/ui/control.h"

namespace banddesk::desktop {

class WidgetRegistry {
 public:
  void add(const ui::Control& control, QWidget* widget) { widgets_[&control] = widget; }
  void remove(const ui::Control& control) { widgets_.erase(&control); }
  // Null if no widget shows the control.
  QWidget* find(const ui::Control& control) const {
    const auto found = widgets_.find(&control);
    return found == widgets_.end() ? nullptr : found->second.data();
  }

 private:
  std::map<const ui::Control*, QPointer<QWidget>> widgets_;
};

}  // namespace banddesk::desktop
