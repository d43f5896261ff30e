#include "host/store/scoring_rows.h"

#include <array>
#include <fmt/format.h>
#include <string>
#include <string_view>
#include <utility>

namespace banddesk::host {
namespace {

using scoring::AnalysisScoring;
using sqlite::Database;
using sqlite::Statement;

// Words, so that a study can be read without this program.
constexpr std::array<std::pair<SampleRole, std::string_view>, 3> kRoles = {
    {{SampleRole::Sample, "sample"}, {SampleRole::Blank, "blank"}, {SampleRole::Reference, "reference"}}};
constexpr std::array<std::pair<Normalisation, std::string_view>, 3> kNormalisations = {
    {{Normalisation::None, "none"}, {Normalisation::Total, "total"}, {Normalisation::Median, "median"}}};

template <class Words, class Value>
std::string_view wordOf(const Words& words, Value value) {
  for (const auto& [each, word] : words) {
    if (each == value) return word;
  }
  return words.front().second;
}

template <class Words>
auto valueOf(const Database& database, const Words& words, std::string_view word) {
  for (const auto& [value, each] : words) {
    if (each == word) return value;
  }
  database.failDamaged(fmt::format("\"{}\" is none of its words", word));
}

std::string_view view(const std::string& text) { return text; }

void readSettings(const Database& database, std::int32_t analysisId, AnalysisScoring& scoring) {
  Statement row = database.prepare(
      "SELECT size_from, size_to, normalisation, call_percent, finds_bins_between, aligns_lanes, replicates, "
      "primer_pair FROM analysis_scoring WHERE analysis_id = ?");
  row.begin(analysisId);
  if (!row.next()) return;  // made before there was anything to keep
  CalculatorSettings& calculator = scoring.calculator;
  if (!row.isNull(0)) calculator.sizeRange = SizeRange{row.real(0), row.real(1)};
  calculator.normalisation = valueOf(database, kNormalisations, row.text(2));
  calculator.callPercent = row.real(3);
  calculator.findsBinsBetween = row.number(4) != 0;
  calculator.alignsLanes = row.number(5) != 0;
  scoring.replicates = row.text(6);
  scoring.primerPair = row.text(7);
}

void writeSettings(const Database& database, std::int32_t analysisId, const AnalysisScoring& scoring) {
  const CalculatorSettings& calculator = scoring.calculator;
  Statement row = database.prepare(
      "INSERT INTO analysis_scoring(analysis_id, size_from, size_to, normalisation, call_percent, "
      "finds_bins_between, aligns_lanes, replicates, primer_pair) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?)");
  row.begin(analysisId);
  if (calculator.sizeRange) {
    row.bind(2, calculator.sizeRange->from);
    row.bind(3, calculator.sizeRange->to);
  } else {
    row.bindNull(2);
    row.bindNull(3);
  }
  row.bind(4, wordOf(kNormalisations, calculator.normalisation));
  row.bind(5, calculator.callPercent);
  row.bind(6, calculator.findsBinsBetween);
  row.bind(7, calculator.alignsLanes);
  row.bind(8, view(scoring.replicates));
  row.bind(9, view(scoring.primerPair));
  row.finish();
}

scoring::Rule ruleIn(const Database& database, std::string_view text) {
  try {
    return scoring::parseRule(text);
  } catch (const scoring::RuleError& error) {
    database.failDamaged(error.what());
  }
}

}  // namespace

AnalysisScoring readScoring(const Database& database, std::int32_t analysisId) {
  AnalysisScoring scoring;
  readSettings(database, analysisId, scoring);
  Statement rules =
      database.prepare("SELECT rule FROM analysis_rule WHERE analysis_id = ? ORDER BY position");
  for (rules.begin(analysisId); rules.next();) scoring.rules.push_back(ruleIn(database, rules.text(0)));
  Statement marks = database.prepare("SELECT element, why FROM rule_mark WHERE analysis_id = ?");
  for (marks.begin(analysisId); marks.next();) scoring.marks.emplace(marks.text(0), marks.text(1));
  Statement kept = database.prepare("SELECT element FROM kept_element WHERE analysis_id = ?");
  for (kept.begin(analysisId); kept.next();) scoring.kept.emplace(kept.text(0));
  Statement bins = database.prepare(
      "SELECT dye, size_from, size_to, name FROM given_bin WHERE analysis_id = ? ORDER BY position");
  for (bins.begin(analysisId); bins.next();)
    scoring.calculator.bins.push_back(
        {bins.integer<std::int32_t>(0), bins.real(1), bins.real(2), std::string(bins.text(3))});
  return scoring;
}

void writeScoring(const Database& database, std::int32_t analysisId, const AnalysisScoring& scoring) {
  writeSettings(database, analysisId, scoring);
  std::int32_t position = 0;
  Statement rule = database.prepare("INSERT INTO analysis_rule(analysis_id, position, rule) VALUES(?, ?, ?)");
  for (const scoring::Rule& each : scoring.rules)
    rule.run(analysisId, ++position, view(scoring::ruleText(each)));
  Statement mark = database.prepare("INSERT INTO rule_mark(analysis_id, element, why) VALUES(?, ?, ?)");
  for (const auto& [element, why] : scoring.marks) mark.run(analysisId, view(element), view(why));
  Statement kept = database.prepare("INSERT INTO kept_element(analysis_id, element) VALUES(?, ?)");
  for (const std::string& element : scoring.kept) kept.run(analysisId, view(element));
  position = 0;
  Statement bin = database.prepare(
      "INSERT INTO given_bin(analysis_id, position, dye, size_from, size_to, name) VALUES(?, ?, ?, ?, ?, ?)");
  for (const GivenBin& each : scoring.calculator.bins)
    bin.run(analysisId, ++position, std::int32_t{each.dye}, each.from, each.to, view(each.name));
}

void removeScoring(const Database& database, std::int32_t analysisId) {
  for (const char* table : {"analysis_scoring", "analysis_rule", "rule_mark", "kept_element", "given_bin"})
    database.prepare(fmt::format("DELETE FROM {} WHERE analysis_id = ?", table)).run(analysisId);
}

void readFacts(const Database& database, StudyRecord& record) {
  Statement row =
      database.prepare("SELECT role, sample_group, individual, primer_pair, note FROM result WHERE id = ?");
  for (ResultRecord& result : record.results) {
    row.begin(result.id);
    if (!row.next()) continue;
    result.facts = {valueOf(database, kRoles, row.text(0)), std::string(row.text(1)),
                    std::string(row.text(2)), std::string(row.text(3)), std::string(row.text(4))};
  }
}

void writeFacts(const Database& database, const StudyRecord& record) {
  Statement row = database.prepare(
      "UPDATE result SET sample_name = ?1, role = ?2, sample_group = ?3, individual = ?4, primer_pair = ?5, "
      "note = ?6 WHERE id = ?7 AND (sample_name, role, sample_group, individual, primer_pair, note) IS NOT "
      "(?1, ?2, ?3, ?4, ?5, ?6)");
  for (const ResultRecord& result : record.results)
    row.run(view(result.sampleName), wordOf(kRoles, result.facts.role), view(result.facts.group),
            view(result.facts.individual), view(result.facts.primerPair), view(result.facts.note), result.id);
}

std::vector<JoinedTable> readJoinedTables(const Database& database) {
  std::vector<JoinedTable> tables;
  Statement parts = database.prepare(
      "SELECT analysis_id, primer_pair FROM joined_part WHERE joined_id = ? ORDER BY position");
  Statement rows = database.prepare("SELECT id, name, consensus, individuals FROM joined ORDER BY id");
  while (rows.next()) {
    JoinedTable& table = tables.emplace_back();
    table.name = rows.text(1);
    table.consensus = rows.text(2);
    table.individuals = rows.text(3);
    for (parts.begin(rows.number(0)); parts.next();)
      table.parts.push_back({parts.integer<std::int32_t>(0), std::string(parts.text(1))});
  }
  return tables;
}

void writeJoinedTables(const Database& database, const std::vector<JoinedTable>& tables) {
  database.prepare("DELETE FROM joined_part").run();
  database.prepare("DELETE FROM joined").run();
  Statement row = database.prepare("INSERT INTO joined(id, name, consensus, individuals) VALUES(?, ?, ?, ?)");
  Statement part = database.prepare(
      "INSERT INTO joined_part(joined_id, position, analysis_id, primer_pair) VALUES(?, ?, ?, ?)");
  std::int32_t id = 0;
  for (const JoinedTable& table : tables) {
    row.run(++id, view(table.name), view(table.consensus), view(table.individuals));
    std::int32_t position = 0;
    for (const JoinedPart& each : table.parts)
      part.run(id, ++position, each.analysisId, view(each.primerPair));
  }
}

}  // namespace banddesk::host
