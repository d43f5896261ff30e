// The logical table's selection, hiding of rows and columns, and the locked column.
#include "plugin/base/numbers.h"
#include "plugin/table/logical_table.h"
#include "plugin/table/page_guards.h"

namespace banddesk {
namespace {

constexpr std::int32_t kColumns = 1;

std::string negated(std::string_view key) { return generalText(-leadingNumber(key)); }

}  // namespace

// `axis` 1 asks for columns, any other value for rows; `raw` 0 for keys or bins, any other value for indexes.
std::shared_ptr<Collection<std::int32_t>> LogicalTable::GetSelected(std::int32_t axis,
                                                                    std::int32_t raw) const {
  return page_.frame.procedure("GetSelected", [&] {
    auto selected = std::make_shared<Collection<std::int32_t>>();
    const RangeList& ranges = grid().GridParam().GetRangeList();
    Framework& framework = page_.framework();
    for (std::int32_t i = 0; i < ranges.GetCount(); ++i) {
      const GridRange range = ranges.Item(i);
      const bool across = m_bTransposed != (axis != 0);
      const std::int32_t a = across ? range.Left : range.Top;
      const std::int32_t b = across ? range.Right : range.Bottom;
      addSelected(*selected, axis == kColumns, raw, roundToLong(framework.Min(a, b)),
                  roundToLong(framework.Max(a, b)));
    }
    if (ranges.GetCount() == 0) {
      // The right-clicked cell stands in. Asked for keys, a row yields that of a column too.
      std::int32_t value = axis == kColumns ? m_lMenuCol : m_lMenuRow;
      if (raw == 0) value = toLong(Key(value));
      selected->Add(value, integerText(value));
    }
    return selected;
  });
}

void LogicalTable::addSelected(Collection<std::int32_t>& selected, bool columns, std::int32_t raw,
                               std::int32_t low, std::int32_t high) const {
  for (std::int32_t index = low; index <= high; ++index) {
    const bool hidden = columns ? IsColHidden(index) : IsRowHidden(index);
    const std::int32_t value = selectedValue(columns, raw, index);
    if (hidden) continue;
    // Overlapping ranges yield each value once.
    const std::string key = integerText(value);
    if (!selected.holdsKey(key)) selected.Add(value, key);
  }
}

std::int32_t LogicalTable::selectedValue(bool columns, std::int32_t raw, std::int32_t index) const {
  if (raw != 0) return index;
  return columns ? toLong(Key(index)) : Bin(index);
}

bool LogicalTable::IsColHidden(std::int32_t col) const {
  return page_.frame.procedure(
      "IsColHidden", [&] { return m_bTransposed ? grid().IsRowHidden(col) : grid().IsColHidden(col); });
}

bool LogicalTable::IsRowHidden(std::int32_t row) const {
  return page_.frame.procedure(
      "IsRowHidden", [&] { return m_bTransposed ? grid().IsColHidden(row) : grid().IsRowHidden(row); });
}

bool LogicalTable::HideCols(std::int32_t startCol, std::int32_t endCol, bool hide) {
  return page_.frame.procedure("HideCols", [&] {
    return m_bTransposed ? grid().HideRows(startCol, endCol, hide) : grid().HideCols(startCol, endCol, hide);
  });
}

bool LogicalTable::HideRows(std::int32_t startRow, std::int32_t endRow, bool hide) {
  return page_.frame.procedure("HideRows", [&] {
    return m_bTransposed ? grid().HideCols(startRow, endRow, hide) : grid().HideRows(startRow, endRow, hide);
  });
}

bool LogicalTable::RemoveRows(std::int32_t from, std::int32_t to) {
  return page_.frame.procedure("RemoveRows", [&] {
    return m_bTransposed ? grid().RemoveCols(from, to) : grid().RemoveRows(from, to);
  });
}

// Starts from the last right-clicked column and reaches both layouts through the sign of its key.
std::int32_t LogicalTable::LockedCol() const {
  return page_.frame.procedure("LockedCol (Get)", [&]() -> std::int32_t {
    std::string key = Key(m_lMenuCol);
    if (leadingNumber(key) == 0) key = "1";
    if (const auto& locked = ColumnSet(key)->LockedColumn.get()) return locked->ColumnOrder;
    if (const auto& locked = ColumnSet(negated(key))->LockedColumn.get()) return locked->ColumnOrder;
    return 0;
  });
}

void LogicalTable::SetLockedCol(std::int32_t col) {
  page_.frame.procedure("LockedCol (Let)", [&] {
    WriteAccess access(grid());
    if (col != 0) {
      const std::string key = Key(col);
      SetFrozenCols(col, col);
      if (leadingNumber(key) != 0) {
        const auto layout = ColumnSet(key);
        layout->LockedColumn = layout->Columns.Item(key);
        ColumnSet(negated(key))->LockedColumn = nullptr;
      }
    } else {
      UnfreezeGridCols();
      page_.analysis().BinGrid->LockedColumn = nullptr;
      page_.analysis().SampleGrid->LockedColumn = nullptr;
    }
    access.restore();
  });
}

void LogicalTable::SetFrozenCols(std::int32_t count, std::int32_t headerCount) {
  page_.frame.procedure("SetFrozenCols", [&] {
    if (m_bTransposed) {
      grid().SetFrozenRows(count, headerCount);
    } else {
      grid().SetFrozenCols(count, headerCount);
    }
  });
}

void LogicalTable::UnfreezeGridCols() {
  page_.frame.procedure("UnfreezeGridCols", [&] {
    if (m_bTransposed) {
      grid().UnfreezeRows();
    } else {
      grid().UnfreezeCols();
    }
  });
}

}  // namespace banddesk
