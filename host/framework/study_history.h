// What the user does to a study as a row of states: each act that changes something adds the state after it,
// and undo and redo make the study what an earlier or later state says. There is one mechanism for all acts:
// nothing tells what an act did, the states before and after it are compared. It begins when a study opens and
// ends when it closes; a save changes nothing in it.
//
// What is stored of the study at once (results, dyes, imports) is stored again by an undo; analyses are
// changed as objects and wait for a save. A page of an analysis that changes is opened anew from the state
// (PageKeeper::restore), where the user keeps place and selection.
//
// A state of which no note could be taken (there was no memory) is left out: its step comes together with the
// next one. Nobody's act fails for that.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/framework/explorer.h"
#include "host/framework/page_keeper.h"
#include "host/framework/study_service.h"
#include "host/history/study_state.h"

namespace banddesk::host {

struct Step {
  std::string label;      // what the user did; empty for the state that the study opened in
  std::int64_t time = 0;  // seconds since 1970
  StudyState state;       // after it
};

class StudyHistory final {
 public:
  // All outlive the history.
  StudyHistory(HostStudyService& study, HostObjectManager& objects, HostPageManager& pages,
               PageKeeper& keeper, HostExplorerTree& tree, FaultInjector& faults);
  StudyHistory(const StudyHistory&) = delete;
  StudyHistory& operator=(const StudyHistory&) = delete;

  // ---- the host's
  void begin();
  void end();
  void beforeSave();
  void afterSave();

  // ---- the row of states; the first one is that of the opening, and position() tells the present one
  const std::vector<Step>& steps() const { return steps_; }
  std::size_t position() const { return at_; }
  bool canUndo() const { return at_ > 0; }
  bool canRedo() const { return at_ + 1 < steps_.size(); }

  // Makes the study what it was there. Error 9 for a step that there is not, error 70 in the middle of an act.
  // After any other failure the present step stays, and to go on is to try again.
  void goTo(std::size_t position);
  void undo() { goTo(at_ - 1); }
  void redo() { goTo(at_ + 1); }

  // Looks for what was changed by no act of a page; an act of the user becomes a step.
  void note(bool isUsers) { note(nullptr, isUsers); }

  // Whether analyses differ from what is saved of them.
  bool hasUnsaved() const { return !steps_.empty() && !haveSameAnalyses(present(), clean_); }
  std::size_t bytes() const;

  Event<> Changed;  // steps or position

 private:
  void note(const ObjectRef& object, bool isUsers) noexcept;
  void take(StudyState state, bool isUsers);
  const StudyState& present() const { return steps_[at_].state; }
  // Of one object, or of all where it is null; the rest is as before.
  StudyState capture(const ObjectRef& object) const;
  AnalysisState capture(const std::shared_ptr<AFLP>& analysis, const AnalysisState* like) const;
  void apply(const StudyState& target);
  void applyAnalyses(const StudyState& target);
  void keepOnly(const StudyState& target);
  void apply(const AnalysisState& target, const AnalysisState* now, const std::shared_ptr<AFLP>& analysis);
  void setFlags();
  void cleanWhatIsSaved();

  HostStudyService& study_;
  HostObjectManager& objects_;
  HostPageManager& pages_;
  PageKeeper& keeper_;
  HostExplorerTree& tree_;
  FaultInjector& faults_;
  std::vector<Step> steps_;
  std::size_t at_ = 0;
  StudyState clean_;  // the analyses as they were when nothing of them waited to be saved
  bool isApplying_ = false;
  bool othersChanged_ = false;  // within the act that is under way
  Connections connections_;
};

}  // namespace banddesk::host
