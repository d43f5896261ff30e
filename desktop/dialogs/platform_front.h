// The front of a host at a screen: message boxes, save dialog, popups, column pages, and the pointer, beep,
// focus and help that the pages ask for. What belongs to one window is left to who derives from it.
#pragma once

#include <QPoint>
#include <QPointer>

#include "desktop/base/widget_registry.h"
#include "desktop/dialogs/mouse_pointer.h"
#include "desktop/dialogs/popup_menu.h"
#include "host/framework/platform.h"

namespace banddesk::desktop {

class PlatformFront : public host::CarefulFront {
 public:
  // Takes the seat in front of the platform's host. Platform, seat and registry outlive the front.
  PlatformFront(host::HostPlatform& platform, host::FrontSeat& seat, QWidget* window,
                const WidgetRegistry& widgets);
  PlatformFront(const PlatformFront&) = delete;
  PlatformFront& operator=(const PlatformFront&) = delete;

  ui::BoxAnswer showMessage(const host::MessageShown& message) override;
  std::optional<host::SaveAnswer> askWhereToSave(ui::SaveDialog& dialog) override;
  void showPopup(ui::MenuItem& menu, ui::MenuItem* defaultItem) override;
  bool selectColumns(host::ColumnSelection& draft) override;
  bool sortColumns(host::ColumnSorting& draft) override;

 protected:
  QWidget* window() const { return window_; }  // null once it has gone
  // An act of the user: the work of a menu item that changes something.
  virtual void act(const std::function<void()>& work) { work(); }
  virtual void showHelp(const std::string& /*topic*/) {}
  virtual QPoint popupPosition() const;  // on the screen
  // Of an item that was taken.
  virtual bool mayChoose(const ui::MenuItem& /*item*/) { return true; }

 private:
  void giveFocus(const ui::Control& control) const;

  host::HostPlatform& platform_;
  QPointer<QWidget> window_;
  const WidgetRegistry& widgets_;
  MousePointer pointer_;
  Connections connections_;
};

}  // namespace banddesk::desktop
