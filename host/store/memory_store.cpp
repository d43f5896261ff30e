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
                                                  const std::optional<ImportRecord>& import,
                                                  const NewRuns& runs) {
  std::vector<ResultRecord> added;
  added.reserve(results.size());
  for (const NewResult& result : results) added.push_back(addResult(result.sampleName, result.fragments));
  if (import) imports_.push_back({*import, added});
  record_ = record;
  record_.results.insert(record_.results.end(), added.begin(), added.end());
  if (!runs.runs.empty()) note(runs.settings);
  for (const NewRuns::Run& run : runs.runs) {
    KeptRun& kept = runs_.emplace_back();
    kept.stored.id = static_cast<std::int32_t>(runs_.size());
    if (run.result) kept.stored.resultId = added.at(*run.result).id;
    kept.traces = run.traces;
    setSizing(kept, run.processed);
  }
  return added;
}

MemoryStore::KeptRun& MemoryStore::runOf(std::int32_t runId) {
  const auto place = static_cast<std::size_t>(runId) - 1;
  if (place >= runs_.size())
    raise(ErrorNumber::InvalidArgument, "Store", "There is no run " + integerText(runId) + ".");
  return runs_[place];
}

void MemoryStore::note(const runs::RunSettings& settings) {
  runSettings_ = settings;
  runSettings_->ladder.lists = runs::knownStandards();
  if (settings.ladder.standard) note(*settings.ladder.standard);
}

void MemoryStore::note(const runs::SizeStandard& standard) {
  if (std::ranges::find(standards_, standard) == standards_.end()) standards_.push_back(standard);
}

void MemoryStore::setSizing(KeptRun& run, runs::ProcessedRun processed) {
  run.peaks = std::exchange(processed.peaks, {});
  note(processed.ladder.standard);
  run.stored.processed = std::move(processed);
}

std::vector<StoredRun> MemoryStore::readRuns() {
  std::vector<StoredRun> runs;
  for (const KeptRun& run : runs_) runs.push_back(run.stored);
  return runs;
}

std::vector<runs::Peak> MemoryStore::readPeaks(std::int32_t runId) { return runOf(runId).peaks; }

runs::Bytes MemoryStore::readTrace(std::int32_t runId, int channel) {
  const KeptRun& run = runOf(runId);
  const auto& dyes = run.stored.processed.run.dyes;
  const auto dye = std::ranges::find(dyes, channel, &runs::RunDye::channel);
  if (dye == dyes.end())
    raise(ErrorNumber::InvalidArgument, "Store",
          "Run " + integerText(runId) + " has no dye " + integerText(channel) + ".");
  return run.traces.at(static_cast<std::size_t>(dye - dyes.begin()));
}

runs::RunEdits MemoryStore::readEdits(std::int32_t runId) { return runOf(runId).edits; }

void MemoryStore::writeEdits(std::int32_t runId, const runs::RunEdits& edits) { runOf(runId).edits = edits; }

std::vector<ResultRecord> MemoryStore::writeSizings(const StudyRecord& record,
                                                    const runs::RunSettings& settings,
                                                    const std::vector<NewSizing>& sizings) {
  std::vector<ResultRecord> added;
  note(settings);
  for (const NewSizing& sizing : sizings) {
    KeptRun& run = runOf(sizing.runId);
    setSizing(run, sizing.processed);
    if (sizing.edits) run.edits = *sizing.edits;
    if (run.stored.resultId) {
      fragments_[*run.stored.resultId] = std::make_shared<const SampleFragments>(sizing.fragments);
    } else if (sizing.processed.isSized()) {
      added.push_back(addResult(sizing.sampleName, sizing.fragments));
      run.stored.resultId = added.back().id;
    }
  }
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
