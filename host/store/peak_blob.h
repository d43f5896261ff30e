// All peaks of a run as the bytes that lie in a study file. Numbers come back exactly.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "host/runs/peaks.h"
#include "host/runs/trace_codec.h"

namespace banddesk::host {

runs::Bytes encodePeaks(std::span<const runs::Peak> peaks);
// Nothing for bytes that encodePeaks did not make.
std::optional<std::vector<runs::Peak>> decodePeaks(std::span<const std::byte> bytes);

}  // namespace banddesk::host
