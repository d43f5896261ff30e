#include "host/framework/study_history.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include "host/history/step_labels.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

constexpr const char* kResultsPage = "AFLP";

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
  connections_.push_back(tree_.Renamed.connect([this] { note(nullptr, true); }));
}

void StudyHistory::begin() {
  end();
  if (!study_.isOpen()) return;
  steps_.push_back({"", std::time(nullptr), capture(nullptr)});
  clean_ = present();
  Changed.raise();
}

void StudyHistory::end() {
  steps_.clear();
  clean_ = {};
  at_ = 0;
  Changed.raise();
}

AnalysisState StudyHistory::capture(const std::shared_ptr<AFLP>& analysis, const AnalysisState* like) const {
  const auto page = pages_.find(kResultsPage, analysis);
  if (!page || !page->control()) return packed(snapshotOf(*analysis), like);
  const auto state = keeper_.state(*page);
  if (!state) return like != nullptr ? *like : packed(snapshotOf(*analysis), like);
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
    take(capture(object), isUsers);
  } catch (...) {
    othersChanged_ = true;  // the next note looks at everything
  }
}

void StudyHistory::take(StudyState state, bool isUsers) {
  if (areEqual(state, present())) {
    steps_[at_].state = std::move(state);  // perhaps with a look that was not known before
    return;
  }
  if (isUsers) {
    Step step{stepLabel(present(), state), std::time(nullptr), std::move(state)};
    steps_.reserve(steps_.size() + 1);
    steps_.resize(at_ + 1);
    steps_.push_back(std::move(step));
    ++at_;
  } else {
    steps_[at_].state = std::move(state);
    cleanWhatIsSaved();
  }
  Changed.raise();
}

// What a page made of its analysis as it opened waits for no save.
void StudyHistory::cleanWhatIsSaved() {
  StudyState clean;
  for (const auto& analysis : study_.Study()->AFLPs) {
    const AnalysisState* const known = (isChanged(*analysis) ? clean_ : present()).find(analysis->ID());
    if (known != nullptr) clean.analyses.push_back(*known);
  }
  clean_ = std::move(clean);
}

void StudyHistory::beforeSave() { note(true); }

void StudyHistory::afterSave() {
  note(false);
  if (!steps_.empty()) cleanWhatIsSaved();
  Changed.raise();
}

void StudyHistory::goTo(std::size_t position) {
  if (keeper_.isAtWork() || pages_.isActing())
    raise(ErrorNumber::PermissionDenied, "History", "Finish what is under way first.");
  if (position >= steps_.size()) raise(ErrorNumber::SubscriptOutOfRange, "History", "There is no such step.");
  pages_.fireTimers();
  note(false);
  const StudyState target = steps_[position].state;
  isApplying_ = true;
  const std::shared_ptr<void> applied(nullptr, [this](void*) { isApplying_ = false; });
  apply(target);
  at_ = position;
  // Whatever came out otherwise is no act of the user.
  StudyState now = capture(nullptr);
  for (AnalysisState& analysis : now.analyses) {
    const AnalysisState* const wanted = target.find(analysis.id);
    if (!analysis.look && wanted != nullptr) analysis.look = wanted->look;
  }
  steps_[at_].state = std::move(now);
  setFlags();
  Changed.raise();
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
  const auto page = pages_.find(kResultsPage, analysis);
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
