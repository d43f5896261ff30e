// Random programs of grid operations, run on the grid and on the plainest model that could be right: a map
// from places to cells. Who chooses the operations (a property test, a fuzzer) is told from outside.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "host/grid/grid_control.h"

namespace banddesk::test {

// The next choice of the program: a number from 0 to `most`.
using UpTo = std::function<int(int most)>;

using Place = std::pair<int, int>;

struct ModelCell {
  std::string value, attribute, toolTip;
  std::map<std::string, int> look;
  bool operator==(const ModelCell&) const = default;
};

struct GridModel {
  std::map<Place, ModelCell> cells;
  std::set<int> hidden[2];
  int count[2] = {0, 0};

  // Lines are moved by renumbering every place; a line below 0 is gone.
  void renumber(int axis, bool withHidden, const std::function<int(int)>& numberOf);
  void setCount(int axis, int n);
  void insertRows(int start, int n);
  void remove(int axis, int from, int to);
  void move(int axis, int first, int last, int target);
  void sort(int axis, int first, int last, int key, bool descending);
  void exchange();
  ModelCell at(int row, int col) const;
};

class GridProgram {
 public:
  explicit GridProgram(UpTo upTo);
  // One operation on both.
  void step();
  // Raises std::logic_error where the two differ.
  void compare();
  // Takes everything out of the grid; raises if a text stays behind.
  void clear();

 private:
  std::string text() const;
  GridStyle style(std::map<std::string, int>& look) const;
  void styleRange();
  void writeCell();
  void changeLines();
  void sort();
  void drag();

  UpTo upTo_;
  host::GridControl grid_{"grid"};
  GridModel model_;
};

}  // namespace banddesk::test
