// A study as one SQLite file. Whoever opens it for writing has it alone until the store ends; whoever opens
// it for reading keeps writers out: by a lock of its own beside the file, and by SQLite's locks behind that.
// Each write is one transaction, on the disk when it returns.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/store/sqlite.h"
#include "host/store/store.h"
#include "host/store/study_lock.h"
#include "host/store/study_schema.h"

namespace banddesk::host {

inline constexpr const char* kStudyExtension = ".study";

class SqliteStore final : public Store {
 public:
  enum class Access { Write, Read };

  // Makes the file of an empty study, whole or not at all. Error 70 if there is such a file already.
  static void create(const std::string& file, const std::string& studyName);

  // Opens an existing file; where it cannot be written it opens for reading and whyReadOnly() tells the
  // reason. A file that is no study of this version or an earlier one is an error and stays as it is. One of
  // an earlier version is brought up to date, and formerCopy() is kept of it; opened for reading it stays as
  // it is, and what is read is a temporary copy.
  explicit SqliteStore(const std::string& file, Access access = Access::Write,
                       SchemaSteps steps = studySchema());
  SqliteStore(const SqliteStore&) = delete;
  SqliteStore& operator=(const SqliteStore&) = delete;
  ~SqliteStore() override = default;

  std::string whyReadOnly() const override { return whyReadOnly_; }
  std::string formerCopy() const override { return opened_.formerCopy; }
  bool isFile(const std::string& file) const override { return opened_.lock->isOf(file); }
  // Also where the study was moved or deleted while it was open.
  void saveAs(const std::string& file) override;
  void copyTo(const std::string& file) const override;
  // Gives back the room of what was taken out, results that were withdrawn included.
  void compact();
  std::shared_ptr<const SampleFragments> readFragments(std::int32_t resultId) override;
  StudyRecord readStudy() override;
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
  std::optional<runs::RunSettings> readRunSettings() override;
  std::vector<runs::SizeStandard> readStandards() override;
  std::vector<ResultRecord> writeSizings(const StudyRecord& record, const runs::RunSettings& settings,
                                         const std::vector<NewSizing>& sizings) override;
  std::int32_t newAnalysisId() override;
  std::vector<std::int32_t> analysisIds() override;
  AnalysisSnapshot readAnalysis(std::int32_t id) override;
  void writeAnalysis(const AnalysisSnapshot& snapshot) override;
  void removeAnalysis(std::int32_t id) override;
  void write(const StudyRecord& record, const std::vector<std::int32_t>& removed,
             const std::vector<AnalysisSnapshot>& written) override;

  // SQLite's level of synchronisation: 2 is full.
  std::int64_t synchronisation() const { return database_.number("PRAGMA synchronous"); }

 private:
  // A file with the lock on it; the lock goes last.
  struct Opened {
    Opened(const std::string& file, Access access, SchemaSteps steps);
    Opened(const Opened&) = delete;
    Opened& operator=(Opened&& other) noexcept;
    ~Opened();

    void forReading(SchemaSteps steps);
    void forWriting(SchemaSteps steps);

    std::unique_ptr<StudyLock> lock;
    sqlite::Database database;
    std::string whyReadOnly;
    std::string formerCopy;
  };

  void write(const std::function<void()>& work);
  void writeRecord(const StudyRecord& record);
  void withdrawAllBut(const StudyRecord& record);
  std::int64_t addImport(const ImportRecord& import);
  ResultRecord addResult(const NewResult& result, std::int64_t importId);
  void addRuns(const NewRuns& runs, const std::vector<ResultRecord>& results, std::int64_t importId);
  void writeFragments(std::int32_t resultId, const SampleFragments& fragments);

  Opened opened_;
  sqlite::Database& database_ = opened_.database;
  std::string& whyReadOnly_ = opened_.whyReadOnly;
  std::int32_t lastAnalysisId_ = 0;
};

}  // namespace banddesk::host
