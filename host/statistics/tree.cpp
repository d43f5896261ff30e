#include "host/statistics/tree.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace banddesk::host::statistics {
namespace {

// A sample below a node, and the length of the branches from the node down to it.
struct Leaf {
  std::size_t sample;
  double depth;
};

}  // namespace

std::vector<std::size_t> samplesBelow(const Tree& tree, std::size_t top) {
  std::vector<std::size_t> order, waiting = {top};
  while (!waiting.empty()) {
    const std::size_t node = waiting.back();
    waiting.pop_back();
    if (node < tree.samples) order.push_back(node);
    const auto& children = tree.nodes[node].children;
    waiting.insert(waiting.end(), children.rbegin(), children.rend());
  }
  return order;
}

DistanceTable pathDistances(const Tree& tree) {
  DistanceTable table(tree.samples);
  std::vector<std::vector<Leaf>> below(tree.nodes.size());
  for (std::size_t node = 0; node < tree.nodes.size(); ++node) {
    auto& leaves = below[node];
    if (node < tree.samples) leaves.push_back({node, 0});
    for (const std::size_t child : tree.nodes[node].children) {
      auto& others = below[child];
      for (Leaf& other : others) other.depth += tree.nodes[child].length;
      for (const Leaf& a : leaves) {
        for (const Leaf& b : others) {
          const auto [i, j] = std::minmax(a.sample, b.sample);
          table.upper(i, j) = a.depth + b.depth;
        }
      }
      leaves.insert(leaves.end(), others.begin(), others.end());
      others = {};
    }
  }
  return table;
}

std::optional<double> copheneticCorrelation(const DistanceTable& distances, const Tree& tree) {
  const DistanceTable paths = pathDistances(tree);
  const auto x = distances.values(), y = paths.values();
  const auto count = static_cast<double>(x.size());
  const double meanX = std::accumulate(x.begin(), x.end(), 0.0) / count;
  const double meanY = std::accumulate(y.begin(), y.end(), 0.0) / count;
  double xx = 0, yy = 0, xy = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    xx += (x[i] - meanX) * (x[i] - meanX);
    yy += (y[i] - meanY) * (y[i] - meanY);
    xy += (x[i] - meanX) * (y[i] - meanY);
  }
  if (xx <= 0 || yy <= 0) return {};
  return xy / std::sqrt(xx * yy);
}

}  // namespace banddesk::host::statistics
