#include <algorithm>
#include <limits>
#include <numeric>

#include "host/statistics/clustering.h"
#include "plugin/base/error.h"

namespace banddesk::host::statistics {
namespace {

constexpr std::size_t kJoinsBetweenReports = 64;

// Clusters are known by their first sample. Each remembers the nearest of the clusters behind it, the first
// of them on ties, so that a join looks at all clusters but rarely at all pairs.
class AverageLinkage {
 public:
  explicit AverageLinkage(const DistanceTable& distances)
      : count_(distances.samples()),
        distance_(count_ * count_),
        size_(count_, 1),
        node_(count_),
        height_(count_, 0),
        nearest_(count_),
        active_(count_) {
    std::iota(active_.begin(), active_.end(), std::size_t{0});
    node_ = active_;
    for (std::size_t i = 0; i < count_; ++i) {
      for (std::size_t j = 0; j < count_; ++j) distance_[i * count_ + j] = distances.at(i, j);
    }
    tree_.samples = count_;
    tree_.nodes.resize(count_);
    for (std::size_t place = 0; place + 1 < count_; ++place) findNearest(place);
  }

  void joinNearest() {
    std::size_t best = 0;
    for (std::size_t place = 1; place + 1 < active_.size(); ++place) {
      if (nearestDistance(place) < clearlyBelow(nearestDistance(best))) best = place;
    }
    join(active_[best], nearest_[active_[best]]);
  }

  std::size_t clusters() const { return active_.size(); }
  Tree take() { return std::move(tree_); }

 private:
  double& distance(std::size_t a, std::size_t b) { return distance_[a * count_ + b]; }
  double nearestDistance(std::size_t place) { return distance(active_[place], nearest_[active_[place]]); }

  void findNearest(std::size_t place) {
    const double* const line = &distance_[active_[place] * count_];
    std::size_t nearest = active_[place + 1];
    double bound = clearlyBelow(line[nearest]);
    for (std::size_t behind = place + 2; behind < active_.size(); ++behind) {
      if (line[active_[behind]] < bound) {
        nearest = active_[behind];
        bound = clearlyBelow(line[nearest]);
      }
    }
    nearest_[active_[place]] = nearest;
  }

  // `a` stands before `b` and stays.
  void join(std::size_t a, std::size_t b) {
    addNode(a, b);
    const auto sizeA = static_cast<double>(size_[a]), sizeB = static_cast<double>(size_[b]);
    for (const std::size_t other : active_) {
      if (other == a || other == b) continue;
      const double mean = (sizeA * distance(a, other) + sizeB * distance(b, other)) / (sizeA + sizeB);
      distance(a, other) = distance(other, a) = mean;
    }
    size_[a] += size_[b];
    active_.erase(std::ranges::lower_bound(active_, b));
    for (std::size_t place = 0; place + 1 < active_.size(); ++place) {
      const std::size_t cluster = active_[place];
      if (cluster > b) break;
      const std::size_t nearest = nearest_[cluster];
      // The new cluster is no nearer than the nearer of its parts was, but may now stand first among equals.
      if (cluster == a || nearest == a || nearest == b) {
        findNearest(place);
      } else if (cluster < a && a < nearest &&
                 distance(cluster, nearest) >= clearlyBelow(distance(cluster, a))) {
        nearest_[cluster] = a;
      }
    }
  }

  void addNode(std::size_t a, std::size_t b) {
    const double height = distance(a, b) / 2;
    for (const std::size_t cluster : {a, b}) tree_.nodes[node_[cluster]].length = height - height_[cluster];
    tree_.nodes.push_back({{node_[a], node_[b]}, 0, {}});
    node_[a] = tree_.nodes.size() - 1;
    height_[a] = height;
  }

  std::size_t count_;
  std::vector<double> distance_;
  std::vector<std::size_t> size_, node_;
  std::vector<double> height_;
  std::vector<std::size_t> nearest_;
  std::vector<std::size_t> active_;  // ascending
  Tree tree_;
};

}  // namespace

Tree upgma(const DistanceTable& distances, const Progress& progress) {
  if (distances.samples() < 2)
    raise(ErrorNumber::InvalidArgument, "Statistics", "A tree needs at least two samples.");
  AverageLinkage linkage(distances);
  for (std::size_t joined = 0; linkage.clusters() > 1; ++joined) {
    if (joined % kJoinsBetweenReports == 0) report(progress, joined, distances.samples());
    linkage.joinNearest();
  }
  return linkage.take();
}

}  // namespace banddesk::host::statistics
