#include "host/statistics/diversity.h"

#include <algorithm>
#include <cmath>

namespace banddesk::host::statistics {
namespace {

struct LocusCount {
  std::size_t present = 0;
  std::size_t known = 0;
};

using LocusCounts = std::vector<LocusCount>;

LocusCounts& operator+=(LocusCounts& counts, const LocusCounts& more) {
  for (std::size_t locus = 0; locus < counts.size(); ++locus) {
    counts[locus].present += more[locus].present;
    counts[locus].known += more[locus].known;
  }
  return counts;
}

std::vector<LocusCounts> countsByGroup(const BandMatrix& matrix) {
  std::vector<LocusCounts> counts(matrix.groups.size(), LocusCounts(matrix.loci.size()));
  for (std::size_t sample = 0; sample < matrix.samples.size(); ++sample) {
    const auto line = matrix.line(sample);
    LocusCounts& group = counts[matrix.groupOf[sample]];
    for (std::size_t locus = 0; locus < line.size(); ++locus) {
      group[locus].present += line[locus] == Band::Present ? 1U : 0U;
      group[locus].known += line[locus] == Band::Missing ? 0U : 1U;
    }
  }
  return counts;
}

double informationOf(double share) { return share > 0 ? -share * std::log(share) : 0; }

GroupDiversity figuresOf(const LocusCounts& counts, double leastShare) {
  GroupDiversity figures;
  std::size_t polymorphic = 0;
  for (const auto& [present, known] : counts) {
    if (known == 0) continue;
    ++figures.loci;
    figures.bands += present > 0 ? 1U : 0U;
    const double share = static_cast<double>(present) / static_cast<double>(known);
    const double recessive = std::sqrt(1 - share), dominant = 1 - recessive;
    polymorphic += present > 0 && present < known && std::min(share, 1 - share) > leastShare ? 1U : 0U;
    figures.geneDiversity += 1 - dominant * dominant - recessive * recessive;
    figures.shannon += informationOf(share) + informationOf(1 - share);
  }
  if (figures.loci == 0) return figures;
  const auto loci = static_cast<double>(figures.loci);
  figures.polymorphicPercent = 100 * static_cast<double>(polymorphic) / loci;
  figures.geneDiversity /= loci;
  figures.shannon /= loci;
  return figures;
}

std::size_t privateBandsOf(const LocusCounts& group, const LocusCounts& all) {
  std::size_t found = 0;
  for (std::size_t locus = 0; locus < group.size(); ++locus) {
    found += group[locus].present > 0 && group[locus].present == all[locus].present ? 1U : 0U;
  }
  return found;
}

}  // namespace

Diversity diversityOf(const BandMatrix& given, double leastShare) {
  requireSound(given);
  const BandMatrix matrix = orderedByGroup(given);
  const auto counts = countsByGroup(matrix);
  LocusCounts total(matrix.loci.size());
  for (const LocusCounts& group : counts) total += group;

  Diversity diversity;
  for (std::size_t group = 0; group < counts.size(); ++group) {
    GroupDiversity figures = figuresOf(counts[group], leastShare);
    figures.name = matrix.groups[group];
    figures.samples = static_cast<std::size_t>(std::ranges::count(matrix.groupOf, group));
    if (counts.size() > 1) figures.privateBands = privateBandsOf(counts[group], total);
    diversity.groups.push_back(std::move(figures));
  }
  diversity.all = figuresOf(total, leastShare);
  diversity.all.name = "All";
  diversity.all.samples = matrix.samples.size();
  return diversity;
}

}  // namespace banddesk::host::statistics
