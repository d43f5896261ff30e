// The printer under a grid: shows its job to the user, who prints it or saves it as a PDF.
#pragma once

#include <QWidget>
#include <functional>

#include "host/grid/grid_ports.h"

namespace banddesk::desktop {

class GridPrinter final : public host::PrinterPort {
 public:
  explicit GridPrinter(std::function<QWidget*()> parent) : parent_(std::move(parent)) {}

  bool print(const host::PrintJob& job) override;

 private:
  std::function<QWidget*()> parent_;
};

}  // namespace banddesk::desktop
