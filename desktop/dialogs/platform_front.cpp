#include "desktop/dialogs/platform_front.h"

#include <QApplication>
#include <QCursor>
#include <QTimer>
#include <utility>

#include "desktop/dialogs/message_box.h"
#include "desktop/dialogs/save_dialog.h"

namespace banddesk::desktop {

PlatformFront::PlatformFront(host::HostPlatform& platform, QWidget* window, const WidgetRegistry& widgets,
                             FrontActions actions)
    : platform_(platform), window_(window), widgets_(widgets), actions_(std::move(actions)) {
  pointer_.set(platform_.MousePointer());
  platform_.onMsgBox = [this](const host::MessageShown& message) {
    return showMessage(message, dialogParent(window_));
  };
  platform_.onShowSave = [this](const ui::SaveDialog& dialog) {
    return askWhereToSave(dialog, dialogParent(window_));
  };
  platform_.onShowPopup = [this](const ui::MenuItem& menu, const ui::MenuItem* defaultItem) {
    showPopup(menu, defaultItem);
  };
  platform_.onRunModal = actions_.runForm;
  platform_.onShowHelp = [this](const host::HelpShown& help) {
    if (actions_.showHelp) actions_.showHelp(help.topic);
  };
  platform_.onBeep = [] { QApplication::beep(); };
  platform_.onMousePointer = [this](std::int32_t pointer) { pointer_.set(pointer); };
  platform_.onSetFocus = [this](const ui::Control& control) {
    QWidget* widget = widgets_.find(control);
    if (widget == nullptr) return;
    // A moment later: the control that loses the focus must not be told before the caller is done.
    QTimer::singleShot(0, widget, [widget] { widget->setFocus(Qt::OtherFocusReason); });
  };
}

PlatformFront::~PlatformFront() {
  platform_.onMsgBox = nullptr;
  platform_.onShowSave = nullptr;
  platform_.onShowPopup = nullptr;
  platform_.onRunModal = nullptr;
  platform_.onShowHelp = nullptr;
  platform_.onBeep = nullptr;
  platform_.onMousePointer = nullptr;
  platform_.onSetFocus = nullptr;
}

// The item is chosen when the menu is gone: its work may open dialogs.
void PlatformFront::showPopup(const ui::MenuItem& menu, const ui::MenuItem* defaultItem) const {
  const QPoint position = actions_.popupPosition ? actions_.popupPosition() : QCursor::pos();
  ui::MenuItem* taken = runPopup(menu, defaultItem, position, dialogParent(window_));
  if (taken == nullptr || (actions_.mayChoose && !actions_.mayChoose(*taken))) return;
  choose(*taken, actions_.userAction);
}

}  // namespace banddesk::desktop
