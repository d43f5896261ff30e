// Outputs come whole or not at all: they are written beside their place and take it when they are complete.
#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>

namespace banddesk::cli {

// `write` makes the file it is handed. On any failure nothing of it stays, what stood at `path` is untouched,
// and an Error names `path`.
void writeWhole(const std::filesystem::path& path,
                const std::function<void(const std::filesystem::path&)>& write);

// The same for text that is written to a stream.
void writeWholeText(const std::filesystem::path& path, const std::function<void(std::ostream&)>& write);

}  // namespace banddesk::cli
