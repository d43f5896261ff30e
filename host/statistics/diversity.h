// How diverse the groups of a table are. Missing bands count nowhere; a locus that is missing in all samples
// of a group does not count for the group.
//
// Of a locus with the band in a share f of the group's samples:
//   gene diversity    1 - p^2 - q^2 with q = sqrt(1 - f) the frequency of the allele without a band and p = 1
//   - q,
//                     which takes the samples for diploids in Hardy-Weinberg proportions. Nei 1973, PNAS 70:
//                     3321; the square root as in Lynch & Milligan 1994, Mol. Ecol. 3: 91, without their
//                     correction
//   Shannon's index   -(f ln f + (1 - f) ln(1 - f)), of the bands themselves. Lewontin 1972, Evol. Biol. 6:
//   381
// Both are means over the loci that count.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/statistics/band_matrix.h"

namespace banddesk::host::statistics {

struct GroupDiversity {
  std::string name;
  std::size_t samples = 0;
  std::size_t loci = 0;          // known in at least one of its samples
  std::size_t bands = 0;         // loci with a band in at least one
  std::size_t privateBands = 0;  // of these, those without a band in any other group
  double polymorphicPercent = 0;
  double geneDiversity = 0;
  double shannon = 0;
};

struct Diversity {
  std::vector<GroupDiversity> groups;
  GroupDiversity all;  // all samples as one group; it has no private bands
};

// A locus is polymorphic where its rarer state has more than this share of the samples: 0 for any variation,
// 0.05 for the usual criterion of 95 %.
Diversity diversityOf(const BandMatrix& matrix, double leastShare = 0);

}  // namespace banddesk::host::statistics
