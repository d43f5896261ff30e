#include "host/framework/study_history.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <exception>
#include <fmt/format.h>
#include <utility>

#include "host/history/step_labels.h"
#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::host {
namespace {

std::vector<std::int32_t> idsOf(Study& study) {
  std::vector<std::int32_t> ids;
  for (const auto& analysis : study.AFLPs) ids.push_back(analysis->ID());
  return ids;
}

// As the tree shows them.
std::vector<std::pair<const AFLP*, std::string>> namesOf(Study& study) {
  std::vector<std::pair<const AFLP*, std::string>> names;
  for (const auto& analysis : study.AFLPs) names.emplace_back(analysis.get(), analysis->Name.get());
  return names;
}

std::vector<std::int32_t> idsOf(const StudyState& state) {
  std::vector<std::int32_t> ids;
  for (const AnalysisState& analysis : state.analyses) ids.push_back(analysis.id);
  return ids;
}

bool isChanged(const AFLP& analysis) {
  return analysis.persistentState().IsNew || analysis.persistentState().IsDirty;
}

bool looksAs(const AnalysisState& now, const AnalysisState& target) {
  return now.holdsSameAs(target) && (!target.look || haveSameBytes(now.look, target.look));
}

}  // namespace

StudyHistory::StudyHistory(HostStudyService& study, HostObjectManager& objects, HostPageManager& pages,
                           PageKeeper& keeper, HostExplorerTree& tree, FaultInjector& faults)
    : study_(study), objects_(objects), pages_(pages), keeper_(keeper), tree_(tree), faults_(faults) {
  connections_.push_back(pages_.Acted.connect([this](const ObjectRef& object, bool isUsers) {
    note(std::exchange(othersChanged_, false) ? nullptr : object, isUsers);
  }));
  connections_.push_back(study_.Changed.connect([this] {
    othersChanged_ = pages_.isActing();
    if (!othersChanged_) note(nullptr, true);
  }));
  connections_.push_back(study_.Changing.connect([this] { announce(); }));
  connections_.push_back(tree_.Renamed.connect([this] { note(nullptr, true); }));
}

void StudyHistory::begin() {
  end();
  if (!study_.isOpen()) return;
  try {
    steps_.push_back({"", std::time(nullptr), capture(nullptr)});
    clean_ = stored_ = present();
  } catch (const std::exception&) {
    steps_.clear();  // there is no undo, but a study
  }
  Changed.raise();
}

void StudyHistory::end() {
  const bool isInOrder = std::uncaught_exceptions() == 0;  // else the log is all that is left
  if (isInOrder && log_) std::remove(logFile_.c_str());
  log_.reset();
  logFile_.clear();
  logTrouble_.clear();
  steps_.clear();
  clean_ = stored_ = {};
  at_ = cleanAt_ = 0;
  Changed.raise();
}

AnalysisState StudyHistory::capture(const std::shared_ptr<AFLP>& analysis, const AnalysisState* like) const {
  const auto page = pages_.find(names::kResultsPage, analysis);
  if (!page || !page->control()) return packed(snapshotOf(*analysis), like);
  const auto state = keeper_.state(*page);
  if (!state) {
    isHeldBack_ = true;
    return like != nullptr ? *like : packed(snapshotOf(*analysis), like);
  }
  AnalysisState taken = packed(*state->analysis, like);
  if (state->look) taken.look = sharedPart(*state->look, like != nullptr ? like->look : nullptr);
  return taken;
}

StudyState StudyHistory::capture(const ObjectRef& object) const {
  static const StudyState none;
  const StudyState& former = steps_.empty() ? none : present();
  const FaultInjector::Pause pause(faults_);
  StudyState state;
  const bool isOfOne = object != nullptr && former.record;
  state.record = isOfOne ? former.record : packed(study_.record(), former.record);
  for (const auto& analysis : study_.Study()->AFLPs) {
    const AnalysisState* const like = former.find(analysis->ID());
    const bool isOther = isOfOne && static_cast<Object*>(analysis.get()) != object.get();
    state.analyses.push_back(isOther && like != nullptr ? *like : capture(analysis, like));
  }
  return state;
}

void StudyHistory::note(const ObjectRef& object, bool isUsers) noexcept {
  if (isApplying_ || steps_.empty() || !study_.isOpen()) return;
  try {
    // What a timer makes of something typed is the act of who typed it.
    const bool wasHeldBack = std::exchange(isHeldBack_, false);
    take(capture(object), isUsers || wasHeldBack);
  } catch (...) {
    othersChanged_ = true;  // the next note looks at everything
  }
}

void StudyHistory::take(StudyState state, bool isUsers) {
  const bool isEqual = areEqual(state, present());
  if (!isEqual && isUsers) {
    std::string label = stepLabel(present(), state);
    push(std::move(state), std::move(label));
    noteRuns(steps_[at_ - 1].state);
  } else {
    steps_[at_].state = std::move(state);  // perhaps with a look that was not known before
    if (!isEqual) cleanWhatIsSaved();
    noteRuns(present());
  }
  if (!isEqual) changed(steps_[at_].label);
}

void StudyHistory::push(StudyState state, std::string label) {
  Step step{std::move(label), std::time(nullptr), std::move(state)};
  steps_.reserve(std::max(steps_.size(), at_ + 2));
  steps_.resize(at_ + 1);
  steps_.push_back(std::move(step));
  ++at_;
  lost_.clear();
}

// Where a page has run its analysis again in the step that is over, decisions that went with it are kept.
void StudyHistory::noteRuns(const StudyState& before) {
  std::map<std::int32_t, std::int64_t> runs;
  for (const auto& page : pages_.openPages()) {
    const auto analysis = std::dynamic_pointer_cast<AFLP>(page->bound());
    if (analysis && page->DefinitionName() == names::kResultsPage)
      runs[analysis->ID()] = page->tableRun().count;
  }
  for (const auto& [id, count] : std::exchange(runs_, runs)) {
    const AnalysisState* const was = before.find(id);
    const AnalysisState* const is = present().find(id);
    if (!runs.contains(id) || runs[id] <= count || was == nullptr || is == nullptr) continue;
    const auto kept = unpacked(*is).bins;
    std::vector<BinSnapshot> lost = unpacked(*was).bins;
    std::erase_if(lost, [&](const BinSnapshot& bin) {
      return std::ranges::find(kept, bin.key, &BinSnapshot::key) != kept.end();
    });
    if (lost.empty()) continue;
    lost_ = std::move(lost);
    lostFrom_ = id;
  }
}

std::vector<std::string> StudyHistory::applyLostDecisions(const CalculatorMaker& makeCalculator) {
  if (lost_.empty()) raise(ErrorNumber::InvalidArgument, "History", "No decisions were lost.");
  requireRest();
  const AnalysisSnapshot before = unpacked(required(steps_[at_ - 1].state.find(lostFrom_), "Analysis"));
  const auto analysis = study_.Study()->AFLPs.Item(integerText(lostFrom_));
  StudyState target = present();
  const auto changes = std::ranges::find(target.analyses, lostFrom_, &AnalysisState::id);
  AnalysisSnapshot now = unpacked(*changes);
  DecisionTransfer transfer =
      transferDecisions(lost_, {before.maxBinWidth, static_cast<double>(before.yThreshold)},
                        {now.maxBinWidth, static_cast<double>(now.yThreshold)}, *analysis, makeCalculator);
  now.bins.insert(now.bins.end(), transfer.decisions.begin(), transfer.decisions.end());
  *changes = packed(now, &*changes);
  become(target);
  push(capture(nullptr), fmt::format("Apply {} Decisions to the New Bins", transfer.decisions.size()));
  setFlags();
  changed(steps_[at_].label);
  return transfer.homeless;
}

void StudyHistory::changed(const std::string& label) {
  logPresent(label);
  Changed.raise();
}

// A failure is no reason to stop the user's work.
void StudyHistory::logPresent(const std::string& label) {
  cleanAt_ = hasUnsaved() ? std::min(cleanAt_, at_) : at_;
  if (logFile_.empty()) return;
  try {
    if (!hasUnsaved()) {
      log_.reset();
      std::remove(logFile_.c_str());
    } else {
      Step now{label, std::time(nullptr), present()};
      if (log_) {
        log_->append(now);
      } else {
        startLog(std::move(now));
      }
    }
    logTrouble_.clear();
  } catch (...) {
    log_.reset();  // made anew at the next step
    logTrouble_ = currentError().description();
  }
}

// With all steps since nothing was unsaved, where they lead to the present.
void StudyHistory::startLog(Step now) {
  std::vector<Step> steps{{"", now.time, {present().record, stored_.analyses}}};
  for (std::size_t step = cleanAt_ + 1; step <= at_; ++step) steps.push_back(steps_[step]);
  if (steps.size() == 1) steps.push_back(std::move(now));
  log_ = std::make_unique<StepLog>(logFile_, steps);
}

void StudyHistory::announce() {
  if (!log_ || isApplying_) return;
  try {
    log_->announce();
  } catch (...) {
    log_.reset();
    logTrouble_ = currentError().description();
  }
}

void StudyHistory::logTo(const std::string& file) {
  if (log_) std::remove(logFile_.c_str());
  log_.reset();
  logFile_ = file;
  logPresent(steps_.empty() ? "" : steps_[at_].label);
}

std::string StudyHistory::whyUnfit(const StepLogContent& log) const {
  const StudyState& last = log.steps.back().state;
  const auto isIn = [&](const AnalysisState& analysis) {
    return std::ranges::any_of(log.steps, [&](const Step& step) {
      const AnalysisState* const known = step.state.find(analysis.id);
      return known != nullptr && known->holdsSameAs(analysis);
    });
  };
  if (log.isAnnounced) return {};
  if (!haveSameBytes(last.record, present().record)) return "the study's results or dyes are others";
  if (!std::ranges::all_of(present().analyses, isIn)) return "the study's analyses are others";
  const auto isGone = [&](const AnalysisState& analysis) {
    return present().find(analysis.id) == nullptr && last.find(analysis.id) != nullptr;
  };
  if (std::ranges::any_of(log.steps.front().state.analyses, isGone)) return "the study lacks an analysis";
  return {};
}

void StudyHistory::recover(const StepLogContent& log) {
  std::vector<Step> steps{steps_.front()};
  steps.insert(steps.end(), log.steps.begin() + 1, log.steps.end());
  become(log.steps.back().state);
  steps_ = std::move(steps);
  at_ = steps_.size() - 1;
  setFlags();
  changed(steps_[at_].label);
}

// What a page made of its analysis as it opened waits for no save.
void StudyHistory::cleanWhatIsSaved() {
  keepKnown(clean_, [&](const AFLP& analysis) { return *present().find(analysis.ID()); });
}

// Of an analysis that waits for a save, be it for its removal, what was known of it; of any other, what is.
template <class Present>
void StudyHistory::keepKnown(StudyState& known, Present present) const {
  StudyState kept;
  const auto keep = [&](const AFLP& analysis, bool isWaiting) {
    const AnalysisState* const former = known.find(analysis.ID());
    if (!isWaiting) kept.analyses.push_back(present(analysis));
    if (isWaiting && former != nullptr) kept.analyses.push_back(*former);
  };
  for (const auto& analysis : study_.Study()->AFLPs) keep(*analysis, isChanged(*analysis));
  for (const auto& analysis : study_.Study()->AFLPs.DeletedItems()) keep(*analysis, true);
  known = std::move(kept);
}

void StudyHistory::beforeSave() {
  note(true);
  announce();
}

// A part of the analyses may have been saved, or none.
void StudyHistory::afterSave() noexcept {
  note(false);
  if (steps_.empty()) return;
  try {
    cleanWhatIsSaved();
    keepKnown(stored_, [&](const AFLP& analysis) {
      return packed(snapshotOf(analysis), stored_.find(analysis.ID()));
    });
    log_.reset();  // the next one begins with what is saved now
    changed(steps_[at_].label);
  } catch (...) {
    othersChanged_ = true;
  }
}

void StudyHistory::requireRest() const {
  if (keeper_.isAtWork() || pages_.isActing())
    raise(ErrorNumber::PermissionDenied, "History", "Finish what is under way first.");
}

void StudyHistory::goTo(std::size_t position) {
  requireRest();
  if (position >= steps_.size()) raise(ErrorNumber::SubscriptOutOfRange, "History", "There is no such step.");
  pages_.fireTimers();
  note(false);
  const std::string label =
      fmt::format("{}: {}", position < at_ ? "Undo" : "Redo", steps_[std::max(position, at_)].label);
  const StudyState target = steps_[position].state;
  become(target);
  at_ = position;
  // Whatever came out otherwise is no act of the user.
  StudyState now = capture(nullptr);
  for (AnalysisState& analysis : now.analyses) {
    const AnalysisState* const wanted = target.find(analysis.id);
    if (!analysis.look && wanted != nullptr) analysis.look = wanted->look;
  }
  steps_[at_].state = std::move(now);
  lost_.clear();
  noteRuns(present());
  setFlags();
  changed(label);
}

void StudyHistory::become(const StudyState& target) {
  announce();
  isApplying_ = true;
  const std::shared_ptr<void> applied(nullptr, [this](void*) { isApplying_ = false; });
  apply(target);
}

void StudyHistory::apply(const StudyState& target) {
  const StudyRecord record = unpackedRecord(target.record);
  if (study_.record() != record) study_.putBack(record);
  const auto names = namesOf(*study_.Study());
  applyAnalyses(target);
  if (namesOf(*study_.Study()) != names) tree_.initialize();
}

void StudyHistory::applyAnalyses(const StudyState& target) {
  const StudyState now = capture(nullptr);
  keepOnly(target);
  Study& study = *study_.Study();
  for (const AnalysisState& wanted : target.analyses)
    apply(wanted, now.find(wanted.id), study.AFLPs.Item(integerText(wanted.id)));
}

// All analyses of the target and no others, in its order. Those that are gone and stored wait for a save that
// takes them out.
void StudyHistory::keepOnly(const StudyState& target) {
  Study& study = *study_.Study();
  if (idsOf(study) == idsOf(target)) return;
  const FaultInjector::Pause pause(faults_);
  auto& removed = study.AFLPs.DeletedItems();
  std::vector<std::shared_ptr<AFLP>> analyses;
  for (const AnalysisState& wanted : target.analyses) {
    const std::string key = integerText(wanted.id);
    analyses.push_back(study.AFLPs.holdsKey(key) ? study.AFLPs.Item(key)
                       : removed.holdsKey(key)   ? removed.Item(key)
                                                 : objects_.remake(unpacked(wanted)));
  }
  const auto open = pages_.openPages();
  for (const auto& page : open) {
    const auto analysis = std::dynamic_pointer_cast<AFLP>(page->bound());
    if (analysis && study.AFLPs.holdsKey(analysis->collectionKey()) && target.find(analysis->ID()) == nullptr)
      pages_.end(page, false);
  }
  while (study.AFLPs.Count() > 0) study.AFLPs.Remove(study.AFLPs.Count());
  for (const auto& analysis : analyses) study.AFLPs.Add(analysis);
  for (std::int32_t i = removed.Count(); i >= 1; --i) {
    const auto& each = removed.Item(i);
    if (target.find(each->ID()) != nullptr || !objects_.isStored(each->ID())) removed.Remove(i);
  }
}

void StudyHistory::apply(const AnalysisState& target, const AnalysisState* now,
                         const std::shared_ptr<AFLP>& analysis) {
  const auto page = pages_.find(names::kResultsPage, analysis);
  if (now != nullptr && looksAs(*now, target) && !(page && page->isHalfMade())) return;
  const AnalysisSnapshot snapshot = unpacked(target);
  if (page) {
    keeper_.restore(page, {std::make_shared<const AnalysisSnapshot>(snapshot), PageKeeper::placeOn(*page),
                           target.look, analysis->persistentState()});
  } else {
    const FaultInjector::Pause pause(faults_);
    objects_.refill(*analysis, snapshot);
  }
}

// An analysis that is not stored is new, one that differs from what is stored has changed.
void StudyHistory::setFlags() {
  for (const auto& analysis : study_.Study()->AFLPs) {
    const AnalysisState* const clean = clean_.find(analysis->ID());
    const bool isNew = !objects_.isStored(analysis->ID());
    const AnalysisState* const now = present().find(analysis->ID());
    const bool isSame = clean != nullptr && now != nullptr && now->holdsSameAs(*clean);
    analysis->Persistent() = {.IsNew = isNew, .IsDirty = !isNew && !isSame};
  }
}

std::size_t StudyHistory::bytes() const {
  std::vector<const StudyState*> states;
  for (const Step& step : steps_) states.push_back(&step.state);
  return bytesOf(states);
}

}  // namespace banddesk::host
