// Columns of the grid control as wide as their texts need.
#include <bit>
#include <cmath>
#include <limits>
#include <map>

#include "host/grid/grid_control.h"

namespace banddesk::host {
namespace {

constexpr double kMargins = 8;  // left and right together
constexpr std::int32_t kNarrowest = 16;

std::size_t lengthOf(std::int32_t number) {
  std::size_t length = number < 0 ? 2 : 1;
  for (std::int64_t rest = std::abs(std::int64_t{number}); rest >= 10; rest /= 10) ++length;
  return length;
}

// Widths of texts in one font, each measured once. Digits are equally wide, so numbers go by their length.
class FontWidths {
 public:
  FontWidths(const TextMeasure& measure, const GridFont& font)
      : measure_(measure), font_(font), digit_(measure.width("0", font)), minus_(measure.width("-", font)) {}

  // Grows with the number, from 0 on.
  double ofNumber(std::int32_t number) const {
    const double length = static_cast<double>(lengthOf(number));
    return number < 0 ? minus_ + digit_ * (length - 1) : digit_ * length;
  }
  double ofText(TextPool::Id id, std::string_view text) {
    if (id >= known_.size()) known_.resize(std::size_t{id} + 1, -1);
    double& width = known_[id];
    if (width < 0) width = measure_.width(text, font_);
    return width;
  }
  double ofShown(const std::string& text) const { return measure_.width(text, font_); }

 private:
  const TextMeasure& measure_;
  GridFont font_;
  double digit_;
  double minus_;
  std::vector<double> known_;
};

// What a style number means for the width of a text.
struct StyleWidths {
  FontWidths* font = nullptr;
  const StyleAttributes* rewriting = nullptr;  // the look, if it shows something else than the stored text
};

class Fitting {
 public:
  Fitting(const CellStore& store, const Looks& looks, const TextMeasure& measure)
      : store_(store), looks_(looks), measure_(measure) {}

  double widthOf(const Cell& cell, Layer layer) {
    if (cell.kind() == CellKind::Empty) return 0;
    const StyleWidths& style = styleOf(cell.style(), layer);
    if (style.rewriting != nullptr) {
      NumberText buffer;
      return style.font->ofShown(shownText(*style.rewriting, store_.text(&cell, buffer)));
    }
    if (cell.kind() == CellKind::Number) return style.font->ofNumber(cell.number());
    return style.font->ofText(cell.text(), store_.texts().at(cell.text()));
  }

  // At least as wide as every cell that the digest allows for; infinite where it tells too little.
  double widestOf(const Digest& digest) {
    if (!digest.isPlain || digest.styles >> Digest::kLastStyle != 0) return kEndless;
    if (digest.styles != lastStyles_) {
      lastStyles_ = digest.styles;
      lastDigit_ = widestDigit(digest.styles);
    }
    return lastDigit_ * static_cast<double>(lengthOf(digest.greatest));
  }

 private:
  // Of the body's styles.
  double widestDigit(std::uint64_t styles) {
    double widest = 0;
    for (; styles != 0; styles &= styles - 1) {
      const StyleWidths& style = styleOf(static_cast<StyleId>(std::countr_zero(styles)), Layer::Body);
      if (style.rewriting != nullptr) return kEndless;
      widest = std::max(widest, style.font->ofNumber(0));
    }
    return widest;
  }

  static constexpr double kEndless = std::numeric_limits<double>::infinity();

  const StyleWidths& styleOf(StyleId id, Layer layer) {
    auto& styles = styles_[static_cast<std::size_t>(layer)];
    if (id >= styles.size()) styles.resize(std::size_t{id} + 1);
    StyleWidths& style = styles[id];
    if (style.font == nullptr) {
      const StyleAttributes& look = looks_.look(id, layer);
      style.font = &fonts_.try_emplace(look.font->size, measure_, *look.font).first->second;
      if (look.format != 0) style.rewriting = &look;
    }
    return style;
  }

  const CellStore& store_;
  const Looks& looks_;
  const TextMeasure& measure_;
  std::map<double, FontWidths> fonts_;
  std::vector<StyleWidths> styles_[3];
  std::uint64_t lastStyles_ = 0;
  double lastDigit_ = 0;
};

// The widths that columns need for the cells of many rows. A piece of a line is looked at only while it may
// hold something wider than each of its columns has had already.
class BodyFitting {
 public:
  BodyFitting(const CellStore& store, Fitting& fitting, std::vector<double>& widest)
      : store_(store), fitting_(fitting), widest_(widest) {}

  // Of `cols`, those from `first` on are fitted.
  void fit(std::span<const Slot> rows, std::span<const Slot> cols, std::size_t first) {
    const bool isFlipped = store_.isFlipped();
    std::vector<Piece> pieces = piecesOf(isFlipped ? rows : cols, isFlipped ? 0 : first);
    const auto outers = isFlipped ? cols : rows;
    for (std::size_t outer = isFlipped ? first : 0; outer < outers.size(); ++outer) {
      const std::span<const Cell> line = store_.line(outers[outer]);
      for (Piece& piece : pieces) {
        if (piece.number * CellStore::kPiece >= line.size()) break;
        double& narrowest = isFlipped ? widest_[outer] : piece.narrowest;
        if (canWiden(outers[outer], piece.number, narrowest)) {
          isFlipped ? fitColumn(line, piece, outer) : fitRow(line, piece);
        }
      }
    }
  }

 private:
  struct Place {
    Slot slot;
    std::size_t index;  // of the row or column
  };
  struct Piece {
    std::size_t number = 0;
    std::vector<Place> places;  // by ascending slot
    double narrowest = 0;       // of its columns, as wide as they are by now
  };

  static std::vector<Piece> piecesOf(std::span<const Slot> inners, std::size_t first) {
    std::vector<Place> places;
    for (std::size_t index = first; index < inners.size(); ++index) {
      if (inners[index] != kNoSlot) places.push_back({inners[index], index});
    }
    std::ranges::sort(places, {}, &Place::slot);
    std::vector<Piece> pieces;
    for (const Place& place : places) {
      const std::size_t number = place.slot / CellStore::kPiece;
      if (pieces.empty() || pieces.back().number != number) pieces.push_back({number, {}, 0});
      pieces.back().places.push_back(place);
    }
    return pieces;
  }

  bool canWiden(Slot outer, std::size_t piece, double narrowest) {
    const Digest& known = store_.digest(outer, piece);
    if (fitting_.widestOf(known) <= narrowest) return false;
    return known.isExact || fitting_.widestOf(store_.exactDigest(outer, piece)) > narrowest;
  }

  void fitRow(std::span<const Cell> line, Piece& piece) {
    double narrowest = std::numeric_limits<double>::infinity();
    for (const Place& place : piece.places) {
      double& width = widest_[place.index];
      if (place.slot < line.size()) width = std::max(width, fitting_.widthOf(line[place.slot], Layer::Body));
      narrowest = std::min(narrowest, width);
    }
    piece.narrowest = narrowest;
  }

  void fitColumn(std::span<const Cell> line, const Piece& piece, std::size_t col) {
    for (const Place& place : piece.places) {
      if (place.slot >= line.size()) break;
      widest_[col] = std::max(widest_[col], fitting_.widthOf(line[place.slot], Layer::Body));
    }
  }

  const CellStore& store_;
  Fitting& fitting_;
  std::vector<double>& widest_;
};

std::int32_t columnWidth(double widest) {
  return std::max(kNarrowest, static_cast<std::int32_t>(std::ceil(widest + kMargins)));
}

}  // namespace

std::vector<std::int32_t> GridControl::headerWidths() const {
  Fitting fitting(store_, looks_, *ports_.measure);
  std::vector<std::int32_t> widths;
  for (std::int32_t col = 0; col <= cols_.count; ++col) {
    const Cell* const found = cell(0, col);
    widths.push_back(columnWidth(found != nullptr ? fitting.widthOf(*found, layerOf(0, col)) : 0));
  }
  return widths;
}

bool GridControl::ResizeToFit(const GridRange& range) {
  const Block block = blockOf(range);
  if (block.isEmpty()) return true;
  const std::vector<Slot> cols = cols_.order.list(block.left, block.right);
  std::vector<double> widest(cols.size(), 0);
  Fitting fitting(store_, looks_, *ports_.measure);
  const auto widen = [&](std::int32_t row, std::int32_t col) {
    double& width = widest[static_cast<std::size_t>(col - block.left)];
    if (const Cell* found = cell(row, col))
      width = std::max(width, fitting.widthOf(*found, layerOf(row, col)));
  };

  std::vector<Slot> plainRows;
  const std::int32_t bottom = std::min(block.bottom, rows_.order.extent() - 1);
  for (std::int32_t row = block.top; row <= bottom; ++row) {
    if (IsRowHidden(row) || (row == 0 && !colHeadersVisible_)) continue;
    const std::vector<Block> covered = coverings_.inRow(row);
    if (row > 0 && covered.empty()) {
      plainRows.push_back(rows_.order.at(row));
      if (block.left == 0) widen(row, 0);
      continue;
    }
    // The header and the rows with merged cells go one by one.
    for (std::int32_t col = block.left; col <= block.right; ++col) {
      const auto covers = [&](const Block& other) { return other.contains(row, col); };
      if (std::ranges::none_of(covered, covers)) widen(row, col);
    }
  }
  BodyFitting(store_, fitting, widest).fit(plainRows, cols, block.left == 0 ? 1 : 0);
  for (std::int32_t col = block.left; col <= block.right; ++col) {
    cols_.setWidth(col, col, columnWidth(widest[static_cast<std::size_t>(col - block.left)]));
  }
  return true;
}

}  // namespace banddesk::host
