// From the table to the review of its bins: which bin the user means, which samples go into the overlay, and
// the overlay at that bin.
#pragma once

#include <cstdint>
#include <memory>

#include "host/framework/host.h"

namespace banddesk::desktop {

struct ReviewStart {
  std::int32_t row = 0;  // logical; 0 where the table has no bin
  std::shared_ptr<Collection<std::shared_ptr<Result>>> results;
};

// What the table's selection tells, whatever was clicked with the right button since: the bin of the first
// selected row, or the current one; the selected samples that are shown, or all that are. Whole columns name
// no bin, whole rows no sample.
ReviewStart reviewStart(const AFLP& analysis, IAFLPResultsPage& table);

}  // namespace banddesk::desktop
