// A study in memory. It lives as long as somebody holds it, so a study can be closed and opened again from
// it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/store/store.h"

namespace banddesk::host {

class MemoryStore final : public Store {
 public:
  // Dyes without fragments are not visible. The results get the ids 1, 2, 3 and so on.
  explicit MemoryStore(std::string studyName, std::vector<NewResult> results = {});

  std::shared_ptr<const SampleFragments> readFragments(std::int32_t resultId) override;
  StudyRecord readStudy() override { return record_; }
  void writeStudy(const StudyRecord& record) override;
  using Store::addResults;
  std::vector<ResultRecord> addResults(const StudyRecord& record, const std::vector<NewResult>& results,
                                       const std::optional<ImportRecord>& import,
                                       const NewRuns& runs) override;
  std::vector<ImportRecord> readImports() override;
  std::vector<StoredRun> readRuns() override;
  std::vector<runs::Peak> readPeaks(std::int32_t runId) override;
  runs::Bytes readTrace(std::int32_t runId, int channel) override;
  runs::RunEdits readEdits(std::int32_t runId) override;
  void writeEdits(std::int32_t runId, const runs::RunEdits& edits) override;
  std::optional<runs::RunSettings> readRunSettings() override { return runSettings_; }
  std::vector<runs::SizeStandard> readStandards() override { return standards_; }
  std::vector<ResultRecord> writeSizings(const StudyRecord& record, const runs::RunSettings& settings,
                                         const std::vector<NewSizing>& sizings) override;
  std::int32_t newAnalysisId() override { return ++lastAnalysisId_; }
  std::vector<std::int32_t> analysisIds() override;
  AnalysisSnapshot readAnalysis(std::int32_t id) override;
  void writeAnalysis(const AnalysisSnapshot& snapshot) override;
  void removeAnalysis(std::int32_t id) override;

 private:
  struct KeptRun {
    StoredRun stored;
    std::vector<runs::Peak> peaks;
    std::vector<runs::Bytes> traces;
    runs::RunEdits edits;
  };

  ResultRecord addResult(std::string sampleName, SampleFragments fragments);
  KeptRun& runOf(std::int32_t runId);
  void setSizing(KeptRun& run, runs::ProcessedRun processed);
  void note(const runs::RunSettings& settings);
  void note(const runs::SizeStandard& standard);

  StudyRecord record_;
  struct Import {
    ImportRecord record;
    std::vector<ResultRecord> brought;
  };
  std::vector<Import> imports_;
  std::unordered_map<std::int32_t, std::shared_ptr<const SampleFragments>> fragments_;  // by result id
  std::vector<AnalysisSnapshot> analyses_;
  std::vector<KeptRun> runs_;
  std::optional<runs::RunSettings> runSettings_;
  std::vector<runs::SizeStandard> standards_;
  std::int32_t lastResultId_ = 0;
  std::int32_t lastAnalysisId_ = 0;
};

}  // namespace banddesk::host
