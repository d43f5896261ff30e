#include "host/store/study_schema.h"

#include <array>
#include <fmt/format.h>
#include <string>
#include <vector>

#include "plugin/base/error.h"

namespace banddesk::host {
namespace {

// Identifiers of results and analyses are never used twice. The fragments of a dye are one blob: as rows they
// would be a hundred times as many, and slower to write and to read by ten.
constexpr const char* kFirstVersion = R"sql(
CREATE TABLE study (
  id INTEGER PRIMARY KEY CHECK (id = 1),
  name TEXT NOT NULL,
  owner_id INTEGER NOT NULL,
  result_stamp INTEGER NOT NULL,
  last_analysis_id INTEGER NOT NULL DEFAULT 0,
  show_inclusion_warning INTEGER NOT NULL,
  display_view_index INTEGER NOT NULL,
  fourth_dye TEXT NOT NULL
) STRICT;

CREATE TABLE dye (
  slot INTEGER PRIMARY KEY CHECK (slot BETWEEN 0 AND 3),
  color INTEGER NOT NULL,
  is_visible INTEGER NOT NULL
) STRICT;

CREATE TABLE import (
  id INTEGER PRIMARY KEY,
  finished TEXT NOT NULL,
  report TEXT NOT NULL
) STRICT;

CREATE TABLE import_file (
  import_id INTEGER NOT NULL REFERENCES import ON DELETE CASCADE,
  position INTEGER NOT NULL,
  path TEXT NOT NULL,
  size INTEGER NOT NULL,
  hash INTEGER NOT NULL,
  PRIMARY KEY (import_id, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE result (
  id INTEGER PRIMARY KEY,
  import_id INTEGER REFERENCES import,
  sample_name TEXT NOT NULL,
  is_excluded INTEGER NOT NULL DEFAULT 0,
  is_deleted INTEGER NOT NULL DEFAULT 0
) STRICT;

CREATE TABLE fragments (
  result_id INTEGER NOT NULL REFERENCES result ON DELETE CASCADE,
  dye INTEGER NOT NULL CHECK (dye BETWEEN 0 AND 3),
  peaks BLOB NOT NULL,
  PRIMARY KEY (result_id, dye)
) STRICT;

CREATE TABLE analysis (
  id INTEGER PRIMARY KEY,
  position INTEGER NOT NULL UNIQUE,
  name TEXT NOT NULL,
  owner_id INTEGER NOT NULL,
  result_stamp INTEGER NOT NULL,
  max_bin_width REAL NOT NULL,
  y_threshold INTEGER NOT NULL,
  exclude_full_bins INTEGER NOT NULL,
  exclude_empty_samples INTEGER NOT NULL,
  show_excluded INTEGER NOT NULL,
  show_timestamp INTEGER NOT NULL,
  show_well_id INTEGER NOT NULL,
  samples_in_rows INTEGER NOT NULL,
  sample_bin_option INTEGER NOT NULL,
  is_pending INTEGER NOT NULL
) STRICT;

CREATE TABLE analysis_result (
  analysis_id INTEGER NOT NULL REFERENCES analysis ON DELETE CASCADE,
  position INTEGER NOT NULL,
  result_id INTEGER NOT NULL REFERENCES result,
  PRIMARY KEY (analysis_id, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE bin_decision (
  analysis_id INTEGER NOT NULL REFERENCES analysis ON DELETE CASCADE,
  position INTEGER NOT NULL,
  bin_key TEXT NOT NULL,
  manually_excluded INTEGER NOT NULL,
  manually_included INTEGER NOT NULL,
  PRIMARY KEY (analysis_id, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE layout (
  analysis_id INTEGER NOT NULL REFERENCES analysis ON DELETE CASCADE,
  kind TEXT NOT NULL CHECK (kind IN ('bins', 'samples', 'dyes', 'styles')),
  locked_key TEXT NOT NULL,
  PRIMARY KEY (analysis_id, kind)
) STRICT, WITHOUT ROWID;

CREATE TABLE layout_column (
  analysis_id INTEGER NOT NULL,
  kind TEXT NOT NULL,
  position INTEGER NOT NULL,
  type_code INTEGER NOT NULL,
  column_key TEXT NOT NULL,
  tool_tip TEXT NOT NULL,
  header TEXT NOT NULL,
  column_order INTEGER NOT NULL,
  is_visible INTEGER NOT NULL,
  is_excluded INTEGER NOT NULL,
  width INTEGER NOT NULL,
  sort_order INTEGER NOT NULL,
  sort_priority INTEGER NOT NULL,
  interior_pattern INTEGER NOT NULL,
  interior_color INTEGER NOT NULL,
  interior_bk_color INTEGER NOT NULL,
  read_only INTEGER NOT NULL,
  wrap_text INTEGER NOT NULL,
  horizontal_alignment INTEGER NOT NULL,
  vertical_alignment INTEGER NOT NULL,
  text_color INTEGER NOT NULL,
  format INTEGER NOT NULL,
  places INTEGER NOT NULL,
  draw_3d_frame INTEGER NOT NULL,
  style_tool_tip TEXT NOT NULL,
  PRIMARY KEY (analysis_id, kind, position),
  FOREIGN KEY (analysis_id, kind) REFERENCES layout ON DELETE CASCADE
) STRICT, WITHOUT ROWID;
)sql";

// The runs of instruments with their traces, how each was sized, and what the user changed in that by hand.
// Large values stand in tables of their own, so that they are read only when asked for. The letter of a
// slot's dye is '-' until an import fills it.
constexpr const char* kRunsAreKept = R"sql(
ALTER TABLE dye ADD COLUMN letter TEXT NOT NULL DEFAULT '-';
UPDATE dye SET letter = CASE slot WHEN 0 THEN 'B' WHEN 1 THEN 'G' WHEN 2 THEN 'Y'
  ELSE coalesce((SELECT nullif(fourth_dye, '') FROM study), '-') END;
ALTER TABLE study DROP COLUMN fourth_dye;
ALTER TABLE study DROP COLUMN show_inclusion_warning;

CREATE TABLE size_standard (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL,
  dyes TEXT NOT NULL,
  sizes TEXT NOT NULL,
  unreliable TEXT NOT NULL,
  UNIQUE (name, dyes, sizes, unreliable)
) STRICT;

CREATE TABLE run (
  id INTEGER PRIMARY KEY,
  import_id INTEGER REFERENCES import,
  result_id INTEGER UNIQUE REFERENCES result,
  file_name TEXT NOT NULL,
  sample_name TEXT NOT NULL,
  well TEXT NOT NULL,
  run_name TEXT NOT NULL,
  plate TEXT NOT NULL,
  comment TEXT NOT NULL,
  instrument TEXT NOT NULL,
  machine TEXT NOT NULL,
  polymer TEXT NOT NULL,
  dye_set TEXT NOT NULL,
  standard_name TEXT NOT NULL,
  capillary INTEGER NOT NULL,
  started TEXT NOT NULL,
  ended TEXT NOT NULL,
  normalisation REAL,
  is_normalised INTEGER NOT NULL,
  notes TEXT NOT NULL,
  saturated_scans BLOB NOT NULL
) STRICT;

CREATE TABLE run_dye (
  run_id INTEGER NOT NULL REFERENCES run ON DELETE CASCADE,
  channel INTEGER NOT NULL CHECK (channel BETWEEN 1 AND 6),
  letter TEXT NOT NULL,
  name TEXT NOT NULL,
  wavelength INTEGER,
  is_marked_as_ladder INTEGER NOT NULL,
  PRIMARY KEY (run_id, channel)
) STRICT, WITHOUT ROWID;

CREATE TABLE trace (
  run_id INTEGER NOT NULL,
  channel INTEGER NOT NULL,
  samples BLOB NOT NULL,
  PRIMARY KEY (run_id, channel),
  FOREIGN KEY (run_id, channel) REFERENCES run_dye ON DELETE CASCADE
) STRICT;

CREATE TABLE run_settings (
  id INTEGER PRIMARY KEY,
  baseline_window INTEGER NOT NULL,
  smoothing INTEGER NOT NULL,
  polynomial_window INTEGER NOT NULL,
  polynomial_degree INTEGER NOT NULL,
  does_window_follow_width INTEGER NOT NULL,
  least_heights TEXT NOT NULL,
  least_width REAL NOT NULL,
  least_size REAL NOT NULL,
  largest_size REAL NOT NULL,
  keeps_unsized INTEGER NOT NULL,
  pull_up_ratio REAL NOT NULL,
  pull_up_scans INTEGER NOT NULL,
  broad_nt REAL NOT NULL,
  standard_id INTEGER REFERENCES size_standard,
  ladder_channel INTEGER,
  uses_unreliable INTEGER NOT NULL,
  ladder_least_height REAL NOT NULL,
  method INTEGER NOT NULL,
  outside_ladder INTEGER NOT NULL,
  normalisation INTEGER NOT NULL
) STRICT;

CREATE TABLE sizing (
  run_id INTEGER PRIMARY KEY REFERENCES run ON DELETE CASCADE,
  settings_id INTEGER NOT NULL REFERENCES run_settings,
  standard_id INTEGER NOT NULL REFERENCES size_standard,
  channel INTEGER NOT NULL,
  quality INTEGER NOT NULL,
  reasons TEXT NOT NULL,
  score REAL NOT NULL,
  median_residual REAL NOT NULL,
  worst_residual REAL NOT NULL,
  median_height REAL NOT NULL,
  is_by_other_capillaries INTEGER NOT NULL,
  is_by_hand INTEGER NOT NULL,
  typical_width REAL NOT NULL,
  polynomial_window INTEGER NOT NULL,
  height_factor REAL NOT NULL
) STRICT;

CREATE TABLE ladder_peak (
  run_id INTEGER NOT NULL REFERENCES sizing ON DELETE CASCADE,
  position INTEGER NOT NULL,
  size REAL NOT NULL,
  scan INTEGER NOT NULL,
  height REAL NOT NULL,
  residual REAL NOT NULL,
  takes_part INTEGER NOT NULL,
  is_doubtful INTEGER NOT NULL,
  PRIMARY KEY (run_id, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE run_peaks (
  run_id INTEGER PRIMARY KEY REFERENCES sizing ON DELETE CASCADE,
  peaks BLOB NOT NULL
) STRICT;

CREATE TABLE peak_edit (
  run_id INTEGER NOT NULL REFERENCES run ON DELETE CASCADE,
  channel INTEGER NOT NULL,
  scan INTEGER NOT NULL,
  is_added INTEGER NOT NULL,
  PRIMARY KEY (run_id, channel, scan)
) STRICT, WITHOUT ROWID;

CREATE TABLE ladder_label (
  run_id INTEGER NOT NULL REFERENCES run ON DELETE CASCADE,
  size REAL NOT NULL,
  scan INTEGER,
  PRIMARY KEY (run_id, size)
) STRICT, WITHOUT ROWID;
)sql";

// What is said of samples, how an analysis is scored, and tables over several analyses. An analysis without a
// row in analysis_scoring has nothing of that. A bin is named by dye and mean size, a sample by "-" and its
// result, as in bin_decision and layout_column.
constexpr const char* kScoringIsKept = R"sql(
ALTER TABLE result ADD COLUMN role TEXT NOT NULL DEFAULT 'sample';
ALTER TABLE result ADD COLUMN sample_group TEXT NOT NULL DEFAULT '';
ALTER TABLE result ADD COLUMN individual TEXT NOT NULL DEFAULT '';
ALTER TABLE result ADD COLUMN primer_pair TEXT NOT NULL DEFAULT '';
ALTER TABLE result ADD COLUMN note TEXT NOT NULL DEFAULT '';

CREATE TABLE analysis_scoring (
  analysis_id INTEGER PRIMARY KEY REFERENCES analysis ON DELETE CASCADE,
  size_from REAL,
  size_to REAL,
  normalisation TEXT NOT NULL,
  call_percent REAL NOT NULL,
  finds_bins_between INTEGER NOT NULL,
  aligns_lanes INTEGER NOT NULL,
  replicates TEXT NOT NULL,
  primer_pair TEXT NOT NULL
) STRICT;

CREATE TABLE analysis_rule (
  analysis_id INTEGER NOT NULL REFERENCES analysis ON DELETE CASCADE,
  position INTEGER NOT NULL,
  rule TEXT NOT NULL,
  PRIMARY KEY (analysis_id, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE rule_mark (
  analysis_id INTEGER NOT NULL REFERENCES analysis ON DELETE CASCADE,
  element TEXT NOT NULL,
  why TEXT NOT NULL,
  PRIMARY KEY (analysis_id, element)
) STRICT, WITHOUT ROWID;

CREATE TABLE kept_element (
  analysis_id INTEGER NOT NULL REFERENCES analysis ON DELETE CASCADE,
  element TEXT NOT NULL,
  PRIMARY KEY (analysis_id, element)
) STRICT, WITHOUT ROWID;

CREATE TABLE given_bin (
  analysis_id INTEGER NOT NULL REFERENCES analysis ON DELETE CASCADE,
  position INTEGER NOT NULL,
  dye INTEGER NOT NULL CHECK (dye BETWEEN 0 AND 3),
  size_from REAL NOT NULL,
  size_to REAL NOT NULL,
  name TEXT NOT NULL,
  PRIMARY KEY (analysis_id, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE joined (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL UNIQUE,
  consensus TEXT NOT NULL,
  individuals TEXT NOT NULL
) STRICT;

CREATE TABLE joined_part (
  joined_id INTEGER NOT NULL REFERENCES joined ON DELETE CASCADE,
  position INTEGER NOT NULL,
  analysis_id INTEGER NOT NULL REFERENCES analysis ON DELETE CASCADE,
  primer_pair TEXT NOT NULL,
  PRIMARY KEY (joined_id, position)
) STRICT, WITHOUT ROWID;
)sql";

constexpr std::array kSteps{kFirstVersion, kRunsAreKept, kScoringIsKept};

// The tables, and whatever else a file may hold beside rows, in the words that made them.
std::vector<std::string> schemaOf(const sqlite::Database& database) {
  std::vector<std::string> parts;
  sqlite::Statement rows = database.prepare(
      "SELECT type || ' ' || coalesce(sql, name) FROM sqlite_schema WHERE name NOT LIKE 'sqlite@_%' ESCAPE "
      "'@' "
      "ORDER BY name");
  while (rows.next()) parts.emplace_back(rows.text(0));
  return parts;
}

std::vector<std::string> madeBy(SchemaSteps steps) {
  sqlite::Database database(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, "memory");
  for (const char* step : steps) database.execute(step);
  return schemaOf(database);
}

// That of this version, which nearly every file has, is made once.
std::vector<std::string> schemaAfter(SchemaSteps steps) {
  static const std::vector<std::string> present = madeBy(kSteps);
  const bool isPresent = steps.data() == kSteps.data() && steps.size() == kSteps.size();
  return isPresent ? present : madeBy(steps);
}

std::int64_t versionOf(const sqlite::Database& database) { return database.number("PRAGMA user_version"); }

}  // namespace

SchemaSteps studySchema() { return kSteps; }

void requireStudy(const sqlite::Database& database, SchemaSteps steps) {
  const auto refuse = [&](const std::string& why) {
    raise(ErrorNumber::InvalidArgument, "Store", fmt::format("{}: {}", database.file(), why));
  };
  const std::int64_t application = database.number("PRAGMA application_id");
  const std::int64_t version = versionOf(database);
  if (application != kApplicationId)
    refuse(application == 0 && database.number("SELECT count(*) FROM sqlite_schema") == 0
               ? "it is no study: the file is empty"
               : "it is a database of another program, no study");
  if (version > static_cast<std::int64_t>(steps.size()))
    refuse(
        fmt::format("it was made by a newer version of Banddesk (study format {}; this one knows up to {})",
                    version, steps.size()));
  if (version < 1) refuse("it is no study: it has no tables");
  // Views, triggers, tables without our rules: somebody made them, and not to keep a study.
  if (schemaOf(database) != schemaAfter(steps.first(static_cast<std::size_t>(version))))
    refuse("it is no study as this program makes it: its tables are others");
}

bool isOutdated(const sqlite::Database& database, SchemaSteps steps) {
  return versionOf(database) < static_cast<std::int64_t>(steps.size());
}

void bringUpToDate(sqlite::Database& database, SchemaSteps steps) {
  sqlite::Transaction transaction(database);
  for (auto step = static_cast<std::size_t>(versionOf(database)); step < steps.size(); ++step) {
    database.execute(steps[step]);
  }
  database.execute(fmt::format("PRAGMA application_id = {}", kApplicationId).c_str());
  database.execute(fmt::format("PRAGMA user_version = {}", steps.size()).c_str());
  transaction.commit();
}

}  // namespace banddesk::host
