// What the hand does on a results page to exclude bins and samples or to bring them back: a selection, the
// right click, the item of the menu that pops up. Nobody is asked, and nothing is told to the page's watchers.
#pragma once

#include <cstdint>
#include <vector>

#include "host/framework/platform.h"
#include "host/grid/grid_control.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

class PageHand {
 public:
  // Both outlive it. Error 91 without a grid. The selection is another afterwards.
  PageHand(IAFLPResultsPage& page, HostPlatform& platform);

  // By their rows in the logical table, ascending; all are excluded, or none is.
  void toggleBins(const std::vector<std::int32_t>& rows);
  // The same by columns.
  void toggleSamples(const std::vector<std::int32_t>& columns);

 private:
  void select(const std::vector<std::int32_t>& lines, bool areColumns);
  void choose(std::int32_t row, std::int32_t column, const char* item);

  IAFLPResultsPage& page_;
  HostPlatform& platform_;
  GridControl& grid_;
};

}  // namespace banddesk::host
