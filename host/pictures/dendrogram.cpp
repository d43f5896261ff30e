#include "host/pictures/dendrogram.h"

#include <algorithm>
#include <fmt/format.h>

#include "host/pictures/tree_layout.h"

namespace banddesk::host::pictures {
namespace {

constexpr double kLeft = 20, kTop = 40, kBottom = 48;
constexpr double kBranches = 480;  // width of the tree
constexpr double kLine = 16;       // height of a sample
constexpr int kTicks = 5;

class Dendrogram {
 public:
  Dendrogram(const statistics::Tree& tree, const statistics::BandMatrix& bands,
             const std::set<std::size_t>& collapsed)
      : tree_(tree), bands_(bands), layout_(tree, collapsed, {{kLeft, kTop}, kBranches, kLine}) {}

  Drawing take() {
    drawing_.height = bottom() + kBottom;
    drawing_.width = kLeft + kBranches + widestOf(bands_.samples) + 32;
    drawing_.title = tree_.isRooted ? "Dendrogram" : "Tree, not rooted";
    layout_.addBranches(drawing_, bands_);
    for (const std::size_t node : layout_.lines()) node < tree_.samples ? addSample(node) : addCluster(node);
    for (const Box& box : drawing_.boxes) addSupport(*box.node);
    addScale();
    addLegendBeside(drawing_, bands_.groups, kTop);
    return std::move(drawing_);
  }

 private:
  double bottom() const { return kTop + kLine * static_cast<double>(layout_.lines().size()); }

  void addSample(std::size_t sample) {
    std::optional<std::size_t> group;
    if (bands_.groups.size() > 1) group = bands_.groupOf[sample];
    const Point at = layout_.at(sample);
    const double right = at.x + 6;
    if (group) drawing_.marks.push_back({{right + 2, at.y}, *group, sample, bands_.samples[sample]});
    drawing_.labels.push_back({{right + (group ? 10 : 0), at.y + kFontSize / 3},
                               bands_.samples[sample],
                               Anchor::Start,
                               group,
                               sample});
  }

  // A triangle as deep as what is below it.
  void addCluster(std::size_t node) {
    const Point at = layout_.at(node);
    double right = at.x;
    const auto samples = statistics::samplesBelow(tree_, node);
    for (const std::size_t sample : samples) right = std::max(right, layout_.at(sample).x);
    const Point up{right, at.y - kLine / 3}, down{right, at.y + kLine / 3};
    for (const Line& line : {Line{at, up}, Line{at, down}, Line{up, down}})
      drawing_.lines.push_back({line.from, line.to, LineKind::Branch});
    drawing_.labels.push_back(
        {{right + 6, at.y + kFontSize / 3}, fmt::format("{} samples", samples.size()), Anchor::Start});
  }

  void addSupport(std::size_t node) {
    const auto& support = tree_.nodes[node].support;
    const Point at = layout_.at(node);
    if (support && *support >= kLeastSupport)
      drawing_.labels.push_back({{at.x - 3, at.y - 3}, fmt::format("{:.0f}", *support), Anchor::End});
  }

  // Of a rooted tree the distance at which clusters join, which falls to 0 at the samples; else the length of
  // the branches from the left.
  void addScale() {
    const double deepest = layout_.deepest();
    if (deepest <= 0) return;
    const double y = bottom() + 8;
    drawing_.lines.push_back({{layout_.x(0), y}, {layout_.x(deepest), y}, LineKind::Frame});
    const double whole = tree_.isRooted ? 2 * deepest : deepest;
    for (const double tick : ticksBetween(0, whole, kTicks)) {
      const double x = layout_.x(tree_.isRooted ? deepest - tick / 2 : tick);
      drawing_.lines.push_back({{x, y}, {x, y + 4}, LineKind::Frame});
      drawing_.labels.push_back({{x, y + 17}, fmt::format("{:.4g}", tick), Anchor::Middle});
    }
    drawing_.labels.push_back({{layout_.x(deepest / 2), y + 33},
                               tree_.isRooted ? "Distance" : "Length of branches",
                               Anchor::Middle});
  }

  const statistics::Tree& tree_;
  const statistics::BandMatrix& bands_;
  TreeLayout layout_;
  Drawing drawing_;
};

}  // namespace

Drawing dendrogramOf(const statistics::Tree& tree, const statistics::BandMatrix& bands,
                     const std::set<std::size_t>& collapsed) {
  return Dendrogram(tree, bands, collapsed).take();
}

}  // namespace banddesk::host::pictures
