#include "plugin/table/column_sizing.h"

#include <algorithm>
#include <vector>

#include "plugin/base/numbers.h"
#include "plugin/table/page_guards.h"

namespace banddesk {
namespace {

constexpr std::int32_t kFit = -1;
constexpr std::int32_t kNone = -1;

}  // namespace

void ColumnSizing::ResizeCols() {
  page_.frame.procedure("ResizeCols", [&] {
    if (!page_.m_oAFLP) return;
    UpdateLock lock(table_.grid());
    if (table_.m_bTransposed) {
      table_.range().SetTable();
      table_.grid().ResizeToFit(table_.range());
    } else {
      ResizeColumnSet(page_.analysis().BinGrid.get());
      ResizeColumnSet(page_.analysis().SampleGrid.get());
    }
    lock.restore();
  });
}

// Neighbours that fit their content are fitted together: the grid then passes over its cells once.
void ColumnSizing::ResizeColumnSet(const GridLayout* layout) {
  page_.frame.procedure("ResizeColumnSet", [&] {
    if (layout == nullptr) return;
    std::vector<std::int32_t> fitted;
    for (const auto& column : layout->Columns) {
      if (!column->IsVisible) continue;
      if (column->Width == kFit) {
        fitted.push_back(column->ColumnOrder);
      } else {
        table_.grid().SetColWidth(column->ColumnOrder, column->ColumnOrder, column->Width);
      }
    }
    std::sort(fitted.begin(), fitted.end());
    for (std::size_t first = 0, last = 0; first < fitted.size(); first = last + 1) {
      last = first;
      while (last + 1 < fitted.size() && fitted[last + 1] <= fitted[last] + 1) ++last;
      fitColumns(fitted[first], fitted[last]);
    }
  });
}

void ColumnSizing::fitColumns(std::int32_t first, std::int32_t last) {
  table_.InitRange(table_.range(), first, 0, last, table_.grid().RowCount());
  table_.grid().ResizeToFit(table_.range());
}

void ColumnSizing::fitPhysicalColumn(std::int32_t col) {
  table_.range().InitRange(col, 0, col, table_.grid().RowCount());
  table_.grid().ResizeToFit(table_.range());
}

void ColumnSizing::ResizeCol(std::int32_t col) {
  page_.frame.procedure("ResizeCol", [&] {
    if (table_.m_bTransposed) {
      fitPhysicalColumn(col);
      return;
    }
    if (!page_.analysis().BinGrid) return;
    const auto column = table_.columnAt(col);
    const std::int32_t fixed = required(column->Definition, "Definition").DefaultWidth;
    if (fixed > 0) {
      column->Width = fixed;
      table_.grid().SetColWidth(col, col, fixed);
    } else {
      column->Width = kFit;
      fitPhysicalColumn(col);
    }
  });
}

void ColumnSizing::grdAFLP_OnLButtonDown() {
  page_.frame.handler("grdAFLP_OnLButtonDown", [&] {
    m_bTrackEnded = false;
    m_bPressState = table_.grid().GridPressState();
    m_lTrackedCol = kNone;
  });
}

void ColumnSizing::grdAFLP_OnTrackColWidth(double col, double& value) {
  page_.frame.handler("grdAFLP_OnTrackColWidth", [&] {
    if (table_.grid().IsColHidden(roundToLong(col)) || m_bResizeApplied || m_bPressState) value = 0;
    m_bPressState = false;
    m_bResizeApplied = false;
  });
}

void ColumnSizing::grdAFLP_OnTrackColWidthEnd(double col, double width) {
  page_.frame.handler("grdAFLP_OnTrackColWidthEnd", [&] {
    m_bTrackEnded = true;
    m_lTrackedCol = roundToLong(col);
    if (!table_.m_bTransposed) table_.columnAt(m_lTrackedCol)->Width = roundToLong(width);
  });
}

void ColumnSizing::grdAFLP_OnLButtonUp() {
  page_.frame.handler("grdAFLP_OnLButtonUp", [&] {
    if (m_lTrackedCol == kNone) return;
    ResizeCol(m_lTrackedCol);
    m_bResizeApplied = true;
    m_lTrackedCol = kNone;
  });
}

}  // namespace banddesk
