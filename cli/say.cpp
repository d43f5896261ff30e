#include "cli/say.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "plugin/base/error.h"

namespace banddesk::cli {

void say(std::string_view text) {
  errno = 0;
  const std::size_t written = std::fwrite(text.data(), 1, text.size(), stdout);
  if (written == text.size() && std::fflush(stdout) == 0) return;
  const int cause = errno;
  std::clearerr(stdout);
  if (cause == EPIPE) return;
  raise(ErrorNumber::DeviceIo, "Output", fmt::format("standard output: {}", std::strerror(cause)));
}

}  // namespace banddesk::cli
