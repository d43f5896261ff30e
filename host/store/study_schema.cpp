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

constexpr std::array kSteps{kFirstVersion};

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
