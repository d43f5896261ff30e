// Outputs come whole or not at all: they are written beside their place and take it when they are complete.
#pragma once

#include <filesystem>
#include <functional>

namespace banddesk::cli {

// `write` makes the file it is handed. On any failure nothing of it stays, what stood at `path` is untouched,
// and an Error names `path`.
void writeWhole(const std::filesystem::path& path,
                const std::function<void(const std::filesystem::path&)>& write);

}  // namespace banddesk::cli
