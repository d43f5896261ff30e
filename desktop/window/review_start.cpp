#include "desktop/window/review_start.h"

#include <set>

#include "host/grid/grid_control.h"
#include "plugin/base/numbers.h"

namespace banddesk::desktop {
namespace {

constexpr std::int32_t kRows = 0;
constexpr std::int32_t kColumns = 1;
constexpr std::int32_t kKeys = 0;
constexpr std::int32_t kNumbers = 1;

std::int32_t chosenRow(IAFLPResultsPage& table) {
  const auto selected = table.GetSelected(kRows, kNumbers);
  if (selected->Count() > 0) return selected->Item(1);
  const auto& grid = required(table.Controls().find<host::GridControl>("grdAFLP"), "Grid");
  return std::max(table.Transpose() ? grid.currentCol() : grid.currentRow(), 1);
}

}  // namespace

ReviewStart reviewStart(const AFLP& analysis, IAFLPResultsPage& table) {
  ReviewStart start;
  start.results = std::make_shared<Collection<std::shared_ptr<Result>>>();
  if (table.NumRows() > 0) start.row = std::min(chosenRow(table), table.NumRows());
  std::set<std::int32_t> chosen;  // result numbers
  const auto selected = table.GetSelected(kColumns, kKeys);
  for (const std::int32_t key : *selected) {
    if (key < 0) chosen.insert(-key);
  }
  for (std::int32_t col = 1; col <= table.NumCols(); ++col) {
    const auto number = static_cast<std::int32_t>(-leadingNumber(table.Key(col)));
    const bool isChosen = number > 0 && (chosen.empty() || chosen.contains(number));
    if (!isChosen || table.IsColHidden(col)) continue;
    const std::string key = integerText(number);
    start.results->Add(analysis.Results.Item(key), key);
    if (static_cast<std::size_t>(start.results->Count()) == kOverlaySamples) break;
  }
  return start;
}

}  // namespace banddesk::desktop
