// Where the nodes of a tree stand when it is drawn from left to right with a line a sample. Nodes that are
// collapsed take one line, whatever is below them.
#pragma once

#include <set>
#include <vector>

#include "host/pictures/drawing.h"
#include "host/statistics/band_matrix.h"
#include "host/statistics/tree.h"

namespace banddesk::host::pictures {

// The area of the branches: from `at` to the right, and how high a line is.
struct TreePlace {
  Point at;
  double width = 0, line = 0;
};

class TreeLayout {
 public:
  // The tree outlives the layout. Branches of negative length stand as if they had none.
  TreeLayout(const statistics::Tree& tree, const std::set<std::size_t>& collapsed, const TreePlace& place);

  // Samples and collapsed nodes, from the top.
  const std::vector<std::size_t>& lines() const { return lines_; }
  bool isCollapsed(std::size_t node) const { return collapsed_.contains(node); }
  Point at(std::size_t node) const { return {x(depth_[node]), y_[node]}; }
  double x(double depth) const;
  double deepest() const { return deepest_; }

  // The branches that show, coloured where all samples below one are of one group, and places for the nodes.
  void addBranches(Drawing& drawing, const statistics::BandMatrix& bands) const;

 private:
  void measureDepths();
  void placeLines();
  std::vector<std::optional<std::size_t>> groupsOf(const statistics::BandMatrix& bands) const;

  const statistics::Tree& tree_;
  const std::set<std::size_t> collapsed_;
  TreePlace place_;
  std::vector<std::size_t> lines_;
  std::vector<std::size_t> shown_;  // inner nodes that are not collapsed, from the top
  std::vector<double> depth_, y_;
  double deepest_ = 0;
};

}  // namespace banddesk::host::pictures
