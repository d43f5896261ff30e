#include "host/framework/shown_bands.h"

#include <algorithm>
#include <numeric>

#include "host/framework/sample_list.h"
#include "host/framework/shown_table.h"
#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::host {

namespace {

void takeGroups(statistics::BandMatrix& bands, const SampleList& samples) {
  const auto hasGroup = [](const SampleFacts& facts) { return !facts.group.empty(); };
  if (std::ranges::none_of(samples.facts, hasGroup)) return;
  for (const SampleFacts& facts : samples.facts) {
    const std::string& group = facts.group.empty() ? std::string("No group") : facts.group;
    const auto found = std::ranges::find(bands.groups, group);
    bands.groupOf.push_back(static_cast<std::size_t>(found - bands.groups.begin()));
    if (found == bands.groups.end()) bands.groups.push_back(group);
  }
}

}  // namespace

statistics::BandMatrix shownBands(const AFLP& analysis, IAFLPResultsPage& page,
                                  const HostStudyService& study) {
  using statistics::Band;
  ShownTable table = shownTable(analysis, page);
  std::vector<std::size_t> order(table.rows.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::sort(order, {}, [&](std::size_t at) { return page.Bin(table.rows[at]); });

  statistics::BandMatrix bands;
  bands.samples = std::move(table.samples);
  takeGroups(bands, shownSamples(analysis, page, study));
  const std::size_t samples = bands.samples.size();
  bands.cells.resize(samples * order.size());
  for (std::size_t locus = 0; locus < order.size(); ++locus) {
    const std::int32_t row = table.rows[order[locus]];
    bands.loci.push_back({page.CellText(kDyeKey, row), leadingNumber(page.CellText(kXMeanKey, row))});
    for (std::size_t sample = 0; sample < samples; ++sample) {
      const bool isThere = table.counts[order[locus] * samples + sample] != 0;
      bands.cells[sample * order.size() + locus] = isThere ? Band::Present : Band::Absent;
    }
  }
  return bands;
}

}  // namespace banddesk::host
