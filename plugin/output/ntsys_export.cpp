#include "plugin/output/ntsys_export.h"

#include <algorithm>
#include <unordered_map>

#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk {
namespace {

// Entries are separated by single blanks, with none at the end of the line.
void dropLast(std::string& line) {
  if (!line.empty()) line.pop_back();
}

}  // namespace

void NtsysExport::ExportNTSYSpc(const std::string& fileName) {
  page_.frame.procedure("ExportNTSYSpc", [&] {
    const std::int32_t number = page_.platform().Files().FreeFile();
    files_.closingOnFailure(number, [&] {
      if (writeFile(fileName, number)) page_.progress().Finish();
    });
  });
}

// False if the user gave up on a file that another program holds. No grid row was added, so there is nothing
// to restore.
bool NtsysExport::writeFile(const std::string& fileName, std::int32_t number) {
  ui::TextFiles& files = page_.platform().Files();
  if (!files_.attempt(fileName, [&] { files.OpenForOutput(fileName, number); })) return false;
  if (!writeHead(fileName, number) || !writeMatrix(fileName, number)) return false;
  fill_.RemoveParameters();
  return files_.attempt(fileName, [&] { files.Close(number); });
}

bool NtsysExport::print(const std::string& fileName, std::int32_t number, const std::string& line) const {
  return files_.attempt(fileName, [&] { page_.platform().Files().Print(number, line); });
}

// A retry repeats only the line that failed.
bool NtsysExport::writeHead(const std::string& fileName, std::int32_t number) {
  const auto retried = [&](const std::function<void()>& write) { return files_.attempt(fileName, write); };
  if (!fill_.AddParameters(number, retried)) return false;
  return print(
      fileName, number,
      "1 " + integerText(files_.VisibleBinCount()) + "L " + integerText(files_.VisibleSampleCount()) + "L 0");
}

bool NtsysExport::writeMatrix(const std::string& fileName, std::int32_t number) {
  Progress& progress = page_.progress();
  const std::int32_t rows = table_.NumRows();
  progress.Start(100.0, 0);
  progress.SetSteps(rows);
  if (!print(fileName, number, binLabels())) return false;
  const auto samples = visibleSamples();
  std::int32_t largest = 0;
  for (const SampleColumn& sample : samples) largest = std::max(largest, sample.resultIndex);
  for (std::int32_t row = 0; row <= rows; ++row) {
    if (!table_.IsRowHidden(row)) {
      const std::string line = row == 0 ? sampleLabels(samples) : matrixLine(row, samples, largest);
      if (!print(fileName, number, line)) return false;
    }
    progress.Step();
  }
  return true;
}

std::string NtsysExport::binLabels() {
  std::string line;
  for (std::int32_t row = 1; row <= table_.NumRows(); ++row) {
    if (!table_.IsRowHidden(row)) line.append(table_.CurrentCellText(kBinNumberKey, row)).append(" ");
  }
  dropLast(line);
  return line;
}

// A column's place in the order of adding is its index into the lines of the analysis; a column that no
// sample stands in reads those of the first.
std::vector<NtsysExport::SampleColumn> NtsysExport::visibleSamples() const {
  std::unordered_map<std::int32_t, std::int32_t> indexOfCol;
  std::int32_t index = 0;
  for (const auto& column : page_.analysis().SampleGrid->Columns) indexOfCol[column->ColumnOrder] = index++;
  std::vector<SampleColumn> samples;
  for (std::int32_t col = table_.m_lFirstSampleCol; col <= table_.NumCols(); ++col) {
    if (table_.IsColHidden(col)) continue;
    const auto found = indexOfCol.find(col);
    samples.push_back({col, found == indexOfCol.end() ? 0 : found->second});
  }
  return samples;
}

std::string NtsysExport::sampleLabels(const std::vector<SampleColumn>& samples) const {
  std::string line;
  for (const SampleColumn& sample : samples) {
    const std::string resultKey = generalText(-leadingNumber(table_.Key(sample.col)));
    const auto& result = page_.analysis().Results.Item(resultKey);
    line.append(files_.FilterText(required(result->Sample, "Sample").Name.get())).append(" ");
  }
  dropLast(line);
  return line;
}

std::string NtsysExport::matrixLine(std::int32_t row, const std::vector<SampleColumn>& samples,
                                    std::int32_t largest) const {
  const auto counts = std::as_const(bins_).fragmentCounts(table_.Bin(row));
  std::string line(samples.size() * 2, ' ');
  char* next = line.data();
  if (!samples.empty()) bins_.resultAt(largest);
  for (const SampleColumn& sample : samples) {
    *next = static_cast<char>('0' + (counts[static_cast<std::size_t>(sample.resultIndex)] != 0 ? 1 : 0));
    next += 2;
  }
  dropLast(line);
  return line;
}

}  // namespace banddesk
