// Sits in front of the host's platform for one window: message boxes, pointer, beep, focus, save dialog,
// popups, help and modal forms, as the pages ask for them. Another front takes over once this one is gone.
#pragma once

#include <QPoint>
#include <QPointer>
#include <functional>

#include "desktop/base/widget_registry.h"
#include "desktop/dialogs/mouse_pointer.h"
#include "desktop/dialogs/popup_menu.h"
#include "host/framework/platform.h"

namespace banddesk::desktop {

// What the window itself brings in. Absent ones do nothing, or what they say.
struct FrontActions {
  UserAction userAction;  // absent: just calls
  std::function<void(const std::string& topic)> showHelp;
  std::function<void(ui::Form&)> runForm;
  std::function<QPoint()> popupPosition;               // on the screen; absent: at the pointer
  std::function<bool(const ui::MenuItem&)> mayChoose;  // of an item that was taken; absent: always
};

class PlatformFront final {
 public:
  // The platform and the registry outlive the front.
  PlatformFront(host::HostPlatform& platform, QWidget* window, const WidgetRegistry& widgets,
                FrontActions actions);
  ~PlatformFront();
  PlatformFront(const PlatformFront&) = delete;
  PlatformFront& operator=(const PlatformFront&) = delete;

 private:
  void showPopup(const ui::MenuItem& menu, const ui::MenuItem* defaultItem) const;

  host::HostPlatform& platform_;
  QPointer<QWidget> window_;
  const WidgetRegistry& widgets_;
  FrontActions actions_;
  MousePointer pointer_;
};

}  // namespace banddesk::desktop
