#include "host/framework/rescoring.h"

#include <utility>
#include <vector>

#include "host/framework/finished_table.h"
#include "host/framework/first_failure.h"
#include "host/framework/page_hand.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

// In nt: aligned lanes and other fragments move a bin a little.
constexpr double kNear = 0.05;

struct Decision {
  std::string key, dye;
  double mean;
  bool isExcluded;
};

// The hand's; those of rules are made anew.
std::vector<Decision> takeDecisions(AFLP& analysis, const scoring::AnalysisScoring& scoring) {
  std::vector<Decision> decisions;
  auto& bins = analysis.AFLPBins;
  for (std::int32_t index = bins.Count(); index >= 1; --index) {
    const std::string key = bins.Item(index)->Key;
    const std::size_t line = key.find('-');
    if (scoring.marks.contains(key)) {
      bins.Remove(index);
    } else if (line != std::string::npos) {
      decisions.push_back({key, key.substr(0, line), leadingNumber(key.substr(line + 1)),
                           bins.Item(index)->ManuallyExcluded});
    }
  }
  return decisions;
}

// The rows of those bins that the page has not found again by their keys.
struct Rows {
  std::vector<std::int32_t> toExclude, toBringBack;
};

Rows rowsOf(std::vector<Decision> decisions, const AFLP& analysis, IAFLPResultsPage& page) {
  Rows rows;
  FinishedTable table(analysis, page);
  const auto keyOf = [&](std::int32_t row) {
    return page.CellText("7", row) + "-" + page.CellText("83", row);
  };
  for (std::int32_t row = 1; row <= page.NumRows(); ++row)
    std::erase_if(decisions, [key = keyOf(row)](const Decision& each) { return each.key == key; });
  for (std::int32_t row = 1; row <= page.NumRows() && !decisions.empty(); ++row) {
    const std::string dye = page.CellText("7", row);
    const double least = leadingNumber(page.CellText("9", row));
    const double largest = leadingNumber(page.CellText("10", row));
    const BinMark mark = table.markOf(row, page.Bin(row));
    for (const Decision& each : decisions) {
      if (each.dye != dye || each.mean < least - kNear || each.mean > largest + kNear) continue;
      if (each.isExcluded && mark == BinMark::None) rows.toExclude.push_back(row);
      if (!each.isExcluded && mark == BinMark::ExcludedByFilter) rows.toBringBack.push_back(row);
      break;
    }
  }
  return rows;
}

}  // namespace

std::shared_ptr<HostPage> rescore(HostPageManager& pages, HostPlatform& platform, RuleKeeper& rules,
                                  const std::shared_ptr<HostPage>& page, scoring::AnalysisScoring scoring) {
  HostAFLP& analysis = hostSide(*cast<AFLP>(page->bound(), "AFLP"));
  const scoring::AnalysisScoring before = analysis.scoring();
  scoring.marks = before.marks;
  scoring.kept = before.kept;
  if (scoring.calculator == before.calculator) {
    analysis.setScoring(std::move(scoring));
    rules.update(*page);
    return page;
  }
  if (!pages.validate(*page))
    raise(ErrorNumber::InvalidArgument, "Scoring", "The page holds a value that is not valid.");
  page->base()->Save.raise();
  const std::vector<Decision> decisions = takeDecisions(analysis, before);
  std::erase_if(scoring.marks, [](const auto& mark) { return !mark.first.starts_with('-'); });
  analysis.setScoring(std::move(scoring));
  std::shared_ptr<HostPage> now = page;
  FirstFailure failure;
  failure.run([&] { now = pages.replace(page); });
  if (failure) analysis.setScoring(before);
  failure.raise();
  const auto table = cast<IAFLPResultsPage>(now->control(), "AFLPResultsPage");
  const Rows rows = rowsOf(decisions, analysis, *table);
  pages.procedure(*now, [&] {
    PageHand hand(*table, platform);
    hand.toggleBins(rows.toExclude);
    hand.toggleBins(rows.toBringBack);
  });
  return pages.find(now->DefinitionName(), now->bound());
}

}  // namespace banddesk::host
