// Keeps the tables of results pages whole. A page's procedure may leave its table half made: copy, print,
// exports, Select Columns and every run of the analysis rebuild it, and a Cancel at the page's warning, a
// file that cannot be written or any failure ends them in between. What the page does then is its own; this
// class has the page opened anew from the state that it had before, decisions included. It reads no insides
// of a page: it goes by what a page offers (controls, Validate and Save, its counts of lines), the grid, the
// calculators, the forms shown and the failures reported.
//
// Before each procedure of a page (HostPageManager::procedure, and so every act of the user and every timer)
// the state is taken while the table is whole: the page stores itself into its analysis, a snapshot of that
// is the value, and the analysis is put back as it stood. While the page's boxes show another width or
// threshold than the table was made with, the state before stays the last one: the decisions belong to that
// table.
//
// After the procedure the table counts as half made when
//   - the page reported a failure, or the procedure raised an error;
//   - a form was left other than by its first button, after lines of the table had come or gone or at a run
//     that was forced (one with the parameters that the table has already);
//   - lines have come or gone, or a selection of columns was accepted, and no calculation followed.
// Then the analysis is filled from the state, a new page takes the place of the former one, and the view
// (scroll position, current cell, selection) is put back. If that fails, the former page stays as half made:
// it takes no further command, is never asked to save, and can only be ended.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/framework/framework.h"
#include "host/framework/object_manager.h"
#include "host/framework/page_manager.h"
#include "host/framework/table_place.h"
#include "host/store/snapshot.h"

namespace banddesk::host {

// An open results page as a value: all that is stored of its analysis, as if it were saved now, and the view.
// Cheap to copy; the parts are shared and never change.
struct PageState {
  std::shared_ptr<const AnalysisSnapshot> analysis;
  std::shared_ptr<const TablePlace> view;
  std::shared_ptr<const std::string> look;  // null while the page has work to do that waits for its timer
  PersistentState flags;                    // whether the analysis is new, and changed since it was stored
};

class PageKeeper final {
 public:
  // All outlive the keeper. It begins with its making: from then on every procedure goes through it.
  PageKeeper(HostPageManager& pages, HostObjectManager& objects, HostPlatform& platform,
             HostFramework& framework, FaultInjector& faults);
  ~PageKeeper();
  PageKeeper(const PageKeeper&) = delete;
  PageKeeper& operator=(const PageKeeper&) = delete;

  // The state of a results page whose table is whole; the analysis stays as it was. Nothing where the page is
  // no results page, or holds a value that is not valid or not taken into the table yet.
  std::optional<PageState> state(HostPage& page) const;
  // Where the user stands on the page.
  static std::shared_ptr<const TablePlace> placeOn(const HostPage& page);
  // Makes analysis and page those of the state; gives the page that stands in place of the former one. If
  // that fails, the analysis has the state, the former page counts as half made and the error goes to the
  // caller.
  std::shared_ptr<HostPage> restore(const std::shared_ptr<HostPage>& page, const PageState& state);

  // Whether a procedure of a page is under way.
  bool isAtWork() const { return isAtWork_; }

  // One line for the user; `page` is the one that stands there now.
  Event<HostPage& /*page*/, const std::string& /*line*/> Reopened;
  Event<HostPage& /*page*/, const std::string& /*line*/> LeftHalfMade;

 private:
  struct Watch;  // of one procedure
  class AtWork;

  void run(const std::shared_ptr<HostPage>& page, const std::function<void()>& work);
  void keepState(const std::shared_ptr<HostPage>& page);
  void heal(const std::shared_ptr<HostPage>& page, const std::string& why);
  std::optional<std::string> whyHalfMade(const HostPage& page, const Watch& watch) const;
  std::optional<std::string> failureSince(std::size_t reports) const;
  void formShows();

  HostPageManager& pages_;
  HostObjectManager& objects_;
  HostFramework& framework_;
  FaultInjector& faults_;
  std::map<const HostPage*, PageState> kept_;  // of open pages
  Watch* watch_ = nullptr;
  bool isAtWork_ = false;
  Connections connections_;
};

}  // namespace banddesk::host
