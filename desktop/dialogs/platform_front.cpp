#include "desktop/dialogs/platform_front.h"

#include <QApplication>
#include <QCursor>
#include <QTimer>

#include "desktop/dialogs/column_sorter.h"
#include "desktop/dialogs/message_box.h"
#include "desktop/dialogs/save_dialog.h"

namespace banddesk::desktop {

PlatformFront::PlatformFront(host::HostPlatform& platform, host::FrontSeat& seat, QWidget* window,
                             const WidgetRegistry& widgets)
    : platform_(platform), window_(window), widgets_(widgets) {
  pointer_.set(platform.MousePointer());
  connections_.push_back(seat.take(*this));
  connections_.push_back(
      platform.HelpAsked.connect([this](const host::HelpShown& help) { showHelp(help.topic); }));
  connections_.push_back(platform.Beeped.connect([] { QApplication::beep(); }));
  connections_.push_back(
      platform.PointerChanged.connect([this](std::int32_t pointer) { pointer_.set(pointer); }));
  connections_.push_back(
      platform.FocusGiven.connect([this](const ui::Control& control) { giveFocus(control); }));
}

ui::BoxAnswer PlatformFront::showMessage(const host::MessageShown& message) {
  return desktop::showMessage(message, dialogParent(window_));
}

std::optional<host::SaveAnswer> PlatformFront::askWhereToSave(ui::SaveDialog& dialog) {
  return platform_.askUntilWritable([&] { return desktop::askWhereToSave(dialog, dialogParent(window_)); });
}

bool PlatformFront::selectColumns(host::ColumnSelection& draft) {
  return desktop::selectColumns(
      draft, [this](const std::string& topic) { showHelp(topic); }, window_);
}

bool PlatformFront::sortColumns(host::ColumnSorting& draft) {
  return desktop::sortColumns(
      draft, [this](const std::string& topic) { showHelp(topic); }, window_);
}

// A moment later: the control that loses the focus must not be told before the caller is done.
void PlatformFront::giveFocus(const ui::Control& control) const {
  if (QWidget* widget = widgets_.find(control))
    QTimer::singleShot(0, widget, [widget] { widget->setFocus(Qt::OtherFocusReason); });
}

QPoint PlatformFront::popupPosition() const { return QCursor::pos(); }

// The item is chosen when the menu is gone: its work may open dialogs.
void PlatformFront::showPopup(ui::MenuItem& menu, ui::MenuItem* defaultItem) {
  ui::MenuItem* taken = runPopup(menu, defaultItem, popupPosition(), dialogParent(window_));
  if (taken != nullptr && mayChoose(*taken)) choose(*taken, [this](const auto& work) { act(work); });
}

}  // namespace banddesk::desktop
