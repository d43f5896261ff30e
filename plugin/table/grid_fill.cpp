#include "plugin/table/grid_fill.h"

#include "plugin/base/numbers.h"
#include "plugin/base/text.h"
#include "plugin/table/page_guards.h"

namespace banddesk {
namespace {

constexpr Colour kLineWhite = 0xFFFFFF;
constexpr std::int32_t kCellStyle = 1;
constexpr std::int32_t kLeft = 0;

std::string plainCaption(const std::string& caption) { return replaceAll(caption, "&", ""); }

}  // namespace

void GridFill::InitGrid() {
  page_.frame.procedure("InitGrid", [&] {
    Grid& grid = table_.grid();
    grid.SetLockReadOnly(true);
    grid.SetAllowDragCols(true);
    grid.SetAllowDragRows(false);
    page_.services.GridUtilities().Prepare(grid, 0);
    grid.SetGridEnabledRedraw(true);
    table_.Init(page_.analysis().BinGrid);
    table_.SetNumCols(table_.m_lFirstSampleCol - 1);
    grid.SetRowHeadersVisible(false);
  });
}

// The lines run along physical rows, also while the table is transposed.
void GridFill::AddLine(const std::string& text, std::int32_t target, Colour colour) {
  page_.frame.procedure("AddLine", [&] {
    if (target > 0) {
      page_.platform().Files().Print(static_cast<std::int16_t>(target), "\"" + text);
      return;
    }
    Grid& grid = table_.grid();
    WriteAccess access(grid);
    const std::int32_t row = grid.RowCount() + 1;
    grid.SetRowCount(row);
    const std::int32_t last = grid.ColCount();
    const std::int32_t first = grid.RowHeadersVisible() ? 0 : 1;
    if (target == kToGridMerged) grid.SetCoveredCells(row, first, row, last);
    table_.range().InitRange(first, row, last, row);
    GridStyle& style = table_.style();
    style.Free();
    style.SetInterior(kLineWhite);
    style.SetHorizontalAlignment(kLeft);
    table_.SetStyleRange(table_.range(), style, StyleMode::Override);
    style.SetValue(text);
    style.SetInterior(colour);
    table_.data().StoreStyleRowCol(row, first, style, StyleMode::Override, kCellStyle);
    access.restore();
  });
}

std::string GridFill::dyesText() const {
  std::string text;
  for (std::int32_t dye = 0; dye < kDyeCount; ++dye) {
    if (controls_.dyeValue(dye) != ui::kChecked) continue;
    if (!text.empty()) text += ", ";
    text += "D" + integerText(dye + 1);
  }
  return text;
}

std::string GridFill::optionText() const {
  std::string option;
  for (const ui::OptionButton& button : controls_.optSampleBin) {
    if (button.Value) option = button.Caption;
  }
  return plainCaption(option);
}

// The parameter lines as they stand in the boxes now, each read when it is added.
bool GridFill::eachParameter(const std::function<bool(const std::string& line)>& add) const {
  const bool areAdded = add("Name: " + page_.analysis().Name.get()) &&
                        add("Study: " + page_.study().Name.get()) &&
                        add("Max Bin Width: " + controls_.txtMaxBinWidth.Text.get()) &&
                        add("Y Threshold: " + controls_.txtYThreshold.Text.get()) &&
                        add("Dyes: " + dyesText()) && add(optionText());
  if (!areAdded) return false;
  for (const ui::CheckBox* box :
       {&controls_.chkExcludeFullBins, &controls_.chkExcludeEmptySamples, &controls_.chkShowExcluded}) {
    if (box->Value == ui::kChecked && !add(plainCaption(box->Caption))) return false;
  }
  return true;
}

bool GridFill::AddParameters(std::int32_t target, const LineWriter& writer) {
  return page_.frame.procedure("AddParameters", [&] {
    m_lParameterRow = table_.grid().RowCount();
    if (target < 0) AddLine("", target, kLineWhite);
    return eachParameter([&](const std::string& line) {
      const auto write = [&] { AddLine(line, target, kLineWhite); };
      if (writer) return writer(write);
      write();
      return true;
    });
  });
}

void GridFill::RemoveParameters() {
  page_.frame.procedure("RemoveParameters", [&] {
    WriteAccess access(table_.grid());
    table_.grid().SetRowCount(m_lParameterRow);
    m_lParameterRow = 0;
    access.restore();
  });
}

// The number counts all columns in the order of their adding, also those that are not listed.
void GridFill::AddResults(std::int32_t target) {
  page_.frame.procedure("AddResults", [&] {
    AddLine("", target, kLineWhite);
    std::int32_t number = 0;
    for (const auto& column : page_.analysis().SampleGrid->Columns) {
      ++number;
      if (controls_.chkShowExcluded.Value != ui::kChecked && table_.IsColHidden(column->ColumnOrder))
        continue;
      const bool grey = column->IsExcluded || column->IsAutoExcluded;
      AddLine(integerText(number) + "-" + labels_.ParseText(column->ToolTip.get()), target,
              grey ? kExcludedGrey : kLineWhite);
    }
  });
}

}  // namespace banddesk
