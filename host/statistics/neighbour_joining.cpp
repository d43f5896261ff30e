#include <algorithm>
#include <limits>
#include <numeric>

#include "host/statistics/clustering.h"
#include "plugin/base/error.h"

namespace banddesk::host::statistics {
namespace {

// Clusters are known by their first sample; `distance_` holds them in the lines and columns of the active
// ones.
class Joining {
 public:
  explicit Joining(const DistanceTable& distances)
      : count_(distances.samples()),
        distance_(count_ * count_),
        sum_(count_),
        node_(count_),
        active_(count_) {
    std::iota(active_.begin(), active_.end(), std::size_t{0});
    node_ = active_;
    for (std::size_t i = 0; i < count_; ++i) {
      for (std::size_t j = 0; j < count_; ++j) sum_[i] += at(i, j) = distances.at(i, j);
    }
    tree_.samples = count_;
    tree_.isRooted = false;
    tree_.nodes.resize(count_);
  }

  std::size_t clusters() const { return active_.size(); }

  void joinBest() {
    const auto [a, b] = bestPair();
    const double distance = at(a, b);
    const double lean = (sum_[a] - sum_[b]) / (2 * static_cast<double>(clusters() - 2));
    setLength(a, distance / 2 + lean);
    setLength(b, distance / 2 - lean);
    addNode({a, b});
    active_.erase(std::ranges::lower_bound(active_, b));
    sum_[a] = 0;
    for (const std::size_t other : active_) {
      if (other == a) continue;
      const double joined = (at(a, other) + at(b, other) - distance) / 2;
      sum_[other] += joined - at(a, other) - at(b, other);
      sum_[a] += joined;
      at(a, other) = at(other, a) = joined;
    }
  }

  // The last three, or two where there never were more.
  Tree finish() {
    if (clusters() == 2) {
      for (const std::size_t cluster : active_) setLength(cluster, at(active_[0], active_[1]) / 2);
    } else {
      const std::size_t a = active_[0], b = active_[1], c = active_[2];
      setLength(a, (at(a, b) + at(a, c) - at(b, c)) / 2);
      setLength(b, (at(a, b) + at(b, c) - at(a, c)) / 2);
      setLength(c, (at(a, c) + at(b, c) - at(a, b)) / 2);
    }
    addNode(active_);
    return std::move(tree_);
  }

 private:
  double& at(std::size_t a, std::size_t b) { return distance_[a * count_ + b]; }
  void setLength(std::size_t cluster, double length) { tree_.nodes[node_[cluster]].length = length; }

  void addNode(const std::vector<std::size_t>& clusters) {
    TreeNode node;
    for (const std::size_t cluster : clusters) node.children.push_back(node_[cluster]);
    tree_.nodes.push_back(std::move(node));
    node_[clusters.front()] = tree_.nodes.size() - 1;
  }

  // The first of those whose joining shortens the tree most.
  std::pair<std::size_t, std::size_t> bestPair() const {
    const auto others = static_cast<double>(clusters() - 2);
    double bound = std::numeric_limits<double>::infinity();
    std::pair<std::size_t, std::size_t> pair;
    for (std::size_t i = 0; i + 1 < active_.size(); ++i) {
      const std::size_t a = active_[i];
      const double* const line = &distance_[a * count_];
      for (std::size_t k = i + 1; k < active_.size(); ++k) {
        const std::size_t b = active_[k];
        const double value = others * line[b] - sum_[a] - sum_[b];
        if (value < bound) {
          bound = clearlyBelow(value);
          pair = {a, b};
        }
      }
    }
    return pair;
  }

  std::size_t count_;
  std::vector<double> distance_, sum_;
  std::vector<std::size_t> node_;
  std::vector<std::size_t> active_;  // ascending
  Tree tree_;
};

}  // namespace

Tree neighbourJoining(const DistanceTable& distances, const Progress& progress) {
  if (distances.samples() < 2)
    raise(ErrorNumber::InvalidArgument, "Statistics", "A tree needs at least two samples.");
  Joining joining(distances);
  for (std::size_t joined = 0; joining.clusters() > 3; ++joined) {
    report(progress, joined, distances.samples());
    joining.joinBest();
  }
  return joining.finish();
}

std::string_view nameOf(TreeMethod method) {
  return method == TreeMethod::Upgma ? "UPGMA" : "neighbour joining";
}

Tree makeTree(const DistanceTable& distances, TreeMethod method, const Progress& progress) {
  return method == TreeMethod::Upgma ? upgma(distances, progress) : neighbourJoining(distances, progress);
}

}  // namespace banddesk::host::statistics
