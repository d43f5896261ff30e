#include "host/history/kept_steps.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fmt/format.h>

namespace banddesk::host {
namespace {

bool haveSameStored(const StudyState& a, const StudyState& b) {
  return haveSameBytes(a.record, b.record) && haveSameAnalyses(a, b);
}

// The analyses that stand in the same order from the beginning in both.
std::size_t sameOrder(const StudyState& a, const StudyState& b) {
  const auto [end, other] =
      std::ranges::mismatch(a.analyses, b.analyses, {}, &AnalysisState::id, &AnalysisState::id);
  return static_cast<std::size_t>(end - a.analyses.begin());
}

}  // namespace

StudyState storedState(Store& store, const StudyState& like) {
  StudyState state;
  state.record = packed(store.readStudy(), like.record);
  for (const std::int32_t id : store.analysisIds())
    state.analyses.push_back(packed(store.readAnalysis(id), like.find(id)));
  return state;
}

KeptSteps readKeptSteps(const std::string& study, Store& store, std::string& lost) {
  const std::string file = study + kKeptStepsExtension;
  const StudyState now = storedState(store, {});
  std::error_code trouble;
  if (std::filesystem::exists(file, trouble)) {
    try {
      StepLogContent content = readStepLog(file);
      if (haveSameStored(content.steps[content.position].state, now))
        return {std::move(content.steps), content.position};
      lost = fmt::format(
          "{}: the study was changed since without a step, as a window or a sizing of runs does", file);
    } catch (const Error& error) {
      lost = error.description();
    }
  }
  return {{{"", std::time(nullptr), now}}, 0};
}

void writeKeptSteps(const std::string& study, const KeptSteps& kept) {
  StepLog(study + kKeptStepsExtension, kept.steps, kept.position);
}

// An analysis that was removed and comes back takes the last place in a store: those that stood behind it are
// taken out and written again.
void goToStep(KeptSteps& kept, std::size_t position, Store& store) {
  if (position >= kept.steps.size())
    raise(ErrorNumber::SubscriptOutOfRange, "History", "There is no such step.");
  const StudyState& now = kept.steps[kept.position].state;
  const StudyState& target = kept.steps[position].state;
  const std::size_t same = sameOrder(now, target);
  std::vector<std::int32_t> removed;
  for (std::size_t i = same; i < now.analyses.size(); ++i) removed.push_back(now.analyses[i].id);
  std::vector<AnalysisSnapshot> written;
  for (std::size_t i = 0; i < target.analyses.size(); ++i) {
    if (i >= same || !target.analyses[i].holdsSameAs(now.analyses[i]))
      written.push_back(unpacked(target.analyses[i]));
  }
  store.write(unpackedRecord(target.record), removed, written);
  kept.position = position;
}

}  // namespace banddesk::host
