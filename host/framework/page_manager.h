// Opens and ends pages. The plug-in's pages are made by name from its component; the column pages run
// modally and are over when OpenPage returns; the views of results are the host's own.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/framework/column_pages.h"
#include "host/framework/component.h"
#include "host/framework/pages.h"
#include "host/study/fault_injector.h"
#include "plugin/shell/host_contract.h"

namespace banddesk::host {

class HostPageManager final : public PageManager {
 public:
  // All outlive it.
  HostPageManager(FaultInjector& faults, HostPlatform& platform, FrontSeat& seat)
      : faults_(faults), platform_(platform), seat_(seat) {}

  // The component that makes the pages; it outlives them.
  void setComponent(const Component* component) { component_ = component; }

  // A page of the plug-in that is open for the object already is shown again instead of opened twice. A page
  // whose initialisation fails is terminated, and the error goes to the caller.
  std::shared_ptr<banddesk::Page> OpenPage(const std::string& name, const ObjectRef& bound, PageOwner* owner,
                                           bool, bool, bool, bool, bool, bool, const char*, bool hidden,
                                           std::int32_t) override;

  // Ends a page. To accept it, it must be valid, and is saved into its object first; an invalid one stays
  // open and the answer is false. Then the owner hears OnExit, and the page Terminate. A page whose table is
  // half made is never asked: its object holds what it had.
  bool end(const std::shared_ptr<HostPage>& page, bool accept);
  void endAll();  // cancelled, the latest first; a failure comes when all have ended

  bool validate(HostPage& page) const;

  // The user does something to a page, by way of `action`. The page may take it over into its object only
  // when it is saved, so the object counts as changed from now on.
  void userEvent(const HostPage& page, const std::function<void()>& action);

  // Runs what may change the page's table without being an act of the user: the work of a timer, an export.
  void procedure(const HostPage& page, const std::function<void()>& work) const;
  // Lets the time of all running timers of the open pages pass; false if none was running.
  bool fireTimers() const;

  // Runs what comes to one act, however many pieces of work it has.
  void asOneAct(const ObjectRef& object, bool isUsers, const std::function<void()>& work) const;
  bool isActing() const { return acting_ > 0; }
  // After an act is over, also one that failed: the object of its page, or null where others may have changed
  // too; and whether it was an act of the user.
  mutable Event<const ObjectRef&, bool> Acted;

  // Makes a page of the plug-in anew from its object, in its place. If that fails, the former stays and the
  // error goes to the caller. Owners hear nothing.
  std::shared_ptr<HostPage> replace(const std::shared_ptr<HostPage>& former);
  // For a page that is made anew over the same results: the next calculator of the former page, or null.
  std::shared_ptr<const GuardedCalculator> nextOfFormer();
  // A calculator begins; it is that of the page at work.
  void noteCalculation(double maxBinWidth, double yThreshold) const;

  const std::vector<std::shared_ptr<HostPage>>& openPages() const { return pages_; }
  // The helper of the page that is being initialised, or null.
  const std::shared_ptr<HostPageBase>& initializing() const { return initializing_; }
  // The page whose procedure runs, or null.
  const HostPage* atWork() const { return atWork_; }
  // Null if there is none.
  std::shared_ptr<HostPage> find(std::string_view name, const ObjectRef& bound) const;

  PageWatch watch;
  // Absent: a procedure just runs.
  std::function<void(const std::shared_ptr<HostPage>&, const std::function<void()>&)> aroundProcedure;
  // Called before a page initialises; what it gives lives as long as that takes.
  std::function<std::shared_ptr<void>(const HostPage&)> whileStarting;
  // The table of a results page stands as it is for now: it was opened or made anew, or a procedure is over.
  std::function<void(HostPage&)> onTable;
  // The user has accepted a selection of columns, of which a table is to be made.
  Event<> ColumnsSelected;

 private:
  // A page at work, until the end of the scope.
  class AtWork;

  void start(HostPage& page, const char* className);
  void leave(const std::shared_ptr<HostPage>& page, bool accept);
  std::shared_ptr<HostPage> shared(const HostPage& page) const;
  void tellTable(HostPage& page) const;
  bool runModal(const HostPage& page, PageOwner* owner) const;

  FaultInjector& faults_;
  HostPlatform& platform_;
  FrontSeat& seat_;
  const Component* component_ = nullptr;
  std::vector<std::shared_ptr<HostPage>> pages_;
  mutable HostPage* atWork_ = nullptr;
  mutable int acting_ = 0;
  mutable ObjectRef actsOn_;  // of the act that is under way
  mutable bool actsOnOthers_ = false;
  std::shared_ptr<HostPageBase> initializing_;
  std::vector<std::shared_ptr<GuardedCalculator>> ofFormer_;  // the next one last
};

}  // namespace banddesk::host
