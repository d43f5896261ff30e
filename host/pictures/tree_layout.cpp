#include "host/pictures/tree_layout.h"

#include <algorithm>
#include <fmt/format.h>

namespace banddesk::host::pictures {
namespace {

constexpr double kNode = 4;  // from a node's middle to the edge of its place

}  // namespace

TreeLayout::TreeLayout(const statistics::Tree& tree, const std::set<std::size_t>& collapsed,
                       const TreePlace& place)
    : tree_(tree), collapsed_(collapsed), place_(place), depth_(tree.nodes.size()), y_(tree.nodes.size()) {
  measureDepths();
  placeLines();
}

double TreeLayout::x(double depth) const {
  return place_.at.x + (deepest_ > 0 ? depth / deepest_ : 0) * place_.width;
}

// From the root down: children stand before their parents.
void TreeLayout::measureDepths() {
  for (std::size_t node = tree_.nodes.size(); node-- > 0;) {
    for (const std::size_t child : tree_.nodes[node].children) {
      depth_[child] = depth_[node] + std::max(0.0, tree_.nodes[child].length);
      deepest_ = std::max(deepest_, depth_[child]);
    }
  }
}

void TreeLayout::placeLines() {
  std::vector<std::size_t> waiting = {tree_.root()};
  while (!waiting.empty()) {
    const std::size_t node = waiting.back();
    waiting.pop_back();
    const auto& children = tree_.nodes[node].children;
    if (children.empty() || isCollapsed(node)) {
      y_[node] = place_.at.y + place_.line * (static_cast<double>(lines_.size()) + 0.5);
      lines_.push_back(node);
    } else {
      shown_.push_back(node);
      waiting.insert(waiting.end(), children.rbegin(), children.rend());
    }
  }
  for (std::size_t i = shown_.size(); i-- > 0;) {
    const auto& children = tree_.nodes[shown_[i]].children;
    y_[shown_[i]] = (y_[children.front()] + y_[children.back()]) / 2;
  }
}

std::vector<std::optional<std::size_t>> TreeLayout::groupsOf(const statistics::BandMatrix& bands) const {
  std::vector<std::optional<std::size_t>> groups(tree_.nodes.size());
  if (bands.groups.size() < 2) return groups;
  for (std::size_t node = 0; node < tree_.nodes.size(); ++node) {
    const auto& children = tree_.nodes[node].children;
    if (children.empty())
      groups[node] = bands.groupOf[node];
    else if (std::ranges::all_of(children,
                                 [&](std::size_t child) { return groups[child] == groups[children[0]]; }))
      groups[node] = groups[children[0]];
  }
  return groups;
}

void TreeLayout::addBranches(Drawing& drawing, const statistics::BandMatrix& bands) const {
  const auto groups = groupsOf(bands);
  for (const std::size_t node : shown_) {
    const auto& children = tree_.nodes[node].children;
    const double left = at(node).x;
    drawing.lines.push_back(
        {{left, y_[children.front()]}, {left, y_[children.back()]}, LineKind::Branch, groups[node]});
    for (const std::size_t child : children)
      drawing.lines.push_back({{left, y_[child]}, at(child), LineKind::Branch, groups[child]});
  }
  for (std::size_t node = tree_.samples; node < tree_.nodes.size(); ++node) {
    if (!isCollapsed(node) && std::ranges::find(shown_, node) == shown_.end()) continue;
    Box box{{at(node).x - kNode, at(node).y - kNode}, 2 * kNode, 2 * kNode, BoxKind::Place};
    box.node = node;
    box.name = fmt::format("{} samples", statistics::samplesBelow(tree_, node).size());
    if (tree_.nodes[node].support) box.name += fmt::format(", support {:.0f} %", *tree_.nodes[node].support);
    drawing.boxes.push_back(box);
  }
}

}  // namespace banddesk::host::pictures
