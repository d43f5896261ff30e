#include "host/store/run_rows.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <stdexcept>

#include "host/store/peak_blob.h"
#include "host/store/row_fields.h"
#include "plugin/base/error.h"

namespace banddesk::host {
namespace {

using runs::LadderAssignment;
using runs::LadderPeak;
using runs::ProcessedRun;
using runs::RunDye;
using runs::RunFile;
using runs::RunSettings;
using runs::SizeStandard;
using sqlite::Database;
using sqlite::Statement;
using namespace rows;

// Lists of a row's fields with their names in the file: one list serves reading and writing.
constexpr auto kRunFields = [](auto& run, auto act) {
  act("file_name", run.fileName);
  act("sample_name", run.sampleName);
  act("well", run.well);
  act("run_name", run.run);
  act("plate", run.plate);
  act("comment", run.comment);
  act("instrument", run.instrument);
  act("machine", run.machine);
  act("polymer", run.polymer);
  act("dye_set", run.dyeSet);
  act("standard_name", run.standardName);
  act("capillary", run.capillary);
  act("started", run.started);
  act("ended", run.ended);
  act("normalisation", run.normalisation);
  act("is_normalised", run.isNormalised);
  act("notes", run.notes);
};

constexpr auto kDyeFields = [](auto& dye, auto act) {
  act("channel", dye.channel);
  act("letter", dye.letter);
  act("name", dye.name);
  act("wavelength", dye.wavelength);
  act("is_marked_as_ladder", dye.isMarkedAsLadder);
};

constexpr auto kSettingsFields = [](auto& settings, auto act) {
  auto& peaks = settings.peaks;
  act("baseline_window", peaks.baselineWindow);
  act("smoothing", peaks.smoothing);
  act("polynomial_window", peaks.polynomialWindow);
  act("polynomial_degree", peaks.polynomialDegree);
  act("does_window_follow_width", peaks.doesWindowFollowWidth);
  act("least_heights", peaks.leastHeight);
  act("least_width", peaks.leastWidth);
  act("least_size", peaks.leastSize);
  act("largest_size", peaks.largestSize);
  act("keeps_unsized", peaks.keepsUnsized);
  act("pull_up_ratio", peaks.pullUpRatio);
  act("pull_up_scans", peaks.pullUpScans);
  act("broad_nt", peaks.broadNt);
  act("ladder_channel", settings.ladder.channel);
  act("uses_unreliable", settings.ladder.usesUnreliable);
  act("ladder_least_height", settings.ladder.leastHeight);
  act("method", settings.method);
  act("outside_ladder", settings.outside);
  act("normalisation", settings.normalisation);
};

constexpr auto kSizingFields = [](auto& run, auto act) {
  auto& ladder = run.ladder;
  act("channel", ladder.channel);
  act("quality", ladder.quality);
  act("reasons", ladder.reasons);
  act("score", ladder.score);
  act("median_residual", ladder.medianResidual);
  act("worst_residual", ladder.worstResidual);
  act("median_height", ladder.medianHeight);
  act("is_by_other_capillaries", ladder.isByOtherCapillaries);
  act("is_by_hand", ladder.isByHand);
  act("typical_width", run.typicalWidth);
  act("polynomial_window", run.window);
  act("height_factor", run.heightFactor);
};

constexpr auto kLadderPeakFields = [](auto& peak, auto act) {
  act("size", peak.size);
  act("scan", peak.scan);
  act("height", peak.height);
  act("residual", peak.residual);
  act("takes_part", peak.takesPart);
  act("is_doubtful", peak.isDoubtful);
};

constexpr auto kStandardFields = [](auto& standard, auto act) {
  act("name", standard.name);
  act("dyes", standard.dyes);
  act("sizes", standard.sizes);
  act("unreliable", standard.unreliable);
};

std::int64_t standardRow(Database& database, const SizeStandard& standard) {
  const std::string dyes = joined(standard.dyes), sizes = joined(standard.sizes),
                    unreliable = joined(standard.unreliable);
  database
      .prepare(
          "INSERT INTO size_standard(name, dyes, sizes, unreliable) VALUES(?, ?, ?, ?) "
          "ON CONFLICT DO NOTHING")
      .run(std::string_view(standard.name), std::string_view(dyes), std::string_view(sizes),
           std::string_view(unreliable));
  Statement row = database.prepare(
      "SELECT id FROM size_standard WHERE name = ? AND dyes = ? AND sizes = ? AND unreliable = ?");
  row.begin(std::string_view(standard.name), std::string_view(dyes), std::string_view(sizes),
            std::string_view(unreliable));
  return row.next() ? row.number(0) : 0;
}

std::map<std::int64_t, SizeStandard> standardsById(const Database& database) {
  std::map<std::int64_t, SizeStandard> standards;
  Statement rows = database.prepare(
      fmt::format("SELECT id, {} FROM size_standard", namesOf<SizeStandard>(kStandardFields)));
  while (rows.next()) kStandardFields(standards[rows.number(0)], RowReader(database, rows, 1));
  return standards;
}

// What a file of anybody's may not make the analysis of runs do.
void requireSane(const Database& database, const RunSettings& settings) {
  constexpr int kMostScans = 10'001;
  const auto isWindow = [](int scans) { return scans >= 1 && scans <= kMostScans; };
  const runs::PeakSettings& peaks = settings.peaks;
  if (!isWindow(peaks.baselineWindow) || !isWindow(peaks.polynomialWindow) || peaks.polynomialDegree < 1 ||
      peaks.polynomialDegree > 9 || peaks.pullUpScans < 0 || peaks.pullUpScans > kMostScans)
    database.failDamaged("settings of runs are out of their range");
}

void readLadderPeaks(const Database& database, std::int32_t runId, LadderAssignment& ladder) {
  Statement rows =
      database.prepare(fmt::format("SELECT {} FROM ladder_peak WHERE run_id = ? ORDER BY position",
                                   namesOf<LadderPeak>(kLadderPeakFields)));
  for (rows.begin(runId); rows.next();)
    kLadderPeakFields(ladder.peaks.emplace_back(), RowReader(database, rows, 0));
  for (const double size : ladder.standard.sizes)
    if (ladder.peakOf(size) == nullptr) ladder.missing.push_back(size);
}

void readDyes(const Database& database, std::int32_t runId, RunFile& run) {
  Statement rows = database.prepare(
      fmt::format("SELECT {} FROM run_dye WHERE run_id = ? ORDER BY channel", namesOf<RunDye>(kDyeFields)));
  for (rows.begin(runId); rows.next();) kDyeFields(run.dyes.emplace_back(), RowReader(database, rows, 0));
}

void readSaturation(const Database& database, sqlite::Blob packed, RunFile& run) {
  auto scans = runs::unpackTrace(packed);
  if (!scans || !std::ranges::is_sorted(*scans)) database.failDamaged("the saturated scans of a run");
  run.saturatedScans = std::move(*scans);
}

void setCurve(const Database& database, runs::SizeMethod method, ProcessedRun& run) {
  if (!run.isSized()) return;
  try {
    run.curve = runs::SizingCurve(run.ladder.points(), method);
  } catch (const std::invalid_argument& error) {
    database.failDamaged(fmt::format("the ladder of a run: {}", error.what()));
  }
}

void addTraces(Database& database, std::int32_t runId, const NewRuns::Run& run) {
  Statement dye = inserting<RunDye>(database, "run_dye", "run_id, ", kDyeFields);
  Statement trace = database.prepare("INSERT INTO trace(run_id, channel, samples) VALUES(?, ?, ?)");
  for (std::size_t i = 0; i < run.processed.run.dyes.size(); ++i) {
    const RunDye& each = run.processed.run.dyes[i];
    dye.begin(runId);
    RowWriter writer(dye, 1);
    kDyeFields(each, std::ref(writer));
    dye.finish();
    trace.run(runId, each.channel, sqlite::Blob(run.traces.at(i)));
  }
}

}  // namespace

std::vector<StoredRun> readRunRows(const Database& database) {
  const auto standards = standardsById(database);
  const std::string ofRun = namesOf<RunFile>(kRunFields), ofSizing = namesOf<ProcessedRun>(kSizingFields);
  Statement rows =
      database.prepare(fmt::format("SELECT id, result_id, s.standard_id, saturated_scans, "
                                   "(SELECT method FROM run_settings t WHERE t.id = s.settings_id), {}, {} "
                                   "FROM run r JOIN sizing s ON s.run_id = r.id ORDER BY id",
                                   ofRun, ofSizing));
  constexpr int kFirst = 5;
  const int afterRun = kFirst + 1 + static_cast<int>(std::ranges::count(ofRun, ','));
  std::vector<StoredRun> stored;
  while (rows.next()) {
    StoredRun& each = stored.emplace_back();
    each.id = rows.integer<std::int32_t>(0);
    if (!rows.isNull(1)) each.resultId = rows.integer<std::int32_t>(1);
    ProcessedRun& run = each.processed;
    const auto standard = standards.find(rows.number(2));
    if (standard == standards.end()) database.failDamaged("a run has no size standard");
    run.ladder.standard = standard->second;
    readSaturation(database, rows.blob(3), run.run);
    kRunFields(run.run, RowReader(database, rows, kFirst));
    kSizingFields(run, RowReader(database, rows, afterRun));
    readDyes(database, each.id, run.run);
    readLadderPeaks(database, each.id, run.ladder);
    setCurve(database, rows.number(4) == 0 ? runs::SizeMethod::LocalSouthern : runs::SizeMethod::ThirdOrder,
             run);
  }
  return stored;
}

std::vector<runs::Peak> readPeaksRow(const Database& database, std::int32_t runId) {
  Statement row = database.prepare("SELECT peaks FROM run_peaks WHERE run_id = ?");
  row.begin(runId);
  if (!row.next()) raise(ErrorNumber::InvalidArgument, "Store", fmt::format("There is no run {}.", runId));
  auto peaks = decodePeaks(row.blob(0));
  if (!peaks) database.failDamaged(fmt::format("the peaks of run {} cannot be read", runId));
  return std::move(*peaks);
}

runs::Bytes readTraceRow(const Database& database, std::int32_t runId, int channel) {
  Statement row = database.prepare("SELECT samples FROM trace WHERE run_id = ? AND channel = ?");
  row.begin(runId, channel);
  if (!row.next())
    raise(ErrorNumber::InvalidArgument, "Store", fmt::format("Run {} has no dye {}.", runId, channel));
  const sqlite::Blob packed = row.blob(0);
  return {packed.begin(), packed.end()};
}

runs::RunEdits readEditRows(const Database& database, std::int32_t runId) {
  runs::RunEdits edits;
  Statement peaks = database.prepare("SELECT channel, scan, is_added FROM peak_edit WHERE run_id = ?");
  for (peaks.begin(runId); peaks.next();)
    edits.peaks.push_back({peaks.integer<int>(0), peaks.integer<int>(1), peaks.number(2) != 0});
  Statement labels = database.prepare("SELECT size, scan FROM ladder_label WHERE run_id = ?");
  for (labels.begin(runId); labels.next();)
    edits.labels.push_back(
        {labels.real(0), labels.isNull(1) ? std::nullopt : std::optional(labels.integer<int>(1))});
  return edits;
}

std::optional<RunSettings> readSettingsRow(const Database& database) {
  Statement row = database.prepare(fmt::format("SELECT standard_id, {} FROM run_settings ORDER BY id DESC",
                                               namesOf<RunSettings>(kSettingsFields)));
  if (!row.next()) return {};
  RunSettings settings;
  kSettingsFields(settings, RowReader(database, row, 1));
  requireSane(database, settings);
  if (!row.isNull(0)) {
    const auto standards = standardsById(database);
    const auto found = standards.find(row.number(0));
    if (found != standards.end()) settings.ladder.standard = found->second;
  }
  return settings;
}

std::vector<SizeStandard> readStandardRows(const Database& database) {
  std::vector<SizeStandard> standards;
  for (auto& [id, standard] : standardsById(database)) standards.push_back(std::move(standard));
  return standards;
}

std::int64_t addSettingsRow(Database& database, const RunSettings& settings) {
  Statement row = inserting<RunSettings>(database, "run_settings", "standard_id, ", kSettingsFields);
  if (settings.ladder.standard) {
    row.begin(standardRow(database, *settings.ladder.standard));
  } else {
    row.begin();
    row.bindNull(1);
  }
  RowWriter writer(row, 1);
  kSettingsFields(settings, std::ref(writer));
  row.finish();
  return database.lastRowId();
}

void addRunRows(Database& database, const NewRuns::Run& run, std::int64_t importId,
                std::optional<std::int32_t> resultId, std::int64_t settingsId) {
  Statement row = inserting<RunFile>(database, "run", "import_id, result_id, saturated_scans, ", kRunFields);
  const runs::Bytes saturated = runs::packTrace(run.processed.run.saturatedScans);
  row.begin();
  importId == 0 ? row.bindNull(1) : row.bind(1, importId);
  resultId ? row.bind(2, *resultId) : row.bindNull(2);
  row.bind(3, sqlite::Blob(saturated));
  RowWriter writer(row, 3);
  kRunFields(run.processed.run, std::ref(writer));
  row.finish();
  const auto runId = static_cast<std::int32_t>(database.lastRowId());
  addTraces(database, runId, run);
  writeSizingRows(database, runId, run.processed, settingsId);
}

void writeSizingRows(Database& database, std::int32_t runId, const ProcessedRun& run,
                     std::int64_t settingsId) {
  database.prepare("DELETE FROM sizing WHERE run_id = ?").run(runId);
  const std::int64_t standardId = standardRow(database, run.ladder.standard);
  Statement row =
      inserting<ProcessedRun>(database, "sizing", "run_id, settings_id, standard_id, ", kSizingFields);
  row.begin(runId, settingsId, standardId);
  RowWriter writer(row, 3);
  kSizingFields(run, std::ref(writer));
  row.finish();
  Statement peak = inserting<LadderPeak>(database, "ladder_peak", "run_id, position, ", kLadderPeakFields);
  std::int32_t position = 0;
  for (const LadderPeak& each : run.ladder.peaks) {
    peak.begin(runId, ++position);
    RowWriter peakWriter(peak, 2);
    kLadderPeakFields(each, std::ref(peakWriter));
    peak.finish();
  }
  const runs::Bytes peaks = encodePeaks(run.peaks);
  database.prepare("INSERT INTO run_peaks(run_id, peaks) VALUES(?, ?)").run(runId, sqlite::Blob(peaks));
}

void writeEditRows(Database& database, std::int32_t runId, const runs::RunEdits& edits) {
  for (const char* table : {"peak_edit", "ladder_label"})
    database.prepare(fmt::format("DELETE FROM {} WHERE run_id = ?", table)).run(runId);
  Statement peak = database.prepare(
      "INSERT OR REPLACE INTO peak_edit(run_id, channel, scan, is_added) VALUES(?, ?, ?, ?)");
  for (const runs::PeakEdit& edit : edits.peaks) peak.run(runId, edit.channel, edit.scan, edit.isAdded);
  Statement label =
      database.prepare("INSERT OR REPLACE INTO ladder_label(run_id, size, scan) VALUES(?, ?, ?)");
  for (const runs::LadderLabel& each : edits.labels) {
    label.begin(runId, each.size);
    each.scan ? label.bind(3, *each.scan) : label.bindNull(3);
    label.finish();
  }
}

}  // namespace banddesk::host
