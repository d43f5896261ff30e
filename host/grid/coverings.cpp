#include "host/grid/coverings.h"

namespace banddesk::host {

void Coverings::cover(const Block& block) {
  if (block.isEmpty()) return;
  // Lines added at the end of a long table meet nothing: no need to look at all that is there.
  order();
  if (!lowestUpTo_.empty() && lowestUpTo_.back() >= block.top) {
    std::erase_if(blocks_, [&](const Block& other) { return other.meets(block); });
    isOrdered_ = false;
  }
  if (block.isSingleCell()) return;
  if (isOrdered_) {
    lowestUpTo_.push_back(block.bottom);
  }
  blocks_.push_back(block);
}

void Coverings::order() const {
  if (isOrdered_) return;
  std::ranges::sort(blocks_, {}, &Block::top);
  lowestUpTo_.clear();
  for (const Block& block : blocks_) {
    lowestUpTo_.push_back(lowestUpTo_.empty() ? block.bottom : std::max(lowestUpTo_.back(), block.bottom));
  }
  isOrdered_ = true;
}

// Calls action(block) for the blocks of a row, until it answers true.
template <class Action>
void Coverings::eachInRow(std::int32_t row, Action action) const {
  order();
  auto index =
      static_cast<std::size_t>(std::ranges::upper_bound(blocks_, row, {}, &Block::top) - blocks_.begin());
  for (; index > 0 && lowestUpTo_[index - 1] >= row; --index) {
    const Block& block = blocks_[index - 1];
    if (block.bottom >= row && action(block)) return;
  }
}

const Block* Coverings::at(std::int32_t row, std::int32_t col) const {
  const Block* found = nullptr;
  eachInRow(row, [&](const Block& block) {
    if (block.contains(row, col)) found = &block;
    return found != nullptr;
  });
  return found;
}

std::vector<Block> Coverings::inRow(std::int32_t row) const {
  std::vector<Block> found;
  eachInRow(row, [&](const Block& block) {
    found.push_back(block);
    return false;
  });
  std::ranges::sort(found, {}, &Block::left);
  return found;
}

template <class Change>
void Coverings::changeAll(Change change) {
  if (blocks_.empty()) return;
  for (Block& block : blocks_) change(block);
  std::erase_if(blocks_, [](const Block& block) { return block.isEmpty() || block.isSingleCell(); });
  isOrdered_ = false;
}

void Coverings::insertLines(Axis axis, std::int32_t before, std::int32_t count) {
  changeAll([&](Block& block) { block.insertLines(axis, before, count); });
}

void Coverings::removeLines(Axis axis, std::int32_t from, std::int32_t to) {
  changeAll([&](Block& block) { block.removeLines(axis, from, to); });
}

void Coverings::exchangeAxes() {
  changeAll([](Block& block) { block.exchangeAxes(); });
}

}  // namespace banddesk::host
