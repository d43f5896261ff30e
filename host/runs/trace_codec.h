// Traces as bytes that take little room: differences, packed. Numbers come back exactly.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace banddesk::host::runs {

using Bytes = std::vector<std::byte>;

/// Any numbers by scan; those that change little from scan to scan pack best.
Bytes packTrace(std::span<const std::int32_t> trace);

/// Nothing for bytes that packTrace did not make, whatever they are; memory is bounded by what a run may have.
std::optional<std::vector<std::int32_t>> unpackTrace(std::span<const std::byte> bytes);

/// Bytes of any kind, packed; `most` is what may come of them at unpacking.
Bytes packBytes(std::span<const std::byte> bytes);
std::optional<Bytes> unpackBytes(std::span<const std::byte> bytes, std::size_t most);

}  // namespace banddesk::host::runs
