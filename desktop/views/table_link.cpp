#include "desktop/views/table_link.h"

#include <algorithm>
#include <utility>

#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {

TableLink::TableLink(host::Host& host, std::vector<std::int32_t> resultIds, QObject* parent)
    : QObject(parent), host_(host), resultIds_(std::move(resultIds)) {
  later_.setSingleShot(true);
  connect(&later_, &QTimer::timeout, this, [this] { refresh(); });
}

bool TableLink::holdsResults(const host::HostPage& page) const {
  if (page.DefinitionName() != names::kResultsPage || !page.control()) return false;
  const auto* analysis = dynamic_cast<const AFLP*>(page.bound().get());
  return analysis != nullptr && !resultIds_.empty() && std::ranges::all_of(resultIds_, [&](std::int32_t id) {
           return analysis->Results.holdsKey(integerText(id));
         });
}

void TableLink::look() {
  if (isLinked()) return;
  const auto& open = host_.pages().openPages();
  const auto found =
      std::find_if(open.rbegin(), open.rend(), [this](const auto& page) { return holdsResults(*page); });
  if (found != open.rend()) guarded([&] { follow(*found); });
}

void TableLink::follow(const std::shared_ptr<host::HostPage>& page) {
  page_ = page;
  connections_.clear();
  connections_.push_back(grid().Repaint.connect([this] { later_.start(0); }));
  connections_.push_back(page->base()->Terminate.connect([this] { leave(); }));
  refresh();
}

void TableLink::leave() {
  page_.reset();
  connections_.clear();
  take({});
}

std::shared_ptr<host::HostPage> TableLink::page() const {
  auto page = page_.lock();
  return page && page->control() ? page : nullptr;
}

IAFLPResultsPage& TableLink::table() const {
  const auto open = page();
  return required(dynamic_cast<IAFLPResultsPage*>(required(open, "Page").control().get()), "AFLPResultsPage");
}

host::GridControl& TableLink::grid() const {
  return required(table().Controls().find<host::GridControl>(names::kGrid), "Grid");
}

// A table repaints for every click in it; most of them change no bin.
void TableLink::take(Bands bands) {
  later_.stop();
  if (bands == *bands_) return;
  bands_ = std::make_shared<const Bands>(std::move(bands));
  Q_EMIT changed();
}

// What is called from the toolkit ends here.
void TableLink::guarded(const std::function<void()>& work) const {
  try {
    work();
  } catch (...) {
    const Error error = currentError();
    if (showError) showError(error);
  }
}

void TableLink::refresh() {
  if (!isLinked()) return;
  guarded([&] { take(binBands(*cast<AFLP>(page()->bound(), "AFLP"), table())); });
}

// Whatever a cell shows of its fragments, it is a number above 0 where there are any.
std::vector<bool> TableLink::samplesIn(std::int32_t row) const {
  std::vector<bool> holds;
  if (!isLinked()) return holds;
  guarded([&] {
    IAFLPResultsPage& page = table();
    for (const std::int32_t id : resultIds_)
      holds.push_back(leadingNumber(page.CellText("-" + integerText(id), row)) > 0);
  });
  holds.resize(resultIds_.size());
  return holds;
}

void TableLink::select(std::int32_t row) {
  if (!isLinked()) return;
  guarded([&] {
    host::GridControl& grid = this->grid();
    if (table().Transpose()) {
      grid.SetCurrentCell(1, row);
      grid.user().selectCols(row, row);
    } else {
      grid.SetCurrentCell(row, 1);
      grid.user().selectRows(row, row);
    }
  });
}

void TableLink::toggleExcluded(std::int32_t row) {
  if (!isLinked()) return;
  select(row);
  const auto open = page();
  guarded([&] { host_.pages().userEvent(*open, [&] { chooseExclude(row); }); });
  refresh();
}

// The menu's item acts on the cell of the last right click. Without its menu the item would act on some other
// cell; the page has reported why.
void TableLink::chooseExclude(std::int32_t row) {
  const bool isTransposed = table().Transpose();
  const auto controls = page()->control();
  const bool hasMenu = host_.platform().withoutPopups(
      [&] { grid().user().rightClick(isTransposed ? 1 : row, isTransposed ? row : 1); });
  if (hasMenu) required(controls->Controls().find<ui::MenuItem>(names::kExcludeBin), "MenuItem").choose();
}

}  // namespace banddesk::desktop
