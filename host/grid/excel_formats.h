// The looks of a grid's cells as formats of a spreadsheet file, each made once, and which texts a spreadsheet
// may hold as numbers.
#pragma once

#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <xlsxwriter.h>

#include "plugin/results/grid_addressing.h"

namespace banddesk::host {

struct ExcelNumber {
  double value = 0;
  int decimals = 0;  // to be shown, so that "1.50" does not become "1.5"
};

// The number that a cell's text stands for, if the spreadsheet can show exactly that text from it. A text
// that would lose a zero, a sign, a blank or a digit stays a text.
std::optional<ExcelNumber> excelNumber(std::string_view text);

class ExcelFormats {
 public:
  explicit ExcelFormats(lxw_workbook* workbook) : workbook_(workbook) {}

  // The look must stay where it is as long as this object is used.
  lxw_format* format(const StyleAttributes& look, int decimals);
  // Whether an empty cell of that look shows anything.
  static bool showsEmpty(const StyleAttributes& look);

 private:
  using Key = std::pair<const StyleAttributes*, int>;
  lxw_format* make(const StyleAttributes& look, int decimals);

  lxw_workbook* workbook_;
  std::map<Key, lxw_format*> formats_;
  Key lastKey_{nullptr, 0};
  lxw_format* last_ = nullptr;
};

}  // namespace banddesk::host
