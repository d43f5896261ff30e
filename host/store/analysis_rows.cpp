#include "host/store/analysis_rows.h"

#include <array>
#include <fmt/format.h>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "host/store/scoring_rows.h"
#include "host/store/snapshot_fields.h"
#include "plugin/base/error.h"

namespace banddesk::host {
namespace {

using sqlite::Database;
using sqlite::Statement;

// "a, b, c" of a list's field names, each as `format` says.
template <class Fields>
std::string namesOf(const Fields& fields, const char* format = "{0}") {
  std::vector<std::string> names;
  eachField(fields,
            [&](const auto& field) { names.push_back(fmt::format(fmt::runtime(format), field.name)); });
  return fmt::format("{}", fmt::join(names, ", "));
}

// "?, ?, ?" for the fields of a list behind `more` others.
template <class Fields>
std::string marks(const Fields&, std::size_t more) {
  const std::vector<const char*> each(std::tuple_size_v<Fields> + more, "?");
  return fmt::format("{}", fmt::join(each, ", "));
}

template <class Value>
void read(const Statement& row, int place, Value& value) {
  if constexpr (std::is_same_v<Value, std::string>) {
    value = row.text(place);
  } else if constexpr (std::is_same_v<Value, double>) {
    value = row.real(place);
  } else if constexpr (std::is_same_v<Value, bool>) {
    value = row.number(place) != 0;
  } else {
    value = row.integer<Value>(place);
  }
}

template <class Fields, class Row>
void readFields(const Fields& fields, const Statement& from, Row& row) {
  int place = 0;
  eachField(fields, [&](const auto& field) { read(from, place++, row.*field.member); });
}

// Behind `place` values that are bound already.
template <class Fields, class Row>
void bindFields(const Fields& fields, Statement& to, int place, const Row& row) {
  eachField(fields, [&](const auto& field) { to.bind(++place, row.*field.member); });
}

// Beyond any table; one that reached so far would fill the memory with nothing.
constexpr std::int32_t kLastPlace = 1'000'000;

struct Layout {
  std::string_view kind;
  LayoutSnapshot AnalysisSnapshot::*member;
};

constexpr std::array<Layout, 4> kLayouts{{{"bins", &AnalysisSnapshot::binGrid},
                                          {"samples", &AnalysisSnapshot::sampleGrid},
                                          {"dyes", &AnalysisSnapshot::dyeGrid},
                                          {"styles", &AnalysisSnapshot::styleGrid}}};

void readLayouts(Database& database, AnalysisSnapshot& snapshot) {
  Statement layout = database.prepare("SELECT locked_key FROM layout WHERE analysis_id = ? AND kind = ?");
  Statement columns = database.prepare(
      fmt::format("SELECT {} FROM layout_column WHERE analysis_id = ? AND kind = ? ORDER BY position",
                  namesOf(kColumnFields)));
  for (const Layout& each : kLayouts) {
    LayoutSnapshot& read = snapshot.*each.member;
    layout.begin(snapshot.id, each.kind);
    if (!layout.next()) database.failDamaged(fmt::format("an analysis has no layout of {}", each.kind));
    read.lockedKey = layout.text(0);
    columns.begin(snapshot.id, each.kind);
    while (columns.next()) {
      ColumnSnapshot& column = read.columns.emplace_back();
      readFields(kColumnFields, columns, column);
      if (column.columnOrder < 0 || column.columnOrder > kLastPlace)
        database.failDamaged(fmt::format("a column stands at place {}", column.columnOrder));
    }
  }
}

void writeLayouts(Database& database, const AnalysisSnapshot& snapshot) {
  Statement layout = database.prepare("INSERT INTO layout(analysis_id, kind, locked_key) VALUES(?, ?, ?)");
  Statement columns =
      database.prepare(fmt::format("INSERT INTO layout_column(analysis_id, kind, position, {}) VALUES({})",
                                   namesOf(kColumnFields), marks(kColumnFields, 3)));
  for (const Layout& each : kLayouts) {
    const LayoutSnapshot& written = snapshot.*each.member;
    layout.run(snapshot.id, each.kind, std::string_view(written.lockedKey));
    std::int32_t position = 0;
    for (const ColumnSnapshot& column : written.columns) {
      columns.begin(snapshot.id, each.kind, ++position);
      bindFields(kColumnFields, columns, 3, column);
      columns.finish();
    }
  }
}

// What belongs to the analysis alone.
void removeParts(Database& database, std::int32_t id) {
  for (const char* table : {"layout", "bin_decision", "analysis_result"}) {
    database.prepare(fmt::format("DELETE FROM {} WHERE analysis_id = ?", table)).run(id);
  }
  removeScoring(database, id);
}

// Gives an analysis that is written again its old place, and a new one the last.
void writeFields(Database& database, const AnalysisSnapshot& snapshot) {
  Statement statement = database.prepare(fmt::format(
      "INSERT INTO analysis(id, {}, position) VALUES(?, {}, "
      "(SELECT coalesce(max(position), 0) + 1 FROM analysis)) ON CONFLICT(id) DO UPDATE SET {}",
      namesOf(kAnalysisFields), marks(kAnalysisFields, 0), namesOf(kAnalysisFields, "{0} = excluded.{0}")));
  statement.begin(snapshot.id);
  bindFields(kAnalysisFields, statement, 1, snapshot);
  statement.finish();
}

}  // namespace

AnalysisSnapshot readAnalysisRows(Database& database, std::int32_t id) {
  AnalysisSnapshot snapshot;
  snapshot.id = id;
  Statement fields =
      database.prepare(fmt::format("SELECT {} FROM analysis WHERE id = ?", namesOf(kAnalysisFields)));
  fields.begin(id);
  if (!fields.next())
    raise(ErrorNumber::InvalidArgument, "Store", fmt::format("There is no analysis {}.", id));
  readFields(kAnalysisFields, fields, snapshot);

  Statement results =
      database.prepare("SELECT result_id FROM analysis_result WHERE analysis_id = ? ORDER BY position");
  for (results.begin(id); results.next();) snapshot.resultIds.push_back(results.integer<std::int32_t>(0));
  Statement bins = database.prepare(fmt::format(
      "SELECT {} FROM bin_decision WHERE analysis_id = ? ORDER BY position", namesOf(kBinFields)));
  for (bins.begin(id); bins.next();) readFields(kBinFields, bins, snapshot.bins.emplace_back());
  readLayouts(database, snapshot);
  snapshot.scoring = readScoring(database, id);
  return snapshot;
}

void writeAnalysisRows(Database& database, const AnalysisSnapshot& snapshot) {
  removeParts(database, snapshot.id);
  writeFields(database, snapshot);
  Statement result =
      database.prepare("INSERT INTO analysis_result(analysis_id, position, result_id) VALUES(?, ?, ?)");
  std::int32_t position = 0;
  for (const std::int32_t resultId : snapshot.resultIds) result.run(snapshot.id, ++position, resultId);
  Statement bin =
      database.prepare(fmt::format("INSERT INTO bin_decision(analysis_id, position, {}) VALUES({})",
                                   namesOf(kBinFields), marks(kBinFields, 2)));
  position = 0;
  for (const BinSnapshot& each : snapshot.bins) {
    bin.begin(snapshot.id, ++position);
    bindFields(kBinFields, bin, 2, each);
    bin.finish();
  }
  writeLayouts(database, snapshot);
  writeScoring(database, snapshot.id, snapshot.scoring);
}

void removeAnalysisRows(Database& database, std::int32_t id) {
  removeParts(database, id);
  database.prepare("DELETE FROM analysis WHERE id = ?").run(id);
}

}  // namespace banddesk::host
