#include "plugin/table/page_menus.h"

namespace banddesk {
namespace {

constexpr ui::MenuItem* kLine = nullptr;

void add(ui::ControlSet& controls, ui::MenuItem& menu) {
  controls.add(menu);
  for (ui::MenuItem* item : menu.items()) {
    if (item != nullptr) add(controls, *item);
  }
}

}  // namespace

OutputItems::OutputItems(const std::string& number)
    : mnuCopy("mnuCopy" + number, "Copy Grid"),
      mnuExport("mnuExport" + number, "Export Grid..."),
      mnuPrint("mnuPrint" + number, "&Print Grid..."),
      mnuPrintBW("mnuPrintBW" + number, "Black && White"),
      mnuPrintColor("mnuPrintColor" + number, "Color/Grayscale") {
  mnuPrint.setItems({&mnuPrintBW, &mnuPrintColor});
}

PageMenus::PageMenus() {
  mnuCell.setItems({&mnuSingleCell, &mnuEgramCell, &mnuOverlayCell, kLine, &mnuTransposeCell, &mnuFormatCell,
                    kLine, &output1.mnuCopy, &output1.mnuExport, &output1.mnuPrint});
  mnuColumn.setItems({&mnuSortColumn, &mnuExcludeColumn, &mnuLockColumn, kLine, &mnuSortColumns,
                      &mnuSelectColumns, kLine, &mnuSingleColumn, &mnuEgramColumn, &mnuOverlayColumn, kLine,
                      &mnuTransposeColumn, &mnuFormatColumn, kLine, &output2.mnuCopy, &output2.mnuExport,
                      &output2.mnuPrint});
  mnuRow.setItems({&mnuSortBin, &mnuExcludeBin, kLine, &mnuTransposeRow, &mnuFormatRow, kLine,
                   &output3.mnuCopy, &output3.mnuExport, &output3.mnuPrint});
}

void PageMenus::addTo(ui::ControlSet& controls) {
  add(controls, mnuCell);
  add(controls, mnuColumn);
  add(controls, mnuRow);
}

}  // namespace banddesk
