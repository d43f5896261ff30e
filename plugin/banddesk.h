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

class IAFLPService : public Object, public IServiceAccess {
 public:
  // Each hands over to the folder of the explorer; nothing happens without one. Where no study is open,
  // NewAFLP tells the user so and does nothing.
  virtual void NewAFLP() = 0;
  virtual void OpenAFLP(const std::shared_ptr<AFLP>& analysis) = 0;
  virtual void DeleteAFLP(const std::shared_ptr<AFLP>& analysis) = 0;
  virtual void RenameAFLP(const std::shared_ptr<AFLP>& analysis) = 0;
  virtual PersistentCollection<AFLP>* AFLPs() = 0;  // the study's; null without a folder
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
  // ---- the logical table: bins in rows, bin information and samples in columns, whichever way the grid shows
  // it. Rows and columns are logical and count from 1; 0 is the header. A `key` names a column: "6", "7", "8",
  // "119", "9", "10", "83", "84", "85" for bin information, "-" and a ResultID for a sample. What fails is
  // reported and raised; a key that no column has is error 5, a key that is no number error 13. Answers of
  // type bool are the grid's: whether it took the change.

  // Writes visibility, header, tool tip and key of each of the layout's columns into the grid. Error
  // 0x80040000 without a grid or a layout.
  virtual void Init(const std::shared_ptr<GridLayout>& layout) = 0;
  // The analysis' layout of samples for a key below 0, else that of bin information; both belong to the analysis.
  virtual std::shared_ptr<GridLayout> ColumnSet(std::string_view key) = 0;
  virtual std::int32_t Col(std::string_view key) = 0;
  virtual std::string Key(std::int32_t col) = 0;  // "0" of a column that has none
  // The bin that a row holds, 1 to the number of bins, dye after dye; sorting moves bins to other rows.
  virtual std::int32_t Bin(std::int32_t row) = 0;
  virtual void SetBin(std::int32_t row, std::int32_t bin) = 0;
  virtual std::int32_t NumCols() = 0;
  virtual void SetNumCols(std::int32_t count) = 0;
  virtual std::int32_t NumRows() = 0;
  virtual void SetNumRows(std::int32_t count) = 0;
  // The live text of a cell, which becomes the current one; `index` is a row here and below.
  virtual std::string CurrentCellText(std::string_view key, std::int32_t index) = 0;
  virtual std::string CellText(std::string_view key, std::int32_t index) = 0;
  virtual void SetCellText(std::string_view key, std::int32_t index, std::string_view text) = 0;
  virtual void SetCellToolTip(std::string_view key, std::int32_t index, std::string_view text) = 0;
  virtual std::string CellUserAttribute(std::string_view key, std::int32_t index) = 0;
  virtual void SetCellUserAttribute(std::string_view key, std::int32_t index, std::string_view text) = 0;
  // Sets a range to logical bounds, as physical ones.
  virtual void InitRange(GridRange& range, std::int32_t startCol, std::int32_t startRow, std::int32_t endCol,
                         std::int32_t endRow) = 0;
  // The range is physical: from InitRange, or meant so.
  virtual bool SetStyleRange(const GridRange& range, const GridStyle& style, StyleMode mode) = 0;
  virtual bool StoreStyleRowCol(std::int32_t row, std::int32_t col, const GridStyle& style, StyleMode mode,
                                std::int32_t type) = 0;
  // The selected columns (`axis` 1) or rows (any other), without hidden ones, each once; it belongs to the
  // caller. `raw` 0 gives columns by the number of their key and rows by their bin, any other value gives
  // indexes. Without a selection: the cell of the last right click; for `raw` 0 the key of the column with its
  // number, be it of a row.
  virtual std::shared_ptr<Collection<std::int32_t>> GetSelected(std::int32_t axis, std::int32_t raw) = 0;
  virtual bool IsColHidden(std::int32_t col) = 0;
  virtual bool IsRowHidden(std::int32_t row) = 0;
  // From start to end; nothing where the end lies before the start.
  virtual bool HideCols(std::int32_t startCol, std::int32_t endCol, bool hide) = 0;
  virtual bool HideRows(std::int32_t startRow, std::int32_t endRow, bool hide) = 0;
  virtual bool RemoveRows(std::int32_t from, std::int32_t to) = 0;

  // ---- the finished table as records, made anew by each call and the caller's own
  // One for each visible row, in the order of the rows; the current cell moves. Behind a hidden sample column
  // the results of a bin are read one place to the left of their own.
  virtual std::shared_ptr<Collection<std::shared_ptr<banddesk::Bin>>> Bins() = 0;
  // One for each visible sample, in the order of the results.
  virtual std::shared_ptr<Collection<std::shared_ptr<AFLPStudyResult>>> AFLPStudyResults() = 0;

  // ---- work on the table. After a failure the grid stays locked as the failing step left it.
  // Runs the analysis with the two parameters as they stand; without `force` only if one has changed. Nothing
  // happens with a bad parameter, without results, or if the user keeps the decisions that would be lost.
  virtual void Analyze(bool force) = 0;
  virtual bool Transpose() const = 0;  // whether samples run along rows
  virtual void SetTranspose(bool transposed) = 0;
  // Sorts the sample columns by a row, or the rows by a column: ascending at first, the other way round when
  // it was sorted before.
  virtual void SortRow(std::int32_t row) = 0;
  virtual void SortCol(std::int32_t col) = 0;
  // Excludes a sample's column or hides one of bin information, or takes it back. Gives the column's key. The
  // filters do not run.
  virtual std::string ExcludeColumn(std::int32_t col, bool exclude) = 0;
  virtual bool AnyManualExclusions() = 0;  // of bins; samples do not count
  virtual std::int32_t LockedCol() = 0;    // 0 without one; columns up to it do not scroll
  virtual void SetLockedCol(std::int32_t col) = 0;

  // ---- output. Files are written at once and anew; where another program holds one, the user may try again.
  // Errors are those of the file. The last three rebuild the table by an analysis, and decisions about bins are
  // lost with that, if the user agrees.
  virtual void Export() = 0;  // asks for name and type
  virtual void ExportCSV(const std::string& fileName) = 0;
  virtual void ExportNTSYSpc(const std::string& fileName) = 0;
  virtual std::int32_t VisibleBinCount() = 0;
  virtual std::int32_t VisibleSampleCount() = 0;
  virtual void ExportExcel(const std::string& fileName) = 0;
  virtual void CopyGrid() = 0;             // to the clipboard
  virtual void PrintGrid(bool color) = 0;  // false: black and white
};

// ---- The component's entry points

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
