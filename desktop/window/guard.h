// Runs what the user asked for and keeps failures from the toolkit. A failure that the system has reported
// goes to the list of failures only; any other is told in a message.
#pragma once

#include <QWidget>
#include <functional>

#include "host/framework/framework.h"

namespace banddesk::desktop {

class Guard {
 public:
  // Both outlive the guard.
  Guard(const host::HostFramework& framework, QWidget& window) : framework_(framework), window_(window) {}

  // False if it failed.
  bool run(const std::function<void()>& work) const;
  void tell(const QString& message) const;

 private:
  const host::HostFramework& framework_;
  QWidget& window_;
};

}  // namespace banddesk::desktop
