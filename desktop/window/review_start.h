// From the table to the review of its bins: which bin the user means, which samples go into the overlay, and
// the overlay at that bin.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/framework/host.h"

namespace banddesk::desktop {

// More samples over one another tell nothing any more.
inline constexpr std::size_t kOverlaySamples = 50;

struct ReviewStart {
  std::int32_t row = 0;  // logical; 0 where the table has no bin
  std::shared_ptr<Collection<std::shared_ptr<Result>>> results;
};

// The first selected row of the table, or the current one; the selected samples that are shown, or the first
// of all that are.
ReviewStart reviewStart(const AFLP& analysis, IAFLPResultsPage& table);

}  // namespace banddesk::desktop
