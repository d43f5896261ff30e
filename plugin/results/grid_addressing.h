// The chief header of the results: the contract of the grid control, under which the page's logical table
// lies. All rows and columns here are physical; row 0 and column 0 are header cells. Counts do not include
// them.
//
// The store is sparse and independent of the counts: a write at any index of 0 or more is kept and shows when
// the count grows over it; a read beyond the counts gives what was written, else nothing. Setting a count to
// n at or below the present one discards everything beyond n on that axis. A span whose end lies below its
// start is empty.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "plugin/base/event.h"
#include "plugin/base/fields.h"
#include "plugin/base/object.h"
#include "plugin/ui/control.h"

namespace banddesk {

using ui::Colour;

enum class Axis { Rows, Columns };

// How a style acts on cells.
enum class StyleMode : std::int32_t {
  Override = 0,  // each attribute that the style includes replaces the cell's, others stay
  Copy = 2,      // the cell becomes an exact copy
  Remove = 3,    // each attribute that the style includes is taken off the cell, whatever its value
};

struct GridBrush {
  std::int32_t pattern = 0;
  Colour color = ui::kWhite;
  Colour bkColor = ui::kWhite;

  void SetPattern(std::int32_t value) { pattern = value; }
  void SetColor(Colour value) { color = value; }
  void SetBkColor(Colour value) { bkColor = value; }
  std::int32_t GetPattern() const { return pattern; }
  Colour GetColor() const { return color; }
  Colour GetBkColor() const { return bkColor; }

  friend bool operator==(const GridBrush&, const GridBrush&) = default;
};

struct GridFont {
  double size = 0;  // points
  void SetSize(double points) { size = points; }
  friend bool operator==(const GridFont&, const GridFont&) = default;
};

// What a style may say of a cell; what is absent is left to the layer below: registered base style, header
// base, default.
struct StyleAttributes {
  std::optional<std::string> value;
  std::optional<std::string> userAttribute;
  std::optional<std::string> toolTip;
  std::optional<std::int32_t> baseStyle;  // the identifier of a registered style
  std::optional<GridBrush> interior;
  std::optional<Colour> textColor;
  std::optional<std::int32_t> horizontalAlignment;  // 0 left, 1 right, 2 centre
  std::optional<std::int32_t> verticalAlignment;    // 0 top, 1 centre, 2 bottom
  std::optional<std::int32_t> format;               // 0 general, 1 fixed with `places` decimals
  std::optional<std::int32_t> places;
  std::optional<bool> readOnly;
  std::optional<bool> wrapText;
  std::optional<bool> draw3dFrame;
  std::optional<GridFont> font;
  std::optional<std::string> styleToolTip;

  friend bool operator==(const StyleAttributes&, const StyleAttributes&) = default;
};

// All of them, for what goes over the attributes of a style.
inline constexpr std::tuple kStyleAttributes{&StyleAttributes::value,
                                             &StyleAttributes::userAttribute,
                                             &StyleAttributes::toolTip,
                                             &StyleAttributes::baseStyle,
                                             &StyleAttributes::interior,
                                             &StyleAttributes::textColor,
                                             &StyleAttributes::horizontalAlignment,
                                             &StyleAttributes::verticalAlignment,
                                             &StyleAttributes::format,
                                             &StyleAttributes::places,
                                             &StyleAttributes::readOnly,
                                             &StyleAttributes::wrapText,
                                             &StyleAttributes::draw3dFrame,
                                             &StyleAttributes::font,
                                             &StyleAttributes::styleToolTip};
static_assert(std::tuple_size_v<decltype(kStyleAttributes)> == memberCount<StyleAttributes>());

// Puts the attributes that `other` has over those of `own`; the rest of `own` stays.
void overlay(StyleAttributes& own, const StyleAttributes& other);

// A free style: a set of attributes that its user fills and applies. The grid copies it at each call.
class GridStyle {
 public:
  void Free() { attributes_ = {}; }
  // Takes the attributes of another style over the own ones (Override) or becomes its copy (Copy).
  void ChangeStyle(const GridStyle& other, StyleMode mode);

  void SetValue(std::string text) { attributes_.value = std::move(text); }
  void SetIncludeValue(bool include);  // false: the style no longer says anything of the value
  void SetBaseStyle(std::int32_t identifier) { attributes_.baseStyle = identifier; }
  void SetInterior(Colour colour) { attributes_.interior = GridBrush{0, colour, colour}; }
  void SetInteriorBrush(const GridBrush& brush) { attributes_.interior = brush; }
  void SetTextColor(Colour colour) { attributes_.textColor = colour; }
  void SetHorizontalAlignment(std::int32_t value) { attributes_.horizontalAlignment = value; }
  void SetVerticalAlignment(std::int32_t value) { attributes_.verticalAlignment = value; }
  void SetFormat(std::int32_t value) { attributes_.format = value; }
  void SetPlaces(std::int32_t value) { attributes_.places = value; }
  void SetReadOnly(bool value) { attributes_.readOnly = value; }
  void SetWrapText(bool value) { attributes_.wrapText = value; }
  void SetDraw3dFrame(bool value) { attributes_.draw3dFrame = value; }
  void SetStyleToolTip(std::string text) { attributes_.styleToolTip = std::move(text); }
  void SetFont(const GridFont& font, std::int32_t) { attributes_.font = font; }

  // Absent attributes read as their neutral value; GetInterior tells whether there is a brush at all.
  std::optional<GridBrush> GetInterior() const { return attributes_.interior; }
  Colour GetTextColor() const { return attributes_.textColor.value_or(0); }
  std::int32_t GetHorizontalAlignment() const { return attributes_.horizontalAlignment.value_or(0); }
  std::int32_t GetVerticalAlignment() const { return attributes_.verticalAlignment.value_or(0); }
  std::int32_t GetFormat() const { return attributes_.format.value_or(0); }
  std::int32_t GetPlaces() const { return attributes_.places.value_or(0); }
  bool GetReadOnly() const { return attributes_.readOnly.value_or(false); }
  bool GetWrapText() const { return attributes_.wrapText.value_or(false); }
  bool GetDraw3dFrame() const { return attributes_.draw3dFrame.value_or(false); }

  const StyleAttributes& attributes() const { return attributes_; }
  StyleAttributes& attributes() { return attributes_; }

 private:
  StyleAttributes attributes_;
};

// A block of physical cells, or the whole table, headers included, whatever its size when the range is used.
class GridRange {
 public:
  std::int32_t Left = 0;
  std::int32_t Top = 0;
  std::int32_t Right = -1;
  std::int32_t Bottom = -1;

  void InitRange(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    Left = left, Top = top, Right = right, Bottom = bottom, isTable_ = false;
  }
  void SetTable() { isTable_ = true; }
  bool isTable() const { return isTable_; }

 private:
  bool isTable_ = false;
};

// One sort key: the row or column whose cells decide. Texts that are numbers compare as numbers and come
// before others.
struct SortInfo {
  std::int32_t nRC = 0;
  std::int16_t SortType = 0;
  std::int32_t SortOrder = 0;  // 0 ascending, 1 descending
  bool bCase = false;
};

// Stores and loads the style of one cell, its value, user attribute and tool tip with it.
class GridData {
 public:
  virtual ~GridData() = default;
  virtual bool StoreStyleRowCol(std::int32_t row, std::int32_t col, const GridStyle& style, StyleMode mode,
                                std::int32_t type) = 0;
  // With Copy the style becomes that of the cell alone, empty for an empty cell.
  virtual bool GetStyleRowCol(std::int32_t row, std::int32_t col, GridStyle& style, StyleMode mode,
                              std::int32_t type) = 0;
};

// The selection: blocks of cells 1 to count, none while only a current cell is set.
class RangeList {
 public:
  virtual ~RangeList() = default;
  virtual std::int32_t GetCount() const = 0;
  virtual GridRange Item(std::int32_t index) const = 0;  // from 0
};

class StylesMap {
 public:
  virtual ~StylesMap() = default;
  // Always a new style; its identifier, 1 or more.
  virtual std::int32_t RegisterStyle(const std::string& name, const GridStyle& style, std::int32_t) = 0;
  // Changes the look of all cells that use the style.
  virtual bool ChangeRegisteredStyle(std::int32_t identifier, const GridStyle& style, std::int32_t,
                                     std::int32_t, double mode) = 0;
};

class GridParameters {
 public:
  virtual ~GridParameters() = default;
  virtual GridData& GetData() = 0;
  virtual const RangeList& GetRangeList() const = 0;
  virtual StylesMap& GetStylesMap() = 0;
};

class PrintParameters {
 public:
  virtual ~PrintParameters() = default;
  virtual void SetBlackWhite(bool blackWhite) = 0;
};

// A whole number for one cell of a line, and the registered style under it (below 0: the style stays).
struct LineCell {
  std::int32_t position;
  std::int32_t value;
  std::int32_t baseStyle;
};

// What of a cell a line is storing: told so that a failure can name the operation.
enum class LineStep { Value, Style };

// Called with the index along the line and the attribute there; the text lives for the call only.
using TextVisitor = std::function<void(std::int32_t position, std::string_view text)>;

// Called with a number of cells that have been exchanged.
using CellsExchanged = std::function<void(std::int64_t cells)>;

class Grid : public ui::Control {
 public:
  using Control::Control;

  // ---- size, header and drag states
  virtual std::int32_t RowCount() const = 0;
  virtual void SetRowCount(std::int32_t count) = 0;
  virtual std::int32_t ColCount() const = 0;
  virtual void SetColCount(std::int32_t count) = 0;
  virtual bool ColHeadersVisible() const = 0;  // row 0
  virtual void SetColHeadersVisible(bool visible) = 0;
  virtual bool RowHeadersVisible() const = 0;  // column 0
  virtual void SetRowHeadersVisible(bool visible) = 0;
  virtual bool AllowDragRows() const = 0;
  virtual void SetAllowDragRows(bool allow) = 0;
  virtual bool AllowDragCols() const = 0;
  virtual void SetAllowDragCols(bool allow) = 0;
  // True: values and styles of cells whose style is read-only are refused, without an error. Nothing else is.
  virtual bool LockReadOnly() const = 0;
  virtual void SetLockReadOnly(bool lock) = 0;

  // ---- cells. Writes of values and styles answer whether they were taken.
  virtual std::string GetValue(std::int32_t row, std::int32_t col) const = 0;
  virtual bool SetValueRange(std::int32_t row, std::int32_t col, std::string_view text, std::int32_t) = 0;
  virtual std::string GetUserAttribute(std::int32_t row, std::int32_t col) const = 0;
  virtual void SetUserAttribute(std::int32_t row, std::int32_t col, std::string_view text) = 0;
  virtual void SetToolTip(std::int32_t row, std::int32_t col, std::string_view text) = 0;
  virtual bool SetStyleRange(const GridRange& range, const GridStyle& style, StyleMode mode) = 0;
  virtual void SetCoveredCells(std::int32_t top, std::int32_t left, std::int32_t bottom,
                               std::int32_t right) = 0;
  // The current cell may be any cell; making it current may scroll the view and raises no event. Its live
  // text is what the user is typing there, else the stored value.
  virtual void SetCurrentCell(std::int32_t row, std::int32_t col) = 0;
  virtual std::string GetCurrentCellText(std::int32_t row, std::int32_t col) const = 0;

  // ---- whole lines at once. A line is a row (Axis::Rows) or a column (Axis::Columns). Each of these goes
  // cell by cell over the operations above and below; a grid with a faster way overrides it.
  // Stores the cells of a line in their order. Where one fails, `step` says what was being stored.
  virtual void StoreLine(Axis axis, std::int32_t index, std::span<const LineCell> cells, LineStep& step);
  // Appends the live texts of a line's cells from..to, all of them or the visible ones, to `out`, each
  // between `before` and `after`. Gives the position of the last, -1 without any. The current cell may move.
  virtual std::int32_t AppendTexts(Axis axis, std::int32_t index, std::int32_t from, std::int32_t to,
                                   bool visibleOnly, std::string_view before, std::string_view after,
                                   std::string& out);
  virtual void VisitUserAttributes(Axis axis, std::int32_t index, std::int32_t from, std::int32_t to,
                                   const TextVisitor& visitor) const;
  // Exchanges cells with all that belongs to them, and the hidden states of rows and columns. Calls `done`
  // after every `every` cells. The counts are the caller's to exchange; widths, frozen counts, header, drag
  // and base styles stay as they are.
  virtual void ExchangeAxes(std::int64_t every, const CellsExchanged& done);

  // ---- rows and columns. Row 0 and column 0 are never removed; inserting before 0 acts as before 1.
  virtual bool InsertRows(std::int32_t start, std::int32_t count) = 0;
  virtual bool RemoveRows(std::int32_t from, std::int32_t to) = 0;
  virtual bool RemoveCols(std::int32_t from, std::int32_t to) = 0;
  virtual bool HideRows(std::int32_t from, std::int32_t to, bool hide) = 0;
  virtual bool HideCols(std::int32_t from, std::int32_t to, bool hide) = 0;
  virtual bool IsRowHidden(std::int32_t row) const = 0;
  virtual bool IsColHidden(std::int32_t col) const = 0;
  virtual void SetFrozenRows(std::int32_t count, std::int32_t headers) = 0;
  virtual void SetFrozenCols(std::int32_t count, std::int32_t headers) = 0;
  virtual std::int32_t FrozenRows() const = 0;
  virtual std::int32_t FrozenCols() const = 0;
  virtual void UnfreezeRows() = 0;
  virtual void UnfreezeCols() = 0;
  virtual bool SetColWidth(std::int32_t from, std::int32_t to, std::int32_t width) = 0;
  // Widths of the columns of the range; hidden ones stay hidden.
  virtual bool ResizeToFit(const GridRange& range) = 0;
  // Sorting permutes whole rows (columns) of the range, over all columns (rows) and the headers; ties keep
  // their order. What is hidden and how wide it is stays in place.
  virtual SortInfo NewSortInfo() const = 0;
  virtual bool SortRows(const GridRange& range, std::int32_t count, std::span<const SortInfo> keys,
                        double) = 0;
  virtual bool SortColumns(const GridRange& range, std::int32_t count, std::span<const SortInfo> keys,
                           double) = 0;

  // ---- painting and view
  virtual bool LockUpdate(bool lock) = 0;  // a plain flag; returns the former state and repaints nothing
  virtual void Redraw(double) = 0;         // nothing while locked or while GridEnabledRedraw is off
  virtual bool GridEnabledRedraw() const = 0;
  virtual void SetGridEnabledRedraw(bool enabled) = 0;
  virtual std::int32_t TopRow() const = 0;
  virtual void SetTopRow(std::int32_t row) = 0;
  virtual std::int32_t LeftCol() const = 0;
  virtual void SetLeftCol(std::int32_t col) = 0;
  virtual bool GridPressState() const = 0;  // whether the press under way is one that selects or drags cells

  // ---- styles and objects. Makers may give null.
  virtual std::shared_ptr<GridStyle> NewStyle() = 0;
  virtual std::shared_ptr<GridRange> NewRange() = 0;
  virtual std::shared_ptr<GridBrush> NewBrush() = 0;
  virtual GridParameters& GridParam() = 0;
  virtual GridStyle& ColHeaderStyle() = 0;
  virtual GridStyle& RowHeaderStyle() = 0;
  virtual void StyleDialog() = 0;  // modal: the user edits the registered styles

  // ---- output. Errors name the file.
  virtual void SaveExcelFile(const std::string& fileName) = 0;
  virtual void CopyCells(const GridRange& range) = 0;
  virtual PrintParameters& PrintParam() = 0;
  virtual std::shared_ptr<GridFont> PrintFont() = 0;
  virtual void SetPrintHeaderCell(double row, double col, const GridStyle& style) = 0;
  virtual void SetPrintFooterCell(double row, double col, const GridStyle& style) = 0;
  virtual void PrintGrid() = 0;  // with its own dialog; a cancel returns normally

  // ---- events. Rows and columns arrive as physical numbers; a listener refuses by setting `value` to 0.
  Event<double, double> OnRButtonClickedRowCol;
  Event<double, double> OnLButtonDblClkRowCol;
  Event<> OnLButtonDown;
  Event<> OnLButtonUp;
  Event<double, double&> OnTrackColWidth;  // once, at the start of a drag
  Event<double, double> OnTrackColWidthEnd;
  Event<double, double, double&> OnSelDragColsStart;
  Event<double, double, double, double&> OnSelDragColsMove;
  Event<double, double, double> OnSelDragColsDrop;
  Event<double, double, double&> OnSelDragRowsStart;
  Event<double, double, double, double&> OnSelDragRowsMove;
  Event<double, double, double> OnSelDragRowsDrop;
};

}  // namespace banddesk
