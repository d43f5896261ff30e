// A tree of samples as a plain value, and what is read off it. How trees are made stands in clustering.h.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "host/statistics/distance.h"

namespace banddesk::host::statistics {

struct TreeNode {
  std::vector<std::size_t> children;  // none: a sample
  double length = 0;                  // of the branch to its parent; 0 for the root
  std::optional<double> support;      // percent of the bootstraps that have this node's samples together
};

// The first nodes are the samples in their order, the others stand behind their children, and the last one is
// the root. Where the tree is not rooted, the root only holds three branches together.
struct Tree {
  std::size_t samples = 0;
  bool isRooted = true;
  std::vector<TreeNode> nodes;

  std::size_t root() const { return nodes.size() - 1; }
};

// The samples below a node from its first child to its last; of a sample itself.
std::vector<std::size_t> samplesBelow(const Tree& tree, std::size_t node);
// All of them.
inline std::vector<std::size_t> leafOrder(const Tree& tree) { return samplesBelow(tree, tree.root()); }

// The lengths of the branches between two samples, added up. In a tree of UPGMA these are the cophenetic
// distances.
DistanceTable pathDistances(const Tree& tree);

// How well the tree's distances follow those that it was made of: Pearson's correlation of the two. Sokal &
// Rohlf 1962, Taxon 11: 33. Nothing where either does not vary.
std::optional<double> copheneticCorrelation(const DistanceTable& distances, const Tree& tree);

}  // namespace banddesk::host::statistics
