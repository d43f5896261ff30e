#include "plugin/table/styles.h"

#include "plugin/base/numbers.h"
#include "plugin/table/page_guards.h"

namespace banddesk {
namespace {

constexpr double kChangeMode = 4.0;

}  // namespace

std::int32_t Styles::baseStyle(std::size_t which) const {
  if (which >= m_alBaseStyles.size()) {
    raise(ErrorNumber::SubscriptOutOfRange, "Styles",
          "There is no cell style " + std::to_string(which) + ".");
  }
  return m_alBaseStyles[which];
}

std::shared_ptr<GridStyle> Styles::InitStyle(const GridColumn& entry) {
  return page_.frame.procedure("InitStyle (Get)", [&]() -> std::shared_ptr<GridStyle> {
    auto style = table_.grid().NewStyle();
    if (!style) return nullptr;
    if (const auto brush = table_.grid().NewBrush()) {
      brush->SetPattern(entry.InteriorPattern);
      brush->SetColor(entry.InteriorColor);
      brush->SetBkColor(entry.InteriorBkColor);
      style->SetInteriorBrush(*brush);
    } else {
      style->SetInterior(entry.InteriorBkColor);
    }
    style->SetReadOnly(entry.ReadOnly);
    style->SetWrapText(entry.WrapText);
    style->SetHorizontalAlignment(entry.HorizontalAlignment);
    style->SetVerticalAlignment(entry.VerticalAlignment);
    style->SetTextColor(entry.TextColor);
    style->SetFormat(entry.Format);
    style->SetPlaces(entry.Places);
    style->SetDraw3dFrame(entry.Draw3dFrame);
    style->SetStyleToolTip(entry.StyleToolTip);
    return style;
  });
}

std::int32_t Styles::registerStyle(const std::string& name, const GridColumn& entry) {
  StylesMap& map = table_.grid().GridParam().GetStylesMap();
  return map.RegisterStyle(name + " Style", required(InitStyle(entry), "Style"), -1);
}

void Styles::InitDye(const std::shared_ptr<GridColumn>& column) {
  page_.frame.procedure("InitDye", [&] {
    WriteAccess access(table_.grid());
    const std::string& key = required(column, "GridColumn").Key;
    const double dye = isNumeric(key) ? leadingNumber(key) : -1;
    if (dye >= 0 && dye <= kDyeCount - 1) showDye(static_cast<std::size_t>(roundToLong(dye)), *column);
    access.restore();
  });
}

void Styles::showDye(std::size_t dye, const GridColumn& column) {
  ui::CheckBox& box = controls_.chkDye[dye];
  box.Value = column.IsVisible ? 1 : 0;
  box.BackColor = required(page_.study().Dyes.Item(std::to_string(dye)), "Dye").Color.get();
  box.ForeColor =
      box.Value != 0 ? ui::kWindowText : page_.services.GridUtilities().ContrastColor(box.BackColor);
  if (m_alDyeStyles[dye] != 0) {
    const auto style = InitStyle(column);
    StylesMap& map = table_.grid().GridParam().GetStylesMap();
    map.ChangeRegisteredStyle(m_alDyeStyles[dye], required(style, "Style"), 0, 0, kChangeMode);
  } else {
    m_alDyeStyles[dye] = registerStyle(column.Header, column);
  }
}

void Styles::InitStyles() {
  page_.frame.procedure("InitStyles", [&] {
    AFLP& analysis = page_.analysis();
    for (const auto& entry : analysis.DyeGrid->Columns) InitDye(entry);

    m_alBaseStyles.assign(static_cast<std::size_t>(analysis.StyleGrid->Columns.Count()) + 1, 0);
    for (const auto& entry : analysis.StyleGrid->Columns) {
      const auto order = static_cast<std::size_t>(entry->ColumnOrder.get());
      if (order >= m_alBaseStyles.size()) {
        raise(ErrorNumber::SubscriptOutOfRange, "Styles",
              "There is no place for the style " + entry->ToolTip.get());
      }
      // These entries are named by their tool tip, those of dyes and columns by their header.
      m_alBaseStyles[order] = registerStyle(entry->ToolTip, *entry);
    }

    double highest = 0;
    for (const auto& column : analysis.BinGrid->Columns) {
      highest = page_.framework().Max(highest, column->ColumnOrder);
      if (!required(column->Definition, "Definition").HasOwnStyle) continue;
      if (!m_colColumnStyles) m_colColumnStyles = std::make_unique<Collection<std::int32_t>>();
      m_colColumnStyles->Add(registerStyle(column->Header, *column), column->Key.get());
    }
    // Behind the last bin information column, whether that is visible or not.
    table_.m_lFirstSampleCol = roundToLong(highest + 1);
  });
}

void Styles::FormatStyles() {
  page_.frame.procedure("FormatStyles", [&] {
    UpdateLock lock(table_.grid());
    table_.grid().StyleDialog();
    lock.restore();
  });
}

void Styles::PersistStyles() {
  page_.frame.procedure("PersistStyles", [&] {
    table_.grid().GridParam().GetStylesMap();
    for ([[maybe_unused]] const auto& column : page_.analysis().BinGrid->Columns) {
      // Styles are the grid's for as long as the page lives; none goes back to its column.
    }
  });
}

void Styles::PersistStyle(GridColumn& column, const GridStyle* style) const {
  page_.frame.procedure("PersistStyle", [&] {
    if (style == nullptr) return;
    if (const auto brush = style->GetInterior()) {
      column.InteriorPattern = brush->GetPattern();
      column.InteriorColor = brush->GetColor();
      column.InteriorBkColor = brush->GetBkColor();
    }
    column.ReadOnly = style->GetReadOnly();
    column.WrapText = style->GetWrapText();
    column.HorizontalAlignment = style->GetHorizontalAlignment();
    column.VerticalAlignment = style->GetVerticalAlignment();
    column.TextColor = style->GetTextColor();
    column.Format = style->GetFormat();
    column.Places = style->GetPlaces();
    column.Draw3dFrame = style->GetDraw3dFrame();
  });
}

}  // namespace banddesk
