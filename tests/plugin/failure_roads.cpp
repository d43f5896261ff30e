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

void rightClick(Desk& desk, std::int32_t row, std::int32_t col) {
  desk.host.platform().popupAnswers.emplace_back([](ui::MenuItem&, ui::MenuItem*) {});
  desk.grid().rightClick(row, col);
}

void answerQuestions(Desk& desk) {
  desk.host.platform().onShowSave = [](ui::SaveDialog&) { return host::SaveAnswer{scratch("out"), 1}; };
  desk.host.pages().selectColumns = [](host::ColumnSelection&) { return true; };
  desk.host.pages().sortColumns = [](host::ColumnSorting& sorting) {
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
        desk.grid().selectCols(10, 11);
        rightClick(desk, row, col);
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

void addControls(std::vector<Road>& all) {
  const auto event = [&](const std::string& name, const Act& act) {
    all.push_back({name, openAnalysis, act, true});
  };
  for (const std::string box : {"chkDye(0)", "chkDye(3)", "chkExcludeEmptySamples", "chkExcludeFullBins",
                                "chkShowExcluded", "chkShowWellID", "chkShowTimestamp"}) {
    event(box, [box](Desk& desk) {
      desk.control<ui::CheckBox>(box).click();
      desk.wait();
    });
    all.push_back({box + " transposed", openTransposed,
                   [box](Desk& desk) {
                     desk.control<ui::CheckBox>(box).click();
                     desk.wait();
                   },
                   true});
  }
  for (const std::string option : {"optSampleBin(1)", "optSampleBin(2)"}) {
    event(option, [option](Desk& desk) {
      desk.control<ui::OptionButton>(option).Value = true;
      desk.wait();
    });
  }
  for (const std::string box : {"txtMaxBinWidth", "txtYThreshold"}) {
    event("left " + box, [box](Desk& desk) {
      desk.control<ui::TextBox>(box).Text = "2";
      desk.control<ui::TextBox>(box).leave();
    });
    event("left bad " + box, [box](Desk& desk) {
      desk.control<ui::TextBox>(box).Text = "no";
      desk.control<ui::TextBox>(box).leave();
    });
  }
  for (const std::string spin : {"udMaxBinWidth", "udYThreshold"}) {
    event(spin + " up", [spin](Desk& desk) { desk.control<ui::UpDown>(spin).up(), desk.wait(); });
    event(spin + " down", [spin](Desk& desk) { desk.control<ui::UpDown>(spin).down(), desk.wait(); });
  }
}

void addMouse(std::vector<Road>& all) {
  const auto event = [&](const std::string& name, const Act& act) {
    all.push_back({name, openAnalysis, act, true});
  };
  event("sample axis", [](Desk& desk) { desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1; });
  event("help", [](Desk& desk) { desk.control<ui::CommandButton>("cmdHelp").Click.raise(); });
  event("enter", [](Desk& desk) {
    desk.control<ui::TextBox>("txtYThreshold").Text = "9";
    std::int32_t key = 13;
    desk.page().UserControl_KeyDown(key);
  });
  event("resize", [](Desk& desk) { desk.page().UserControl_Resize(500, 700); });
  event("right click", [](Desk& desk) { desk.grid().rightClick(0, 10); });
  event("sort by column", [](Desk& desk) { desk.grid().doubleClick(0, 1); });
  event("sort by bin", [](Desk& desk) { desk.grid().doubleClick(1, 1); });
  event("width", [](Desk& desk) { desk.grid().trackColumnWidth(3, 50); });
  event("drag", [](Desk& desk) {
    desk.grid().selectCols(10, 10);
    desk.grid().dragColumns(10, 10, 13);
  });
  event("drag rows", [](Desk& desk) {
    desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1;
    desk.grid().selectRows(10, 10);
    desk.grid().dragRows(10, 10, 13);
  });
  event("analysis that loses decisions", [](Desk& desk) {
    rightClick(desk, 2, 1);
    desk.choose("mnuExcludeBin");
    desk.host.platform().onRunModal = [](ui::Form& form) {
      form.Controls().find<ui::CheckBox>("chkDontShow")->click();
      form.MouseUp();
      form.Controls().find<ui::CommandButton>("btnOK")->Click.raise();
    };
    desk.control<ui::TextBox>("txtYThreshold").Text = "9";
    desk.control<ui::TextBox>("txtYThreshold").leave();
  });
}

void addParameters(std::vector<Road>& all) {
  const auto event = [&](const std::string& name, const Act& act) {
    all.push_back({"parameters: " + name, openParameters, act, true});
  };
  for (const std::string box : {"txtMaxBinWidth", "txtYThreshold"}) {
    event(box, [box](Desk& desk) {
      desk.control<ui::TextBox>(parameters(desk), box).Text = "no";
      desk.control<ui::TextBox>(parameters(desk), box).leave();
    });
  }
  event("width up", [](Desk& desk) { desk.control<ui::UpDown>(parameters(desk), "udMaxBinWidth").up(); });
  event("width down", [](Desk& desk) { desk.control<ui::UpDown>(parameters(desk), "udMaxBinWidth").down(); });
  all.push_back({"parameters: OK", openParameters,
                 [](Desk& desk) { desk.host.pages().end(desk.pageNamed("AFLPParams"), true); }, false});
  all.push_back({"parameters: Cancel", openParameters,
                 [](Desk& desk) { desk.host.pages().end(desk.pageNamed("AFLPParams"), false); }, false});
  all.push_back({"parameters: dye", openParameters,
                 [](Desk& desk) { desk.host.study().setDyeVisible(1, false); }, false});
}

// What the host does with the service.
void addHost(std::vector<Road>& all) {
  const auto call = [&](const std::string& name, const Act& prepare, const Act& act) {
    all.push_back({name, prepare, act, false});
  };
  call(
      "component", [](Desk&) {}, [](Desk& desk) { desk.openStudy(); });
  call("close study", openAnalysis, [](Desk& desk) { desk.host.closeStudy(); });
  call("new analysis", openStudy, [](Desk& desk) { desk.newAnalysis(); });
  call(
      "redo",
      [](Desk& desk) {
        openAnalysis(desk);
        desk.host.pages().endAll();
        desk.host.study().setResultExcluded(2, true);
        desk.host.study().checkAnalysis = [](std::shared_ptr<AFLP>&) { return 2; };
      },
      [](Desk& desk) { desk.host.service().OpenAFLP(analysis(desk)); });
  call(
      "open transposed",
      [](Desk& desk) {
        openAnalysis(desk);
        desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1;
        desk.host.pages().end(desk.pageNamed("AFLP"), true);
      },
      [](Desk& desk) { desk.host.service().OpenAFLP(analysis(desk)); });
  call(
      "open by the item",
      [](Desk& desk) {
        openAnalysis(desk);
        desk.host.pages().endAll();
      },
      [](Desk& desk) { desk.host.runCommand(item(desk), "OpenAFLP"); });
}

// What it does with the tree and the study while a page is open.
void addStudy(std::vector<Road>& all) {
  const auto call = [&](const std::string& name, const Act& prepare, const Act& act) {
    all.push_back({name, prepare, act, false});
  };
  call("rename", openAnalysis, [](Desk& desk) { desk.host.runCommand(item(desk), "RenameAFLP"); });
  call(
      "end rename",
      [](Desk& desk) {
        openAnalysis(desk);
        desk.host.tree().BeginRename(item(desk));
      },
      [](Desk& desk) { desk.host.tree().endRename(item(desk), "Other"); });
  call("delete", openAnalysis, [](Desk& desk) { desk.host.runCommand(item(desk), "DeleteAFLP"); });
  call("report", openAnalysis, [](Desk& desk) {
    desk.host.reports().onReport = [](const host::ReportRequest&, const std::string&) {};
    desk.host.runCommand(item(desk), "NewReport");
  });
  call("report contexts", openAnalysis, [](Desk& desk) { desk.host.reportContexts(); });
  call("label", openAnalysis, [](Desk& desk) { desk.host.tree().initialize(); });
  call("unsaved", openAnalysis, [](Desk& desk) { desk.host.unsaved(); });
  call("save", openAnalysis, [](Desk& desk) { desk.host.save(); });
  call(
      "save a deletion",
      [](Desk& desk) {
        openAnalysis(desk);
        desk.host.save();
        desk.host.service().DeleteAFLP(analysis(desk));
      },
      [](Desk& desk) { desk.host.save(); });
  call("accept", openAnalysis, [](Desk& desk) { desk.host.pages().end(desk.pageNamed("AFLP"), true); });
  call("cancel", openAnalysis, [](Desk& desk) { desk.host.pages().end(desk.pageNamed("AFLP"), false); });
  call("dye's colour", openAnalysis, [](Desk& desk) { desk.host.study().setDyeColor(1, 0x123456); });
  call("dye hidden", openAnalysis, [](Desk& desk) { desk.host.study().setDyeVisible(1, false); });
  call("result excluded", openAnalysis, [](Desk& desk) { desk.host.study().setResultExcluded(2, true); });
  call("name", openAnalysis, [](Desk& desk) { desk.analysis().Name = "Other"; });
}

void addOperations(std::vector<Road>& all) {
  using Page = IAFLPResultsPage;
  const auto call = [&](const std::string& name, const std::function<void(Page&)>& act) {
    for (const bool transposed : {false, true}) {
      all.push_back({name + (transposed ? " transposed" : ""), transposed ? openTransposed : openAnalysis,
                     [act](Desk& desk) { act(desk.page()); }, false});
    }
  };
  call("Init", [](Page& page) { page.Init(page.ColumnSet("1")); });
  call("ColumnSet", [](Page& page) { page.ColumnSet("-1"); });
  call("Col", [](Page& page) { page.Col("6"); });
  call("Key", [](Page& page) { page.Key(10); });
  call("Bin", [](Page& page) { page.Bin(1); });
  call("SetBin", [](Page& page) { page.SetBin(1, 1); });
  call("NumCols", [](Page& page) { page.SetNumCols(page.NumCols()); });
  call("NumRows", [](Page& page) { page.SetNumRows(page.NumRows()); });
  call("CurrentCellText", [](Page& page) { page.CurrentCellText("6", 1); });
  call("CellText", [](Page& page) { page.SetCellText("6", 1, page.CellText("6", 1)); });
  call("CellToolTip", [](Page& page) { page.SetCellToolTip("6", 1, "tip"); });
  call("CellUserAttribute",
       [](Page& page) { page.SetCellUserAttribute("-1", 1, page.CellUserAttribute("-1", 1)); });
  call("SetStyleRange", [](Page& page) {
    GridRange range;
    page.InitRange(range, 10, 1, 11, 2);
    page.SetStyleRange(range, GridStyle(), StyleMode::Override);
  });
  call("StoreStyleRowCol",
       [](Page& page) { page.StoreStyleRowCol(20, 20, GridStyle(), StyleMode::Override, 1); });
  call("GetSelected", [](Page& page) { page.GetSelected(1, 0); });
  call("Hidden", [](Page& page) { page.IsColHidden(10), page.IsRowHidden(1); });
  call("Hide", [](Page& page) { page.HideCols(10, 10, false), page.HideRows(1, 1, false); });
  call("RemoveRows", [](Page& page) { page.RemoveRows(4, 4); });
  call("Bins", [](Page& page) { page.Bins(); });
  call("AFLPStudyResults", [](Page& page) { page.AFLPStudyResults(); });
  call("Analyze", [](Page& page) { page.Analyze(true); });
  call("SetTranspose", [](Page& page) { page.SetTranspose(!page.Transpose()); });
  call("SortRow", [](Page& page) { page.SortRow(1); });
  call("SortCol", [](Page& page) { page.SortCol(1); });
  call("ExcludeColumn", [](Page& page) { page.ExcludeColumn(10, true); });
  call("AnyManualExclusions", [](Page& page) { page.AnyManualExclusions(); });
  call("LockedCol", [](Page& page) { page.SetLockedCol(page.LockedCol() + 2); });
  call("Export", [](Page& page) { page.Export(); });
  call("ExportCSV", [](Page& page) { page.ExportCSV(scratch("t.csv")); });
  call("ExportNTSYSpc", [](Page& page) { page.ExportNTSYSpc(scratch("t.nts")); });
  call("ExportExcel", [](Page& page) { page.ExportExcel(scratch("t.xlsx")); });
  call("CopyGrid", [](Page& page) { page.CopyGrid(); });
  call("PrintGrid", [](Page& page) { page.PrintGrid(true); });
  call("Counts", [](Page& page) { page.VisibleBinCount(), page.VisibleSampleCount(); });
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
