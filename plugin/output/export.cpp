#include "plugin/output/export.h"

#include "plugin/table/page_guards.h"

namespace banddesk {
namespace {

constexpr const char* kFilter = "Text Files (Comma Delimited) (*.csv)|*.csv|NTSYSpc (*.nts)|*.nts";
constexpr std::int32_t kNtsysType = 2;

}  // namespace

void Export::run() {
  page_.frame.procedure("Export", [&] {
    const std::string fileName = GetExportFileName(kFilter);
    if (fileName.empty()) return;
    Grid& grid = table_.grid();
    Hourglass hourglass(page_.platform());
    grid.SetGridEnabledRedraw(false);
    UpdateLock lock(grid);
    WriteAccess access(grid);
    // The type that was chosen decides, not the ending of the name.
    if (controls_.ctlDialog.FilterIndex == kNtsysType) {
      ntsys_.ExportNTSYSpc(fileName);
    } else {
      csv_.ExportCSV(fileName);
    }
    access.restore();
    grid.SetGridEnabledRedraw(true);
    lock.restore();
    hourglass.restore();
  });
}

std::string Export::GetExportFileName(const std::string& filter) {
  ui::SaveDialog& dialog = controls_.ctlDialog;
  try {
    dialog.CancelError = true;
    dialog.DialogTitle = "Export AFLP";
    dialog.FileName = page_.analysis().Name;
    dialog.Filter = filter;
    dialog.FilterIndex = 1;
    dialog.Flags = ui::kOverwritePrompt + ui::kHideReadOnly;
    dialog.InitDir = wasAsked_
                         ? std::string()
                         : page_.platform().JoinPath(page_.framework().ApplicationPath(), "..\\Export\\");
    wasAsked_ = true;
    dialog.ShowSave(page_.platform());
    return dialog.FileName;
  } catch (...) {
    return {};  // above all a cancel; whatever else fails here ends the export as quietly
  }
}

}  // namespace banddesk
