// How firmly the bins support the branches of a tree: the bins are drawn again and again with replacement, a
// tree is made of each draw, and each inner node is told in how many of these trees its samples stand
// together. Felsenstein 1985, Evolution 39: 783.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/statistics/band_matrix.h"
#include "host/statistics/clustering.h"

namespace banddesk::host::statistics {

struct TreeRequest {
  Measure measure = Measure::Jaccard;
  TreeMethod method = TreeMethod::Upgma;
  std::size_t bootstraps = 0;  // none: nodes have no support
  std::uint64_t seed = 1;      // the same seed gives the same supports on every machine
};

// The tree of the table and the support of its inner nodes but the root. In a tree that is not rooted a node
// stands for the split of all samples in two that its branch makes.
Tree treeOf(const BandMatrix& matrix, const TreeRequest& request, const Progress& progress = {});

}  // namespace banddesk::host::statistics
