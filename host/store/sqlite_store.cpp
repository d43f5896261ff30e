#include "host/store/sqlite_store.h"

#include <bit>
#include <filesystem>
#include <fmt/format.h>
#include <limits>
#include <unordered_set>
#include <utility>

#include "host/store/analysis_rows.h"
#include "host/store/fragment_blob.h"
#include "host/store/new_study_file.h"
#include "host/store/scoring_rows.h"
#include "plugin/base/error.h"

namespace banddesk::host {
namespace {

namespace fs = std::filesystem;
using sqlite::Statement;

// Of results, as a mark in the place of the one of deletion, which is 1.
constexpr std::int32_t kWithdrawn = 2;

// SQLite would make a missing file, and wait at a pipe.
std::string existingFile(const std::string& file) {
  std::error_code trouble;
  const fs::file_status status = fs::status(file, trouble);
  const auto refuse = [&](ErrorNumber number, const char* why) {
    raise(number, "Store", fmt::format("{}: {}", file, why));
  };
  if (status.type() == fs::file_type::not_found) refuse(ErrorNumber::PathNotFound, "there is no such file");
  if (trouble) refuse(ErrorNumber::PermissionDenied, trouble.message().c_str());
  if (fs::is_directory(status)) refuse(ErrorNumber::InvalidArgument, "it is a folder, no study");
  if (!fs::is_regular_file(status)) refuse(ErrorNumber::InvalidArgument, "it is no ordinary file");
  return file;
}

// SQLite takes a last page of which a part is missing for a whole one.
void requireWhole(const sqlite::Database& database, const std::string& file) {
  const std::int64_t wanted = database.number("PRAGMA page_count") * database.number("PRAGMA page_size");
  std::error_code trouble;
  const auto size = fs::file_size(file, trouble);
  if (!trouble && size < static_cast<std::uintmax_t>(wanted)) database.failDamaged("its end is missing");
}

}  // namespace

SqliteStore::Opened::Opened(const std::string& file, Access access, SchemaSteps steps)
    : lock(std::make_unique<StudyLock>(existingFile(file), access == Access::Write)),
      database(file, SQLITE_OPEN_READWRITE, file, lock->hasLocks()),
      whyReadOnly(lock->whyReadOnly()) {
  // What is found here decides whether the file is ours, before anything could be written to it.
  requireStudy(database, steps);
  requireWhole(database, file);
  if (!lock->isOf(file) || database.hasMoved())
    raise(ErrorNumber::PermissionDenied, "Store",
          fmt::format("{}: another file took its place while it was opened", file));
  if (whyReadOnly.empty() && database.isReadOnly()) whyReadOnly = "the file may not be written";
  database.execute("PRAGMA foreign_keys = ON; PRAGMA locking_mode = EXCLUSIVE");
  whyReadOnly.empty() ? forWriting(steps) : forReading(steps);
}

// The former database closes before its lock goes.
SqliteStore::Opened& SqliteStore::Opened::operator=(Opened&& other) noexcept {
  std::swap(lock, other.lock);
  std::swap(database, other.database);
  std::swap(whyReadOnly, other.whyReadOnly);
  std::swap(formerCopy, other.formerCopy);
  return *this;
}

// Takes the emptied journal away. It would do no harm: the next opening knows it for empty.
SqliteStore::Opened::~Opened() {
  database.executeIfPossible("PRAGMA locking_mode = NORMAL; PRAGMA journal_mode = DELETE");
}

// The first read takes the shared lock, which the locking mode keeps: all that is read is of one state. A
// file of an earlier version is read by way of a copy that lives as long as the store.
void SqliteStore::Opened::forReading(SchemaSteps steps) {
  database.execute("SELECT count(*) FROM sqlite_schema");
  if (isOutdated(database, steps)) {
    sqlite::Database copy("", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, database.file());
    database.copyTo(copy);
    bringUpToDate(copy, steps);
    database = std::move(copy);
  }
  database.execute("PRAGMA query_only = ON");
}

// In this locking mode the end of a save is synchronised too: the journal is emptied, not unlinked.
void SqliteStore::Opened::forWriting(SchemaSteps steps) {
  database.execute("PRAGMA journal_mode = TRUNCATE; PRAGMA synchronous = FULL; BEGIN EXCLUSIVE; COMMIT");
  if (!isOutdated(database, steps)) return;
  formerCopy = keepCopy(database);
  bringUpToDate(database, steps);
}

SqliteStore::SqliteStore(const std::string& file, Access access, SchemaSteps steps)
    : opened_(file, access, steps) {
  sqlite::Statement last = database_.prepare(
      "SELECT max(last_analysis_id, (SELECT coalesce(max(id), 0) FROM analysis)) FROM study");
  if (last.next()) lastAnalysisId_ = last.integer<std::int32_t>(0);
}

void SqliteStore::write(const std::function<void()>& work) {
  if (!whyReadOnly_.empty())
    raise(ErrorNumber::PermissionDenied, "Store",
          fmt::format("{}: it cannot be saved: {}", database_.file(), whyReadOnly_));
  // What is written into a file that has no name any more is gone with the program.
  if (database_.hasMoved())
    raise(ErrorNumber::PathNotFound, "Store",
          fmt::format("{}: it cannot be saved: the file was moved or deleted while it was open",
                      database_.file()));
  if (database_.isInTransaction()) return work();
  sqlite::Transaction transaction(database_);
  work();
  transaction.commit();
}

void SqliteStore::write(const StudyRecord& record, const std::vector<std::int32_t>& removed,
                        const std::vector<AnalysisSnapshot>& written) {
  write([&] { Store::write(record, removed, written); });
}

std::shared_ptr<const SampleFragments> SqliteStore::readFragments(std::int32_t resultId) {
  Statement rows = database_.prepare(
      "SELECT f.dye, f.peaks FROM result r LEFT JOIN fragments f ON f.result_id = r.id WHERE r.id = ?");
  auto fragments = std::make_shared<SampleFragments>();
  bool isKnown = false;
  for (rows.begin(resultId); rows.next(); isKnown = true) {
    if (rows.isNull(0)) continue;
    const auto dye = static_cast<std::size_t>(rows.number(0));
    auto peaks = decodeFragments(rows.blob(1));
    if (dye >= kDyeCount || !peaks)
      database_.failDamaged(fmt::format("the fragments of result {} cannot be read", resultId));
    fragments->dyes[dye] = std::move(*peaks);
  }
  if (!isKnown) raise(ErrorNumber::InvalidArgument, "Store", fmt::format("There is no result {}.", resultId));
  return fragments;
}

StudyRecord SqliteStore::readStudy() {
  StudyRecord record;
  Statement study = database_.prepare("SELECT name, owner_id, result_stamp, display_view_index FROM study");
  if (!study.next()) database_.failDamaged("it has no study record");
  record.name = study.text(0);
  record.ownerId = study.integer<std::int32_t>(1);
  record.resultStamp = study.integer<std::int32_t>(2);
  record.settings = {study.integer<std::int16_t>(3)};

  Statement dyes = database_.prepare("SELECT color, is_visible, letter FROM dye ORDER BY slot");
  for (DyeRecord& dye : record.dyes) {
    if (!dyes.next()) database_.failDamaged("a dye is missing");
    if (dyes.text(2).size() != 1) database_.failDamaged("a dye has no letter");
    dye = {dyes.integer<Colour>(0), dyes.number(1) != 0, dyes.text(2).front()};
  }
  Statement results = database_.prepare(
      "SELECT id, sample_name, is_excluded, is_deleted FROM result WHERE is_deleted < 2 "
      "ORDER BY id");
  while (results.next()) {
    record.results.push_back({results.integer<std::int32_t>(0),
                              std::string(results.text(1)),
                              results.number(2) != 0,
                              results.number(3) != 0,
                              {}});
  }
  readFacts(database_, record);
  record.joined = readJoinedTables(database_);
  return record;
}

void SqliteStore::writeStudy(const StudyRecord& record) {
  write([&] {
    withdrawAllBut(record);
    writeRecord(record);
  });
}

void SqliteStore::withdrawAllBut(const StudyRecord& record) {
  std::unordered_set<std::int64_t> kept;
  for (const ResultRecord& result : record.results) kept.insert(result.id);
  std::vector<std::int64_t> withdrawn;
  Statement rows = database_.prepare("SELECT id FROM result WHERE is_deleted < 2");
  while (rows.next()) {
    if (!kept.contains(rows.number(0))) withdrawn.push_back(rows.number(0));
  }
  Statement mark = database_.prepare("UPDATE result SET is_deleted = ? WHERE id = ?");
  for (const std::int64_t id : withdrawn) mark.run(kWithdrawn, id);
}

void SqliteStore::compact() {
  write([&] {
    database_
        .prepare(
            "DELETE FROM result WHERE is_deleted = ? AND id NOT IN (SELECT result_id FROM analysis_result)")
        .run(kWithdrawn);
    database_.execute("DELETE FROM import WHERE id NOT IN (SELECT import_id FROM result WHERE import_id)");
  });
  database_.vacuum();
}

void SqliteStore::writeRecord(const StudyRecord& record) {
  database_.prepare("UPDATE study SET name = ?, owner_id = ?, result_stamp = ?, display_view_index = ?")
      .run(std::string_view(record.name), record.ownerId, record.resultStamp,
           std::int32_t{record.settings.displayViewIndex});
  Statement row = database_.prepare("UPDATE dye SET color = ?, is_visible = ?, letter = ? WHERE slot = ?");
  std::int32_t slot = 0;
  for (const DyeRecord& dye : record.dyes)
    row.run(dye.color, dye.isVisible, std::string_view(&dye.letter, 1), slot++);
  Statement marks = database_.prepare(
      "UPDATE result SET is_excluded = ?1, is_deleted = ?2, sample_name = ?3 "
      "WHERE id = ?4 AND (is_excluded <> ?1 OR is_deleted <> ?2 OR sample_name <> ?3)");
  for (const ResultRecord& result : record.results)
    marks.run(result.isExcluded, result.isDeleted, std::string_view(result.sampleName), result.id);
  writeFacts(database_, record);
  writeJoinedTables(database_, record.joined);
}

std::vector<ResultRecord> SqliteStore::addResults(const StudyRecord& record,
                                                  const std::vector<NewResult>& results,
                                                  const std::optional<ImportRecord>& import,
                                                  const NewRuns& runs) {
  std::vector<ResultRecord> added;
  added.reserve(results.size());
  write([&] {
    const std::int64_t importId = import ? addImport(*import) : 0;
    for (const NewResult& result : results) added.push_back(addResult(result, importId));
    if (!runs.runs.empty()) addRuns(runs, added, importId);
    writeRecord(record);
  });
  return added;
}

std::int64_t SqliteStore::addImport(const ImportRecord& import) {
  database_.prepare("INSERT INTO import(finished, report) VALUES(?, ?)")
      .run(std::string_view(import.finished), std::string_view(import.report));
  const std::int64_t id = database_.lastRowId();
  Statement file = database_.prepare(
      "INSERT INTO import_file(import_id, position, path, size, hash) VALUES(?, ?, ?, ?, ?)");
  std::int32_t position = 0;
  for (const ImportedFile& each : import.files)
    file.run(id, ++position, std::string_view(each.path), std::bit_cast<std::int64_t>(each.size),
             std::bit_cast<std::int64_t>(each.hash));
  return id;
}

ResultRecord SqliteStore::addResult(const NewResult& result, std::int64_t importId) {
  Statement row = database_.prepare("INSERT INTO result(import_id, sample_name) VALUES(nullif(?, 0), ?)");
  row.run(importId, std::string_view(result.sampleName));
  const auto id = static_cast<std::int32_t>(database_.lastRowId());
  writeFragments(id, result.fragments);
  return {id, result.sampleName, false, false, {}};
}

void SqliteStore::writeFragments(std::int32_t resultId, const SampleFragments& fragments) {
  Statement row = database_.prepare("INSERT INTO fragments(result_id, dye, peaks) VALUES(?, ?, ?)");
  for (std::size_t dye = 0; dye < kDyeCount; ++dye) {
    if (fragments.dyes[dye].sizes.empty()) continue;
    const std::vector<std::byte> bytes = encodeFragments(fragments.dyes[dye]);
    row.run(resultId, static_cast<std::int32_t>(dye), sqlite::Blob(bytes));
  }
}

std::vector<ImportRecord> SqliteStore::readImports() {
  std::vector<ImportRecord> imports;
  Statement rows = database_.prepare(
      "SELECT id, finished, report FROM import WHERE id IN (SELECT import_id FROM result WHERE is_deleted < "
      "2) "
      "OR id NOT IN (SELECT import_id FROM result WHERE import_id) ORDER BY id");
  Statement files =
      database_.prepare("SELECT path, size, hash FROM import_file WHERE import_id = ? ORDER BY position");
  while (rows.next()) {
    ImportRecord& import = imports.emplace_back(std::string(rows.text(1)), std::string(rows.text(2)));
    for (files.begin(rows.number(0)); files.next();) {
      import.files.push_back({std::string(files.text(0)), std::bit_cast<std::uint64_t>(files.number(1)),
                              std::bit_cast<std::uint64_t>(files.number(2))});
    }
  }
  return imports;
}

std::int32_t SqliteStore::newAnalysisId() {
  if (lastAnalysisId_ == std::numeric_limits<std::int32_t>::max())
    raise(ErrorNumber::Overflow, "Store",
          fmt::format("{}: it has no number left for an analysis", database_.file()));
  return ++lastAnalysisId_;
}

std::vector<std::int32_t> SqliteStore::analysisIds() {
  std::vector<std::int32_t> ids;
  Statement rows = database_.prepare("SELECT id FROM analysis ORDER BY position");
  while (rows.next()) ids.push_back(rows.integer<std::int32_t>(0));
  return ids;
}

AnalysisSnapshot SqliteStore::readAnalysis(std::int32_t id) { return readAnalysisRows(database_, id); }

void SqliteStore::writeAnalysis(const AnalysisSnapshot& snapshot) {
  write([&] {
    writeAnalysisRows(database_, snapshot);
    database_.prepare("UPDATE study SET last_analysis_id = max(last_analysis_id, ?)").run(snapshot.id);
  });
}

void SqliteStore::removeAnalysis(std::int32_t id) {
  write([&] { removeAnalysisRows(database_, id); });
}

}  // namespace banddesk::host
