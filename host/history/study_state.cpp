#include "host/history/study_state.h"

#include <algorithm>
#include <set>
#include <type_traits>
#include <utility>

#include "host/history/bytes.h"
#include "host/store/snapshot_fields.h"

namespace banddesk::host {
namespace {

enum Place : std::size_t { Fields, Results, Decisions, Scoring, FirstLayout };

constexpr std::array kLayouts{&AnalysisSnapshot::binGrid, &AnalysisSnapshot::sampleGrid,
                              &AnalysisSnapshot::dyeGrid, &AnalysisSnapshot::styleGrid};
static_assert(FirstLayout + 2 * kLayouts.size() == AnalysisState::kParts);

template <class Value>
constexpr bool kIsText = std::is_same_v<std::remove_cvref_t<Value>, std::string>;

std::string fieldsOf(const AnalysisSnapshot& snapshot) {
  ByteWriter out;
  out.field(snapshot.id);
  eachField(kAnalysisFields, [&](const auto& field) { out.field(snapshot.*field.member); });
  for (const auto layout : kLayouts) out.text((snapshot.*layout).lockedKey);
  return out.take();
}

std::string resultsOf(const AnalysisSnapshot& snapshot) {
  ByteWriter out;
  out.number(snapshot.resultIds.size());
  for (const std::int32_t id : snapshot.resultIds) out.field(id);
  return out.take();
}

// By their keys: their order means nothing, and the page's is that of its rows.
std::string decisionsOf(const AnalysisSnapshot& snapshot) {
  std::vector<const BinSnapshot*> bins;
  for (const BinSnapshot& bin : snapshot.bins) bins.push_back(&bin);
  std::ranges::sort(bins, {}, &BinSnapshot::key);
  ByteWriter out;
  out.number(bins.size());
  for (const BinSnapshot* bin : bins) {
    out.text(bin->key);
    out.field(bin->manuallyExcluded);
    out.field(bin->manuallyIncluded);
  }
  return out.take();
}

std::pair<std::string, std::string> columnsOf(const LayoutSnapshot& layout) {
  ByteWriter texts, numbers;
  numbers.number(layout.columns.size());
  for (const ColumnSnapshot& column : layout.columns) {
    eachField(kColumnFields, [&](const auto& field) {
      const auto& value = column.*field.member;
      kIsText<decltype(value)> ? texts.field(value) : numbers.field(value);
    });
  }
  return {texts.take(), numbers.take()};
}

ByteReader reading(const Part& part) { return ByteReader(required(part, "Part")); }

void readColumns(const Part& texts, const Part& numbers, LayoutSnapshot& layout) {
  ByteReader text = reading(texts), number = reading(numbers);
  layout.columns.resize(number.count());
  for (ColumnSnapshot& column : layout.columns) {
    eachField(kColumnFields, [&](const auto& field) {
      auto& value = column.*field.member;
      kIsText<decltype(value)> ? text.field(value) : number.field(value);
    });
  }
}

template <class Record, class Action>
void recordFields(Record& record, Action act) {
  act(record.name);
  act(record.ownerId);
  act(record.resultStamp);
  act(record.settings.displayViewIndex);
  for (auto& dye : record.dyes) {
    act(dye.color);
    act(dye.isVisible);
    act(dye.letter);
  }
}

template <class Result, class Action>
void resultFields(Result& result, Action act) {
  act(result.id);
  act(result.sampleName);
  act(result.isExcluded);
  act(result.isDeleted);
  act(result.facts.role);
  act(result.facts.group);
  act(result.facts.individual);
  act(result.facts.primerPair);
  act(result.facts.note);
}

template <class Table, class Action>
void joinedFields(Table& table, Action act) {
  act(table.name);
  act(table.consensus);
  act(table.individuals);
}

template <class Calculator, class Action>
void calculatorFields(Calculator& calculator, Action act) {
  act(calculator.normalisation);
  act(calculator.callPercent);
  act(calculator.findsBinsBetween);
  act(calculator.alignsLanes);
}

template <class Bin, class Action>
void givenBinFields(Bin& bin, Action act) {
  act(bin.dye);
  act(bin.from);
  act(bin.to);
  act(bin.name);
}

std::string scoringOf(const scoring::AnalysisScoring& scoring) {
  ByteWriter out;
  const auto write = [&](const auto& value) { out.field(value); };
  calculatorFields(scoring.calculator, write);
  out.field(scoring.calculator.sizeRange.has_value());
  const SizeRange range = scoring.calculator.sizeRange.value_or(SizeRange());
  out.field(range.from);
  out.field(range.to);
  out.number(scoring.calculator.bins.size());
  for (const GivenBin& bin : scoring.calculator.bins) givenBinFields(bin, write);
  out.number(scoring.rules.size());
  for (const scoring::Rule& rule : scoring.rules) out.text(scoring::ruleText(rule));
  out.text(scoring.replicates);
  out.text(scoring.primerPair);
  out.number(scoring.marks.size());
  for (const auto& [element, why] : scoring.marks) {
    out.text(element);
    out.text(why);
  }
  out.number(scoring.kept.size());
  for (const scoring::ElementKey& element : scoring.kept) out.text(element);
  return out.take();
}

scoring::AnalysisScoring readScoring(const Part& part) {
  scoring::AnalysisScoring scoring;
  ByteReader in = reading(part);
  const auto read = [&](auto& value) { in.field(value); };
  calculatorFields(scoring.calculator, read);
  bool hasRange = false;
  SizeRange range;
  in.field(hasRange);
  in.field(range.from);
  in.field(range.to);
  if (hasRange) scoring.calculator.sizeRange = range;
  scoring.calculator.bins.resize(in.count());
  for (GivenBin& bin : scoring.calculator.bins) givenBinFields(bin, read);
  for (std::size_t left = in.count(); left > 0; --left)
    scoring.rules.push_back(scoring::parseRule(in.text()));
  scoring.replicates = in.text();
  scoring.primerPair = in.text();
  for (std::size_t left = in.count(); left > 0; --left) {
    const std::string element(in.text());
    scoring.marks.emplace(element, in.text());
  }
  for (std::size_t left = in.count(); left > 0; --left) scoring.kept.emplace(in.text());
  return scoring;
}

}  // namespace

Part sharedPart(std::string bytes, const Part& like) {
  if (like && *like == bytes) return like;
  return std::make_shared<const std::string>(std::move(bytes));
}

bool haveSameBytes(const Part& a, const Part& b) { return a == b || (a && b && *a == *b); }

bool AnalysisState::holdsSameAs(const AnalysisState& other) const {
  return id == other.id && std::ranges::equal(stored, other.stored, haveSameBytes);
}

const AnalysisState* StudyState::find(std::int32_t id) const {
  const auto found = std::ranges::find(analyses, id, &AnalysisState::id);
  return found == analyses.end() ? nullptr : &*found;
}

bool haveSameAnalyses(const StudyState& a, const StudyState& b) {
  return std::ranges::equal(a.analyses, b.analyses, &AnalysisState::holdsSameAs);
}

bool areEqual(const StudyState& a, const StudyState& b) {
  const auto haveSameLook = [](const AnalysisState& one, const AnalysisState& other) {
    return !one.look || !other.look || haveSameBytes(one.look, other.look);
  };
  return haveSameBytes(a.record, b.record) && haveSameAnalyses(a, b) &&
         std::ranges::equal(a.analyses, b.analyses, haveSameLook);
}

AnalysisState packed(const AnalysisSnapshot& snapshot, const AnalysisState* like) {
  static const AnalysisState none;
  const AnalysisState& former = like != nullptr ? *like : none;
  AnalysisState state;
  state.id = snapshot.id;
  const auto put = [&](std::size_t place, std::string bytes) {
    state.stored[place] = sharedPart(std::move(bytes), former.stored[place]);
  };
  put(Fields, fieldsOf(snapshot));
  put(Results, resultsOf(snapshot));
  put(Decisions, decisionsOf(snapshot));
  put(Scoring, scoringOf(snapshot.scoring));
  std::size_t place = FirstLayout;
  for (const auto layout : kLayouts) {
    auto [texts, numbers] = columnsOf(snapshot.*layout);
    put(place++, std::move(texts));
    put(place++, std::move(numbers));
  }
  return state;
}

AnalysisSnapshot unpacked(const AnalysisState& state) {
  AnalysisSnapshot snapshot;
  ByteReader fields = reading(state.stored[Fields]);
  fields.field(snapshot.id);
  eachField(kAnalysisFields, [&](const auto& field) { fields.field(snapshot.*field.member); });
  for (const auto layout : kLayouts) (snapshot.*layout).lockedKey = fields.text();
  ByteReader results = reading(state.stored[Results]);
  snapshot.resultIds.resize(results.count());
  for (std::int32_t& id : snapshot.resultIds) results.field(id);
  ByteReader decisions = reading(state.stored[Decisions]);
  snapshot.bins.resize(decisions.count());
  for (BinSnapshot& bin : snapshot.bins) {
    decisions.field(bin.key);
    decisions.field(bin.manuallyExcluded);
    decisions.field(bin.manuallyIncluded);
  }
  snapshot.scoring = readScoring(state.stored[Scoring]);
  std::size_t place = FirstLayout;
  for (const auto layout : kLayouts) {
    readColumns(state.stored[place], state.stored[place + 1], snapshot.*layout);
    place += 2;
  }
  return snapshot;
}

Part packed(const StudyRecord& record, const Part& like) {
  ByteWriter out;
  recordFields(record, [&](const auto& value) { out.field(value); });
  out.number(record.results.size());
  for (const ResultRecord& result : record.results)
    resultFields(result, [&](const auto& value) { out.field(value); });
  out.number(record.joined.size());
  for (const JoinedTable& table : record.joined) {
    joinedFields(table, [&](const auto& value) { out.field(value); });
    out.number(table.parts.size());
    for (const JoinedPart& part : table.parts) {
      out.field(part.analysisId);
      out.text(part.primerPair);
    }
  }
  return sharedPart(out.take(), like);
}

StudyRecord unpackedRecord(const Part& part) {
  StudyRecord record;
  ByteReader in = reading(part);
  recordFields(record, [&](auto& value) { in.field(value); });
  record.results.resize(in.count());
  for (ResultRecord& result : record.results) resultFields(result, [&](auto& value) { in.field(value); });
  record.joined.resize(in.count());
  for (JoinedTable& table : record.joined) {
    joinedFields(table, [&](auto& value) { in.field(value); });
    table.parts.resize(in.count());
    for (JoinedPart& joined : table.parts) {
      in.field(joined.analysisId);
      in.field(joined.primerPair);
    }
  }
  return record;
}

std::size_t bytesOf(const std::vector<const StudyState*>& states) {
  std::set<const std::string*> counted;
  std::size_t bytes = 0;
  const auto add = [&](const Part& part) {
    if (part && counted.insert(part.get()).second) bytes += part->capacity() + sizeof(std::string);
  };
  for (const StudyState* state : states) {
    bytes += sizeof(StudyState) + state->analyses.size() * sizeof(AnalysisState);
    add(state->record);
    for (const AnalysisState& analysis : state->analyses) {
      for (const Part& part : analysis.stored) add(part);
      add(analysis.look);
    }
  }
  return bytes;
}

}  // namespace banddesk::host
