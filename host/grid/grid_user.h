// The user's side of a grid control: clicks, selections, drags and typing, as calls of a view or a test. What
// the user does reaches the page by the events of the grid.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/grid/block.h"
#include "plugin/results/grid_addressing.h"

namespace banddesk::host {

class GridControl;

class GridUser final {
 public:
  // Part of the grid, which outlives it.
  explicit GridUser(GridControl& grid) : grid_(grid) {}
  GridUser(const GridUser&) = delete;
  GridUser& operator=(const GridUser&) = delete;

  // ---- selecting and clicking
  // Selections cover cells from 1 to the counts, whatever was asked, in either direction.
  void selectCells(std::int32_t row, std::int32_t col, std::int32_t toRow, std::int32_t toCol,
                   bool addToSelection = false);
  void selectRows(std::int32_t first, std::int32_t last, bool addToSelection = false);
  void selectCols(std::int32_t first, std::int32_t last, bool addToSelection = false);
  // The block selected last becomes this one: the user goes on pulling at it.
  void reselectCells(std::int32_t row, std::int32_t col, std::int32_t toRow, std::int32_t toCol);
  void clickCell(std::int32_t row, std::int32_t col);
  // Neither the selection nor the current cell follows it.
  void rightClick(std::int32_t row, std::int32_t col);
  void doubleClick(std::int32_t row, std::int32_t col);
  void pressLeft();
  void releaseLeft();

  // ---- dragging
  // A width drag in its steps; false if the start was refused.
  bool startColumnTrack(std::int32_t col);
  void endColumnTrack(std::int32_t col, std::int32_t width);
  // The whole drag: press, start, end, release.
  bool trackColumnWidth(std::int32_t col, std::int32_t width);
  // The drag of selected lines in front of `target`, a line or one past the last. False if it is not allowed
  // or was refused.
  bool dragColumns(std::int32_t first, std::int32_t last, std::int32_t target);
  bool dragRows(std::int32_t first, std::int32_t last, std::int32_t target);
  // The same drag in its steps. The start and each move tell whether they are allowed; only after an allowed
  // move to that target may the lines be dropped there.
  bool startDrag(Axis axis, std::int32_t first, std::int32_t last);
  bool moveDrag(Axis axis, std::int32_t first, std::int32_t last, std::int32_t target);
  void dropDrag(Axis axis, std::int32_t first, std::int32_t last, std::int32_t target);

  // ---- typing into a cell. A read-only or a header cell refuses.
  bool beginEdit(std::int32_t row, std::int32_t col);
  void type(std::string text);
  bool endEdit(bool keep);
  bool isEditing() const { return edit_.has_value(); }
  // What is typed there, or null.
  const std::string* typedAt(std::int32_t row, std::int32_t col) const {
    return edit_ && edit_->row == row && edit_->col == col ? &edit_->text : nullptr;
  }
  // The position along a line at which the user types, or -1.
  std::int32_t typedIn(Axis axis, std::int32_t index) const;
  std::string_view typedText() const { return edit_ ? std::string_view(edit_->text) : std::string_view(); }
  // Another cell becomes the current one: what was typed is kept.
  void leaveFor(std::int32_t row, std::int32_t col);

 private:
  struct Edit {
    std::int32_t row;
    std::int32_t col;
    std::string text;
  };

  void select(const Block& block, bool addToSelection);
  bool mayDrag(Axis which, std::int32_t first, std::int32_t last) const;
  bool dragLines(Axis which, std::int32_t first, std::int32_t last, std::int32_t target);
  bool isTarget(Axis which, std::int32_t target) const;

  GridControl& grid_;
  std::optional<Edit> edit_;
};

}  // namespace banddesk::host
