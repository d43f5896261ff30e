// The public classes of the component as abstract interfaces, and its four entry points: the one header that
// an outside caller includes. Objects are made by name through the component's class objects and live as long
// as somebody holds them; the host services that were handed over outlive them all. Everything runs on the
// user-interface thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "plugin/analysis/bin_records.h"
#include "plugin/base/collection.h"
#include "plugin/base/object.h"
#include "plugin/results/grid_addressing.h"
#include "plugin/shell/host_contract.h"
#include "plugin/ui/control.h"

namespace banddesk {

// ---- The classes that the host creates by name
// ----------------------------------------------------------------------

class IAFLPService : public Object, public IServiceAccess {
 public:
  virtual void NewAFLP() = 0;
  virtual void OpenAFLP(const std::shared_ptr<AFLP>& analysis) = 0;
  virtual void DeleteAFLP(const std::shared_ptr<AFLP>& analysis) = 0;
  virtual void RenameAFLP(const std::shared_ptr<AFLP>& analysis) = 0;
  virtual PersistentCollection<AFLP>* AFLPs() = 0;  // null without a folder
};

class IAFLPExplorerItem : public IExplorerItemAccess {
 public:
  virtual void Init(const std::shared_ptr<AFLP>& analysis) = 0;
  virtual void OpenAFLP() = 0;
  virtual void DeleteAFLP() = 0;
  virtual void RenameAFLP() = 0;
  virtual void NewReport() = 0;
  virtual std::string Name() = 0;
};

class IAFLPExplorerFolder : public IExplorerItemAccess {
 public:
  virtual void NewAFLP() = 0;
  virtual void OpenAFLP(const std::shared_ptr<AFLP>& analysis) = 0;
  virtual void DeleteAFLP(const std::shared_ptr<AFLP>& analysis) = 0;
  virtual void RenameAFLP(const std::shared_ptr<AFLP>& analysis) = 0;
  virtual PersistentCollection<AFLP>& AFLPs() = 0;
  virtual Collection<std::shared_ptr<IAFLPExplorerItem>>& AFLPExplorerItems() = 0;
};

// What host, views and tests may do with either page: reach its controls by name, size it, hand it keys.
class IPageControl : public Object, public IPageAccess {
 public:
  virtual void UserControl_Initialize() = 0;  // once, right after the making
  virtual const ui::ControlSet& Controls() const = 0;
  // The page's keys come here before its controls see them; a key set to 0 does not reach them.
  virtual void UserControl_KeyDown(std::int32_t& key) = 0;
  virtual void UserControl_KeyPress(std::int32_t& key) = 0;
  virtual void UserControl_Resize(double scaleWidth, double scaleHeight) = 0;
};

class IAFLPParamsPage : public IPageControl {};

class IAFLPResultsPage : public IPageControl {
 public:
  // The logical table: bins in rows, bin information and samples in columns, whichever way the grid shows it.
  virtual void Init(const std::shared_ptr<GridLayout>& layout) = 0;
  virtual std::shared_ptr<GridLayout> ColumnSet(std::string_view key) = 0;
  virtual std::int32_t Col(std::string_view key) = 0;
  virtual std::string Key(std::int32_t col) = 0;
  virtual std::int32_t Bin(std::int32_t row) = 0;
  virtual void SetBin(std::int32_t row, std::int32_t bin) = 0;
  virtual std::int32_t NumCols() = 0;
  virtual void SetNumCols(std::int32_t count) = 0;
  virtual std::int32_t NumRows() = 0;
  virtual void SetNumRows(std::int32_t count) = 0;
  virtual std::string CurrentCellText(std::string_view key, std::int32_t index) = 0;
  virtual std::string CellText(std::string_view key, std::int32_t index) = 0;
  virtual void SetCellText(std::string_view key, std::int32_t index, std::string_view text) = 0;
  virtual void SetCellToolTip(std::string_view key, std::int32_t index, std::string_view text) = 0;
  virtual std::string CellUserAttribute(std::string_view key, std::int32_t index) = 0;
  virtual void SetCellUserAttribute(std::string_view key, std::int32_t index, std::string_view text) = 0;
  virtual void InitRange(GridRange& range, std::int32_t startCol, std::int32_t startRow, std::int32_t endCol,
                         std::int32_t endRow) = 0;
  virtual bool SetStyleRange(const GridRange& range, const GridStyle& style, StyleMode mode) = 0;
  virtual bool StoreStyleRowCol(std::int32_t row, std::int32_t col, const GridStyle& style, StyleMode mode,
                                std::int32_t type) = 0;
  virtual std::shared_ptr<Collection<std::int32_t>> GetSelected(std::int32_t axis, std::int32_t raw) = 0;
  virtual bool IsColHidden(std::int32_t col) = 0;
  virtual bool IsRowHidden(std::int32_t row) = 0;
  virtual bool HideCols(std::int32_t startCol, std::int32_t endCol, bool hide) = 0;
  virtual bool HideRows(std::int32_t startRow, std::int32_t endRow, bool hide) = 0;
  virtual bool RemoveRows(std::int32_t from, std::int32_t to) = 0;

  // The finished table as records.
  virtual std::shared_ptr<Collection<std::shared_ptr<banddesk::Bin>>> Bins() = 0;
  virtual std::shared_ptr<Collection<std::shared_ptr<AFLPStudyResult>>> AFLPStudyResults() = 0;

  // Work on the table.
  virtual void Analyze(bool force) = 0;
  virtual bool Transpose() const = 0;
  virtual void SetTranspose(bool transposed) = 0;
  virtual void SortRow(std::int32_t row) = 0;
  virtual void SortCol(std::int32_t col) = 0;
  virtual std::string ExcludeColumn(std::int32_t col, bool exclude) = 0;
  virtual bool AnyManualExclusions() = 0;
  virtual std::int32_t LockedCol() = 0;
  virtual void SetLockedCol(std::int32_t col) = 0;

  // Output.
  virtual void Export() = 0;
  virtual void ExportCSV(const std::string& fileName) = 0;
  virtual void ExportNTSYSpc(const std::string& fileName) = 0;
  virtual void ExportExcel(const std::string& fileName) = 0;
  virtual void CopyGrid() = 0;
  virtual void PrintGrid(bool color) = 0;
  virtual std::int32_t VisibleBinCount() = 0;
  virtual std::int32_t VisibleSampleCount() = 0;
};

// ---- The component's entry points
// -----------------------------------------------------------------------------------

// Makes objects of one class. "AFLPService", "AFLPExplorerFolder", "AFLPExplorerItem", "AFLPParamsPage" and
// "AFLPResultsPage" are offered; each can be cast to the interface of its name.
class ClassObject {
 public:
  virtual ~ClassObject() = default;
  virtual ObjectRef CreateInstance() = 0;
};

// The component's own record of what a host registers it for.
class Registrar {
 public:
  virtual void Register(std::string_view typeLibrary, std::string_view className) = 0;
  virtual void Unregister(std::string_view typeLibrary, std::string_view className) = 0;

 protected:
  ~Registrar() = default;
};

inline constexpr std::int32_t kEntryOk = 0;
inline constexpr std::int32_t kEntryFalse = 1;  // can unload: not now
inline constexpr std::int32_t kEntryClassUnknown = static_cast<std::int32_t>(0x80040111);
inline constexpr std::int32_t kEntryContractDiffers = static_cast<std::int32_t>(0x80004005);

inline constexpr const char* kTypeLibrary = "Banddesk";

}  // namespace banddesk

extern "C" {
// Names the component's public classes to the registrar, or takes them back.
std::int32_t DllRegisterServer(banddesk::Registrar& registrar);
std::int32_t DllUnregisterServer(banddesk::Registrar& registrar);
// The class object of a class, for one host. `contractStamp` is the caller's kContractStamp.
std::int32_t DllGetClassObject(const char* className, std::uint32_t contractStamp,
                               banddesk::HostServices& services,
                               std::unique_ptr<banddesk::ClassObject>& classObject);
// kEntryOk when none of the component's objects lives any more.
std::int32_t DllCanUnloadNow();
}
