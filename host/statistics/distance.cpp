#include "host/statistics/distance.h"

#include <cmath>
#include <fmt/format.h>

#include "host/statistics/bit_counts.h"
#include "plugin/base/error.h"

namespace banddesk::host::statistics {
namespace {

constexpr std::size_t kLinesBetweenReports = 16;

double quotient(double above, double below) { return below == 0 ? 0 : above / below; }

double distanceOf(const PairCounts& counts, Measure measure, std::size_t loci) {
  const double shared = counts.both;
  const double all = static_cast<double>(counts.first) + counts.second;
  const double differing = all - 2 * shared;
  switch (measure) {
    case Measure::Jaccard:
      return quotient(differing, all - shared);
    case Measure::Dice:
      return quotient(differing, all);
    case Measure::SimpleMatching:
      return differing / counts.known;
    case Measure::Euclidean:
      return std::sqrt(differing * static_cast<double>(loci) / counts.known);
  }
  return 0;
}

}  // namespace

std::string_view nameOf(Measure measure) {
  switch (measure) {
    case Measure::Jaccard:
      return "Jaccard";
    case Measure::Dice:
      return "Dice";
    case Measure::SimpleMatching:
      return "simple matching";
    case Measure::Euclidean:
      return "Euclidean";
  }
  return {};
}

DistanceTable distances(const BandMatrix& matrix, const PackedBands& bands, Measure measure,
                        const Progress& progress) {
  const std::size_t samples = bands.samples();
  DistanceTable table(samples);
  std::vector<PairCounts> counts(samples);
  for (std::size_t i = 0; i + 1 < samples; ++i) {
    if (i % kLinesBetweenReports == 0) report(progress, i, samples);
    const auto behind = std::span(counts).first(samples - i - 1);
    countPairs(bands, i, behind);
    for (std::size_t k = 0; k < behind.size(); ++k) {
      if (behind[k].known == 0)
        raise(ErrorNumber::InvalidArgument, "Statistics",
              fmt::format("The samples \"{}\" and \"{}\" have no distance: no bin is known in both.",
                          matrix.samples[i], matrix.samples[i + 1 + k]));
      table.upper(i, i + 1 + k) = distanceOf(behind[k], measure, bands.loci());
    }
  }
  return table;
}

DistanceTable distances(const BandMatrix& matrix, Measure measure, const Progress& progress) {
  requireSound(matrix);
  return distances(matrix, PackedBands(matrix), measure, progress);
}

}  // namespace banddesk::host::statistics
