// Trees from distances:
//   UPGMA, average linkage    Sokal & Michener 1958, Univ. Kansas Sci. Bull. 38: 1409
//   neighbour joining         Saitou & Nei 1987, Mol. Biol. Evol. 4: 406; Studier & Keppler 1988, ibid. 5:
//   729
//
// Ties, which tables of bands have often, go by one rule: a cluster counts as its first sample, and of
// several pairs that are equally near the one with the lowest first, then the lowest second sample is joined.
// The order of the samples can therefore decide.
#pragma once

#include <cmath>
#include <string_view>

#include "host/statistics/distance.h"
#include "host/statistics/progress.h"
#include "host/statistics/tree.h"

namespace banddesk::host::statistics {

// A value must be below this to be less than the given one by more than rounding.
inline double clearlyBelow(double value) { return value - 1e-12 * std::abs(value); }

enum class TreeMethod { Upgma, NeighbourJoining };
std::string_view nameOf(TreeMethod method);

// Both raise an Error below two samples.
//
// Rooted; two samples are as far apart along the branches as their clusters were when they were joined.
Tree upgma(const DistanceTable& distances, const Progress& progress = {});
// Not rooted. Lengths may be negative and are left so.
Tree neighbourJoining(const DistanceTable& distances, const Progress& progress = {});

Tree makeTree(const DistanceTable& distances, TreeMethod method, const Progress& progress = {});

}  // namespace banddesk::host::statistics
