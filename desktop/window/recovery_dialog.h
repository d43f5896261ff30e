// The question about steps that a killed program left unsaved, and what else is to be told of them.
#pragma once

#include <QWidget>

#include "desktop/app/workbench.h"

namespace banddesk::desktop {

class RecoveryDialog final : public RecoveryFront {
 public:
  explicit RecoveryDialog(QWidget& window) : window_(window) {}
  bool mayRecover(const host::StepLogContent& log) override;
  void tell(const std::string& line) override;

 private:
  QWidget& window_;
};

}  // namespace banddesk::desktop
