// Menus of the toolkit made from the pages' menu objects, for the popup over the grid and for a menu of the
// window's bar. They show the state that the objects have when they are made.
#pragma once

#include <QMenu>
#include <functional>

#include "desktop/controls/user_action.h"
#include "plugin/ui/menu.h"

namespace banddesk::desktop {

// Whether the item changes nothing of the analysis: it only opens a view or writes a file.
bool onlyLooks(const ui::MenuItem& item);

// Chooses the item, as the user's act where it is one.
void choose(ui::MenuItem& item, const UserAction& userAction);

// Adds the items of `root` to the menu. `onTaken` is called from the event loop and lets no exception out. A
// menu that stays, as in a menu bar, is filled anew whenever it is about to show: the objects' states change.
void fillMenu(QMenu& menu, const ui::MenuItem& root, const ui::MenuItem* defaultItem,
              const std::function<void(ui::MenuItem&)>& onTaken);

// Modal. The item that was taken, or null; the menu is gone by then.
ui::MenuItem* runPopup(const ui::MenuItem& root, const ui::MenuItem* defaultItem, const QPoint& position,
                       QWidget* parent);

}  // namespace banddesk::desktop
