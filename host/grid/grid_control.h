// The grid control without a toolkit: the contract's operations, and what a view asks to paint. It draws
// nothing itself; a view paints anew at each Repaint. What the user does there is GridUser's.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/grid/cell_store.h"
#include "host/grid/coverings.h"
#include "host/grid/grid_ports.h"
#include "host/grid/grid_user.h"
#include "host/grid/line_axis.h"
#include "host/grid/looks.h"
#include "host/grid/selection.h"
#include "plugin/results/grid_addressing.h"

namespace banddesk::host {

class GridControl final : public Grid, private GridData, private GridParameters, private PrintParameters {
 public:
  explicit GridControl(std::string name, GridPorts ports = {});
  ~GridControl() override;

  // ---- size, header and drag states (grid_control.cpp)
  std::int32_t RowCount() const override { return rows_.count; }
  void SetRowCount(std::int32_t count) override { setCount(Axis::Rows, count); }
  std::int32_t ColCount() const override { return cols_.count; }
  void SetColCount(std::int32_t count) override { setCount(Axis::Columns, count); }
  bool ColHeadersVisible() const override { return colHeadersVisible_; }
  void SetColHeadersVisible(bool visible) override { colHeadersVisible_ = visible; }
  bool RowHeadersVisible() const override { return rowHeadersVisible_; }
  void SetRowHeadersVisible(bool visible) override { rowHeadersVisible_ = visible; }
  bool AllowDragRows() const override { return allowDragRows_; }
  void SetAllowDragRows(bool allow) override { allowDragRows_ = allow; }
  bool AllowDragCols() const override { return allowDragCols_; }
  void SetAllowDragCols(bool allow) override { allowDragCols_ = allow; }
  bool LockReadOnly() const override { return lockReadOnly_; }
  void SetLockReadOnly(bool lock) override { lockReadOnly_ = lock; }

  // ---- cells (grid_cells.cpp)
  std::string GetValue(std::int32_t row, std::int32_t col) const override;
  bool SetValueRange(std::int32_t row, std::int32_t col, std::string_view text, std::int32_t) override;
  std::string GetUserAttribute(std::int32_t row, std::int32_t col) const override;
  void SetUserAttribute(std::int32_t row, std::int32_t col, std::string_view text) override;
  std::string GetToolTip(std::int32_t row, std::int32_t col) const;
  void SetToolTip(std::int32_t row, std::int32_t col, std::string_view text) override;
  bool SetStyleRange(const GridRange& range, const GridStyle& style, StyleMode mode) override;
  void SetCoveredCells(std::int32_t top, std::int32_t left, std::int32_t bottom, std::int32_t right) override;
  void SetCurrentCell(std::int32_t row, std::int32_t col) override;
  std::string GetCurrentCellText(std::int32_t row, std::int32_t col) const override;

  // ---- whole lines at once (grid_cells.cpp)
  void StoreLine(Axis axis, std::int32_t index, std::span<const LineCell> cells, LineStep& step) override;
  std::int32_t AppendTexts(Axis axis, std::int32_t index, std::int32_t from, std::int32_t to,
                           bool visibleOnly, std::string_view before, std::string_view after,
                           std::string& out) override;
  void VisitUserAttributes(Axis axis, std::int32_t index, std::int32_t from, std::int32_t to,
                           const TextVisitor& visitor) const override;
  void ExchangeAxes(std::int64_t every, const CellsExchanged& done) override;
  void exchangeAxes();  // with the counts

  // ---- rows and columns (grid_lines.cpp)
  bool InsertRows(std::int32_t start, std::int32_t count) override;
  bool RemoveRows(std::int32_t from, std::int32_t to) override { return removeLines(Axis::Rows, from, to); }
  bool RemoveCols(std::int32_t from, std::int32_t to) override {
    return removeLines(Axis::Columns, from, to);
  }
  bool HideRows(std::int32_t from, std::int32_t to, bool hide) override;
  bool HideCols(std::int32_t from, std::int32_t to, bool hide) override;
  bool IsRowHidden(std::int32_t row) const override { return rows_.visibility.isHidden(row); }
  bool IsColHidden(std::int32_t col) const override { return cols_.visibility.isHidden(col); }
  void SetFrozenRows(std::int32_t count, std::int32_t headers) override;
  void SetFrozenCols(std::int32_t count, std::int32_t headers) override;
  std::int32_t FrozenRows() const override { return rows_.frozen; }
  std::int32_t FrozenCols() const override { return cols_.frozen; }
  void UnfreezeRows() override { SetFrozenRows(0, 0); }
  void UnfreezeCols() override { SetFrozenCols(0, 0); }
  bool SetColWidth(std::int32_t from, std::int32_t to, std::int32_t width) override;
  bool ResizeToFit(const GridRange& range) override;  // fit.cpp
  // What the texts of row 0 need, by column from 0 on.
  std::vector<std::int32_t> headerWidths() const;
  SortInfo NewSortInfo() const override { return {}; }
  bool SortRows(const GridRange& range, std::int32_t count, std::span<const SortInfo> keys, double) override;
  bool SortColumns(const GridRange& range, std::int32_t count, std::span<const SortInfo> keys,
                   double) override;

  // Line first + i gets the cells that stood in line order[i]; order names each of those lines once.
  void arrange(Axis which, std::int32_t first, std::span<const std::int32_t> order);

  // ---- painting and view (grid_control.cpp)
  bool LockUpdate(bool lock) override { return std::exchange(isLocked_, lock); }
  void Redraw(double) override;
  bool GridEnabledRedraw() const override { return enabledRedraw_; }
  void SetGridEnabledRedraw(bool enabled) override { enabledRedraw_ = enabled; }
  std::int32_t TopRow() const override { return topRow_; }
  void SetTopRow(std::int32_t row) override { topRow_ = std::max(row, 1); }
  std::int32_t LeftCol() const override { return leftCol_; }
  void SetLeftCol(std::int32_t col) override { leftCol_ = std::max(col, 1); }
  // Never while the user only presses on a header or a border: that would forbid to size columns.
  bool GridPressState() const override { return false; }

  // ---- styles and objects
  std::shared_ptr<GridStyle> NewStyle() override { return std::make_shared<GridStyle>(); }
  std::shared_ptr<GridRange> NewRange() override { return std::make_shared<GridRange>(); }
  std::shared_ptr<GridBrush> NewBrush() override { return std::make_shared<GridBrush>(); }
  GridParameters& GridParam() override { return *this; }
  GridStyle& ColHeaderStyle() override { return looks_.colHeader(); }
  GridStyle& RowHeaderStyle() override { return looks_.rowHeader(); }
  void StyleDialog() override { ports_.styleDialog->run(looks_); }

  // ---- output (grid_output.cpp, excel_writer.cpp)
  void SaveExcelFile(const std::string& fileName) override;
  void CopyCells(const GridRange& range) override;
  PrintParameters& PrintParam() override { return *this; }
  std::shared_ptr<GridFont> PrintFont() override { return std::make_shared<GridFont>(); }
  void SetPrintHeaderCell(double row, double col, const GridStyle& style) override;
  void SetPrintFooterCell(double row, double col, const GridStyle& style) override;
  void PrintGrid() override;

  // ---- for a view
  Event<> Repaint;
  // What the user does.
  GridUser& user() { return user_; }
  const GridUser& user() const { return user_; }
  GridPorts& ports() { return ports_; }
  // Null where nothing was ever written.
  const Cell* cell(std::int32_t row, std::int32_t col) const {
    return store_.find(rows_.order.at(row), cols_.order.at(col));
  }
  // The stored text for as long as the grid stays as it is; a number's lies in the buffer.
  std::string_view textAt(std::int32_t row, std::int32_t col, NumberText& buffer) const;
  const StyleAttributes& look(std::int32_t row, std::int32_t col) const;
  bool isReadOnly(std::int32_t row, std::int32_t col) const { return *look(row, col).readOnly; }
  const Coverings& coverings() const { return coverings_; }
  const Selection& selection() const { return selection_; }
  const LineAxis& rowAxis() const { return rows_; }
  const LineAxis& colAxis() const { return cols_; }
  std::int32_t colWidth(std::int32_t col) const { return cols_.width(col); }
  // Never beyond the table. A table that shrinks and grows again, as one made anew does, keeps its current cell.
  std::int32_t currentRow() const { return std::min(currentRow_, std::max(rows_.count, 1)); }
  std::int32_t currentCol() const { return std::min(currentCol_, std::max(cols_.count, 1)); }
  // How many rows and columns the view shows at once; a new current cell scrolls into them.
  void setViewSize(std::int32_t rows, std::int32_t cols);
  const CellStore& store() const { return store_; }
  // While it is, the table is half made and a view keeps what it shows.
  bool isLocked() const { return isLocked_; }
  const Looks& looks() const { return looks_; }

 private:
  friend class GridUser;

  // The objects that the contract hands out, so that their operations do not stand on the control itself.
  bool StoreStyleRowCol(std::int32_t row, std::int32_t col, const GridStyle& style, StyleMode mode,
                        std::int32_t type) override;
  bool GetStyleRowCol(std::int32_t row, std::int32_t col, GridStyle& style, StyleMode mode,
                      std::int32_t type) override;
  GridData& GetData() override { return *this; }
  const RangeList& GetRangeList() const override { return selection_; }
  StylesMap& GetStylesMap() override { return looks_; }
  void SetBlackWhite(bool blackWhite) override { printsBlackWhite_ = blackWhite; }

  LineAxis& axis(Axis which) { return which == Axis::Rows ? rows_ : cols_; }
  const LineAxis& axis(Axis which) const { return which == Axis::Rows ? rows_ : cols_; }
  static Layer layerOf(std::int32_t row, std::int32_t col);
  Cell& cellAt(std::int32_t row, std::int32_t col);
  Block blockOf(const GridRange& range) const;
  template <class Visitor>
  void visitLine(Axis which, std::int32_t index, std::int32_t from, std::int32_t to, bool visibleOnly,
                 Visitor visitor) const;
  bool refuses(std::int32_t row, std::int32_t col) const { return lockReadOnly_ && isReadOnly(row, col); }

  void setCount(Axis which, std::int32_t count);
  void discard(Axis which, std::int32_t from, std::int32_t to);
  bool removeLines(Axis which, std::int32_t from, std::int32_t to);
  bool sortLines(Axis which, Block block, std::int32_t count, std::span<const SortInfo> infos);
  // The lines stand in front of `target` then, and are selected.
  void moveLines(Axis which, std::int32_t first, std::int32_t last, std::int32_t target);
  bool changeCells(const Block& block, const GridStyle& style, StyleMode mode);
  void changeBlock(const Block& block, const GridStyle& style, StyleMode mode);
  void changeAsides(std::int32_t row, std::int32_t col, const GridStyle& style, StyleMode mode);
  void keepViewInside();
  void dropNewlyHidden(Axis which, std::int32_t& current);
  void scrollTo(std::int32_t row, std::int32_t col);
  PrintJob printJob() const;

  GridPorts ports_;
  StyleSets sets_;
  Looks looks_{sets_};
  CellStore store_;
  LineAxis rows_;
  LineAxis cols_;
  Coverings coverings_;
  Selection selection_;
  GridUser user_{*this};
  std::vector<PrintBlockCell> printHeader_;
  std::vector<PrintBlockCell> printFooter_;
  std::int32_t currentRow_ = 1;
  std::int32_t currentCol_ = 1;
  std::int32_t topRow_ = 1;
  std::int32_t leftCol_ = 1;
  std::int32_t viewRows_ = 40;
  std::int32_t viewCols_ = 20;
  bool colHeadersVisible_ = true;
  bool rowHeadersVisible_ = true;
  bool allowDragRows_ = false;
  bool allowDragCols_ = false;
  bool lockReadOnly_ = false;
  bool isLocked_ = false;
  bool enabledRedraw_ = true;
  bool printsBlackWhite_ = false;
};

}  // namespace banddesk::host
