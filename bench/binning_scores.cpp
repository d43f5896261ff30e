#include "bench/binning_scores.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace banddesk::bench {
namespace {

struct BinContent {
  double least = 0;  // nt
  double largest = 0;
  std::set<std::size_t> samples;
};

std::vector<BinContent> contentsOf(const Pool& pool, const BinNumbers& bins) {
  std::vector<BinContent> contents;
  for (std::size_t i = 0; i < pool.size(); ++i) {
    if (static_cast<std::size_t>(bins[i]) == contents.size()) contents.push_back({pool[i].size, 0, {}});
    contents.back().largest = pool[i].size;
    contents.back().samples.insert(static_cast<std::size_t>(pool[i].sample));
  }
  return contents;
}

bool shareASample(const BinContent& left, const BinContent& right) {
  return std::ranges::any_of(right.samples,
                             [&](std::size_t sample) { return left.samples.contains(sample); });
}

double pairsOf(double count) { return count * (count - 1) / 2; }

using Counts = std::map<std::int32_t, std::size_t>;

/// By locus: how many of its peaks lie in which bin.
std::map<std::int32_t, Counts> binsByLocus(const Pool& pool, const BinNumbers& bins) {
  std::map<std::int32_t, Counts> found;
  for (std::size_t i = 0; i < pool.size(); ++i) {
    if (pool[i].locus >= 0) ++found[pool[i].locus][bins[i]];
  }
  return found;
}

}  // namespace

double adjustedRandIndex(const Pool& pool, const BinNumbers& bins) {
  double together = 0, sameLocus = 0, sameBin = 0;
  for (const auto& [locus, counts] : binsByLocus(pool, bins)) {
    std::size_t ofLocus = 0;
    for (const auto& [bin, count] : counts) {
      together += pairsOf(static_cast<double>(count));
      ofLocus += count;
    }
    sameLocus += pairsOf(static_cast<double>(ofLocus));
  }
  Counts ofBin;
  for (const std::int32_t bin : bins) ++ofBin[bin];
  for (const auto& [bin, count] : ofBin) sameBin += pairsOf(static_cast<double>(count));
  const double expected = sameLocus * sameBin / pairsOf(static_cast<double>(pool.size()));
  const double most = (sameLocus + sameBin) / 2;
  return most == expected ? 1 : (together - expected) / (most - expected);
}

LocusShares locusShares(const Pool& pool, const BinNumbers& bins) {
  double loci = 0, split = 0;
  std::map<std::int32_t, std::size_t> lociByMainBin;
  for (const auto& [locus, counts] : binsByLocus(pool, bins)) {
    std::size_t all = 0;
    auto main = counts.begin();
    for (auto bin = counts.begin(); bin != counts.end(); ++bin) {
      all += bin->second;
      if (bin->second > main->second) main = bin;
    }
    if (all < 2) continue;
    ++loci;
    ++lociByMainBin[main->first];
    const std::size_t outside = all - main->second;
    if (outside >= 2 && outside * 10 >= all) ++split;
  }
  double merged = 0;
  for (const auto& [bin, count] : lociByMainBin) merged += count > 1 ? static_cast<double>(count) : 0;
  return loci == 0 ? LocusShares{} : LocusShares{split / loci, merged / loci};
}

Repeatability repeatabilityOf(const Pool& pool, std::span<const host::ReplicatePair> replicates) {
  std::map<std::int32_t, std::map<std::size_t, double>> sizes;  // by locus and sample
  for (const PooledPeak& peak : pool) {
    if (peak.locus >= 0) sizes[peak.locus].emplace(static_cast<std::size_t>(peak.sample), peak.size);
  }
  Repeatability found;
  double both = 0, differing = 0;
  for (const auto& [locus, ofSample] : sizes) {
    for (const host::ReplicatePair& pair : replicates) {
      const auto first = ofSample.find(pair.first), second = ofSample.find(pair.second);
      if ((first == ofSample.end()) != (second == ofSample.end())) ++differing;
      if (first == ofSample.end() || second == ofSample.end()) continue;
      const double difference = std::abs(first->second - second->second);
      ++both;
      found.meanDifference += difference;
      found.largestDifference = std::max(found.largestDifference, difference);
    }
  }
  const auto cells = static_cast<double>(sizes.size() * replicates.size());
  if (both > 0) found.meanDifference /= both;
  if (cells > 0) found.locusError = differing / cells;
  return found;
}

JoinableNeighbours joinableNeighbours(const Pool& pool, const BinNumbers& bins, double maxWidth,
                                      std::span<const host::ReplicatePair> replicates) {
  const std::vector<BinContent> contents = contentsOf(pool, bins);
  JoinableNeighbours found;
  for (std::size_t bin = 1; bin < contents.size(); ++bin) {
    const BinContent &left = contents[bin - 1], &right = contents[bin];
    if (right.largest - left.least > maxWidth + kRounding || shareASample(left, right)) continue;
    ++found.pairs;
    found.partedReplicates +=
        static_cast<std::size_t>(std::ranges::count_if(replicates, [&](const auto& pair) {
          return (left.samples.contains(pair.first) && right.samples.contains(pair.second)) ||
                 (left.samples.contains(pair.second) && right.samples.contains(pair.first));
        }));
  }
  return found;
}

ReplicateError replicateErrorOf(const host::TableQuality& quality) {
  double count = 0, sum = 0, squares = 0;
  if (!quality.replicates) return {};
  for (const host::PairQuality& pair : quality.replicates->pairs) {
    const std::optional<double> error = pair.agreement.jaccardError();
    if (!error) continue;
    ++count;
    sum += *error;
    squares += *error * *error;
  }
  if (count == 0) return {};
  const double mean = sum / count;
  return {mean, count < 2 ? -1 : std::sqrt(std::max(0.0, (squares - count * mean * mean) / (count - 1)))};
}

host::TableQuality tableQuality(const Pool& pool, const BinNumbers& bins, std::size_t samples,
                                std::span<const host::ReplicatePair> replicates) {
  std::vector<host::BinExtent> extents;
  std::vector<std::int32_t> counts;
  for (std::size_t i = 0; i < pool.size(); ++i) {
    const auto bin = static_cast<std::size_t>(bins[i]);
    if (bin == extents.size()) {
      extents.push_back({pool[i].size, pool[i].size});
      counts.resize(counts.size() + samples, 0);
    }
    extents[bin].xMax = pool[i].size;
    ++counts[bin * samples + static_cast<std::size_t>(pool[i].sample)];
  }
  return host::qualityOf({counts, extents, samples}, replicates);
}

}  // namespace banddesk::bench
