#include "host/statistics/bootstrap.h"

#include <algorithm>
#include <map>

#include "host/simulation/random.h"
#include "host/statistics/bit_counts.h"

namespace banddesk::host::statistics {
namespace {

using simulation::Random;

// A set of samples as the exclusive or of random numbers, one a sample: equal sets have equal keys, and that
// two others do is as good as impossible at 128 bits.
struct SetKey {
  std::uint64_t high = 0, low = 0;
  auto operator<=>(const SetKey&) const = default;
};

SetKey operator^(const SetKey& a, const SetKey& b) { return {a.high ^ b.high, a.low ^ b.low}; }

class SupportCount {
 public:
  explicit SupportCount(const Tree& tree) : isRooted_(tree.isRooted), samples_(tree.samples) {
    Random random(0x5EED);
    for (SetKey& key : samples_) {
      key = {random.bits(), random.bits()};
      all_ = all_ ^ key;
    }
    forEachNode(tree, [&](std::size_t, const SetKey& key) { counts_[key] = 0; });
  }

  void add(const Tree& tree) {
    seen_.clear();
    forEachNode(tree, [&](std::size_t, const SetKey& key) { seen_.push_back(key); });
    // Two nodes of one tree may make the same split, at the root of two branches.
    std::ranges::sort(seen_);
    const auto repeated = std::ranges::unique(seen_);
    seen_.erase(repeated.begin(), repeated.end());
    for (const SetKey& key : seen_) {
      if (const auto found = counts_.find(key); found != counts_.end()) ++found->second;
    }
  }

  void tell(Tree& tree, std::size_t trees) const {
    forEachNode(tree, [&](std::size_t node, const SetKey& key) {
      tree.nodes[node].support = 100 * static_cast<double>(counts_.at(key)) / static_cast<double>(trees);
    });
  }

 private:
  template <class Visit>
  void forEachNode(const Tree& tree, Visit visit) const {
    std::vector<SetKey> keys(tree.nodes.size());
    std::ranges::copy(samples_, keys.begin());
    for (std::size_t node = tree.samples; node < tree.root(); ++node) {
      for (const std::size_t child : tree.nodes[node].children) keys[node] = keys[node] ^ keys[child];
      visit(node, isRooted_ ? keys[node] : std::min(keys[node], all_ ^ keys[node]));
    }
  }

  bool isRooted_;
  std::vector<SetKey> samples_;
  SetKey all_;
  std::map<SetKey, std::size_t> counts_;
  std::vector<SetKey> seen_;
};

}  // namespace

Tree treeOf(const BandMatrix& matrix, const TreeRequest& request, const Progress& progress) {
  requireSound(matrix);
  PackedBands bands(matrix);
  Tree tree = makeTree(distances(matrix, bands, request.measure), request.method,
                       request.bootstraps == 0 ? progress : Progress());
  if (request.bootstraps == 0) return tree;
  SupportCount count(tree);
  Random random(request.seed);
  const auto loci = static_cast<double>(matrix.loci.size());
  std::vector<std::uint32_t> drawn(matrix.loci.size());
  for (std::size_t done = 0; done < request.bootstraps; ++done) {
    report(progress, done, request.bootstraps);
    for (std::uint32_t& locus : drawn) locus = static_cast<std::uint32_t>(random.uniform() * loci);
    bands.take(drawn);
    count.add(makeTree(distances(matrix, bands, request.measure), request.method));
  }
  count.tell(tree, request.bootstraps);
  return tree;
}

}  // namespace banddesk::host::statistics
