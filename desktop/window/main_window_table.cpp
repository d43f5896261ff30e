// What the window does to the table in front: the commands of its menus, and what points at a line of it.
#include <QMessageBox>

#include "desktop/base/qt_text.h"
#include "desktop/grid/grid_view.h"
#include "desktop/views/result_view_page.h"
#include "desktop/window/main_window.h"
#include "desktop/window/review_start.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {
namespace {

constexpr std::int32_t kColumns = 1;
constexpr std::int32_t kKeys = 0;
constexpr std::int32_t kPagesUnasked = 20;

IAFLPResultsPage& resultsOn(const host::HostPage& page) {
  return *cast<IAFLPResultsPage>(page.control(), "AFLPResultsPage");
}

host::GridControl& gridOn(const host::HostPage& page) {
  return required(page.control()->Controls().find<host::GridControl>(names::kGrid), "Grid");
}

// Those that a view opened now would show.
std::int32_t selectedSamples(const host::HostPage& page) {
  const auto keys = resultsOn(page).GetSelected(kColumns, kKeys);
  std::int32_t count = 0;
  for (const std::int32_t key : *keys) count += key < 0 ? 1 : 0;
  return count;
}

bool opensViews(const ui::MenuItem& item) {
  const auto starts = [&](const char* start) { return item.Name().starts_with(start); };
  return starts(names::kSingleItems) || starts(names::kStackedItems) || starts(names::kOverlayItems);
}

}  // namespace

MainWindow::Page MainWindow::tableInFront() const {
  const Page page = pages_->currentPage();
  return page && page->DefinitionName() == names::kResultsPage && page->control() ? page : nullptr;
}

// The commands of the table that need no place in it; those of a row or column are under the right click. A
// view takes what is selected: without a right click nothing else tells which samples are meant.
void MainWindow::fillTable() {
  tableMenu_->clear();
  tableMenu_->addAction(review_);
  pictures_.addTo(*tableMenu_);
  tableMenu_->addSeparator();
  const Page page = tableInFront();
  if (!page) return;
  const auto* cell = page->control()->Controls().find<ui::MenuItem>(names::kCellMenu);
  if (cell == nullptr) return;
  guard_.run([&] {
    const bool hasSamples = gridOn(*page).selection().GetCount() > 0 && selectedSamples(*page) > 0;
    for (ui::MenuItem* item : cell->items()) {
      if (item != nullptr && opensViews(*item)) item->Enabled = hasSamples;
    }
  });
  fillMenu(*tableMenu_, *cell, nullptr, [this](ui::MenuItem& item) { takeItem(item); });
}

// As if the item were taken from the popup menu over the table.
void MainWindow::chooseOnPage(const char* menuItem) {
  const Page page = tableInFront();
  auto* item = page ? page->control()->Controls().find<ui::MenuItem>(menuItem) : nullptr;
  if (item != nullptr) takeItem(*item);
}

void MainWindow::takeItem(ui::MenuItem& item) {
  const Page page = tableInFront();
  if (!page || !mayChoose(item)) return;
  guard_.run([&] { choose(item, actionOn(*page)); });
}

// Each selected sample gets a page of its own, be it the whole table's.
bool MainWindow::mayChoose(const ui::MenuItem& item) {
  const Page page = tableInFront();
  if (!page || !item.Name().starts_with(names::kSingleItems)) return true;
  std::int32_t count = 0;
  guard_.run([&] { count = selectedSamples(*page); });
  if (count <= kPagesUnasked) return true;
  QMessageBox box(QMessageBox::Question, QStringLiteral("Show Single Result"),
                  QStringLiteral("%1 samples are selected. Open a page for each of them?").arg(count),
                  QMessageBox::Yes | QMessageBox::No, this);
  box.setDefaultButton(QMessageBox::No);
  box.setInformativeText(QStringLiteral("An overlay or a stacked graph shows them on one page."));
  return box.exec() == QMessageBox::Yes;
}

// A bin's menu is that of its first cell, a column's that of its header.
std::function<CellPlace(Axis, std::int32_t)> MainWindow::menuCellOf(const host::HostPage& page) {
  return [weak = page.weak_from_this()](Axis axis, std::int32_t line) {
    const auto open = weak.lock();
    const bool isTransposed = open && open->control() && resultsOn(*open).Transpose();
    const std::int32_t across = (axis == Axis::Rows) != isTransposed ? 1 : 0;
    return axis == Axis::Rows ? CellPlace{line, across} : CellPlace{across, line};
  };
}

// The bin of the table's chosen row, in an overlay in which the bins are gone through one by one.
void MainWindow::reviewBin() {
  const Page page = tableInFront();
  if (!page) return;
  guard_.run([&] {
    const auto analysis = cast<AFLP>(page->bound(), "AFLP");
    const ReviewStart start = reviewStart(*analysis, resultsOn(*page));
    const auto opened = cast<host::HostPage>(
        workbench_.host().pages().OpenPage("OverlayGraphView", start.results, nullptr, true, true, true, true,
                                           true, true, nullptr, false, 0),
        "Page");
    if (auto* view = qobject_cast<ResultViewPage*>(pages_->contentOf(*opened))) view->showBin(start.row);
  });
}

// Selects a line of the table in front, given in logical terms, and brings it into sight.
void MainWindow::pointAt(Axis axis, std::int32_t line) {
  const Page page = tableInFront();
  if (!page) return;
  host::GridControl& grid = gridOn(*page);
  if ((axis == Axis::Rows) != resultsOn(*page).Transpose()) {
    grid.SetCurrentCell(line, grid.currentCol());
    grid.user().selectRows(line, line);
  } else {
    grid.SetCurrentCell(grid.currentRow(), line);
    grid.user().selectCols(line, line);
  }
}

}  // namespace banddesk::desktop
