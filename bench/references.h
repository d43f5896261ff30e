// What the machine can do: the plain works that the road's works are measured against. Each is made ready
// once and then done again and again.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "bench/turns.h"
#include "host/grid/grid_control.h"

namespace banddesk::bench {

/// (size, sample), dye by dye.
using Pairs = std::vector<std::vector<std::pair<double, std::int32_t>>>;

/// std::sort of the pairs, dye by dye.
Timed sortOf(const Pairs& pairs);
/// Reading a file in blocks and counting its lines.
Timed lineCountOf(const std::filesystem::path& file);
/// The sum of the numbers, `times` times.
Timed passesOver(std::vector<std::int32_t> numbers, int times);
/// As many bytes copied, `times` times.
Timed copiesOf(std::size_t bytes, int times);
/// One pass over cells of so many rows and columns that finds the longest number of each column.
Timed fittingPass(std::int32_t rows, std::int32_t cols);
/// A new file of as many bytes as the given one has, written in blocks of 64 KiB.
Timed writeOf(const std::filesystem::path& file);
/// The file system's part in one save: a page written and synchronised, as often as a transaction does it.
Timed syncsIn(const std::filesystem::path& folder);
/// What the spreadsheet library takes for the same cells, numbers and formats that the grid shows.
Timed libraryAlone(const host::GridControl& grid, const std::filesystem::path& folder);

}  // namespace banddesk::bench
