// The names under which each procedure reports a failure on its way to the caller, the innermost first.
#include <gtest/gtest.h>

#include "tests/plugin/failure_roads.h"

namespace banddesk::test {
namespace {

struct Chain {
  const char *type, *member;  // what fails
  std::function<void(Desk&)> act;
  const char* procedures;
};

IAFLPResultsPage& page(Desk& desk) { return desk.page(); }
std::shared_ptr<AFLP> analysis(Desk& desk) { return desk.host.study().Study()->AFLPs.Item(1); }
std::function<void(Desk&)> command(const char* name) {
  return [name](Desk& desk) { desk.host.runCommand(desk.host.tree().children().front().item, name); };
}
std::vector<Chain> hostChains() {
  return {
      {"StudyService", "IsStudyOpen", [](Desk& d) { d.host.service().NewAFLP(); },
       "MGlobals.IsStudyOpen (Get)|AFLPService.NewAFLP|"},
      {"StudyService", "Study", [](Desk& d) { d.host.service().AFLPs(); },
       "AFLPExplorerFolder.AFLPs (Get)|AFLPService.AFLPs (Get)|"},
      {"StudyService", "CheckAnalysis", [](Desk& d) { d.host.service().OpenAFLP(analysis(d)); },
       "AFLPExplorerFolder.OpenAFLP|AFLPService.OpenAFLP|"},
      {"StudyService", "CheckAnalysis", command("OpenAFLP"),
       "AFLPExplorerFolder.OpenAFLP|AFLPExplorerItem.OpenAFLP|"},
      {"ExplorerTree", "BeginRename", [](Desk& d) { d.host.service().RenameAFLP(analysis(d)); },
       "AFLPExplorerFolder.RenameAFLP|AFLPService.RenameAFLP|"},
      {"ExplorerTree", "BeginRename", command("RenameAFLP"),
       "AFLPExplorerFolder.RenameAFLP|AFLPExplorerItem.RenameAFLP|"},
      {"ExplorerTree", "RemoveItem", [](Desk& d) { d.host.service().DeleteAFLP(analysis(d)); },
       "AFLPExplorerFolder.DeleteAFLP|AFLPService.DeleteAFLP|"},
      {"ExplorerTree", "RemoveItem", command("DeleteAFLP"),
       "AFLPExplorerFolder.DeleteAFLP|AFLPExplorerItem.DeleteAFLP|"},
      {"ReportingService", "NewReport", command("NewReport"), "AFLPExplorerItem.NewReport|"},
      {"AFLP", "ReportFinished", command("NewReport"),
       "AFLPService.m_oReportingService_ReportFinished|AFLPExplorerItem.NewReport|"},
      {"ObjectManager", "Query", [](Desk& d) { d.host.service().NewAFLP(); },
       "AFLPExplorerFolder.GenerateNewAFLPName|AFLPExplorerFolder.NewAFLP|AFLPService.NewAFLP|"},
      {"ExplorerItemBase", "Text", [](Desk& d) { d.host.tree().initialize(); },
       "AFLPExplorerFolder.m_oExplorerItemBase_Initialize|"},
      {"Framework", "ItemExists", [](Desk& d) { d.host.reportContexts(); },
       "AFLPService.m_oServiceBase_GetReportContextTypes|"},
      {"StudyService", "Study", [](Desk& d) { d.host.unsaved(); },
       "AFLPExplorerFolder.AFLPs (Get)|AFLPService.AFLPs (Get)|AFLPService.m_oServiceBase_GetUnsavedItems|"},
      {"ObjectManager", "Save", [](Desk& d) { d.host.save(); }, "AFLPService.m_oServiceBase_Save|"},
      {"Study.AFLPs", "Commit", [](Desk& d) { d.host.save(); }, "AFLPService.m_oServiceBase_SaveComplete|"},
      {"Command", "Enabled", [](Desk& d) { d.host.study().StudyClosed.raise(); },
       "AFLPService.m_oStudyService_StudyClosed|"},
      {"Command", "Enabled", [](Desk& d) { d.host.study().StudyOpened.raise(d.host.study().Study()); },
       "AFLPService.m_oStudyService_StudyOpened|"},
      {"StudyService", "Options", [](Desk& d) { d.page().Analyze(true); }, "AFLPResultsPage.Analyze|"},
  };
}

std::vector<Chain> tableChains() {
  return {
      {"Grid", "GetUserAttribute", [](Desk& d) { page(d).Key(1); }, "Key|"},
      {"Grid", "GetUserAttribute", [](Desk& d) { page(d).Bin(1); }, "Bin (Get)|"},
      {"Grid", "SetUserAttribute", [](Desk& d) { page(d).SetBin(1, 1); }, "Bin (Let)|"},
      {"Grid", "ColCount", [](Desk& d) { page(d).NumCols(); }, "NumCols (Get)|"},
      {"Grid", "ColCount", [](Desk& d) { page(d).SetNumCols(12); }, "NumCols (Let)|"},
      {"Grid", "RowCount", [](Desk& d) { page(d).NumRows(); }, "NumRows (Get)|"},
      {"Grid", "RowCount", [](Desk& d) { page(d).SetNumRows(4); }, "NumRows (Let)|"},
      {"Grid", "SetCurrentCell", [](Desk& d) { page(d).CurrentCellText("6", 1); }, "CurrentCellText (Get)|"},
      {"Grid", "GetValue", [](Desk& d) { page(d).CellText("6", 1); }, "CellText (Get)|"},
      {"Grid", "SetValueRange", [](Desk& d) { page(d).SetCellText("6", 1, "x"); }, "CellText (Let)|"},
      {"Grid", "SetToolTip", [](Desk& d) { page(d).SetCellToolTip("6", 1, "x"); }, "CellToolTip (Let)|"},
      {"Grid", "GetUserAttribute", [](Desk& d) { page(d).CellUserAttribute("6", 1); },
       "CellUserAttribute (Get)|"},
      {"Grid", "SetUserAttribute", [](Desk& d) { page(d).SetCellUserAttribute("6", 1, "x"); },
       "CellUserAttribute (Let)|"},
      {"Grid", "SetStyleRange", [](Desk& d) { page(d).SetStyleRange({}, {}, StyleMode::Override); },
       "SetStyleRange|"},
      {"Grid", "StoreStyleRowCol",
       [](Desk& d) { page(d).StoreStyleRowCol(1, 1, {}, StyleMode::Override, 1); }, "StoreStyleRowCol|"},
      {"Grid", "GetRangeList", [](Desk& d) { page(d).GetSelected(1, 1); }, "GetSelected|"},
      {"Grid", "IsColHidden", [](Desk& d) { page(d).IsColHidden(1); }, "IsColHidden|"},
      {"Grid", "IsRowHidden", [](Desk& d) { page(d).VisibleBinCount(); },
       "IsRowHidden|VisibleBinCount (Get)|"},
      {"Grid", "IsColHidden", [](Desk& d) { page(d).VisibleSampleCount(); },
       "IsColHidden|VisibleSampleCount (Get)|"},
      {"Grid", "HideCols", [](Desk& d) { page(d).HideCols(1, 1, true); }, "HideCols|"},
      {"Grid", "HideRows", [](Desk& d) { page(d).HideRows(1, 1, true); }, "HideRows|"},
      {"Grid", "RemoveRows", [](Desk& d) { page(d).RemoveRows(1, 1); }, "RemoveRows|"},
      {"Grid", "HideCols", [](Desk& d) { page(d).Init(d.analysis().BinGrid); }, "HideCols|Init|"},
      {"Grid", "GetUserAttribute", [](Desk& d) { page(d).LockedCol(); }, "Key|LockedCol (Get)|"},
      {"Grid", "FrozenCols", [](Desk& d) { page(d).SetLockedCol(2); }, "SetFrozenCols|LockedCol (Let)|"},
      {"Grid", "UnfreezeCols", [](Desk& d) { page(d).SetLockedCol(0); }, "UnfreezeGridCols|LockedCol (Let)|"},
      {"Grid", "IsRowHidden", [](Desk& d) { page(d).SetTranspose(true); }, "Transpose (Let)|"},
      {"Grid", "ColHeaderStyle", [](Desk& d) { page(d).SetTranspose(true); },
       "TransposeRowColStyles|Transpose (Let)|"},
      {"Grid", "SortColumns", [](Desk& d) { page(d).SortRow(1); }, "SortRow|"},
      {"Grid", "SortRows", [](Desk& d) { page(d).SortCol(1); }, "SortCols|SortCol|"},
      {"Grid", "LockUpdate", [](Desk& d) { page(d).Bins(); }, "Bins|"},
      {"Grid", "IsColHidden", [](Desk& d) { page(d).AFLPStudyResults(); }, "IsColHidden|AFLPStudyResults|"},
      {"Grid", "HideCols", [](Desk& d) { page(d).ExcludeColumn(4, true); }, "HideCols|ExcludeColumn|"},
      {"TextFiles", "FreeFile", [](Desk& d) { page(d).ExportCSV(scratch("t")); }, "ExportCSV|"},
      {"TextFiles", "FreeFile", [](Desk& d) { page(d).ExportNTSYSpc(scratch("t")); }, "ExportNTSYSpc|"},
      {"Grid", "SaveExcelFile", [](Desk& d) { page(d).ExportExcel(scratch("t")); }, "ExportExcel|"},
      {"Grid", "CopyCells", [](Desk& d) { page(d).CopyGrid(); }, "CopyGrid|"},
      {"Grid", "PrintGrid", [](Desk& d) { page(d).PrintGrid(true); }, "PrintGrid|"},
      {"Grid", "SetCoveredCells", [](Desk& d) { page(d).CopyGrid(); }, "AddLine|AddParameters|CopyGrid|"},
  };
}

std::vector<Chain> eventChains() {
  return {
      {"Grid", "ResizeToFit", [](Desk& d) { d.control<ui::CheckBox>("chkShowExcluded").click(), d.wait(); },
       "ResizeColumnSet|ResizeCols|ShowExcluded|ctlTimer_Timer|"},
      {"Grid", "GetRangeList", [](Desk& d) { d.grid().user().rightClick(1, 1); },
       "GetSelected|grdAFLP_OnRButtonClickedRowCol|"},
      {"Grid", "SetStyleRange", [](Desk& d) { d.chooseAt(2, 1, "mnuExcludeBin"); },
       "SetStyleRange|mnuExcludeBin_Click|"},
      {"PageManager", "OpenPage", [](Desk& d) { d.chooseAt(2, 10, "mnuSingleCell"); },
       "OpenSingleResultWindow|SingleResult|mnuSingleCell_Click|"},
      {"PageBase", "Caption", [](Desk& d) { d.analysis().Name = "x"; }, "m_oAFLP_Rename|"},
      {"Grid", "GetStylesMap", [](Desk& d) { d.host.study().setDyeColor(1, 0x123456); },
       "InitDye|m_oStudy_DyeVisibibilityChanged|"},
  };
}

TEST(Names, AreThoseOfTheProceduresOnTheWay) {
  for (const auto& [chains, module] : {std::pair(hostChains(), ""),
                                       {tableChains(), "AFLPResultsPage."},
                                       {eventChains(), "AFLPResultsPage."}}) {
    for (const Chain& chain : chains) {
      Desk desk(sweptScript());
      desk.guardGrids();
      desk.newAnalysis();
      desk.host.faults().failAt(chain.type, chain.member, 1, Error(ErrorNumber::Internal, "host", "broken"));
      try {
        chain.act(desk);
      } catch (const Error&) {
        // Its way here is what the reports tell.
      }
      std::string expected = chain.procedures, reported;
      for (const auto& report : desk.host.framework().reports()) {
        const std::string name = report.module + "." + report.procedure + "|";
        reported +=
            *module != '\0' && name.starts_with(module) ? name.substr(std::string(module).size()) : name;
      }
      EXPECT_EQ(reported, expected) << chain.type << "." << chain.member;
    }
  }
}

}  // namespace
}  // namespace banddesk::test
