// What the desktop brings to every grid: the font's widths, the clipboard, the printer, the style dialog.
#pragma once

#include "host/grid/grid_ports.h"

namespace banddesk::desktop {

host::GridPorts desktopGridPorts();

}  // namespace banddesk::desktop
