#include "cli/output_file.h"

#include <fmt/format.h>
#include <fstream>
#include <unistd.h>

#include "plugin/base/error.h"

namespace banddesk::cli {
namespace fs = std::filesystem;

void writeWhole(const fs::path& given, const std::function<void(const fs::path&)>& write) {
  std::error_code trouble;
  // What a link leads to is replaced, never the link itself: it may be one of the system's.
  const fs::path target = fs::is_symlink(given, trouble) ? fs::canonical(given, trouble) : given;
  const fs::path path = target.empty() ? given : target;
  const auto fail = [&](const std::string& why) {
    raise(ErrorNumber::DeviceIo, "Output", fmt::format("{}: {}", path.string(), why));
  };
  if (fs::is_directory(path, trouble)) fail("it is a folder");
  if (path.has_parent_path() && !fs::is_directory(path.parent_path(), trouble))
    fail("there is no such folder");
  if (fs::exists(path, trouble) && !fs::is_regular_file(path, trouble)) {
    write(path);  // a device or a pipe has no place to be moved to
    return;
  }
  const fs::path part = path.parent_path() / fmt::format(".{}.{}.part", path.filename().string(), ::getpid());
  try {
    write(part);
    fs::rename(part, path);
  } catch (const Error& error) {
    fs::remove(part, trouble);
    fail(error.description());
  } catch (const fs::filesystem_error& error) {
    fs::remove(part, trouble);
    fail(error.code().message());
  } catch (...) {
    fs::remove(part, trouble);
    throw;
  }
}

void writeWholeText(const fs::path& path, const std::function<void(std::ostream&)>& write) {
  writeWhole(path, [&](const fs::path& target) {
    std::ofstream out(target, std::ios::binary);
    write(out);
    out.close();
    if (!out) raise(ErrorNumber::DeviceIo, "Output", "it cannot be written");
  });
}

}  // namespace banddesk::cli
