// The layer through which everything reads and writes the grid in logical terms: bins run down the rows, bin
// information and samples along the columns, and row 0 and column 0 are headers, whichever way the grid shows
// it. A column's key sits in the user attribute of its header cell, a row's bin in that of column 0.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/table/page_context.h"

namespace banddesk {

class LogicalTable {
 public:
  LogicalTable(PageContext& page, std::shared_ptr<Grid> grid);

  // The reused range, style and data object of all writers.
  void makeObjects();
  Grid& grid() const { return required(grid_, "Grid"); }
  GridRange& range() const { return required(m_oRange, "Range"); }
  GridStyle& style() const { return required(m_oStyle, "Style"); }
  GridData& data() const { return required(m_oGridData, "GridData"); }

  bool m_bTransposed = false;
  std::int32_t m_lFirstSampleCol = 1;  // logical
  std::int32_t m_lMenuRow = 0;         // the logical cell of the last right click
  std::int32_t m_lMenuCol = 0;

  // ---- columns and bins
  void Init(const std::shared_ptr<GridLayout>& layout);
  std::shared_ptr<GridLayout> ColumnSet(std::string_view key) const;
  std::int32_t Col(std::string_view key) const;
  std::string Key(std::int32_t col) const;
  std::int32_t Bin(std::int32_t row) const;
  void SetBin(std::int32_t row, std::int32_t bin);
  void Translate(std::int32_t& row, std::int32_t& col) const;
  std::int32_t NumCols() const;
  void SetNumCols(std::int32_t count);
  std::int32_t NumRows() const;
  void SetNumRows(std::int32_t count);
  // The column object that stands at a logical column, through its key.
  std::shared_ptr<GridColumn> columnAt(std::int32_t col) const;

  // ---- cells
  std::string CurrentCellText(std::string_view key, std::int32_t index);
  std::string CellText(std::string_view key, std::int32_t index) const;
  void SetCellText(std::string_view key, std::int32_t index, std::string_view text);
  void SetCellToolTip(std::string_view key, std::int32_t index, std::string_view text);
  std::string CellUserAttribute(std::string_view key, std::int32_t index) const;
  void SetCellUserAttribute(std::string_view key, std::int32_t index, std::string_view text);
  void InitRange(GridRange& range, std::int32_t startCol, std::int32_t startRow, std::int32_t endCol,
                 std::int32_t endRow) const;
  bool SetStyleRange(const GridRange& range, const GridStyle& style, StyleMode mode);
  bool StoreStyleRowCol(std::int32_t row, std::int32_t col, const GridStyle& style, StyleMode mode,
                        std::int32_t type);

  // ---- whole passes over the table, without a look-up per cell
  // The bins of rows 1 to NumRows; index 0 belongs to row 1.
  std::vector<std::int32_t> binsOfRows() const;
  // Text into a cell by its logical place.
  void writeCell(std::int32_t row, std::int32_t col, std::string_view text);
  // Whole numbers into cells of a logical row, each at its logical column.
  void writeRow(std::int32_t row, std::span<const LineCell> cells);

  // ---- selection and hiding
  std::shared_ptr<Collection<std::int32_t>> GetSelected(std::int32_t axis, std::int32_t raw) const;
  bool IsColHidden(std::int32_t col) const;
  bool IsRowHidden(std::int32_t row) const;
  bool HideCols(std::int32_t startCol, std::int32_t endCol, bool hide);
  bool HideRows(std::int32_t startRow, std::int32_t endRow, bool hide);
  bool RemoveRows(std::int32_t from, std::int32_t to);

  // ---- the locked column
  std::int32_t LockedCol() const;
  void SetLockedCol(std::int32_t col);

 private:
  void putText(std::int32_t row, std::int32_t col, std::string_view text);
  void SetFrozenCols(std::int32_t count, std::int32_t headerCount);
  void UnfreezeGridCols();
  std::int32_t selectedValue(bool columns, std::int32_t raw, std::int32_t index) const;
  void addSelected(Collection<std::int32_t>& selected, bool columns, std::int32_t raw, std::int32_t low,
                   std::int32_t high) const;

  PageContext& page_;
  std::shared_ptr<Grid> grid_;
  std::shared_ptr<GridRange> m_oRange;
  std::shared_ptr<GridStyle> m_oStyle;
  GridData* m_oGridData = nullptr;
};

// The key of a result's column.
std::string sampleKey(std::int32_t resultId);

}  // namespace banddesk
