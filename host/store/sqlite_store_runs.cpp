// The store's work on runs of instruments.
#include <utility>

#include "host/store/run_rows.h"
#include "host/store/sqlite_store.h"

namespace banddesk::host {

void SqliteStore::addRuns(const NewRuns& runs, const std::vector<ResultRecord>& results,
                          std::int64_t importId) {
  const std::int64_t settingsId = addSettingsRow(database_, runs.settings);
  for (const NewRuns::Run& run : runs.runs) {
    std::optional<std::int32_t> resultId;
    if (run.result) resultId = results.at(*run.result).id;
    addRunRows(database_, run, importId, resultId, settingsId);
  }
}

std::vector<StoredRun> SqliteStore::readRuns() { return readRunRows(database_); }

std::vector<runs::Peak> SqliteStore::readPeaks(std::int32_t runId) { return readPeaksRow(database_, runId); }

runs::Bytes SqliteStore::readTrace(std::int32_t runId, int channel) {
  return readTraceRow(database_, runId, channel);
}

runs::RunEdits SqliteStore::readEdits(std::int32_t runId) { return readEditRows(database_, runId); }

void SqliteStore::writeEdits(std::int32_t runId, const runs::RunEdits& edits) {
  write([&] { writeEditRows(database_, runId, edits); });
}

std::optional<runs::RunSettings> SqliteStore::readRunSettings() { return readSettingsRow(database_); }

std::vector<runs::SizeStandard> SqliteStore::readStandards() { return readStandardRows(database_); }

std::vector<ResultRecord> SqliteStore::writeSizings(const StudyRecord& record,
                                                    const runs::RunSettings& settings,
                                                    const std::vector<NewSizing>& sizings) {
  std::vector<ResultRecord> added;
  write([&] {
    sqlite::Statement resultOf = database_.prepare("SELECT result_id, import_id FROM run WHERE id = ?");
    sqlite::Statement link = database_.prepare("UPDATE run SET result_id = ? WHERE id = ?");
    sqlite::Statement clear = database_.prepare("DELETE FROM fragments WHERE result_id = ?");
    const std::int64_t settingsId = addSettingsRow(database_, settings);
    for (const NewSizing& each : sizings) {
      writeSizingRows(database_, each.runId, each.processed, settingsId);
      if (each.edits) writeEditRows(database_, each.runId, *each.edits);
      resultOf.begin(each.runId);
      if (!resultOf.next()) database_.failDamaged("a run is missing");
      if (!resultOf.isNull(0)) {
        const auto resultId = resultOf.integer<std::int32_t>(0);
        clear.run(resultId);
        writeFragments(resultId, each.fragments);
      } else if (each.processed.isSized()) {
        const std::int64_t importId = resultOf.isNull(1) ? 0 : resultOf.number(1);
        added.push_back(addResult({each.sampleName, each.fragments}, importId));
        link.run(added.back().id, each.runId);
      }
    }
    database_.execute("DELETE FROM run_settings WHERE id NOT IN (SELECT settings_id FROM sizing)");
    writeRecord(record);
  });
  return added;
}

}  // namespace banddesk::host
