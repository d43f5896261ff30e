// The port behind which one study lies: its record, its fragments and its analyses. Each write is whole or
// not at all; when it returns, the store holds it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/store/snapshot.h"
#include "host/store/stored_run.h"
#include "host/study/fragments.h"
#include "host/study/study.h"

namespace banddesk::host {

struct ImportedFile {
  std::string path;
  std::uint64_t size = 0;  // bytes
  std::uint64_t hash = 0;  // of its content
  friend bool operator==(const ImportedFile&, const ImportedFile&) = default;
};

// Where results came from, kept with them.
struct ImportRecord {
  std::string finished;  // date and time in UTC, such as 2024-05-31 14:20:05
  std::string report;    // in words
  std::vector<ImportedFile> files;
  friend bool operator==(const ImportRecord&, const ImportRecord&) = default;
};

class Store : public FragmentSource {
 public:
  // Why nothing can be written; empty where it can.
  virtual std::string whyReadOnly() const { return {}; }
  // The file that keeps the study as it was before it was brought up to date; empty where nothing was to do.
  virtual std::string formerCopy() const { return {}; }
  // Whether the study lies in this file, whatever name leads there.
  virtual bool isFile(const std::string&) const { return false; }

  // Makes a copy of all that the store holds in a new file, and goes on with that one, which can be written;
  // the former stays as it was saved last. Error 70 if there is such a file already.
  virtual void saveAs(const std::string& file);
  // The same copy, while the store goes on with what it has.
  virtual void copyTo(const std::string& file) const;

  virtual StudyRecord readStudy() = 0;
  // Replaces the study's own fields, its settings, its dyes, and the names and marks of its results. A result
  // that the record lacks is withdrawn: it is none of the study's any more, and an import of which all are
  // withdrawn was none; a record that names it again brings it back.
  virtual void writeStudy(const StudyRecord& record) = 0;
  // Adds results with their fragments, the runs that they are of, and the import that brought them, and
  // writes the rest of the record; gives the new results their ids.
  virtual std::vector<ResultRecord> addResults(const StudyRecord& record,
                                               const std::vector<NewResult>& results,
                                               const std::optional<ImportRecord>& import,
                                               const NewRuns& runs) = 0;
  std::vector<ResultRecord> addResults(const StudyRecord& record, const std::vector<NewResult>& results,
                                       const std::optional<ImportRecord>& import) {
    return addResults(record, results, import, {});
  }
  virtual std::vector<ImportRecord> readImports() = 0;  // the earliest first

  // The runs of instruments, without traces and peaks, in the order of their import. What lies in more room is
  // read when it is asked for; each is error 5 for a run or a dye that there is not.
  virtual std::vector<StoredRun> readRuns() = 0;
  virtual std::vector<runs::Peak> readPeaks(std::int32_t runId) = 0;
  virtual runs::Bytes readTrace(std::int32_t runId, int channel) = 0;  // packed
  // What the user changed by hand in a run; a sizing leaves it as it is.
  virtual runs::RunEdits readEdits(std::int32_t runId) = 0;
  virtual void writeEdits(std::int32_t runId, const runs::RunEdits& edits) = 0;
  // Those of the latest sizing; nothing in a study without runs.
  virtual std::optional<runs::RunSettings> readRunSettings() = 0;
  // All that were ever used in this study, the user's own among them.
  virtual std::vector<runs::SizeStandard> readStandards() = 0;
  // Replaces the sizing, the peaks and the results' fragments of these runs, and writes the record; gives
  // back the results that were added for runs that had none.
  virtual std::vector<ResultRecord> writeSizings(const StudyRecord& record, const runs::RunSettings& settings,
                                                 const std::vector<NewSizing>& sizings) = 0;

  // An identifier that no analysis of the study has had.
  virtual std::int32_t newAnalysisId() = 0;
  virtual std::vector<std::int32_t> analysisIds() = 0;  // in the order in which they were first written
  virtual AnalysisSnapshot readAnalysis(std::int32_t id) = 0;  // error 5 if there is none
  virtual void writeAnalysis(const AnalysisSnapshot& snapshot) = 0;
  // Nothing if there is none; joined tables lose the part that it was.
  virtual void removeAnalysis(std::int32_t id) = 0;
  // The record, analyses to take out and analyses to write, in one write.
  virtual void write(const StudyRecord& record, const std::vector<std::int32_t>& removed,
                     const std::vector<AnalysisSnapshot>& written);
};

}  // namespace banddesk::host
