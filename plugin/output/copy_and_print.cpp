#include "plugin/output/copy_and_print.h"

#include "plugin/table/page_guards.h"

namespace banddesk {
namespace {

constexpr double kTitlePoints = 14;

}  // namespace

void CopyAndPrint::removeHiddenRows(std::int32_t last) {
  Grid& grid = table_.grid();
  for (std::int32_t row = grid.RowCount(); row >= last; --row) {
    if (grid.IsRowHidden(row)) grid.RemoveRows(row, row);
  }
}

void CopyAndPrint::removeHiddenColumns() {
  Grid& grid = table_.grid();
  for (std::int32_t col = grid.ColCount(); col >= 1; --col) {
    if (grid.IsColHidden(col)) grid.RemoveCols(col, col);
  }
}

// From the layouts, as if the page had just opened.
void CopyAndPrint::rebuildTable() {
  const AFLP& analysis = page_.analysis();
  table_.SetNumCols(0);
  table_.SetNumRows(0);
  table_.Init(analysis.BinGrid);
  table_.SetNumCols(table_.m_lFirstSampleCol - 1);
  labels_.SetSampleAbbreviations(table_.m_bTransposed, true);
  table_.Init(analysis.SampleGrid);
  table_.SetNumCols(table_.m_lFirstSampleCol + analysis.SampleGrid->Columns.Count() - 1);
  analysis_.Analyze(true);
}

void CopyAndPrint::CopyGrid() {
  page_.frame.procedure("CopyGrid", [&] {
    Grid& grid = table_.grid();
    UpdateLock lock(grid);
    WriteAccess access(grid);
    labels_.SetSampleAbbreviations(true, false);
    // The copy takes whatever the grid holds.
    removeHiddenRows(1);
    removeHiddenColumns();
    fill_.AddParameters(kToGridMerged);
    table_.InitRange(table_.range(), 1, 0, table_.NumCols(), table_.NumRows());
    grid.CopyCells(table_.range());
    fill_.RemoveParameters();
    rebuildTable();
    access.restore();
    lock.restore();
  });
}

void CopyAndPrint::PrintGrid(bool color) {
  page_.frame.procedure("PrintGrid", [&] {
    Grid& grid = table_.grid();
    UpdateLock lock(grid);
    labels_.SetSampleAbbreviations(table_.m_bTransposed, !table_.m_bTransposed);
    grid.PrintParam().SetBlackWhite(!color);
    const auto font = grid.PrintFont();
    required(font, "Font").SetSize(kTitlePoints);
    GridStyle& style = table_.style();
    style.Free();
    style.SetValue("Study - " + page_.study().Name.get());
    grid.SetPrintFooterCell(1.0, 2.0, style);
    style.SetValue(required(page_.m_oPageBase, "PageBase").Caption());
    style.SetFont(*font, 2);
    grid.SetPrintHeaderCell(1.0, 2.0, style);
    fill_.AddParameters(kToGridMerged);
    if (!table_.m_bTransposed) fill_.AddResults(kToGridMerged);
    grid.PrintGrid();
    fill_.RemoveParameters();
    labels_.SetSampleAbbreviations(table_.m_bTransposed, true);
    analysis_.Analyze(true);
    lock.restore();
  });
}

// Hidden rows leave the grid for good, hidden columns stay in it.
void CopyAndPrint::ExportExcel(const std::string& fileName) {
  page_.frame.procedure("ExportExcel", [&] {
    Grid& grid = table_.grid();
    labels_.SetSampleAbbreviations(true, false);
    removeHiddenRows(0);
    grid.InsertRows(0, 1);
    fill_.AddParameters(kToGridMerged);
    const bool rowHeaders = grid.RowHeadersVisible();
    const bool colHeaders = grid.ColHeadersVisible();
    grid.SetRowHeadersVisible(true);
    grid.SetColHeadersVisible(true);
    grid.SaveExcelFile(fileName);
    grid.SetRowHeadersVisible(rowHeaders);
    grid.SetColHeadersVisible(colHeaders);
    fill_.RemoveParameters();
    labels_.SetSampleAbbreviations(table_.m_bTransposed, true);
    if (table_.m_bTransposed) {
      rebuildTable();  // hidden rows were columns of the table: only a rebuild brings them back
    } else {
      table_.Init(page_.analysis().BinGrid);
      analysis_.Analyze(true);
    }
  });
}

}  // namespace banddesk
