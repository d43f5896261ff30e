// Popup menus as objects: captions with their accelerators, separators, submenus, checks, enabled states and
// a default item. The platform shows them and calls choose() for the item that the user takes.
#pragma once

#include <string>
#include <vector>

#include "plugin/ui/control.h"

namespace banddesk::ui {

class MenuItem final : public Control {
 public:
  MenuItem(std::string name, std::string caption)
      : Control(std::move(name)), Caption(*this, "Caption", std::move(caption)) {}
  bool hasPlace() const override { return false; }

  Property<std::string> Caption;
  Property<bool> Checked{*this, "Checked", false};
  Event<> Click;

  // The user takes the item: nothing happens while it is disabled or opens a submenu.
  void choose() {
    if (Enabled && items_.empty()) Click.raise();
  }

  // A null entry is a separator line. The items are owned by whoever makes them and outlive the menu.
  void setItems(std::vector<MenuItem*> items) { items_ = std::move(items); }
  const std::vector<MenuItem*>& items() const { return items_; }

 private:
  std::vector<MenuItem*> items_;
};

}  // namespace banddesk::ui
