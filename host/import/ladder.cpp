#include "host/import/ladder.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace banddesk::host::import {
namespace {

// A few dozen samples, spread over the table, tell as much as thousands.
constexpr std::size_t mostSamples = 64;
constexpr std::size_t fewestSamples = 4;
constexpr double shareOfSamples = 0.9;  // that must have a size for it to be common
constexpr double windowNt = 0.5;        // within which sizes of different samples count as one
constexpr std::size_t fewestSizes = 5;  // the smallest standards have more
constexpr double leastShareOfPeaks = 0.5;
constexpr double widestSpreadNt = 0.1;
constexpr double leastLeadNt = 0.01;

using SizedPeak = std::pair<double, std::size_t>;  // size, number of the sample

std::vector<SizedPeak> pooledPeaks(const std::vector<const Sample*>& samples, Dye dye) {
  std::vector<SizedPeak> pooled;
  for (std::size_t i = 0; i < samples.size(); ++i)
    for (const double size : samples[i]->peaks(dye).sizes) pooled.emplace_back(size, i);
  std::ranges::sort(pooled);
  return pooled;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  return *middle;
}

double typicalDeviation(std::span<const SizedPeak> peaks) {
  const double centre = peaks[peaks.size() / 2].first;
  std::vector<double> deviations;
  for (const SizedPeak& peak : peaks) deviations.push_back(std::abs(peak.first - centre));
  return median(std::move(deviations));
}

std::size_t samplesAmong(std::span<const SizedPeak> peaks, std::size_t sampleCount) {
  std::vector<bool> seen(sampleCount);
  std::size_t count = 0;
  for (const SizedPeak& peak : peaks)
    if (!seen[peak.second]) {
      seen[peak.second] = true;
      ++count;
    }
  return count;
}

LadderProposal describeDye(const std::vector<const Sample*>& samples, Dye dye) {
  const std::vector<SizedPeak> pooled = pooledPeaks(samples, dye);
  const auto enough =
      static_cast<std::size_t>(std::ceil(shareOfSamples * static_cast<double>(samples.size())));
  LadderProposal seen{dye, 0, 0, 0};
  std::vector<double> deviations;
  std::size_t peaksAtCommonSizes = 0;
  for (std::size_t from = 0, to = 0; from < pooled.size();) {
    while (to < pooled.size() && pooled[to].first - pooled[from].first <= windowNt) ++to;
    const auto window = std::span(pooled).subspan(from, to - from);
    if (window.size() < enough || samplesAmong(window, samples.size()) < enough) {
      ++from;
      continue;
    }
    ++seen.commonSizes;
    deviations.push_back(typicalDeviation(window));
    peaksAtCommonSizes += window.size();
    from = to;
  }
  if (deviations.empty()) return seen;
  seen.shareOfPeaks = static_cast<double>(peaksAtCommonSizes) / static_cast<double>(pooled.size());
  seen.spreadNt = median(std::move(deviations));
  return seen;
}

}  // namespace

std::optional<LadderProposal> proposeLadder(std::span<const Sample> samples) {
  if (samples.size() < fewestSamples) return std::nullopt;
  std::vector<const Sample*> chosen;
  const std::size_t count = std::min(samples.size(), mostSamples);
  for (std::size_t i = 0; i < count; ++i) chosen.push_back(&samples[i * samples.size() / count]);
  std::vector<LadderProposal> candidates;
  for (const Dye dye : allDyes) {
    const LadderProposal seen = describeDye(chosen, dye);
    if (seen.commonSizes >= fewestSizes && seen.shareOfPeaks >= leastShareOfPeaks &&
        seen.spreadNt <= widestSpreadNt)
      candidates.push_back(seen);
  }
  std::ranges::stable_sort(candidates, {}, &LadderProposal::spreadNt);
  if (candidates.empty()) return std::nullopt;
  // Samples that are nearly alike have common sizes in every dye, but only the standard's are sized by
  // themselves.
  if (candidates.size() > 1 && candidates[1].spreadNt < 2 * candidates[0].spreadNt + leastLeadNt)
    return std::nullopt;
  return candidates.front();
}

}  // namespace banddesk::host::import
