// The three popup menus of the grid: for a cell, a column header and a row.
#pragma once

#include "plugin/ui/menu.h"

namespace banddesk {

// The output items that stand at the end of each menu.
struct OutputItems {
  explicit OutputItems(const std::string& number);
  ui::MenuItem mnuCopy;
  ui::MenuItem mnuExport;
  ui::MenuItem mnuPrint;
  ui::MenuItem mnuPrintBW;
  ui::MenuItem mnuPrintColor;
};

class PageMenus {
 public:
  PageMenus();

  ui::MenuItem mnuCell{"mnuCell", ""};
  ui::MenuItem mnuSingleCell{"mnuSingleCell", "Show Single &Result..."};
  ui::MenuItem mnuEgramCell{"mnuEgramCell", "Show Stacked &Graph..."};
  ui::MenuItem mnuOverlayCell{"mnuOverlayCell", "Show &Overlay Graph..."};
  ui::MenuItem mnuTransposeCell{"mnuTransposeCell", "&Transpose"};
  ui::MenuItem mnuFormatCell{"mnuFormatCell", "&Format Cells..."};
  OutputItems output1{"1"};

  ui::MenuItem mnuColumn{"mnuColumn", ""};
  ui::MenuItem mnuSortColumn{"mnuSortColumn", "Sort Column"};
  ui::MenuItem mnuExcludeColumn{"mnuExcludeColumn", "&Exclude Column"};
  ui::MenuItem mnuLockColumn{"mnuLockColumn", "&Lock Column"};
  ui::MenuItem mnuSortColumns{"mnuSortColumns", "&Sort Columns..."};
  ui::MenuItem mnuSelectColumns{"mnuSelectColumns", "Select &Columns..."};
  ui::MenuItem mnuSingleColumn{"mnuSingleColumn", "Show Single &Result..."};
  ui::MenuItem mnuEgramColumn{"mnuEgramColumn", "Show Stacked &Graph..."};
  ui::MenuItem mnuOverlayColumn{"mnuOverlayColumn", "Show &Overlay Graph..."};
  ui::MenuItem mnuTransposeColumn{"mnuTransposeColumn", "&Transpose"};
  ui::MenuItem mnuFormatColumn{"mnuFormatColumn", "&Format Cells..."};
  OutputItems output2{"2"};

  ui::MenuItem mnuRow{"mnuRow", ""};
  ui::MenuItem mnuSortBin{"mnuSortBin", "Sort Bin"};
  ui::MenuItem mnuExcludeBin{"mnuExcludeBin", "&Exclude Bin"};
  ui::MenuItem mnuTransposeRow{"mnuTransposeRow", "&Transpose"};
  ui::MenuItem mnuFormatRow{"mnuFormatRow", "&Format Cells..."};
  OutputItems output3{"3"};

  void addTo(ui::ControlSet& controls);
};

}  // namespace banddesk
