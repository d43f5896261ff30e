#include <cmath>
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

 private:
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
};

}  // namespace

bool GridControl::ResizeToFit(const GridRange& range) {
  const Block block = blockOf(range);
  if (block.isEmpty()) return true;
  const std::vector<Slot> cols = cols_.order.list(block.left, block.right);
  std::vector<double> widest(cols.size(), 0);
  Fitting fitting(store_, looks_, *ports_.measure);
  const auto widen = [&](std::size_t col, double width) { widest[col] = std::max(widest[col], width); };

  std::vector<Slot> plainRows;
  const std::int32_t bottom = std::min(block.bottom, rows_.order.extent() - 1);
  for (std::int32_t row = block.top; row <= bottom; ++row) {
    if (IsRowHidden(row) || (row == 0 && !colHeadersVisible_)) continue;
    const std::vector<Block> covered = coverings_.inRow(row);
    if (row > 0 && covered.empty()) {
      plainRows.push_back(rows_.order.at(row));
      continue;
    }
    // The header and the rows with merged cells go one by one.
    for (std::int32_t col = block.left; col <= block.right; ++col) {
      const Cell* found = cell(row, col);
      const auto covers = [&](const Block& other) { return other.contains(row, col); };
      if (found == nullptr || std::ranges::any_of(covered, covers)) continue;
      widen(static_cast<std::size_t>(col - block.left), fitting.widthOf(*found, layerOf(row, col)));
    }
  }
  store_.forExisting(plainRows, cols, [&](std::size_t, std::size_t col, const Cell& found) {
    const bool isHeader = block.left == 0 && col == 0;
    widen(col, fitting.widthOf(found, isHeader ? Layer::RowHeader : Layer::Body));
  });
  for (std::int32_t col = block.left; col <= block.right; ++col) {
    const double width = std::ceil(widest[static_cast<std::size_t>(col - block.left)] + kMargins);
    cols_.setWidth(col, col, std::max(kNarrowest, static_cast<std::int32_t>(width)));
  }
  return true;
}

}  // namespace banddesk::host
