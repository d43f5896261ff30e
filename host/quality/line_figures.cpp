#include "host/quality/line_figures.h"

#include <algorithm>
#include <tuple>

namespace banddesk::host {
namespace {

template <class Figures, class Rank>
void putWorstFirst(std::vector<Figures>& figures, Rank rank) {
  std::ranges::stable_sort(figures, [&](const Figures& a, const Figures& b) { return rank(a) > rank(b); });
}

}  // namespace

std::vector<BinFigures> worstBins(const TableView& table, std::span<const ReplicatePair> replicates) {
  std::vector<BinFigures> bins;
  for (std::size_t bin = 0; bin < table.bins.size(); ++bin) {
    const auto line = table.fragmentCounts.subspan(bin * table.sampleCount, table.sampleCount);
    BinFigures& figures = bins.emplace_back();
    figures.bin = bin;
    figures.width = table.bins[bin].xMax - table.bins[bin].xMin;
    for (const std::int32_t count : line) {
      figures.filledCells += count > 0;
      figures.doubledCells += count > 1;
    }
    for (const ReplicatePair& pair : replicates)
      figures.replicates += agreementOf(line[pair.first], line[pair.second]);
  }
  putWorstFirst(bins, [](const BinFigures& bin) {
    return std::tuple(bin.replicates.differing, bin.doubledCells, bin.filledCells == 1, bin.width);
  });
  return bins;
}

std::vector<SampleFigures> worstSamples(const TableView& table, std::span<const ReplicatePair> replicates) {
  std::vector<SampleFigures> samples(table.sampleCount);
  for (std::size_t sample = 0; sample < samples.size(); ++sample) samples[sample].sample = sample;
  for (std::size_t bin = 0; bin < table.bins.size(); ++bin) {
    const auto line = table.fragmentCounts.subspan(bin * table.sampleCount, table.sampleCount);
    const auto empty = static_cast<std::size_t>(std::ranges::count(line, 0));
    for (SampleFigures& figures : samples) {
      const std::int32_t count = line[figures.sample];
      figures.filledCells += count > 0;
      figures.doubledCells += count > 1;
      // How many differ follows from how many fill the bin: no pair of samples is looked at.
      figures.distance += static_cast<double>(count > 0 ? empty : table.sampleCount - empty);
    }
    for (const ReplicatePair& pair : replicates) {
      const Agreement cell = agreementOf(line[pair.first], line[pair.second]);
      samples[pair.first].replicates += cell;
      samples[pair.second].replicates += cell;
    }
  }
  const double comparisons = static_cast<double>(table.bins.size()) *
                             static_cast<double>(std::max<std::size_t>(table.sampleCount, 2) - 1);
  for (SampleFigures& figures : samples)
    figures.distance = comparisons > 0 ? figures.distance / comparisons : 0;
  putWorstFirst(samples, [](const SampleFigures& sample) {
    return std::tuple(sample.replicates.jaccardError().value_or(-1), sample.doubledCells, sample.distance);
  });
  return samples;
}

}  // namespace banddesk::host
