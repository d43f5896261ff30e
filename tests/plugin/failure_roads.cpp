#include "tests/plugin/failure_roads.h"

#include <array>

namespace banddesk::test {
namespace {

using Act = std::function<void(Desk&)>;

void openStudy(Desk& desk) { desk.openStudy(); }
void openParameters(Desk& desk) { desk.parametersPage(); }
void openAnalysis(Desk& desk) { desk.newAnalysis(); }

void openTransposed(Desk& desk) { desk.newAnalysis().SetTranspose(true); }

IPageControl& parameters(Desk& desk) { return *desk.pageNamed("AFLPParams")->control(); }

std::shared_ptr<AFLP> analysis(Desk& desk) { return desk.host.study().Study()->AFLPs.Item(1); }

std::shared_ptr<IExplorerItemAccess> item(Desk& desk) { return desk.host.tree().children().at(0).item; }

void answerQuestions(Desk& desk) {
  desk.front.onShowSave = [](ui::SaveDialog&) { return host::SaveAnswer{scratch("out"), 1}; };
  desk.front.onSelectColumns = [](host::ColumnSelection&) { return true; };
  desk.front.onSortColumns = [](host::ColumnSorting& sorting) {
    sorting.keys = {{sorting.columns().at(0).column, true}};
    return true;
  };
}

// Where each item's menu comes up.
void addMenus(std::vector<Road>& all) {
  const auto add = [&](std::int32_t row, std::int32_t col, std::initializer_list<const char*> items) {
    for (const std::string name : items) {
      const auto prepare = [row, col](Desk& desk) {
        openAnalysis(desk);
        answerQuestions(desk);
        desk.grid().user().selectCols(10, 11);
        desk.grid().user().rightClick(row, col);
      };
      all.push_back({name, prepare, [name](Desk& desk) { desk.choose(name); }, true});
    }
  };
  add(2, 10,
      {"mnuSingleCell", "mnuEgramCell", "mnuOverlayCell", "mnuTransposeCell", "mnuFormatCell", "mnuCopy1",
       "mnuExport1", "mnuPrintBW1", "mnuPrintColor1"});
  add(0, 10,
      {"mnuSortColumn", "mnuExcludeColumn", "mnuLockColumn", "mnuSortColumns", "mnuSelectColumns",
       "mnuSingleColumn", "mnuEgramColumn", "mnuOverlayColumn", "mnuTransposeColumn", "mnuFormatColumn",
       "mnuCopy2", "mnuExport2", "mnuPrintBW2", "mnuPrintColor2"});
  add(2, 1,
      {"mnuSortBin", "mnuExcludeBin", "mnuTransposeRow", "mnuFormatRow", "mnuCopy3", "mnuExport3",
       "mnuPrintBW3", "mnuPrintColor3"});
}

// A road of events, where the failure stops in a handler, and one of calls, where it reaches the caller.
void event(std::vector<Road>& all, const std::string& name, const Act& act,
           const Act& prepare = openAnalysis) {
  all.push_back({name, prepare, act, true});
}

void call(std::vector<Road>& all, const std::string& name, const Act& act,
          const Act& prepare = openAnalysis) {
  all.push_back({name, prepare, act, false});
}

void addControls(std::vector<Road>& all) {
  for (const std::string box : {"chkDye(0)", "chkDye(3)", "chkExcludeEmptySamples", "chkExcludeFullBins",
                                "chkShowExcluded", "chkShowWellID", "chkShowTimestamp"}) {
    const auto click = [box](Desk& desk) {
      desk.control<ui::CheckBox>(box).click();
      desk.wait();
    };
    event(all, box, click);
    event(all, box + " transposed", click, openTransposed);
  }
  for (const std::string option : {"optSampleBin(1)", "optSampleBin(2)"}) {
    event(all, option, [option](Desk& desk) {
      desk.control<ui::OptionButton>(option).Value = true;
      desk.wait();
    });
  }
  for (const std::string box : {"txtMaxBinWidth", "txtYThreshold"}) {
    for (const std::string text : {"2", "no"}) {
      event(all, box + " left with " + text, [box, text](Desk& desk) {
        desk.control<ui::TextBox>(box).Text = text;
        desk.control<ui::TextBox>(box).leave();
      });
    }
  }
  for (const std::string spin : {"udMaxBinWidth", "udYThreshold"}) {
    event(all, spin + " up", [spin](Desk& desk) { desk.control<ui::UpDown>(spin).up(), desk.wait(); });
    event(all, spin + " down", [spin](Desk& desk) { desk.control<ui::UpDown>(spin).down(), desk.wait(); });
  }
}

void addMouse(std::vector<Road>& all) {
  event(all, "sample axis", [](Desk& desk) { desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1; });
  event(all, "help", [](Desk& desk) { desk.control<ui::CommandButton>("cmdHelp").Click.raise(); });
  event(all, "enter", [](Desk& desk) {
    desk.control<ui::TextBox>("txtYThreshold").Text = "9";
    std::int32_t key = 13;
    desk.page().UserControl_KeyDown(key);
  });
  event(all, "resize", [](Desk& desk) { desk.page().UserControl_Resize(500, 700); });
  event(all, "right click", [](Desk& desk) { desk.grid().user().rightClick(0, 10); });
  event(all, "sort by column", [](Desk& desk) { desk.grid().user().doubleClick(0, 1); });
  event(all, "sort by bin", [](Desk& desk) { desk.grid().user().doubleClick(1, 1); });
  event(all, "width", [](Desk& desk) { desk.grid().user().trackColumnWidth(3, 50); });
  event(all, "drag", [](Desk& desk) {
    desk.grid().user().selectCols(10, 10);
    desk.grid().user().dragColumns(10, 10, 13);
  });
  event(all, "drag rows", [](Desk& desk) {
    desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1;
    desk.grid().user().selectRows(10, 10);
    desk.grid().user().dragRows(10, 10, 13);
  });
  event(all, "analysis that loses decisions", [](Desk& desk) {
    desk.chooseAt(2, 1, "mnuExcludeBin");
    desk.front.onRunModal = [](ui::Form& form) {
      form.Controls().find<ui::CheckBox>("chkDontShow")->click();
      form.MouseUp(form.Controls().find<ui::Label>("lblWarning"));
      form.Controls().find<ui::CommandButton>("btnOK")->Click.raise();
    };
    desk.control<ui::TextBox>("txtYThreshold").Text = "9";
    desk.control<ui::TextBox>("txtYThreshold").leave();
  });
}

void addParameters(std::vector<Road>& all) {
  for (const std::string box : {"txtMaxBinWidth", "txtYThreshold"}) {
    const auto leaveBad = [box](Desk& desk) {
      desk.control<ui::TextBox>(parameters(desk), box).Text = "no";
      desk.control<ui::TextBox>(parameters(desk), box).leave();
    };
    event(all, "parameters: " + box, leaveBad, openParameters);
  }
  const auto spin = [](Desk & desk) -> auto& {
    return desk.control<ui::UpDown>(parameters(desk), "udMaxBinWidth");
  };
  event(
      all, "parameters: width up", [spin](Desk& desk) { spin(desk).up(); }, openParameters);
  event(
      all, "parameters: width down", [spin](Desk& desk) { spin(desk).down(); }, openParameters);
  for (const bool accept : {true, false}) {
    const auto end = [accept](Desk& desk) { desk.host.pages().end(desk.pageNamed("AFLPParams"), accept); };
    call(all, accept ? "parameters: OK" : "parameters: Cancel", end, openParameters);
  }
  const auto hideDye = [](Desk& desk) { desk.host.study().setDyeVisible(1, false); };
  call(all, "parameters: dye", hideDye, openParameters);
}

// What the host does with the service.
void addHost(std::vector<Road>& all) {
  const auto open = [](Desk& desk) { desk.host.service().OpenAFLP(analysis(desk)); };
  call(all, "component", openStudy, [](Desk&) {});
  call(all, "close study", [](Desk& desk) { desk.host.closeStudy(); });
  call(all, "new analysis", openAnalysis, openStudy);
  call(all, "redo", open, [](Desk& desk) {
    openAnalysis(desk);
    desk.host.pages().endAll();
    desk.host.study().setResultExcluded(2, true);
    desk.front.onDecideStale = [](std::shared_ptr<AFLP>&) { return host::StaleAnalysis::Redo; };
  });
  call(all, "open transposed", open, [](Desk& desk) {
    openAnalysis(desk);
    desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1;
    desk.host.pages().end(desk.pageNamed("AFLP"), true);
  });
  const auto openItem = [](Desk& desk) { desk.host.runCommand(item(desk), "OpenAFLP"); };
  call(all, "open by the item", openItem, [](Desk& desk) {
    openAnalysis(desk);
    desk.host.pages().endAll();
  });
}

// What it does with the tree and the study while a page is open.
void addStudy(std::vector<Road>& all) {
  call(all, "rename", [](Desk& desk) {
    desk.host.runCommand(item(desk), "RenameAFLP");
    desk.host.tree().endRename(item(desk), "Other");
  });
  call(all, "delete", [](Desk& desk) { desk.host.runCommand(item(desk), "DeleteAFLP"); });
  call(all, "report", [](Desk& desk) {
    desk.front.makesReports = true;
    desk.host.runCommand(item(desk), "NewReport");
  });
  call(all, "report contexts", [](Desk& desk) { desk.host.reportContexts(); });
  call(all, "label", [](Desk& desk) { desk.host.tree().initialize(); });
  call(all, "unsaved", [](Desk& desk) { desk.host.unsaved(); });
  const auto save = [](Desk& desk) { desk.host.save(); };
  call(all, "save", save);
  call(all, "save a deletion", save, [](Desk& desk) {
    openAnalysis(desk);
    desk.host.save();
    desk.host.service().DeleteAFLP(analysis(desk));
  });
  call(all, "accept", [](Desk& desk) { desk.host.pages().end(desk.pageNamed("AFLP"), true); });
  call(all, "cancel", [](Desk& desk) { desk.host.pages().end(desk.pageNamed("AFLP"), false); });
  call(all, "dye's colour", [](Desk& desk) { desk.host.study().setDyeColor(1, 0x123456); });
  call(all, "dye hidden", [](Desk& desk) { desk.host.study().setDyeVisible(1, false); });
  call(all, "result excluded", [](Desk& desk) { desk.host.study().setResultExcluded(2, true); });
  call(all, "name", [](Desk& desk) { desk.analysis().Name = "Other"; });
}

void addOperations(std::vector<Road>& all) {
  using Page = IAFLPResultsPage;
  const auto each = [&](const std::string& name, const std::function<void(Page&)>& act) {
    const auto actOnPage = [act](Desk& desk) { act(desk.page()); };
    call(all, name, actOnPage);
    call(all, name + " transposed", actOnPage, openTransposed);
  };
  each("Init", [](Page& page) { page.Init(page.ColumnSet("1")); });
  each("ColumnSet", [](Page& page) { page.ColumnSet("-1"); });
  each("Col", [](Page& page) { page.Col("6"); });
  each("Key", [](Page& page) { page.Key(10); });
  each("Bin", [](Page& page) { page.Bin(1); });
  each("SetBin", [](Page& page) { page.SetBin(1, 1); });
  each("NumCols", [](Page& page) { page.SetNumCols(page.NumCols()); });
  each("NumRows", [](Page& page) { page.SetNumRows(page.NumRows()); });
  each("CurrentCellText", [](Page& page) { page.CurrentCellText("6", 1); });
  each("CellText", [](Page& page) { page.SetCellText("6", 1, page.CellText("6", 1)); });
  each("CellToolTip", [](Page& page) { page.SetCellToolTip("6", 1, "tip"); });
  each("CellUserAttribute",
       [](Page& page) { page.SetCellUserAttribute("-1", 1, page.CellUserAttribute("-1", 1)); });
  each("SetStyleRange", [](Page& page) {
    GridRange range;
    page.InitRange(range, 10, 1, 11, 2);
    page.SetStyleRange(range, GridStyle(), StyleMode::Override);
  });
  each("StoreStyleRowCol",
       [](Page& page) { page.StoreStyleRowCol(20, 20, GridStyle(), StyleMode::Override, 1); });
  each("GetSelected", [](Page& page) { page.GetSelected(1, 0); });
  each("Hidden", [](Page& page) { page.IsColHidden(10), page.IsRowHidden(1); });
  each("Hide", [](Page& page) { page.HideCols(10, 10, false), page.HideRows(1, 1, false); });
  each("RemoveRows", [](Page& page) { page.RemoveRows(4, 4); });
  each("Bins", [](Page& page) { page.Bins(); });
  each("AFLPStudyResults", [](Page& page) { page.AFLPStudyResults(); });
  each("Analyze", [](Page& page) { page.Analyze(true); });
  each("SetTranspose", [](Page& page) { page.SetTranspose(!page.Transpose()); });
  each("SortRow", [](Page& page) { page.SortRow(1); });
  each("SortCol", [](Page& page) { page.SortCol(1); });
  each("ExcludeColumn", [](Page& page) { page.ExcludeColumn(10, true); });
  each("AnyManualExclusions", [](Page& page) { page.AnyManualExclusions(); });
  each("LockedCol", [](Page& page) { page.SetLockedCol(page.LockedCol() + 2); });
  each("Export", [](Page& page) { page.Export(); });
  each("ExportCSV", [](Page& page) { page.ExportCSV(scratch("t.csv")); });
  each("ExportNTSYSpc", [](Page& page) { page.ExportNTSYSpc(scratch("t.nts")); });
  each("ExportExcel", [](Page& page) { page.ExportExcel(scratch("t.xlsx")); });
  each("CopyGrid", [](Page& page) { page.CopyGrid(); });
  each("PrintGrid", [](Page& page) { page.PrintGrid(true); });
  each("Counts", [](Page& page) { page.VisibleBinCount(), page.VisibleSampleCount(); });
}

}  // namespace

Script sweptScript() {
  return {{0, {{100, {1, 0, 2}}, {200, {0, 1, 0}}, {250, {1, 1, 1}}}}, {1, {{300, {0, 5, 1}}}}};
}

const std::vector<Road>& roads() {
  static const std::vector<Road> all = [] {
    std::vector<Road> made;
    addMenus(made);
    addControls(made);
    addMouse(made);
    addParameters(made);
    addHost(made);
    addStudy(made);
    addOperations(made);
    return made;
  }();
  return all;
}

}  // namespace banddesk::test
