// The merged blocks of a grid. They never overlap: a new one takes the place of those that it meets. The text
// of a block is that of its top left cell.
#pragma once

#include <vector>

#include "host/grid/block.h"

namespace banddesk::host {

class Coverings {
 public:
  // A single cell only dissolves what covers it.
  void cover(const Block& block);
  const Block* at(std::int32_t row, std::int32_t col) const;
  std::vector<Block> inRow(std::int32_t row) const;  // from left to right
  const std::vector<Block>& all() const { return blocks_; }

  void insertLines(Axis axis, std::int32_t before, std::int32_t count);
  void removeLines(Axis axis, std::int32_t from, std::int32_t to);
  void exchangeAxes();

 private:
  template <class Action>
  void eachInRow(std::int32_t row, Action action) const;
  template <class Change>
  void changeAll(Change change);
  void order() const;

  mutable std::vector<Block> blocks_;             // by ascending top, once ordered
  mutable std::vector<std::int32_t> lowestUpTo_;  // the greatest bottom of a block and those before it
  mutable bool isOrdered_ = true;
};

}  // namespace banddesk::host
