#include "host/pictures/dendrogram.h"

#include <algorithm>
#include <fmt/format.h>

namespace banddesk::host::pictures {
namespace {

constexpr double kLeft = 20, kTop = 40, kBottom = 48;
constexpr double kBranches = 480;  // width of the tree
constexpr double kLine = 16;       // height of a sample
constexpr int kTicks = 5;

class Dendrogram {
 public:
  Dendrogram(const statistics::Tree& tree, const statistics::BandMatrix& bands)
      : tree_(tree), bands_(bands), depth_(tree.nodes.size()), y_(tree.nodes.size()) {
    place();
  }

  Drawing take() {
    double widest = 0;
    for (const std::string& name : bands_.samples) widest = std::max(widest, widthOf(name));
    drawing_.height = kTop + kLine * static_cast<double>(tree_.samples) + kBottom;
    drawing_.width = kLeft + kBranches + widest + 32;
    drawing_.title = tree_.isRooted ? "Dendrogram" : "Tree, not rooted";
    for (std::size_t node = 0; node < tree_.nodes.size(); ++node) {
      if (node < tree_.samples)
        addSample(node);
      else
        addNode(node);
    }
    addScale();
    if (bands_.groups.size() > 1) {
      double widestGroup = 0;
      for (const std::string& group : bands_.groups) widestGroup = std::max(widestGroup, widthOf(group));
      addLegend(drawing_, bands_.groups, {drawing_.width, kTop + 8});
      drawing_.width += widestGroup + 24;
      drawing_.height = std::max(drawing_.height, kTop + 20 + 18 * static_cast<double>(bands_.groups.size()));
    }
    return std::move(drawing_);
  }

 private:
  void place() {
    double y = kTop + kLine / 2;
    for (const std::size_t sample : leafOrder(tree_)) {
      y_[sample] = y;
      y += kLine;
    }
    // Depths from the root down, heights from the samples up: children stand before their parents.
    for (std::size_t node = tree_.nodes.size(); node-- > 0;) {
      for (const std::size_t child : tree_.nodes[node].children) {
        depth_[child] = depth_[node] + std::max(0.0, tree_.nodes[child].length);
        deepest_ = std::max(deepest_, depth_[child]);
      }
    }
    for (std::size_t node = tree_.samples; node < tree_.nodes.size(); ++node) {
      const auto& children = tree_.nodes[node].children;
      y_[node] = (y_[children.front()] + y_[children.back()]) / 2;
    }
  }

  double x(double depth) const { return kLeft + (deepest_ > 0 ? depth / deepest_ : 0) * kBranches; }

  void addSample(std::size_t sample) {
    std::optional<std::size_t> group;
    if (bands_.groups.size() > 1) group = bands_.groupOf[sample];
    const double right = x(depth_[sample]) + 6;
    if (group) drawing_.marks.push_back({{right + 2, y_[sample]}, *group, sample, bands_.samples[sample]});
    drawing_.labels.push_back({{right + (group ? 10 : 0), y_[sample] + kFontSize / 3},
                               bands_.samples[sample],
                               Anchor::Start,
                               group,
                               sample});
  }

  void addNode(std::size_t node) {
    const auto& children = tree_.nodes[node].children;
    const double at = x(depth_[node]);
    drawing_.lines.push_back({{at, y_[children.front()]}, {at, y_[children.back()]}, LineKind::Branch});
    for (const std::size_t child : children)
      drawing_.lines.push_back({{at, y_[child]}, {x(depth_[child]), y_[child]}, LineKind::Branch});
    const auto& support = tree_.nodes[node].support;
    if (support && *support >= kLeastSupport)
      drawing_.labels.push_back({{at - 3, y_[node] - 3}, fmt::format("{:.0f}", *support), Anchor::End});
  }

  // Of a rooted tree the distance at which clusters join, which falls to 0 at the samples; else the length of
  // the branches from the left.
  void addScale() {
    if (deepest_ <= 0) return;
    const double y = kTop + kLine * static_cast<double>(tree_.samples) + 8;
    drawing_.lines.push_back({{x(0), y}, {x(deepest_), y}, LineKind::Frame});
    const double whole = tree_.isRooted ? 2 * deepest_ : deepest_;
    for (const double tick : ticksBetween(0, whole, kTicks)) {
      const double depth = tree_.isRooted ? deepest_ - tick / 2 : tick;
      drawing_.lines.push_back({{x(depth), y}, {x(depth), y + 4}, LineKind::Frame});
      drawing_.labels.push_back({{x(depth), y + 17}, fmt::format("{:.4g}", tick), Anchor::Middle});
    }
    drawing_.labels.push_back(
        {{x(deepest_ / 2), y + 33}, tree_.isRooted ? "Distance" : "Length of branches", Anchor::Middle});
  }

  const statistics::Tree& tree_;
  const statistics::BandMatrix& bands_;
  std::vector<double> depth_, y_;
  double deepest_ = 0;
  Drawing drawing_;
};

}  // namespace

Drawing dendrogramOf(const statistics::Tree& tree, const statistics::BandMatrix& bands) {
  return Dendrogram(tree, bands).take();
}

}  // namespace banddesk::host::pictures
