// Draws the part of a grid that a view shows. It asks the grid for the cells in the painted region and for
// nothing else.
#pragma once

#include <QPainter>
#include <QPalette>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "desktop/grid/cell_colours.h"
#include "desktop/grid/cell_texts.h"
#include "desktop/grid/grid_layout.h"

namespace banddesk::desktop {

// What lies over the cells while the mouse does something.
struct GridMarks {
  std::optional<int> widthGuide;       // x
  std::optional<int> columnInsertion;  // x
  std::optional<int> rowInsertion;     // y
  bool isEmpty() const { return !widthGuide && !columnInsertion && !rowInsertion; }
};

class GridPainter {
 public:
  GridPainter(const host::GridControl& grid, const GridLayout& layout, CellFonts& fonts,
              const QPalette& palette);

  void paint(QPainter& painter, const QRect& exposed, const GridMarks& marks, bool hasFocus);

  // Whether the text of a cell is shown cut off; a wrapped one never counts as cut.
  static bool isCut(const host::GridControl& grid, const host::Block& cell, const QRect& rect,
                    CellFonts& fonts);

 private:
  // A look as it is painted, worked out once a paint.
  struct Ink {
    const StyleAttributes* look;
    QColor ground;
    QColor text;
    CellTexts* texts;
    bool hasFrame;
  };
  using Inks = std::unordered_map<const StyleAttributes*, Ink>;
  struct Line {
    const ShownLine* line;
    std::vector<const host::Block*> selected;  // blocks of the selection that meet the line
  };

  const Ink& ink(Position row, Position col, bool isSelected);
  bool isSelected(const Line& row, Position col) const;
  void fillRow(const Line& row);
  void drawLines();
  void drawTexts(const Line& row);
  void drawCovered();
  void drawCell(const host::Block& cell, const QRect& rect, const Ink& ink);
  void drawText(const host::Block& cell, const QRect& rect, const Ink& ink);
  void drawWrapped(const host::Block& cell, const QRect& rect, const Ink& ink);
  void drawFrame(const QRect& rect);
  void drawCurrent(bool hasFocus);
  void drawMarks(const GridMarks& marks);

  const host::GridControl& grid_;
  const GridLayout& layout_;
  CellFonts& fonts_;
  const QPalette& palette_;
  QPainter* painter_ = nullptr;
  QRect exposed_;
  std::vector<Line> rows_;
  std::span<const ShownLine> cols_;
  Inks inks_[2];  // plain and selected
  QColor pen_;
  CellTexts* penTexts_ = nullptr;
  QColor gridColour_;
};

}  // namespace banddesk::desktop
