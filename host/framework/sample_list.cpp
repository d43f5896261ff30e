#include "host/framework/sample_list.h"

#include <set>

#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

void add(SampleList& samples, const GridColumn& column, const HostStudyService& study) {
  samples.names.push_back(column.ToolTip);
  samples.facts.push_back(study.factsOf(-toLong(column.Key.get())));
}

}  // namespace

SampleList allSamples(const AFLP& analysis, const HostStudyService& study) {
  SampleList samples;
  for (const auto& column : analysis.SampleGrid->Columns) add(samples, *column, study);
  return samples;
}

SampleList shownSamples(const AFLP& analysis, IAFLPResultsPage& page, const HostStudyService& study) {
  SampleList samples;
  for (const auto& column : analysis.SampleGrid->Columns) {
    if (!page.IsColHidden(column->ColumnOrder)) add(samples, *column, study);
  }
  return samples;
}

SampleList countedSamples(const AFLP& analysis, IAFLPResultsPage& page, const HostStudyService& study) {
  const SampleList shown = shownSamples(analysis, page, study);
  SampleList samples;
  for (std::size_t i = 0; i < shown.names.size(); ++i) {
    if (shown.facts[i].role == SampleRole::Blank) continue;
    samples.names.push_back(shown.names[i]);
    samples.facts.push_back(shown.facts[i]);
  }
  return samples;
}

scoring::Individuals individualsOf(const SampleList& samples, const std::string& pattern) {
  if (!pattern.empty()) return scoring::individualsByPattern(samples.names, pattern);
  std::set<std::string> pairs;
  for (const SampleFacts& facts : samples.facts) pairs.insert(facts.primerPair);
  std::vector<std::string> words;
  for (const SampleFacts& facts : samples.facts) {
    const bool isApart = pairs.size() > 1 && !facts.individual.empty();
    words.push_back(isApart ? facts.individual + ' ' + facts.primerPair : facts.individual);
  }
  return scoring::individualsByWord(samples.names, words);
}

}  // namespace banddesk::host
