#include "cli/say.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

#include "plugin/base/error.h"

namespace banddesk::cli {

// As the byte 0x1B and its like, or of two bytes in UTF-8: 0xC2 and one from 0x80 to 0x9F.
std::string withoutControls(std::string_view text, std::string_view kept) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0U;
    const bool isPair = byte == 0xC2 && next >= 0x80 && next < 0xA0;
    const bool isControl = isPair || byte < 0x20 || byte == 0x7F;
    plain.push_back(isControl && kept.find(text[i]) == std::string_view::npos ? ' ' : text[i]);
    if (isPair) ++i;
  }
  return plain;
}

void say(std::string_view given) {
  static const bool isTerminal = ::isatty(STDOUT_FILENO) == 1;
  const std::string plain = isTerminal ? withoutControls(given, "\n\t") : std::string();
  const std::string_view text = isTerminal ? plain : given;
  errno = 0;
  const std::size_t written = std::fwrite(text.data(), 1, text.size(), stdout);
  if (written == text.size() && std::fflush(stdout) == 0) return;
  const int cause = errno;
  std::clearerr(stdout);
  if (cause == EPIPE) return;
  raise(ErrorNumber::DeviceIo, "Output", fmt::format("standard output: {}", std::strerror(cause)));
}

void warn(const std::string& line) { fmt::print(stderr, "banddesk: {}\n", withoutControls(line)); }

}  // namespace banddesk::cli
