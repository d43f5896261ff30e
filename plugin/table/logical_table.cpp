#include "plugin/table/logical_table.h"

#include <utility>

#include "plugin/base/numbers.h"
#include "plugin/table/page_guards.h"

namespace banddesk {
namespace {

constexpr std::int32_t kValueRangeMode = 4;

[[noreturn]] void raiseBadParameter(const char* what) {
  raise(ErrorNumber::InvalidParameter, "Check Parameters", what);
}

// A key is a number in text; its sign tells the column set.
double keyNumber(std::string_view key) { return strictNumber(key); }

}  // namespace

std::string sampleKey(std::int32_t resultId) { return "-" + integerText(resultId); }

LogicalTable::LogicalTable(PageContext& page, std::shared_ptr<Grid> grid)
    : page_(page), grid_(std::move(grid)) {}

void LogicalTable::makeObjects() {
  m_oRange = grid().NewRange();
  m_oStyle = grid().NewStyle();
  m_oGridData = &grid().GridParam().GetData();
}

void LogicalTable::Init(const std::shared_ptr<GridLayout>& layout) {
  page_.frame.procedure("Init", [&] {
    if (!grid_) raiseBadParameter("Grid is invalid.");
    if (!layout) raiseBadParameter("ColumnSet is invalid.");
    UpdateLock lock(*grid_);
    WriteAccess access(*grid_);
    for (const auto& column : layout->Columns) {
      const std::string& key = column->Key;
      HideCols(column->ColumnOrder, column->ColumnOrder, !column->IsVisible);
      SetCellText(key, 0, column->Header.get());
      SetCellToolTip(key, 0, column->ToolTip.get());
      SetCellUserAttribute(key, 0, key);
    }
    SetLockedCol(LockedCol());
    access.restore();
    lock.restore();
  });
}

std::shared_ptr<GridLayout> LogicalTable::ColumnSet(std::string_view key) const {
  return page_.frame.procedure("ColumnSet", [&] {
    return keyNumber(key) < 0 ? page_.analysis().SampleGrid : page_.analysis().BinGrid;
  });
}

// Without a frame of its own: a key that no set holds raises to the caller.
std::int32_t LogicalTable::Col(std::string_view key) const {
  return ColumnSet(key)->Columns.Item(key)->ColumnOrder;
}

std::string LogicalTable::Key(std::int32_t col) const {
  return page_.frame.procedure("Key", [&]() -> std::string {
    std::int32_t row = 0;
    std::int32_t column = col;
    Translate(row, column);
    std::string key = grid().GetUserAttribute(row, column);
    return isNumeric(key) ? key : "0";
  });
}

std::int32_t LogicalTable::Bin(std::int32_t row) const {
  return page_.frame.procedure("Bin (Get)", [&] {
    std::int32_t physicalRow = row;
    std::int32_t physicalCol = 0;
    Translate(physicalRow, physicalCol);
    return toLong(grid().GetUserAttribute(physicalRow, physicalCol));
  });
}

void LogicalTable::SetBin(std::int32_t row, std::int32_t bin) {
  page_.frame.procedure("Bin (Let)", [&] {
    std::int32_t physicalRow = row;
    std::int32_t physicalCol = 0;
    Translate(physicalRow, physicalCol);
    grid().SetUserAttribute(physicalRow, physicalCol, integerText(bin));
  });
}

void LogicalTable::Translate(std::int32_t& row, std::int32_t& col) const {
  if (m_bTransposed) std::swap(row, col);
}

std::int32_t LogicalTable::NumCols() const {
  return page_.frame.procedure("NumCols (Get)",
                               [&] { return m_bTransposed ? grid().RowCount() : grid().ColCount(); });
}

void LogicalTable::SetNumCols(std::int32_t count) {
  page_.frame.procedure("NumCols (Let)",
                        [&] { m_bTransposed ? grid().SetRowCount(count) : grid().SetColCount(count); });
}

std::int32_t LogicalTable::NumRows() const {
  return page_.frame.procedure("NumRows (Get)",
                               [&] { return m_bTransposed ? grid().ColCount() : grid().RowCount(); });
}

void LogicalTable::SetNumRows(std::int32_t count) {
  page_.frame.procedure("NumRows (Let)",
                        [&] { m_bTransposed ? grid().SetColCount(count) : grid().SetRowCount(count); });
}

std::shared_ptr<GridColumn> LogicalTable::columnAt(std::int32_t col) const {
  const std::string key = Key(col);
  return ColumnSet(key)->Columns.Item(key);
}

std::string LogicalTable::CurrentCellText(std::string_view key, std::int32_t index) {
  return page_.frame.procedure("CurrentCellText (Get)", [&] {
    std::int32_t row = index;
    std::int32_t col = Col(key);
    Translate(row, col);
    grid().SetCurrentCell(row, col);
    return grid().GetCurrentCellText(row, col);
  });
}

std::string LogicalTable::CellText(std::string_view key, std::int32_t index) const {
  return page_.frame.procedure("CellText (Get)", [&] {
    std::int32_t row = index;
    std::int32_t col = Col(key);
    Translate(row, col);
    return grid().GetValue(row, col);
  });
}

void LogicalTable::SetCellText(std::string_view key, std::int32_t index, std::string_view text) {
  page_.frame.procedure("CellText (Let)", [&] {
    const std::int32_t col = Col(key);
    WriteAccess access(grid());
    putText(index, col, text);
    access.restore();
  });
}

void LogicalTable::SetCellToolTip(std::string_view key, std::int32_t index, std::string_view text) {
  page_.frame.procedure("CellToolTip (Let)", [&] {
    std::int32_t row = index;
    std::int32_t col = Col(key);
    Translate(row, col);
    grid().SetToolTip(row, col, text);
  });
}

std::string LogicalTable::CellUserAttribute(std::string_view key, std::int32_t index) const {
  return page_.frame.procedure("CellUserAttribute (Get)", [&] {
    std::int32_t row = index;
    std::int32_t col = Col(key);
    Translate(row, col);
    return grid().GetUserAttribute(row, col);
  });
}

void LogicalTable::SetCellUserAttribute(std::string_view key, std::int32_t index, std::string_view text) {
  page_.frame.procedure("CellUserAttribute (Let)", [&] {
    std::int32_t row = index;
    std::int32_t col = Col(key);
    Translate(row, col);
    grid().SetUserAttribute(row, col, text);
  });
}

void LogicalTable::InitRange(GridRange& range, std::int32_t startCol, std::int32_t startRow,
                             std::int32_t endCol, std::int32_t endRow) const {
  page_.frame.procedure("InitRange", [&] {
    if (m_bTransposed) {
      range.InitRange(startRow, startCol, endRow, endCol);
    } else {
      range.InitRange(startCol, startRow, endCol, endRow);
    }
  });
}

// Does not translate: the range comes from InitRange, or is meant physically.
bool LogicalTable::SetStyleRange(const GridRange& range, const GridStyle& style, StyleMode mode) {
  return page_.frame.procedure("SetStyleRange", [&] {
    WriteAccess access(grid());
    const bool done = grid().SetStyleRange(range, style, mode);
    access.restore();
    return done;
  });
}

bool LogicalTable::StoreStyleRowCol(std::int32_t row, std::int32_t col, const GridStyle& style,
                                    StyleMode mode, std::int32_t type) {
  return page_.frame.procedure("StoreStyleRowCol", [&] {
    std::int32_t physicalRow = row;
    std::int32_t physicalCol = col;
    Translate(physicalRow, physicalCol);
    return data().StoreStyleRowCol(physicalRow, physicalCol, style, mode, type);
  });
}

std::vector<std::int32_t> LogicalTable::binsOfRows() const {
  const std::int32_t rows = NumRows();
  return page_.frame.procedure("Bin (Get)", [&] {
    std::vector<std::int32_t> bins;
    bins.reserve(static_cast<std::size_t>(rows));
    grid().VisitUserAttributes(m_bTransposed ? Axis::Rows : Axis::Columns, 0, 1, rows,
                               [&](std::int32_t, std::string_view text) { bins.push_back(toLong(text)); });
    return bins;
  });
}

void LogicalTable::putText(std::int32_t row, std::int32_t col, std::string_view text) {
  Translate(row, col);
  grid().SetValueRange(row, col, text, kValueRangeMode);
}

void LogicalTable::writeCell(std::int32_t row, std::int32_t col, std::string_view text) {
  page_.frame.procedure("CellText (Let)", [&] { putText(row, col, text); });
}

void LogicalTable::writeRow(std::int32_t row, std::span<const LineCell> cells) {
  LineStep step = LineStep::Value;
  try {
    WriteAccess access(grid());
    grid().StoreLine(m_bTransposed ? Axis::Columns : Axis::Rows, row, cells, step);
    access.restore();
  } catch (...) {
    page_.frame.reportAndRaise(step == LineStep::Style ? "StoreStyleRowCol" : "CellText (Let)");
  }
}

}  // namespace banddesk
