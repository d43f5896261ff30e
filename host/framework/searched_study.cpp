#include "host/framework/searched_study.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <set>

#include "host/framework/sample_list.h"
#include "plugin/base/error.h"
#include "plugin/base/numbers.h"
#include "plugin/base/text.h"

namespace banddesk::host {
namespace {

using scoring::SampleState;

std::optional<AnalysisSnapshot> find(Store& store, const std::optional<std::string>& name) {
  if (!name) return std::nullopt;
  for (const std::int32_t id : store.analysisIds()) {
    AnalysisSnapshot analysis = store.readAnalysis(id);
    if (equalsIgnoringCase(analysis.name, *name)) return analysis;
  }
  raise(ErrorNumber::InvalidArgument, "Search",
        fmt::format("The study has no analysis named \"{}\".", *name));
}

std::vector<ResultRecord> resultsOf(const StudyRecord& study,
                                    const std::optional<AnalysisSnapshot>& analysis) {
  std::vector<ResultRecord> results;
  for (const ResultRecord& result : study.results) {
    const bool isTaken = analysis ? std::ranges::count(analysis->resultIds, result.id) > 0
                                  : !result.isExcluded && !result.isDeleted;
    if (isTaken) results.push_back(result);
  }
  return results;
}

// Samples that the hand excluded; what rules took they judge anew.
std::set<std::int32_t> leftOutBy(const AnalysisSnapshot& analysis) {
  std::set<std::int32_t> out;
  for (const ColumnSnapshot& column : analysis.sampleGrid.columns) {
    if (column.isExcluded && !analysis.scoring.marks.contains(column.key)) out.insert(-toLong(column.key));
  }
  return out;
}

std::array<bool, kDyeCount> dyesOf(const StudyRecord& study,
                                   const std::optional<AnalysisSnapshot>& analysis) {
  std::array<bool, kDyeCount> dyes{};
  for (std::size_t dye = 0; dye < kDyeCount; ++dye) {
    const bool isKnown = analysis && dye < analysis->dyeGrid.columns.size();
    dyes[dye] = isKnown ? analysis->dyeGrid.columns[dye].isVisible : study.dyes[dye].isVisible;
  }
  return dyes;
}

}  // namespace

SearchedStudy::SearchedStudy(Store& store, const std::optional<std::string>& analysisName,
                             const std::optional<std::string>& replicates) {
  const StudyRecord study = store.readStudy();
  const auto analysis = find(store, analysisName);
  const std::array<bool, kDyeCount> dyes = dyesOf(study, analysis);
  const std::set<std::int32_t> leftOut = analysis ? leftOutBy(*analysis) : std::set<std::int32_t>();
  if (analysis) data_.settings = analysis->scoring.calculator;
  SampleList samples;
  for (const ResultRecord& result : resultsOf(study, analysis)) {
    samples.names.emplace_back(trimRight(result.sampleName));
    samples.facts.push_back(result.facts);
    fragments_.push_back(store.readFragments(result.id));
    scoring::SearchSample& sample = data_.samples.emplace_back();
    for (std::size_t dye = 0; dye < kDyeCount; ++dye) {
      if (dyes[dye])
        sample.dyes[dye] = {fragments_.back()->dyes[dye].sizes, fragments_.back()->dyes[dye].heights};
    }
    if (leftOut.contains(result.id)) sample.state = SampleState::LeftOut;
    if (result.facts.role == SampleRole::Blank) sample.state = SampleState::Blank;
  }
  const std::string pattern = replicates.value_or(analysis ? analysis->scoring.replicates : std::string());
  data_.individuals = individualsOf(samples, pattern).all;
}

}  // namespace banddesk::host
