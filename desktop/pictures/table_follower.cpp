#include "desktop/pictures/table_follower.h"

#include <algorithm>
#include <utility>

#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {
namespace {

constexpr int kPause = 60;  // ms, within which a table may still change

// The table as its page offers it.
struct OpenTable {
  IAFLPResultsPage& page;
  host::GridControl& grid;

  static OpenTable of(const host::HostPage& page) {
    auto& results = required(dynamic_cast<IAFLPResultsPage*>(page.control().get()), "AFLPResultsPage");
    return {results, required(results.Controls().find<host::GridControl>(names::kGrid), "Grid")};
  }

  Axis sampleAxis() const { return page.Transpose() ? Axis::Rows : Axis::Columns; }
  std::int32_t resultAt(std::int32_t column) const {
    return std::max(static_cast<std::int32_t>(-leadingNumber(page.Key(column))), 0);
  }
  void goTo(std::int32_t row, std::int32_t column) const {
    page.Transpose() ? grid.SetCurrentCell(column, row) : grid.SetCurrentCell(row, column);
  }
  // 0 where no row holds the bin.
  std::int32_t rowOf(std::int32_t bin) const {
    std::int32_t found = 0;
    for (std::int32_t row = 1; row <= page.NumRows(); ++row) {
      if (page.Bin(row) == bin) found = row;
    }
    return found;
  }
  std::int32_t currentRow() const { return page.Transpose() ? grid.currentCol() : grid.currentRow(); }
  std::int32_t currentColumn() const { return page.Transpose() ? grid.currentRow() : grid.currentCol(); }
};

std::set<std::int32_t> selectedResults(const OpenTable& table) {
  const Axis axis = table.sampleAxis();
  const std::int32_t count = axis == Axis::Rows ? table.grid.RowCount() : table.grid.ColCount();
  std::set<std::int32_t> results;
  for (host::Block block : table.grid.selection().blocks()) {
    if (block.first(axis) <= 1 && block.last(axis) >= count) continue;  // whole lines of bins
    for (std::int32_t column = block.first(axis); column <= block.last(axis); ++column) {
      if (!table.page.IsColHidden(column)) results.insert(table.resultAt(column));
    }
  }
  results.erase(0);
  return results;
}

// In the row of a bin only their cells there: commands on bins act on the rows of what is selected.
void selectColumns(const OpenTable& table, std::int32_t row, std::int32_t first, std::int32_t last,
                   bool adds) {
  const std::int32_t all = table.page.Transpose() ? table.grid.ColCount() : table.grid.RowCount();
  const std::int32_t top = std::max(row, 1), bottom = row > 0 ? row : all;
  // NOLINTNEXTLINE(readability-suspicious-call-argument): rows and columns have changed places
  table.page.Transpose() ? table.grid.user().selectCells(first, top, last, bottom, adds)
                         : table.grid.user().selectCells(top, first, bottom, last, adds);
}

// Whether nothing is selected beside a bin's row; 0 is any.
bool isWithin(const OpenTable& table, std::int32_t row) {
  const Axis axis = table.page.Transpose() ? Axis::Columns : Axis::Rows;
  return row == 0 || std::ranges::all_of(table.grid.selection().blocks(), [&](host::Block block) {
           return block.first(axis) == row && block.last(axis) == row;
         });
}

void selectResults(const OpenTable& table, const std::set<std::int32_t>& results, std::int32_t row) {
  bool isFirst = true;
  const std::int32_t count = table.page.NumCols();
  const auto isWanted = [&](std::int32_t column) {
    return results.contains(table.resultAt(column)) && !table.page.IsColHidden(column);
  };
  for (std::int32_t column = 1; column <= count; ++column) {
    if (!isWanted(column)) continue;
    const std::int32_t first = column;
    while (column < count && isWanted(column + 1)) ++column;
    if (isFirst && !results.contains(table.resultAt(table.currentColumn())))
      table.goTo(table.currentRow(), first);
    selectColumns(table, row, first, column, !isFirst);
    isFirst = false;
  }
  if (isFirst) table.grid.user().clickCell(table.grid.currentRow(), table.grid.currentCol());
}

}  // namespace

TableFollower::TableFollower(host::Host& host, std::shared_ptr<AFLP> analysis, StudySelection& selection,
                             QObject* parent)
    : QObject(parent), host_(host), analysis_(std::move(analysis)), selection_(selection) {
  later_.setSingleShot(true);
  connect(&later_, &QTimer::timeout, this, [this] { look(); });
  selectionChanged_ = selection_.Changed.connect([this] { push(); });
}

std::shared_ptr<host::HostPage> TableFollower::page() const {
  auto page = page_.lock();
  return page && page->control() ? page : nullptr;
}

void TableFollower::look() {
  later_.stop();
  const bool isFound = !isOpen();
  if (isFound) {
    connections_.clear();
    for (const auto& page : host_.pages().openPages()) {
      if (page->DefinitionName() == names::kResultsPage && page->control() && page->bound() == analysis_)
        follow(page);
    }
  }
  if (!isOpen() || !read() || isFound) Q_EMIT changed();
}

void TableFollower::follow(const std::shared_ptr<host::HostPage>& page) {
  page_ = page;
  connections_.push_back(OpenTable::of(*page).grid.Repaint.connect([this] { later_.start(kPause); }));
  // Another page may take its place at once.
  connections_.push_back(page->base()->Terminate.connect([this] {
    page_.reset();
    later_.start(0);
  }));
}

// Whether the values are as they were. What a table under way holds is no table; it repaints when it is
// finished.
bool TableFollower::read() {
  const auto open = OpenTable::of(*page());
  if (open.grid.isLocked()) return true;
  auto table = host::plainTable(*analysis_, open.page);
  const bool isOther = !table_ || table != *table_;
  if (isOther) table_ = std::make_shared<const host::PlainTable>(std::move(table));
  pull();
  return !isOther;
}

// The table's selection counts when it is another than it was, so that samples which are in no table stay
// selected.
void TableFollower::pull() {
  auto selected = selectedResults(OpenTable::of(*page()));
  if (selected == seen_) return;
  seen_ = selected;
  selection_.set(std::move(selected), {});
}

void TableFollower::push() {
  if (!isOpen()) return;
  const auto open = OpenTable::of(*page());
  if (open.grid.isLocked()) return;
  std::set<std::int32_t> wanted;
  for (std::int32_t column = 1; column <= open.page.NumCols(); ++column) {
    const std::int32_t result = open.resultAt(column);
    if (selection_.results().contains(result) && !open.page.IsColHidden(column)) wanted.insert(result);
  }
  const auto& bin = selection_.bin();
  const std::int32_t row = bin && bin->analysis == analysis_.get() ? open.rowOf(bin->bin) : 0;
  if (wanted != selectedResults(open) || !isWithin(open, row)) selectResults(open, wanted, row);
  seen_ = wanted;
}

void TableFollower::show(std::int32_t bin, std::int32_t result) {
  if (!isOpen()) return;
  const auto open = OpenTable::of(*page());
  std::int32_t row = open.rowOf(bin), column = open.currentColumn();
  if (row == 0) row = open.currentRow();
  for (std::int32_t each = 1; each <= open.page.NumCols(); ++each) {
    if (result > 0 && open.resultAt(each) == result) column = each;
  }
  open.goTo(row, column);
}

}  // namespace banddesk::desktop
