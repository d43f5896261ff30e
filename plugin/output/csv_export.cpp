#include "plugin/output/csv_export.h"

namespace banddesk {

void CsvExport::ExportCSV(const std::string& fileName) {
  page_.frame.procedure("ExportCSV", [&] {
    Grid& grid = table_.grid();
    labels_.SetSampleAbbreviations(true, false);
    fill_.AddParameters(kToGridPlain);
    const std::int32_t topRow = grid.TopRow();
    const std::int32_t leftCol = grid.LeftCol();
    const std::int32_t number = page_.platform().Files().FreeFile();
    files_.closingOnFailure(number, [&] {
      if (writeFile(fileName, number)) page_.progress().Finish();
      // The current cell went over the whole grid.
      grid.SetLeftCol(leftCol);
      grid.SetTopRow(topRow);
      fill_.RemoveParameters();
      labels_.SetSampleAbbreviations(table_.m_bTransposed, true);
    });
  });
}

// False if the user gave up on a file that another program holds; the file is then left as it is.
bool CsvExport::writeFile(const std::string& fileName, std::int32_t number) {
  ui::TextFiles& files = page_.platform().Files();
  if (!files_.attempt(fileName, [&] { files.OpenForOutput(fileName, number); })) return false;
  Grid& grid = table_.grid();
  const std::int32_t firstRow = grid.ColHeadersVisible() ? 0 : 1;
  const std::int32_t firstCol = grid.RowHeadersVisible() ? 0 : 1;
  const std::int32_t lastRow = grid.RowCount();
  Progress& progress = page_.progress();
  progress.Start(100.0, 0);
  progress.SetSteps(lastRow);
  for (std::int32_t row = firstRow; row <= lastRow; ++row) {
    if (!grid.IsRowHidden(row) && !writeRow(fileName, number, row, firstCol)) return false;
    progress.Step();
  }
  return files_.attempt(fileName, [&] { files.Close(number); });
}

// Parameter lines are written over hidden columns too, as empty fields.
bool CsvExport::writeRow(const std::string& fileName, std::int32_t number, std::int32_t row,
                         std::int32_t firstCol) {
  Grid& grid = table_.grid();
  const bool visibleOnly = row <= fill_.m_lParameterRow;
  line_.clear();
  const std::int32_t lastCol =
      grid.AppendTexts(Axis::Rows, row, firstCol, grid.ColCount(), visibleOnly, "\"", "\",", line_);
  if (lastCol >= 0) grid.SetCurrentCell(row, lastCol);
  if (!line_.empty()) line_.pop_back();
  return files_.attempt(fileName, [&] { page_.platform().Files().Print(number, line_); });
}

}  // namespace banddesk
