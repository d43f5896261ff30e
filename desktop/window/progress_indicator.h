// The indicator of long work in the status bar. It paints itself at each step and never lets other events
// run: the work that it shows is under way.
#pragma once

#include <QProgressBar>

#include "host/framework/framework.h"

namespace banddesk::desktop {

class ProgressIndicator final : public QProgressBar {
  Q_OBJECT
 public:
  explicit ProgressIndicator(QWidget* parent);

  void follow(host::HostProgress& progress);
  // From 0 to 1; 0 hides it.
  void show(double share);

 private:
  Connection changes_;
};

}  // namespace banddesk::desktop
