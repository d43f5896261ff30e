// Edits the registered styles of a grid. The changes last as long as the grid's page does.
#pragma once

#include <QWidget>
#include <functional>

#include "host/grid/grid_ports.h"

namespace banddesk::desktop {

class StyleDialogFront final : public host::StyleDialogPort {
 public:
  explicit StyleDialogFront(std::function<QWidget*()> parent) : parent_(std::move(parent)) {}

  // OK changes the styles that were edited; Cancel changes none.
  void run(host::Looks& styles) override;

 private:
  std::function<QWidget*()> parent_;
};

}  // namespace banddesk::desktop
