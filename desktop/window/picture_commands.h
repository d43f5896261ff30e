// The commands on the table in front that make pictures of it, and files for other programs.
#pragma once

#include <QMenu>
#include <memory>

#include "desktop/pictures/picture_context.h"
#include "desktop/window/guard.h"
#include "host/framework/host.h"

namespace banddesk::desktop {

class PictureCommands final {
 public:
  // All outlive the commands.
  PictureCommands(host::Host& host, const Guard& guard, QWidget& window);

  PictureContext& context() { return context_; }
  // The submenu of pictures, then the export.
  void addTo(QMenu& menu);
  // The results page to act on; null where none is in front.
  void setTable(const std::shared_ptr<host::HostPage>& page);

 private:
  void open(const char* page);
  void exportFiles();

  host::Host& host_;
  const Guard& guard_;
  QWidget& window_;
  PictureContext context_;
  QMenu pictures_;
  QAction export_;
  std::weak_ptr<host::HostPage> table_;
};

}  // namespace banddesk::desktop
