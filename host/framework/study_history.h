// What the user does to a study as a row of states: each act that changes something adds the state after it,
// and undo and redo make the study what an earlier or later state says. There is one mechanism for all acts:
// nothing tells what an act did, the states before and after it are compared. It begins when a study opens and
// ends when it closes; a save changes nothing in it.
//
// What is stored of the study at once (results, dyes, imports) is stored again by an undo; analyses are
// changed as objects and wait for a save. A page of an analysis that changes is opened anew from the state
// (PageKeeper::restore), where the user keeps place and selection.
//
// While analyses wait for a save, the states are written down in a log beside the study, too (logTo). It goes
// when nothing waits any more and when the study closes in order; one that is found at an opening can be
// recovered.
//
// A state of which no note could be taken (there was no memory) is left out: its step comes together with the
// next one. Nobody's act fails for that.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/framework/decision_transfer.h"
#include "host/framework/explorer.h"
#include "host/framework/page_keeper.h"
#include "host/framework/study_service.h"
#include "host/history/step_log.h"
#include "host/history/study_state.h"

namespace banddesk::host {

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
  void afterSave() noexcept;

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

  // ---- decisions by hand that the last step lost to a run of the analysis
  std::size_t lostDecisions() const { return lost_.size(); }
  // Takes each to the bin of the new run that holds most of its bin's fragments: a step of its own. Tells the
  // keys of bins that found none. Error 5 where none are lost.
  std::vector<std::string> applyLostDecisions(const CalculatorMaker& makeCalculator);

  // ---- the log of what is unsaved
  // From now on it is written to this file, which is overwritten. Empty: to none.
  void logTo(const std::string& file);
  // Why the states are not written down; empty where they are, or need not be.
  const std::string& logTrouble() const { return logTrouble_; }
  // Right after the opening: why a log is not one of this study as it is saved; empty where it is.
  std::string whyUnfit(const StepLogContent& log) const;
  // Right after the opening: the study becomes what the log's last state says, and its steps can be undone. An
  // error may leave a part of it: the study is then to be opened again.
  void recover(const StepLogContent& log);

  Event<> Changed;  // steps or position

 private:
  void note(const ObjectRef& object, bool isUsers) noexcept;
  void take(StudyState state, bool isUsers);
  void push(StudyState state, std::string label);
  void noteRuns(const StudyState& before);
  const StudyState& present() const { return steps_[at_].state; }
  // Of one object, or of all where it is null; the rest is as before.
  StudyState capture(const ObjectRef& object) const;
  AnalysisState capture(const std::shared_ptr<AFLP>& analysis, const AnalysisState* like) const;
  void apply(const StudyState& target);
  void applyAnalyses(const StudyState& target);
  void keepOnly(const StudyState& target);
  void apply(const AnalysisState& target, const AnalysisState* now, const std::shared_ptr<AFLP>& analysis);
  void requireRest() const;
  void setFlags();
  void cleanWhatIsSaved();
  template <class Present>
  void keepKnown(StudyState& known, Present present) const;
  void become(const StudyState& target);
  void changed(const std::string& label);
  void logPresent(const std::string& label);
  void startLog(Step now);
  void announce();

  HostStudyService& study_;
  HostObjectManager& objects_;
  HostPageManager& pages_;
  PageKeeper& keeper_;
  HostExplorerTree& tree_;
  FaultInjector& faults_;
  std::vector<Step> steps_;
  std::size_t at_ = 0;
  StudyState clean_;   // the analyses as they were when nothing of them waited to be saved
  StudyState stored_;  // the analyses as they lie in the study's file
  std::string logFile_, logTrouble_;
  std::unique_ptr<StepLog> log_;
  std::size_t cleanAt_ = 0;  // the last position at which nothing was unsaved
  bool isApplying_ = false;
  bool othersChanged_ = false;                 // within the act that is under way
  mutable bool isHeldBack_ = false;            // the user typed what a page has not taken into its table yet
  std::map<std::int32_t, std::int64_t> runs_;  // of the open pages' tables, by analysis
  std::vector<BinSnapshot> lost_;
  std::int32_t lostFrom_ = 0;  // the analysis
  Connections connections_;
};

}  // namespace banddesk::host
