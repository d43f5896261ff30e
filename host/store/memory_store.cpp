#include "host/store/memory_store.h"

#include <algorithm>
#include <utility>

#include "plugin/base/error.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {

MemoryStore::MemoryStore(std::string studyName, std::vector<NewResult> results) {
  record_.name = std::move(studyName);
  record_.dyes = defaultDyes();
  showDyesOf(results, record_.dyes);
  for (NewResult& result : results) {
    record_.results.push_back(addResult(std::move(result.sampleName), std::move(result.fragments)));
  }
}

ResultRecord MemoryStore::addResult(std::string sampleName, SampleFragments fragments) {
  const std::int32_t id = ++lastResultId_;
  fragments_.emplace(id, std::make_shared<const SampleFragments>(std::move(fragments)));
  return {id, std::move(sampleName), false, false, {}};
}

std::shared_ptr<const SampleFragments> MemoryStore::readFragments(std::int32_t resultId) {
  const auto found = fragments_.find(resultId);
  if (found == fragments_.end()) {
    raise(ErrorNumber::InvalidArgument, "Store", "There is no result " + integerText(resultId) + ".");
  }
  return found->second;
}

void MemoryStore::writeStudy(const StudyRecord& record) { record_ = record; }

std::vector<ResultRecord> MemoryStore::addResults(const StudyRecord& record,
                                                  const std::vector<NewResult>& results,
                                                  const std::optional<ImportRecord>& import) {
  std::vector<ResultRecord> added;
  added.reserve(results.size());
  for (const NewResult& result : results) added.push_back(addResult(result.sampleName, result.fragments));
  if (import) imports_.push_back({*import, added});
  record_ = record;
  record_.results.insert(record_.results.end(), added.begin(), added.end());
  return added;
}

// But those that have been withdrawn.
std::vector<ImportRecord> MemoryStore::readImports() {
  std::vector<ImportRecord> imports;
  const auto isPresent = [&](const ResultRecord& result) {
    return std::ranges::find(record_.results, result.id, &ResultRecord::id) != record_.results.end();
  };
  for (const Import& import : imports_) {
    if (import.brought.empty() || std::ranges::any_of(import.brought, isPresent))
      imports.push_back(import.record);
  }
  return imports;
}

std::vector<std::int32_t> MemoryStore::analysisIds() {
  std::vector<std::int32_t> ids;
  ids.reserve(analyses_.size());
  for (const AnalysisSnapshot& analysis : analyses_) ids.push_back(analysis.id);
  return ids;
}

AnalysisSnapshot MemoryStore::readAnalysis(std::int32_t id) {
  const auto found = std::ranges::find(analyses_, id, &AnalysisSnapshot::id);
  if (found == analyses_.end()) {
    raise(ErrorNumber::InvalidArgument, "Store", "There is no analysis " + integerText(id) + ".");
  }
  return *found;
}

void MemoryStore::writeAnalysis(const AnalysisSnapshot& snapshot) {
  const auto found = std::ranges::find(analyses_, snapshot.id, &AnalysisSnapshot::id);
  if (found == analyses_.end()) {
    analyses_.push_back(snapshot);
  } else {
    *found = snapshot;
  }
}

void MemoryStore::removeAnalysis(std::int32_t id) {
  std::erase_if(analyses_, [&](const AnalysisSnapshot& analysis) { return analysis.id == id; });
  for (JoinedTable& table : record_.joined)
    std::erase_if(table.parts, [&](const JoinedPart& part) { return part.analysisId == id; });
}

}  // namespace banddesk::host
