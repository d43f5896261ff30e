#include "host/quality/table_quality.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>
#include <tuple>

namespace banddesk::host {
namespace {

using Line = std::span<const std::int32_t>;

Line lineOf(const TableView& table, std::size_t bin) {
  return table.fragmentCounts.subspan(bin * table.sampleCount, table.sampleCount);
}

void check(const TableView& table, std::span<const ReplicatePair> replicates) {
  if (table.fragmentCounts.size() != table.bins.size() * table.sampleCount)
    throw std::invalid_argument("a table needs one count for each bin and sample");
  for (const ReplicatePair& pair : replicates) {
    if (std::max(pair.first, pair.second) >= table.sampleCount)
      throw std::invalid_argument("a replicate is no sample of the table");
  }
}

std::optional<double> share(std::size_t part, std::size_t whole) {
  if (whole == 0) return std::nullopt;
  return static_cast<double>(part) / static_cast<double>(whole);
}

void countCells(const TableView& table, TableQuality& quality) {
  for (std::size_t bin = 0; bin < table.bins.size(); ++bin) {
    std::size_t ofBin = 0;
    for (const std::int32_t count : lineOf(table, bin)) {
      if (count == 0) continue;
      ofBin += static_cast<std::size_t>(count);
      ++quality.filledCells;
    }
    quality.fragments += ofBin;
    if (ofBin == 1) ++quality.singleFragmentBins;
  }
  quality.fragmentsPerFilledCell = share(quality.fragments, quality.filledCells);
}

void measureWidths(const TableView& table, TableQuality& quality) {
  if (table.bins.empty()) return;
  double sum = 0, largest = 0;
  for (const BinExtent& bin : table.bins) {
    sum += bin.xMax - bin.xMin;
    largest = std::max(largest, bin.xMax - bin.xMin);
  }
  quality.meanWidth = sum / static_cast<double>(table.bins.size());
  quality.largestWidth = largest;
}

double median(std::vector<std::size_t> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  const auto upper = static_cast<double>(*middle);
  if (values.size() % 2 == 1) return upper;
  return (upper + static_cast<double>(*std::max_element(values.begin(), middle))) / 2;
}

/// From the number of samples that fill a bin follows how many differ there from each of them, so that no
/// pair of samples is ever looked at.
std::optional<double> informationContent(const TableView& table) {
  const std::size_t samples = table.sampleCount;
  if (samples < 2 || table.bins.empty()) return std::nullopt;
  std::vector<std::size_t> distances(samples, 0);  // of each sample, to all others together
  for (std::size_t bin = 0; bin < table.bins.size(); ++bin) {
    const Line line = lineOf(table, bin);
    const std::size_t empty = static_cast<std::size_t>(std::ranges::count(line, 0));
    for (std::size_t i = 0; i < samples; ++i) distances[i] += line[i] != 0 ? empty : samples - empty;
  }
  return median(std::move(distances)) / static_cast<double>(samples - 1) /
         static_cast<double>(table.bins.size());
}

/// Larger Jaccard error first, then more differing cells; those without any filled cell last.
bool isWorse(const Agreement& a, const Agreement& b) {
  const auto rank = [](const Agreement& one) {
    return std::tuple(one.jaccardError().value_or(-1), one.differing);
  };
  return rank(a) > rank(b);
}

MeanOfPairs meanJaccardError(const std::vector<PairQuality>& pairs) {
  std::vector<double> errors;
  for (const PairQuality& pair : pairs)
    if (const auto error = pair.agreement.jaccardError()) errors.push_back(*error);
  return meanOf(errors);
}

ReplicateQuality compareReplicates(const TableView& table, std::span<const ReplicatePair> replicates) {
  ReplicateQuality quality;
  for (const ReplicatePair& pair : replicates) quality.pairs.push_back({pair, {}});
  for (std::size_t bin = 0; bin < table.bins.size(); ++bin) {
    const Line line = lineOf(table, bin);
    BinQuality& ofBin = quality.bins.emplace_back(BinQuality{bin, {}});
    for (PairQuality& pair : quality.pairs) {
      const Agreement cell = agreementOf(line[pair.samples.first], line[pair.samples.second]);
      pair.agreement += cell;
      ofBin.agreement += cell;
    }
    quality.overall += ofBin.agreement;
  }
  quality.jaccardError = meanJaccardError(quality.pairs);
  const auto worstFirst = [](const auto& a, const auto& b) { return isWorse(a.agreement, b.agreement); };
  std::ranges::stable_sort(quality.pairs, worstFirst);
  std::ranges::stable_sort(quality.bins, worstFirst);
  return quality;
}

}  // namespace

MeanOfPairs meanOf(std::span<const double> values) {
  MeanOfPairs of;
  if (values.empty()) return of;
  const auto count = static_cast<double>(values.size());
  of.mean = std::accumulate(values.begin(), values.end(), 0.0) / count;
  if (values.size() < 2) return of;
  double squares = 0;
  for (const double value : values) squares += (value - *of.mean) * (value - *of.mean);
  of.deviation = std::sqrt(squares / (count - 1));
  return of;
}

Agreement agreementOf(std::int32_t first, std::int32_t second) {
  const bool inFirst = first != 0;
  const bool inSecond = second != 0;
  return {.both = inFirst && inSecond, .differing = inFirst != inSecond, .neither = !inFirst && !inSecond};
}

std::optional<double> Agreement::mismatchError() const {
  return share(differing, both + differing + neither);
}

std::optional<double> Agreement::jaccardError() const { return share(differing, both + differing); }

Agreement& Agreement::operator+=(const Agreement& other) {
  both += other.both;
  differing += other.differing;
  neither += other.neither;
  return *this;
}

TableQuality qualityOf(const TableView& table, std::span<const ReplicatePair> replicates) {
  check(table, replicates);
  TableQuality quality;
  quality.samples = table.sampleCount;
  quality.bins = table.bins.size();
  countCells(table, quality);
  measureWidths(table, quality);
  quality.informationContent = informationContent(table);
  if (!replicates.empty()) quality.replicates = compareReplicates(table, replicates);
  return quality;
}

}  // namespace banddesk::host
