#include "desktop/print/grid_printer.h"

#include "desktop/print/print_dialog.h"

namespace banddesk::desktop {

bool GridPrinter::print(const host::PrintJob& job) {
  PrintDialog dialog(job, parent_ ? parent_() : nullptr);
  return dialog.exec() == QDialog::Accepted;
}

}  // namespace banddesk::desktop
