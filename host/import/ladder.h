// Guesses which dye carries the size standard. A proposal for a person to confirm: it leaves nothing out.
#pragma once

#include <optional>
#include <span>

#include "host/import/peak_table.h"

namespace banddesk::host::import {

/// The dye whose sizes are nearly the same in nearly every sample; nothing with fewer than four samples, or
/// when no dye stands out.
std::optional<LadderProposal> proposeLadder(std::span<const Sample> samples);

}  // namespace banddesk::host::import
