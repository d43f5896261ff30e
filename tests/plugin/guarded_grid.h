// A grid under the seam at which failures are injected: the page sees this one, the work is done by the grid
// control that it wraps, one operation at a time: it has none for whole lines. What the user does there reaches
// the page through it.
#pragma once

#include <memory>
#include <utility>

#include "host/grid/grid_control.h"
#include "host/study/fault_injector.h"

namespace banddesk::test {

class GuardedGrid final : public Grid, private GridParameters, private GridData, private StylesMap {
 public:
  GuardedGrid(host::FaultInjector& faults, std::shared_ptr<host::GridControl> inner);
  host::GridControl& inner() { return *grid_; }
  bool selectsOrDrags = false;  // what the press under way does

  std::int32_t RowCount() const override { return at("RowCount").RowCount(); }
  void SetRowCount(std::int32_t n) override { at("RowCount").SetRowCount(n); }
  std::int32_t ColCount() const override { return at("ColCount").ColCount(); }
  void SetColCount(std::int32_t n) override { at("ColCount").SetColCount(n); }
  bool ColHeadersVisible() const override { return at("ColHeadersVisible").ColHeadersVisible(); }
  void SetColHeadersVisible(bool v) override { at("ColHeadersVisible").SetColHeadersVisible(v); }
  bool RowHeadersVisible() const override { return at("RowHeadersVisible").RowHeadersVisible(); }
  void SetRowHeadersVisible(bool v) override { at("RowHeadersVisible").SetRowHeadersVisible(v); }
  bool AllowDragRows() const override { return at("AllowDragRows").AllowDragRows(); }
  void SetAllowDragRows(bool v) override { at("AllowDragRows").SetAllowDragRows(v); }
  bool AllowDragCols() const override { return at("AllowDragCols").AllowDragCols(); }
  void SetAllowDragCols(bool v) override { at("AllowDragCols").SetAllowDragCols(v); }
  bool LockReadOnly() const override { return at("LockReadOnly").LockReadOnly(); }
  void SetLockReadOnly(bool v) override { at("LockReadOnly").SetLockReadOnly(v); }

  std::string GetValue(std::int32_t r, std::int32_t c) const override {
    return at("GetValue").GetValue(r, c);
  }
  bool SetValueRange(std::int32_t r, std::int32_t c, std::string_view text, std::int32_t mode) override {
    return at("SetValueRange").SetValueRange(r, c, text, mode);
  }
  std::string GetUserAttribute(std::int32_t r, std::int32_t c) const override {
    return at("GetUserAttribute").GetUserAttribute(r, c);
  }
  void SetUserAttribute(std::int32_t r, std::int32_t c, std::string_view text) override {
    at("SetUserAttribute").SetUserAttribute(r, c, text);
  }
  void SetToolTip(std::int32_t r, std::int32_t c, std::string_view text) override {
    at("SetToolTip").SetToolTip(r, c, text);
  }
  bool SetStyleRange(const GridRange& range, const GridStyle& style, StyleMode mode) override {
    return at("SetStyleRange").SetStyleRange(range, style, mode);
  }
  void SetCoveredCells(std::int32_t t, std::int32_t l, std::int32_t b, std::int32_t r) override {
    at("SetCoveredCells").SetCoveredCells(t, l, b, r);
  }
  void SetCurrentCell(std::int32_t r, std::int32_t c) override { at("SetCurrentCell").SetCurrentCell(r, c); }
  std::string GetCurrentCellText(std::int32_t r, std::int32_t c) const override {
    return at("GetCurrentCellText").GetCurrentCellText(r, c);
  }

  bool InsertRows(std::int32_t start, std::int32_t n) override {
    return at("InsertRows").InsertRows(start, n);
  }
  bool RemoveRows(std::int32_t from, std::int32_t to) override {
    return at("RemoveRows").RemoveRows(from, to);
  }
  bool RemoveCols(std::int32_t from, std::int32_t to) override {
    return at("RemoveCols").RemoveCols(from, to);
  }
  bool HideRows(std::int32_t from, std::int32_t to, bool hide) override {
    return at("HideRows").HideRows(from, to, hide);
  }
  bool HideCols(std::int32_t from, std::int32_t to, bool hide) override {
    return at("HideCols").HideCols(from, to, hide);
  }
  bool IsRowHidden(std::int32_t row) const override { return at("IsRowHidden").IsRowHidden(row); }
  bool IsColHidden(std::int32_t col) const override { return at("IsColHidden").IsColHidden(col); }
  void SetFrozenRows(std::int32_t n, std::int32_t headers) override {
    at("FrozenRows").SetFrozenRows(n, headers);
  }
  void SetFrozenCols(std::int32_t n, std::int32_t headers) override {
    at("FrozenCols").SetFrozenCols(n, headers);
  }
  std::int32_t FrozenRows() const override { return at("FrozenRows").FrozenRows(); }
  std::int32_t FrozenCols() const override { return at("FrozenCols").FrozenCols(); }
  void UnfreezeRows() override { at("UnfreezeRows").UnfreezeRows(); }
  void UnfreezeCols() override { at("UnfreezeCols").UnfreezeCols(); }
  bool SetColWidth(std::int32_t from, std::int32_t to, std::int32_t width) override {
    return at("SetColWidth").SetColWidth(from, to, width);
  }
  bool ResizeToFit(const GridRange& range) override { return at("ResizeToFit").ResizeToFit(range); }
  SortInfo NewSortInfo() const override { return at("NewSortInfo").NewSortInfo(); }
  bool SortRows(const GridRange& range, std::int32_t n, std::span<const SortInfo> keys, double x) override {
    return at("SortRows").SortRows(range, n, keys, x);
  }
  bool SortColumns(const GridRange& range, std::int32_t n, std::span<const SortInfo> keys,
                   double x) override {
    return at("SortColumns").SortColumns(range, n, keys, x);
  }

  bool LockUpdate(bool lock) override { return at("LockUpdate").LockUpdate(lock); }
  void Redraw(double x) override { at("Redraw").Redraw(x); }
  bool GridEnabledRedraw() const override { return at("GridEnabledRedraw").GridEnabledRedraw(); }
  void SetGridEnabledRedraw(bool v) override { at("GridEnabledRedraw").SetGridEnabledRedraw(v); }
  std::int32_t TopRow() const override { return at("TopRow").TopRow(); }
  void SetTopRow(std::int32_t row) override { at("TopRow").SetTopRow(row); }
  std::int32_t LeftCol() const override { return at("LeftCol").LeftCol(); }
  void SetLeftCol(std::int32_t col) override { at("LeftCol").SetLeftCol(col); }
  bool GridPressState() const override { return at("GridPressState").GridPressState() || selectsOrDrags; }

  std::shared_ptr<GridStyle> NewStyle() override { return at("NewStyle").NewStyle(); }
  std::shared_ptr<GridRange> NewRange() override { return at("NewRange").NewRange(); }
  std::shared_ptr<GridBrush> NewBrush() override { return at("NewBrush").NewBrush(); }
  GridParameters& GridParam() override { return at("GridParam"), *this; }
  GridStyle& ColHeaderStyle() override { return at("ColHeaderStyle").ColHeaderStyle(); }
  GridStyle& RowHeaderStyle() override { return at("RowHeaderStyle").RowHeaderStyle(); }
  void StyleDialog() override { at("StyleDialog").StyleDialog(); }

  void SaveExcelFile(const std::string& fileName) override { at("SaveExcelFile").SaveExcelFile(fileName); }
  void CopyCells(const GridRange& range) override { at("CopyCells").CopyCells(range); }
  PrintParameters& PrintParam() override { return at("PrintParam").PrintParam(); }
  std::shared_ptr<GridFont> PrintFont() override { return at("PrintFont").PrintFont(); }
  void SetPrintHeaderCell(double r, double c, const GridStyle& style) override {
    at("SetPrintHeaderCell").SetPrintHeaderCell(r, c, style);
  }
  void SetPrintFooterCell(double r, double c, const GridStyle& style) override {
    at("SetPrintFooterCell").SetPrintFooterCell(r, c, style);
  }
  void PrintGrid() override { at("PrintGrid").PrintGrid(); }

 private:
  // Two operations of two contracts have the same name and arguments; both store a style.
  bool StoreStyleRowCol(std::int32_t r, std::int32_t c, const GridStyle& style, StyleMode mode,
                        std::int32_t type) override {
    return at("StoreStyleRowCol").GridParam().GetData().StoreStyleRowCol(r, c, style, mode, type);
  }
  bool GetStyleRowCol(std::int32_t r, std::int32_t c, GridStyle& style, StyleMode mode,
                      std::int32_t type) override {
    return at("GetStyleRowCol").GridParam().GetData().GetStyleRowCol(r, c, style, mode, type);
  }
  std::int32_t RegisterStyle(const std::string& name, const GridStyle& style, std::int32_t x) override {
    return at("RegisterStyle").GridParam().GetStylesMap().RegisterStyle(name, style, x);
  }
  bool ChangeRegisteredStyle(std::int32_t id, const GridStyle& style, std::int32_t x, std::int32_t y,
                             double mode) override {
    return at("ChangeRegisteredStyle")
        .GridParam()
        .GetStylesMap()
        .ChangeRegisteredStyle(id, style, x, y, mode);
  }
  GridData& GetData() override { return at("GetData"), *this; }
  const RangeList& GetRangeList() const override { return at("GetRangeList").GridParam().GetRangeList(); }
  StylesMap& GetStylesMap() override { return at("GetStylesMap"), *this; }

  host::GridControl& at(const char* operation) const {
    faults_.check("Grid", operation);
    return *grid_;
  }
  template <class... Args>
  void pass(Event<Args...>& from, Event<Args...>& to) {
    connections_.push_back(from.connect([&to](Args... args) { to.raise(args...); }));
  }

  host::FaultInjector& faults_;
  std::shared_ptr<host::GridControl> grid_;
  Connections connections_;
};

inline GuardedGrid::GuardedGrid(host::FaultInjector& faults, std::shared_ptr<host::GridControl> inner)
    : Grid(inner->Name()), faults_(faults), grid_(std::move(inner)) {
  pass(grid_->OnRButtonClickedRowCol, OnRButtonClickedRowCol);
  pass(grid_->OnLButtonDblClkRowCol, OnLButtonDblClkRowCol);
  pass(grid_->OnLButtonDown, OnLButtonDown);
  pass(grid_->OnLButtonUp, OnLButtonUp);
  pass(grid_->OnTrackColWidth, OnTrackColWidth);
  pass(grid_->OnTrackColWidthEnd, OnTrackColWidthEnd);
  pass(grid_->OnSelDragColsStart, OnSelDragColsStart);
  pass(grid_->OnSelDragColsMove, OnSelDragColsMove);
  pass(grid_->OnSelDragColsDrop, OnSelDragColsDrop);
  pass(grid_->OnSelDragRowsStart, OnSelDragRowsStart);
  pass(grid_->OnSelDragRowsMove, OnSelDragRowsMove);
  pass(grid_->OnSelDragRowsDrop, OnSelDragRowsDrop);
}

}  // namespace banddesk::test
