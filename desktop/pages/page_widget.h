// Widgets of the plug-in's pages, made by the page's name. Tabs, titles and the ending of pages are the
// window's work.
#pragma once

#include <QWidget>
#include <functional>

#include "desktop/base/widget_registry.h"
#include "desktop/controls/user_action.h"
#include "host/framework/host.h"
#include "host/grid/grid_control.h"
#include "plugin/base/error.h"

namespace banddesk::desktop {

// What a page widget asks of its window.
struct PageActions {
  std::function<void()> accept;  // the user's OK: ends the page, if it is valid
  std::function<void()> cancel;
  std::function<void(const Error&)> showError;
  // The widget that draws a grid; the parent owns it.
  std::function<QWidget*(host::GridControl& grid, QWidget* parent)> makeGrid;
};

// The widget of an open page "AFLPParams" or "AFLP". Raises an error for any other page, and for one that has
// ended. It may live on after the page has ended, but not after the host.
QWidget* makePageWidget(host::Host& host, host::HostPage& page, WidgetRegistry& registry, PageActions actions,
                        QWidget* parent);

// What the user does to an open page: its object counts as changed, errors are shown. Nothing happens once
// the page has ended.
UserAction userActionOn(host::Host& host, const host::HostPage& page,
                        std::function<void(const Error&)> showError);

}  // namespace banddesk::desktop
