#include "host/store/analysis_rows.h"

#include <array>
#include <fmt/format.h>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "plugin/base/error.h"

namespace banddesk::host {
namespace {

using sqlite::Database;
using sqlite::Statement;

// A row's fields with their names in the file: one list serves reading and writing.
template <class Column, class Action>
void columnFields(Column& column, Action act) {
  act("type_code", column.typeCode);
  act("column_key", column.key);
  act("tool_tip", column.toolTip);
  act("header", column.header);
  act("column_order", column.columnOrder);
  act("is_visible", column.isVisible);
  act("is_excluded", column.isExcluded);
  act("width", column.width);
  act("sort_order", column.sortOrder);
  act("sort_priority", column.sortPriority);
  act("interior_pattern", column.interiorPattern);
  act("interior_color", column.interiorColor);
  act("interior_bk_color", column.interiorBkColor);
  act("read_only", column.readOnly);
  act("wrap_text", column.wrapText);
  act("horizontal_alignment", column.horizontalAlignment);
  act("vertical_alignment", column.verticalAlignment);
  act("text_color", column.textColor);
  act("format", column.format);
  act("places", column.places);
  act("draw_3d_frame", column.draw3dFrame);
  act("style_tool_tip", column.styleToolTip);
}

template <class Snapshot, class Action>
void analysisFields(Snapshot& snapshot, Action act) {
  act("name", snapshot.name);
  act("owner_id", snapshot.ownerId);
  act("result_stamp", snapshot.resultStamp);
  act("max_bin_width", snapshot.maxBinWidth);
  act("y_threshold", snapshot.yThreshold);
  act("exclude_full_bins", snapshot.excludeFullBins);
  act("exclude_empty_samples", snapshot.excludeEmptySamples);
  act("show_excluded", snapshot.showExcluded);
  act("show_timestamp", snapshot.showTimestamp);
  act("show_well_id", snapshot.showWellID);
  act("samples_in_rows", snapshot.samplesInRows);
  act("sample_bin_option", snapshot.sampleBinOption);
  act("is_pending", snapshot.isPending);
}

constexpr auto kColumnFields = [](auto& column, auto act) { columnFields(column, act); };
constexpr auto kAnalysisFields = [](auto& snapshot, auto act) { analysisFields(snapshot, act); };

// "a, b, c" of a list's field names.
template <class Row, class Fields>
std::string namesOf(Fields fields) {
  std::string names;
  const Row row{};
  fields(row, [&](const char* name, const auto&) { names.append(names.empty() ? "" : ", ").append(name); });
  return names;
}

// "?, ?, ?"
std::string marks(std::string_view names, std::size_t more) {
  std::string text;
  for (std::size_t i = 0; i < more; ++i) text += "?, ";
  text += "?";
  for (const char c : names) {
    if (c == ',') text += ", ?";
  }
  return text;
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
                  namesOf<ColumnSnapshot>(kColumnFields)));
  for (const Layout& each : kLayouts) {
    LayoutSnapshot& read = snapshot.*each.member;
    layout.begin(snapshot.id, each.kind);
    if (!layout.next()) database.failDamaged(fmt::format("an analysis has no layout of {}", each.kind));
    read.lockedKey = layout.text(0);
    columns.begin(snapshot.id, each.kind);
    while (columns.next()) {
      int place = 0;
      ColumnSnapshot& column = read.columns.emplace_back();
      columnFields(column, [&](const char*, auto& value) { host::read(columns, place++, value); });
      if (column.columnOrder < 0 || column.columnOrder > kLastPlace)
        database.failDamaged(fmt::format("a column stands at place {}", column.columnOrder));
    }
  }
}

void writeLayouts(Database& database, const AnalysisSnapshot& snapshot) {
  const std::string names = namesOf<ColumnSnapshot>(kColumnFields);
  Statement layout = database.prepare("INSERT INTO layout(analysis_id, kind, locked_key) VALUES(?, ?, ?)");
  Statement columns = database.prepare(fmt::format(
      "INSERT INTO layout_column(analysis_id, kind, position, {}) VALUES({})", names, marks(names, 3)));
  for (const Layout& each : kLayouts) {
    const LayoutSnapshot& written = snapshot.*each.member;
    layout.run(snapshot.id, each.kind, std::string_view(written.lockedKey));
    std::int32_t position = 0;
    for (const ColumnSnapshot& column : written.columns) {
      columns.begin(snapshot.id, each.kind, ++position);
      int place = 3;
      columnFields(column, [&](const char*, const auto& value) { columns.bind(++place, value); });
      columns.finish();
    }
  }
}

// What belongs to the analysis alone.
void removeParts(Database& database, std::int32_t id) {
  for (const char* table : {"layout", "bin_decision", "analysis_result"}) {
    database.prepare(fmt::format("DELETE FROM {} WHERE analysis_id = ?", table)).run(id);
  }
}

// Gives an analysis that is written again its old place, and a new one the last.
void writeFields(Database& database, const AnalysisSnapshot& snapshot) {
  const std::string names = namesOf<AnalysisSnapshot>(kAnalysisFields);
  std::string replaced;
  analysisFields(snapshot, [&](const char* name, const auto&) {
    replaced += fmt::format("{}{} = excluded.{}", replaced.empty() ? "" : ", ", name, name);
  });
  Statement statement = database.prepare(
      fmt::format("INSERT INTO analysis(id, {}, position) VALUES(?, {}, "
                  "(SELECT coalesce(max(position), 0) + 1 FROM analysis)) ON CONFLICT(id) DO UPDATE SET {}",
                  names, marks(names, 0), replaced));
  statement.begin(snapshot.id);
  int place = 1;
  analysisFields(snapshot, [&](const char*, const auto& value) { statement.bind(++place, value); });
  statement.finish();
}

}  // namespace

AnalysisSnapshot readAnalysisRows(Database& database, std::int32_t id) {
  AnalysisSnapshot snapshot;
  snapshot.id = id;
  Statement fields = database.prepare(
      fmt::format("SELECT {} FROM analysis WHERE id = ?", namesOf<AnalysisSnapshot>(kAnalysisFields)));
  fields.begin(id);
  if (!fields.next())
    raise(ErrorNumber::InvalidArgument, "Store", fmt::format("There is no analysis {}.", id));
  int place = 0;
  analysisFields(snapshot, [&](const char*, auto& value) { read(fields, place++, value); });

  Statement results =
      database.prepare("SELECT result_id FROM analysis_result WHERE analysis_id = ? ORDER BY position");
  for (results.begin(id); results.next();) snapshot.resultIds.push_back(results.integer<std::int32_t>(0));
  Statement bins = database.prepare(
      "SELECT bin_key, manually_excluded, manually_included FROM bin_decision WHERE analysis_id = ? "
      "ORDER BY position");
  for (bins.begin(id); bins.next();)
    snapshot.bins.push_back({std::string(bins.text(0)), bins.number(1) != 0, bins.number(2) != 0});
  readLayouts(database, snapshot);
  return snapshot;
}

void writeAnalysisRows(Database& database, const AnalysisSnapshot& snapshot) {
  removeParts(database, snapshot.id);
  writeFields(database, snapshot);
  Statement result =
      database.prepare("INSERT INTO analysis_result(analysis_id, position, result_id) VALUES(?, ?, ?)");
  std::int32_t position = 0;
  for (const std::int32_t resultId : snapshot.resultIds) result.run(snapshot.id, ++position, resultId);
  Statement bin = database.prepare(
      "INSERT INTO bin_decision(analysis_id, position, bin_key, manually_excluded, manually_included) "
      "VALUES(?, ?, ?, ?, ?)");
  position = 0;
  for (const BinSnapshot& each : snapshot.bins)
    bin.run(snapshot.id, ++position, std::string_view(each.key), each.manuallyExcluded,
            each.manuallyIncluded);
  writeLayouts(database, snapshot);
}

void removeAnalysisRows(Database& database, std::int32_t id) {
  removeParts(database, id);
  database.prepare("DELETE FROM analysis WHERE id = ?").run(id);
}

}  // namespace banddesk::host
