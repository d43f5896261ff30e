// Which samples are runs of the same thing: told by an ending of their names or named outright. Whatever is
// named but finds no partner is reported beside the pairs. It judges nothing and reads no file.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace banddesk::host {

/// Indices of two samples of a table.
struct ReplicatePair {
  std::size_t first = 0;
  std::size_t second = 0;
  bool operator==(const ReplicatePair&) const = default;
};

/// A pair that was meant but could not be made, and why, in words for the user.
struct UnmadePair {
  std::string first;
  std::string second;
  std::string reason;
};

struct Replicates {
  std::vector<ReplicatePair> pairs;
  std::vector<UnmadePair> unmade;
};

/// Pairs every sample whose name ends in `suffix` with the sample of the same name without it. The ending is
/// anchored and exact, and something must stand before it. Throws std::invalid_argument for an empty suffix.
Replicates replicatesBySuffix(std::span<const std::string> names, std::string_view suffix);

/// The samples' own names, before the well and the time stamp that a run puts behind them.
std::vector<std::string> namesWithoutRuns(std::span<const std::string> names);
/// The same as by suffix, of the samples' own names.
Replicates replicatesOfRuns(std::span<const std::string> names, std::string_view suffix);

/// Pairs samples by name. A pair given twice, either way round, counts once and is reported the second time.
Replicates replicatesByName(std::span<const std::string> names,
                            std::span<const std::pair<std::string, std::string>> pairs);

}  // namespace banddesk::host
