// The open pages as tabs. It makes a tab for each page that the host shows and drops it when the page ends;
// what stands on a page is made by whoever it is told: for a page of the plug-in at once, for a view when it
// comes to the front for the first time, so that very many of them cost a line each.
#pragma once

#include <QTabWidget>
#include <QTimer>
#include <functional>
#include <map>
#include <memory>
#include <vector>

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
  // The widget of a page, made now if it was not yet; null where the page has no tab.
  QWidget* contentOf(const host::HostPage& page);

  // Says above the page in front that something on it failed, with a way to reopen it.
  void showFailure(const QString& what);
  void showFailure(const host::HostPage& page, const QString& line);

  // Keeps failures of a page's widget from the toolkit.
  std::function<bool(const std::function<void()>&)> guarded = [](const auto& work) { return work(), true; };

 Q_SIGNALS:
  void closeChosen(const std::shared_ptr<host::HostPage>& page);   // the user wants to close it
  void reopenChosen(const std::shared_ptr<host::HostPage>& page);  // and to open it anew
  void pageChanged();  // another page in front, its caption, or something done to a page

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Tab {
    QWidget* frame = nullptr;    // holds the failure's bar and the content
    QWidget* bar = nullptr;      // once something failed
    QWidget* content = nullptr;  // once it was looked at
  };

  // Very many tabs come and go together: out of sight, and without a look at their texts, each costs little.
  void changeTabs(std::size_t howMany, const std::function<void()>& change);
  void followPages();
  void show(host::HostPage& page);
  void end(const host::HostPage& page);
  void replace(const host::HostPage& former, host::HostPage& page);
  void change(const host::HostPage& page);
  void addWaiting();
  void removeEnded();
  // A page's content in a frame, not yet among the tabs; null where it could not be made.
  QWidget* makeFrame(host::HostPage& page);
  void add(host::HostPage& page);
  void fill(host::HostPage& page);
  void fillCurrent();
  void settle();
  void bringToFront(host::HostPage& page);
  void runMenu(int index, const QPoint& where);
  void closeAll(const host::HostPage* except);
  void makeBar(Tab& tab, const host::HostPage& page);
  std::shared_ptr<host::HostPage> sharedPage(const host::HostPage& page) const;

  host::Host& host_;
  MakeWidget makeWidget_;
  std::map<const host::HostPage*, Tab> tabs_;
  std::vector<host::HostPage*> waiting_;  // shown, and without a tab as yet
  std::vector<QWidget*> ended_;           // frames whose tabs are to go
  QTimer later_;                          // one piece of work may show or end very many pages
  bool isChanging_ = false;               // tabs come or go: which is in front is not settled
  Connections connections_;
};

}  // namespace banddesk::desktop
