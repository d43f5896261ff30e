// Runs as rows of a study file. The transaction around them is the caller's.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/store/sqlite.h"
#include "host/store/stored_run.h"

namespace banddesk::host {

// All runs with their sizing, without traces and peaks; in the order of their import.
std::vector<StoredRun> readRunRows(const sqlite::Database& database);
// Each an error 5 where there is no such run, trace or peaks.
std::vector<runs::Peak> readPeaksRow(const sqlite::Database& database, std::int32_t runId);
runs::Bytes readTraceRow(const sqlite::Database& database, std::int32_t runId, int channel);
runs::RunEdits readEditRows(const sqlite::Database& database, std::int32_t runId);

// Those of the latest sizing; nothing in a study without runs.
std::optional<runs::RunSettings> readSettingsRow(const sqlite::Database& database);
// All that sizings of this study used.
std::vector<runs::SizeStandard> readStandardRows(const sqlite::Database& database);

// The number of the settings, for the sizings that were made with them.
std::int64_t addSettingsRow(sqlite::Database& database, const runs::RunSettings& settings);
void addRunRows(sqlite::Database& database, const NewRuns::Run& run, std::int64_t importId,
                std::optional<std::int32_t> resultId, std::int64_t settingsId);
// Takes the place of what the run had.
void writeSizingRows(sqlite::Database& database, std::int32_t runId, const runs::ProcessedRun& run,
                     std::int64_t settingsId);
void writeEditRows(sqlite::Database& database, std::int32_t runId, const runs::RunEdits& edits);

}  // namespace banddesk::host
