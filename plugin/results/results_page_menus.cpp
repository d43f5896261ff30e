// The items of the three popup menus. Most only name the operation that they stand for.
#include "plugin/results/results_page.h"

namespace banddesk {

void AFLPResultsPage::mnuSortColumns_Click() {
  page_.frame.handler("mnuSortColumns_Click", [&] {
    page_.services.Application().PageManager().OpenPage("ColumnSort", page_.analysis().BinGrid,
                                                        page_.m_oPageBase.get(), true, true, true, true, true,
                                                        true, nullptr, false, 0);
  });
}

// Its return arrives at m_oPageBase_OnExit, which changes the meanings of visible and excluded back.
void AFLPResultsPage::mnuSelectColumns_Click() {
  page_.frame.handler("mnuSelectColumns_Click", [&] {
    byHand_.SwapVisibleExcluded(false);
    const auto layout = table_.ColumnSet(table_.Key(table_.m_lMenuCol));
    page_.services.Application().PageManager().OpenPage("ColumnSelector", layout, page_.m_oPageBase.get(),
                                                        true, true, true, true, true, true, nullptr, false,
                                                        0);
  });
}

void AFLPResultsPage::mnuTransposeCell_Click() {
  page_.frame.handler("mnuTransposeCell_Click", [&] { transposition_.flipSampleAxis(); });
}

void AFLPResultsPage::mnuTransposeColumn_Click() {
  page_.frame.handler("mnuTransposeColumn_Click", [&] { transposition_.flipSampleAxis(); });
}

void AFLPResultsPage::mnuTransposeRow_Click() {
  page_.frame.handler("mnuTransposeRow_Click", [&] { transposition_.flipSampleAxis(); });
}

void AFLPResultsPage::mnuFormatCell_Click() {
  page_.frame.handler("mnuFormatCell_Click", [&] { styles_.FormatStyles(); });
}

void AFLPResultsPage::mnuFormatColumn_Click() {
  page_.frame.handler("mnuFormatColumn_Click", [&] { styles_.FormatStyles(); });
}

void AFLPResultsPage::mnuFormatRow_Click() {
  page_.frame.handler("mnuFormatRow_Click", [&] { styles_.FormatStyles(); });
}

void AFLPResultsPage::mnuSingleCell_Click() {
  page_.frame.handler("mnuSingleCell_Click", [&] { views_.SingleResult(); });
}

void AFLPResultsPage::mnuSingleColumn_Click() {
  page_.frame.handler("mnuSingleColumn_Click", [&] { views_.SingleResult(); });
}

void AFLPResultsPage::mnuEgramCell_Click() {
  page_.frame.handler("mnuEgramCell_Click", [&] { views_.EgramView(false); });
}

void AFLPResultsPage::mnuEgramColumn_Click() {
  page_.frame.handler("mnuEgramColumn_Click", [&] { views_.EgramView(false); });
}

void AFLPResultsPage::mnuOverlayCell_Click() {
  page_.frame.handler("mnuOverlayCell_Click", [&] { views_.EgramView(true); });
}

void AFLPResultsPage::mnuOverlayColumn_Click() {
  page_.frame.handler("mnuOverlayColumn_Click", [&] { views_.EgramView(true); });
}

void AFLPResultsPage::mnuCopy1_Click() {
  page_.frame.handler("mnuCopy1_Click", [&] { CopyGrid(); });
}

void AFLPResultsPage::mnuCopy2_Click() {
  page_.frame.handler("mnuCopy2_Click", [&] { CopyGrid(); });
}

void AFLPResultsPage::mnuCopy3_Click() {
  page_.frame.handler("mnuCopy3_Click", [&] { CopyGrid(); });
}

void AFLPResultsPage::mnuExport1_Click() {
  page_.frame.handler("mnuExport1_Click", [&] { Export(); });
}

void AFLPResultsPage::mnuExport2_Click() {
  page_.frame.handler("mnuExport2_Click", [&] { Export(); });
}

void AFLPResultsPage::mnuExport3_Click() {
  page_.frame.handler("mnuExport3_Click", [&] { Export(); });
}

void AFLPResultsPage::mnuPrintBW1_Click() {
  page_.frame.handler("mnuPrintBW1_Click", [&] { PrintGrid(false); });
}

void AFLPResultsPage::mnuPrintBW2_Click() {
  page_.frame.handler("mnuPrintBW2_Click", [&] { PrintGrid(false); });
}

void AFLPResultsPage::mnuPrintBW3_Click() {
  page_.frame.handler("mnuPrintBW3_Click", [&] { PrintGrid(false); });
}

void AFLPResultsPage::mnuPrintColor1_Click() {
  page_.frame.handler("mnuPrintColor1_Click", [&] { PrintGrid(true); });
}

void AFLPResultsPage::mnuPrintColor2_Click() {
  page_.frame.handler("mnuPrintColor2_Click", [&] { PrintGrid(true); });
}

void AFLPResultsPage::mnuPrintColor3_Click() {
  page_.frame.handler("mnuPrintColor3_Click", [&] { PrintGrid(true); });
}

}  // namespace banddesk
