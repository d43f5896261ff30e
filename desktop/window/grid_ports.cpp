#include "desktop/window/grid_ports.h"

#include <QApplication>

#include "desktop/dialogs/style_dialog.h"
#include "desktop/grid/qt_text_measure.h"
#include "desktop/grid/table_copy.h"
#include "desktop/print/grid_printer.h"

namespace banddesk::desktop {

host::GridPorts desktopGridPorts() {
  const auto parent = [] { return QApplication::activeWindow(); };
  host::GridPorts ports;
  ports.measure = std::make_shared<QtTextMeasure>();
  ports.clipboard = std::make_shared<QtClipboard>();
  ports.printer = std::make_shared<GridPrinter>(parent);
  ports.styleDialog = std::make_shared<StyleDialogFront>(parent);
  return ports;
}

}  // namespace banddesk::desktop
