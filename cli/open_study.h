// Opens a study file to be changed, and says on standard error when that brought it up to date.
#pragma once

#include <filesystem>
#include <memory>

#include "host/store/sqlite_store.h"

namespace banddesk::cli {

std::shared_ptr<host::SqliteStore> openForWriting(const std::filesystem::path& study);

}  // namespace banddesk::cli
