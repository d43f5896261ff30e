// The open pages as tabs. It makes a tab for each page that the host shows and drops it when the page ends;
// what stands on a page is made by whoever it is told.
#pragma once

#include <QTabWidget>
#include <functional>
#include <map>
#include <memory>

#include "host/framework/host.h"

namespace banddesk::desktop {

class PageArea final : public QTabWidget {
  Q_OBJECT
 public:
  using MakeWidget = std::function<QWidget*(host::HostPage&, QWidget* parent)>;

  PageArea(host::Host& host, MakeWidget makeWidget, QWidget* parent);
  ~PageArea() override;

  // The page in front, or null.
  std::shared_ptr<host::HostPage> currentPage() const;
  std::shared_ptr<host::HostPage> pageOf(const QWidget* content) const;
  // The widget of a page, or null.
  QWidget* contentOf(const host::HostPage& page) const;

  // Says above the page in front that something on it failed, with a way to reopen it.
  void showFailure(const QString& what);

  std::function<void(const std::shared_ptr<host::HostPage>&)> onClose;   // the user wants to close a page
  std::function<void(const std::shared_ptr<host::HostPage>&)> onReopen;  // and to open it anew
  std::function<void()> onCurrent;  // another page in front, its caption, or something done to a page
  // Keeps failures of a page's widget from the toolkit.
  std::function<bool(const std::function<void()>&)> guarded = [](const auto& work) { return work(), true; };

 private:
  struct Tab {
    QWidget* frame = nullptr;  // holds the failure's bar and the content
    QWidget* bar = nullptr;
    QWidget* content = nullptr;
  };

  void show(host::HostPage& page);
  void end(const host::HostPage& page);
  void change(const host::HostPage& page);
  void makeBar(Tab& tab, const host::HostPage& page);
  std::shared_ptr<host::HostPage> sharedPage(const host::HostPage& page) const;

  host::Host& host_;
  MakeWidget makeWidget_;
  std::map<const host::HostPage*, Tab> tabs_;
};

}  // namespace banddesk::desktop
