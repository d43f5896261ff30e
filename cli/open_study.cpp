#include "cli/open_study.h"

#include "cli/say.h"

namespace banddesk::cli {

std::shared_ptr<host::SqliteStore> openForWriting(const std::filesystem::path& study) {
  auto store = std::make_shared<host::SqliteStore>(study.string());
  if (const std::string copy = store->formerCopy(); !copy.empty())
    warn(fmt::format("{} was brought up to date; as it was before it is kept in {}", study.string(), copy));
  return store;
}

}  // namespace banddesk::cli
