#include "host/grid/cell_store.h"

#include <charconv>

namespace banddesk::host {

std::optional<std::int32_t> wholeNumber(std::string_view text) {
  if (text.empty() || text.size() > 11) return {};
  const std::size_t sign = text[0] == '-' ? 1 : 0;
  if (text.size() > sign + 1 && text[sign] == '0') return {};
  if (text == "-0") return {};
  std::int32_t number = 0;
  const auto end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc{} || result.ptr != end) return {};
  return number;
}

std::string_view numberText(std::int32_t number, NumberText& buffer) {
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  return {buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())};
}

void CellStore::setText(Cell& cell, std::string_view text) {
  if (text.empty()) {
    clearValue(cell);
  } else if (const auto number = wholeNumber(text)) {
    setNumber(cell, *number);
  } else {
    // Held before the old one is let go: they may be the same text.
    const TextPool::Id id = texts_.acquire(text);
    clearValue(cell);
    cell.setValue(CellKind::Text, id);
  }
}

std::string_view CellStore::text(const Cell* cell, NumberText& buffer) const {
  if (cell == nullptr || cell->kind() == CellKind::Empty) return {};
  if (cell->kind() == CellKind::Number) return numberText(cell->number(), buffer);
  return texts_.at(cell->text());
}

void CellStore::grow(Slot outer, Slot inner) {
  if (outer >= lines_.size()) lines_.resize(std::size_t{outer} + 1);
  auto& cells = lines_[outer].cells;
  const std::size_t needed = std::size_t{inner} + 1;
  if (needed > cells.capacity()) {
    // Doubles, but below the widest line no farther than that: a table filled row by row has no room to
    // spare, and one filled column by column does not move every line at every column.
    const std::size_t doubled = 2 * cells.size();
    cells.reserve(std::max(needed, needed < widestLine_ ? std::min(doubled, widestLine_) : doubled));
  }
  widestLine_ = std::max(widestLine_, needed);
  cells.resize(needed);
}

std::vector<std::span<const Slot>> CellStore::piecesOf(std::span<const Slot> inners) {
  std::vector<std::span<const Slot>> pieces;
  for (std::size_t begin = 0, end = 0; begin < inners.size(); begin = end) {
    while (end < inners.size() && inners[end] / kPiece == inners[begin] / kPiece) ++end;
    pieces.push_back(inners.subspan(begin, end - begin));
  }
  return pieces;
}

// Without a branch for each cell: which one has what cannot be foreseen.
const Digest& CellStore::exactDigest(Slot outer, std::size_t piece) const {
  const Line& line = lines_[outer];
  if (piece >= line.digests.size()) line.digests.resize((line.cells.size() + kPiece - 1) / kPiece);
  Digest& digest = line.digests[piece];
  if (digest.isKnown && digest.isExact) return digest;
  const std::size_t end = std::min((piece + 1) * kPiece, line.cells.size());
  std::uint64_t styles = 0;
  std::int32_t greatest = 0;
  std::uint32_t texts = 0;
  std::uint32_t signs = 0;
  for (std::size_t i = piece * kPiece; i < end; ++i) {
    const Cell& cell = line.cells[i];
    styles |= Digest::styleBit(cell.style());
    texts |= cell.kind() == CellKind::Text ? 1U : 0U;
    const std::int32_t number = cell.kind() == CellKind::Number ? cell.number() : 0;
    greatest = std::max(greatest, number);
    signs |= static_cast<std::uint32_t>(number);
  }
  const bool isPlain = texts == 0 && static_cast<std::int32_t>(signs) >= 0;
  digest = {styles, greatest, isPlain, true, true};
  return digest;
}

const CellStore::Aside* CellStore::findAside(Slot row, Slot col) const {
  const Slot outer = isFlipped_ ? col : row;
  const Slot inner = isFlipped_ ? row : col;
  if (outer >= lines_.size()) return nullptr;
  const auto& asides = lines_[outer].asides;
  const auto found = std::ranges::lower_bound(asides, inner, {}, &Aside::inner);
  return found != asides.end() && found->inner == inner ? &*found : nullptr;
}

std::string_view CellStore::userAttribute(Slot row, Slot col) const {
  const Aside* aside = findAside(row, col);
  return aside == nullptr ? std::string_view{} : texts_.at(aside->userAttribute);
}

std::string_view CellStore::toolTip(Slot row, Slot col) const {
  const Aside* aside = findAside(row, col);
  return aside == nullptr ? std::string_view{} : texts_.at(aside->toolTip);
}

void CellStore::setAside(Slot row, Slot col, TextPool::Id Aside::*field, std::string_view text) {
  if (text.empty() && findAside(row, col) == nullptr) return;
  const Slot outer = isFlipped_ ? col : row;
  const Slot inner = isFlipped_ ? row : col;
  if (outer >= lines_.size()) lines_.resize(std::size_t{outer} + 1);
  auto& asides = lines_[outer].asides;
  auto place = std::ranges::lower_bound(asides, inner, {}, &Aside::inner);
  if (place == asides.end() || place->inner != inner) place = asides.insert(place, Aside{inner});
  const TextPool::Id former = (*place).*field;
  (*place).*field = texts_.acquire(text);
  texts_.release(former);
  if (place->userAttribute == 0 && place->toolTip == 0) asides.erase(place);
}

void CellStore::setUserAttribute(Slot row, Slot col, std::string_view text) {
  setAside(row, col, &Aside::userAttribute, text);
}

void CellStore::setToolTip(Slot row, Slot col, std::string_view text) {
  setAside(row, col, &Aside::toolTip, text);
}

void CellStore::clear(Axis axis, std::span<const Slot> slots) {
  if ((axis == Axis::Columns) != isFlipped_) return emptyAcross(slots);
  for (const Slot slot : slots) emptyLine(slot);
}

void CellStore::emptyLine(Slot outer) {
  if (outer >= lines_.size()) return;
  Line& line = lines_[outer];
  for (Cell& cell : line.cells) clearValue(cell);
  for (const Aside& aside : line.asides) {
    texts_.release(aside.userAttribute);
    texts_.release(aside.toolTip);
  }
  line = {};
}

void CellStore::emptyAcross(std::span<const Slot> inners) {
  std::vector<Slot> sorted(inners.begin(), inners.end());
  std::ranges::sort(sorted);
  for (Line& line : lines_) {
    line.digests.clear();
    for (const Slot inner : sorted) {
      if (inner >= line.cells.size()) break;
      clearValue(line.cells[inner]);
      line.cells[inner] = {};
    }
    std::erase_if(line.asides, [&](const Aside& aside) {
      if (!std::ranges::binary_search(sorted, aside.inner)) return false;
      texts_.release(aside.userAttribute);
      texts_.release(aside.toolTip);
      return true;
    });
  }
}

std::size_t CellStore::bytesOfCells() const {
  std::size_t bytes = lines_.capacity() * sizeof(Line);
  for (const Line& line : lines_) {
    bytes += line.cells.capacity() * sizeof(Cell) + line.asides.capacity() * sizeof(Aside) +
             line.digests.capacity() * sizeof(Digest);
  }
  return bytes;
}

}  // namespace banddesk::host
