#include "host/framework/rule_keeper.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

#include "host/framework/finished_table.h"
#include "host/framework/page_hand.h"
#include "host/framework/sample_list.h"
#include "host/framework/table_place.h"
#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::host {
namespace {

using scoring::AnalysisScoring;
using scoring::Rule;
using scoring::SampleState;

AFLP& analysisOf(const HostPage& page) { return *cast<AFLP>(page.bound(), "AFLP"); }

// The texts of the rules that took something, "height<100, samples<2".
std::string reasons(const std::vector<Rule>& rules, const std::vector<std::size_t>& taken) {
  std::string text;
  for (const std::size_t rule : taken) text += (text.empty() ? "" : ", ") + scoring::ruleText(rules[rule]);
  return text;
}

}  // namespace

// A page's table as the rules read it: the bins of the dyes that it looks at, and all samples.
struct RuleKeeper::Table {
  struct BinPlace {
    std::int32_t row = 0, bin = 0;
    std::string key;
    scoring::RuleBin extent;
    BinMark mark = BinMark::None;
  };

  explicit Table(HostPage& hostPage)
      : page(*cast<IAFLPResultsPage>(hostPage.control(), "AFLPResultsPage")),
        analysis(analysisOf(hostPage)) {}

  // Excluding samples has the filters look again.
  void readMarks() {
    FinishedTable finished(analysis, page);
    for (BinPlace& place : places) place.mark = finished.markOf(place.row, place.bin);
  }

  scoring::RuleTable rules() const { return {bins, counts, heights, states, replicates}; }

  IAFLPResultsPage& page;
  AFLP& analysis;
  std::vector<BinPlace> places;
  std::vector<scoring::RuleBin> bins;
  std::vector<std::int32_t> counts;
  std::vector<double> heights;
  std::vector<std::shared_ptr<GridColumn>> columns;
  std::vector<bool> blanks;
  std::vector<SampleState> states;
  std::vector<ReplicatePair> replicates;
};

RuleKeeper::RuleKeeper(HostPageManager& pages, HostPlatform& platform, HostStudyService& study)
    : pages_(pages), platform_(platform), study_(study) {
  pages_.onTable = [this](HostPage& page) { update(page); };
  platform_.answerForm = [this](ui::Form& form) { return answer(form); };
}

RuleKeeper::~RuleKeeper() {
  pages_.onTable = nullptr;
  platform_.answerForm = nullptr;
}

std::vector<ReplicatePair> RuleKeeper::replicatesOf(const AFLP& analysis) const {
  try {
    const std::string& pattern = hostSide(analysis).scoring().replicates;
    return scoring::pairsOf(individualsOf(allSamples(analysis, study_), pattern).all);
  } catch (const std::invalid_argument& error) {
    Told.raise(fmt::format("{}: no replicates are compared: {}", analysis.Name.get(), error.what()));
    return {};
  }
}

RuleKeeper::Table RuleKeeper::read(HostPage& page) const {
  Table table(page);
  FinishedTable finished(table.analysis, table.page);
  const auto number = [&](const char* key, std::int32_t row) {
    return leadingNumber(table.page.CellText(key, row));
  };
  for (const auto& column : table.analysis.SampleGrid->Columns) table.columns.push_back(column);
  for (std::int32_t row = 1; row <= table.page.NumRows(); ++row) {
    const std::int32_t bin = table.page.Bin(row);
    if (!finished.holds(bin) || !finished.looksAt(finished.dyeOf(bin))) continue;
    const std::string mean = table.page.CellText(kXMeanKey, row);
    table.places.push_back({row,
                            bin,
                            table.page.CellText(kDyeKey, row) + "-" + mean,
                            {number(kXMinKey, row), number(kXMaxKey, row), leadingNumber(mean)},
                            finished.markOf(row, bin)});
  }
  return table;
}

// Its cells, of which there are many.
void RuleKeeper::fill(Table& table) const {
  const FinishedTable finished(table.analysis, table.page);
  for (const Table::BinPlace& place : table.places) {
    table.bins.push_back(place.extent);
    const FinishedTable::OwnBin own = finished.ownBin(place.bin);
    const auto cells = own.calculator.cellsOf(own.number);
    for (std::size_t sample = 0; sample < table.columns.size(); ++sample) {
      table.counts.push_back(cells[sample].fragments);
      table.heights.push_back(cells[sample].heightSum);
    }
  }
  table.blanks = blanksOf(table.analysis);
  table.replicates = replicatesOf(table.analysis);
}

std::vector<bool> RuleKeeper::blanksOf(const AFLP& analysis) const {
  std::vector<bool> blanks;
  for (const auto& result : analysis.Results)
    blanks.push_back(study_.factsOf(result->ResultID).role == SampleRole::Blank);
  return blanks;
}

namespace {

std::vector<SampleState> statesOf(const std::vector<std::shared_ptr<GridColumn>>& columns,
                                  const std::vector<bool>& blanks, const AnalysisScoring& scoring) {
  std::vector<SampleState> states;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string& key = columns[i]->Key;
    const bool isByHand = columns[i]->IsExcluded && !scoring.marks.contains(key);
    SampleState state = scoring.kept.contains(key) ? SampleState::Kept : SampleState::Judged;
    if (isByHand) state = SampleState::LeftOut;
    states.push_back(blanks[i] ? SampleState::Blank : state);
  }
  return states;
}

}  // namespace

std::vector<RuleCount> RuleKeeper::preview(HostPage& page, const std::vector<Rule>& rules) const {
  Table table = read(page);
  fill(table);
  table.states = statesOf(table.columns, table.blanks, hostSide(table.analysis).scoring());
  const scoring::RuleOutcome outcome = scoring::applyRules(rules, table.rules());
  std::vector<RuleCount> counts;
  for (std::size_t rule = 0; rule < rules.size(); ++rule)
    counts.push_back({rules[rule], outcome.takenBy(rule),
                      scoring::judgesSamples(rules[rule]) ? table.columns.size() : table.places.size()});
  return counts;
}

namespace {

// Whether a key means a bin: its own, or one of the same dye whose mean size lies in it, as another width
// makes them.
bool isBin(const std::string& key, const std::string& own, const scoring::RuleBin& extent) {
  if (key == own) return true;
  const std::size_t line = own.find('-');
  if (key.size() <= line + 1 || key.compare(0, line + 1, own, 0, line + 1) != 0) return false;
  const double mean = leadingNumber(key.substr(line + 1));
  return mean >= extent.xMin && mean <= extent.xMax;
}

}  // namespace

// What the hand did since the rules acted last. After another run the page has no marks at all, and a bin
// that is not grey says nothing.
void RuleKeeper::learn(const Table& table, AnalysisScoring& scoring, bool isSameTable) const {
  for (const auto& column : table.columns) {
    if (column->IsExcluded)
      scoring.kept.erase(column->Key);
    else if (scoring.marks.erase(column->Key) > 0)
      scoring.kept.insert(column->Key);
  }
  if (!isSameTable) return;
  for (const Table::BinPlace& place : table.places) {
    if (isExcluded(place.mark))
      std::erase_if(scoring.kept,
                    [&](const std::string& key) { return isBin(key, place.key, place.extent); });
    else if (scoring.marks.erase(place.key) > 0)
      scoring.kept.insert(place.key);
  }
}

void RuleKeeper::excludeSamples(Table& table, AnalysisScoring& scoring) const {
  table.states = statesOf(table.columns, table.blanks, scoring);
  const scoring::RuleOutcome outcome = scoring::applyRules(scoring.rules, table.rules());
  std::vector<std::int32_t> taken, freed;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const GridColumn& column = *table.columns[i];
    const bool isMarked = scoring.marks.erase(column.Key) > 0;
    const bool isWanted = !outcome.samples[i].empty();
    if (isWanted) scoring.marks[column.Key] = reasons(scoring.rules, outcome.samples[i]);
    if (isWanted && !column.IsExcluded) taken.push_back(column.ColumnOrder);
    if (!isWanted && isMarked && column.IsExcluded) freed.push_back(column.ColumnOrder);
  }
  std::ranges::sort(taken);
  std::ranges::sort(freed);
  PageHand hand(table.page, platform_);
  hand.toggleSamples(taken);
  hand.toggleSamples(freed);
  if (!taken.empty() || !freed.empty()) table.readMarks();
}

void RuleKeeper::excludeBins(Table& table, AnalysisScoring& scoring) const {
  const scoring::RuleOutcome outcome = scoring::applyRules(scoring.rules, table.rules());
  std::vector<std::int32_t> taken, freed;
  std::map<scoring::ElementKey, std::string> marks;
  for (const auto& [key, why] : scoring.marks) {
    if (key.starts_with('-')) marks.emplace(key, why);
  }
  for (std::size_t i = 0; i < table.places.size(); ++i) {
    const Table::BinPlace& place = table.places[i];
    const bool isMarked = scoring.marks.contains(place.key) && place.mark == BinMark::ExcludedByHand;
    const bool isKept = std::ranges::any_of(
        scoring.kept, [&](const std::string& key) { return isBin(key, place.key, place.extent); });
    const bool isWanted = !outcome.bins[i].empty() && !isKept;
    const std::string why = reasons(scoring.rules, outcome.bins[i]);
    if (isWanted && place.mark == BinMark::None) taken.push_back(place.row);
    if (isWanted && (isMarked || place.mark == BinMark::None)) marks.emplace(place.key, why);
    if (!isWanted && isMarked) freed.push_back(place.row);
  }
  scoring.marks = std::move(marks);
  PageHand hand(table.page, platform_);
  hand.toggleBins(taken);
  hand.toggleBins(freed);
  for (const Table::BinPlace& place : table.places) {
    const auto why = scoring.marks.find(place.key);
    const std::string tip = why == scoring.marks.end() ? std::string() : "Excluded: " + why->second;
    table.page.SetCellToolTip("6", place.row, tip);
  }
}

void RuleKeeper::update(HostPage& page) {
  std::erase_if(seen_, [&](const auto& each) {
    return std::ranges::find(pages_.openPages(), each.first, &std::shared_ptr<HostPage>::get) ==
           pages_.openPages().end();
  });
  HostAFLP& analysis = hostSide(analysisOf(page));
  AnalysisScoring scoring = analysis.scoring();
  auto* const grid = page.control()->Controls().find<GridControl>(names::kGrid);
  if (grid == nullptr || page.isHalfMade() || (scoring.rules.empty() && scoring.marks.empty())) return;
  Table table = read(page);
  const FinishedTable finished(table.analysis, table.page);
  const auto look = [&] {
    Seen now{page.tableRun().count, {}, {}, scoring.rules, false};
    for (std::int32_t dye = 0; dye < static_cast<std::int32_t>(kDyeCount); ++dye)
      now.dyes.push_back(finished.looksAt(dye));
    for (const auto& column : table.columns) now.excludedSamples.push_back(column->IsExcluded);
    return now;
  };
  const Seen before = std::exchange(seen_[&page], look());
  const Seen& now = seen_[&page];
  learn(table, scoring, before.run == now.run && before.dyes == now.dyes);
  const bool isSame = before.run == now.run && before.dyes == now.dyes && before.rules == now.rules &&
                      before.excludedSamples == now.excludedSamples;
  if (!isSame) {
    const TablePlace place = placeIn(*grid);
    fill(table);
    excludeSamples(table, scoring);
    excludeBins(table, scoring);
    show(place, *grid);
    if (scoring.rules.empty()) scoring.kept.clear();
    seen_[&page] = look();
    table.readMarks();
  }
  seen_[&page].hasHand = std::ranges::any_of(table.places, [&](const Table::BinPlace& bin) {
    return (bin.mark == BinMark::ExcludedByHand && !scoring.marks.contains(bin.key)) ||
           bin.mark == BinMark::BroughtBack;
  });
  analysis.setScoring(std::move(scoring));
}

// The page asks before it loses what was decided about bins. Where only rules have decided, nothing is lost.
bool RuleKeeper::answer(ui::Form& form) const {
  const HostPage* const page = pages_.atWork();
  const auto seen = seen_.find(page);
  if (seen == seen_.end() || seen->second.hasHand || form.Controls().find<ui::Label>("lblWarning") == nullptr)
    return false;
  if (hostSide(analysisOf(*page)).scoring().rules.empty()) return false;
  required(form.Controls().find<ui::CommandButton>("btnOK"), "btnOK").Click.raise();
  Told.raise("Only rules have excluded bins; they exclude them again in the new table.");
  return true;
}

}  // namespace banddesk::host
