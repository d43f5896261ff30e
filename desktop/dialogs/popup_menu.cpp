#include "desktop/dialogs/popup_menu.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "desktop/base/qt_text.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {

bool onlyLooks(const ui::MenuItem& item) {
  constexpr std::array<std::string_view, 4> kLooking = {names::kSingleItems, names::kStackedItems,
                                                        names::kOverlayItems, names::kExportItems};
  return std::ranges::any_of(kLooking,
                             [&](std::string_view start) { return item.Name().starts_with(start); });
}

void choose(ui::MenuItem& item, const UserAction& userAction) {
  if (onlyLooks(item) || !userAction) {
    item.choose();
  } else {
    userAction([&item] { item.choose(); });
  }
}

void fillMenu(QMenu& menu, const ui::MenuItem& root, const ui::MenuItem* defaultItem,
              const std::function<void(ui::MenuItem&)>& onTaken) {
  for (ui::MenuItem* item : root.items()) {
    if (item == nullptr) {
      menu.addSeparator();
      continue;
    }
    const QString caption = toQString(item->Caption.get());
    QAction* action = nullptr;
    if (item->items().empty()) {
      action = menu.addAction(caption);
      QObject::connect(action, &QAction::triggered, &menu, [item, onTaken] { onTaken(*item); });
    } else {
      QMenu* sub = menu.addMenu(caption);
      fillMenu(*sub, *item, defaultItem, onTaken);
      action = sub->menuAction();
    }
    action->setObjectName(toQString(item->Name()));
    action->setEnabled(item->Enabled);
    // A mark that can be toggled would change before the page has decided.
    action->setCheckable(item->Checked);
    action->setChecked(item->Checked);
    if (item == defaultItem) menu.setDefaultAction(action);
  }
}

ui::MenuItem* runPopup(const ui::MenuItem& root, const ui::MenuItem* defaultItem, const QPoint& position,
                       QWidget* parent) {
  ui::MenuItem* taken = nullptr;
  QMenu menu(parent);
  fillMenu(menu, root, defaultItem, [&taken](ui::MenuItem& item) { taken = &item; });
  menu.exec(position);
  return taken;
}

}  // namespace banddesk::desktop
