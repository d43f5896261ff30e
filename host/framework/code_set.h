// From the UTF-8 inside to the code set in which text files are written.
#pragma once

#include <string>
#include <string_view>

namespace banddesk::host {

// The code set of the system's locale as the environment names it. The C and POSIX locales, and a locale that
// the system does not know, count as UTF-8.
std::string systemCodeSet();

class TextEncoder {
 public:
  // An unknown code set counts as UTF-8.
  explicit TextEncoder(const std::string& codeSet);
  TextEncoder(const TextEncoder&) = delete;
  TextEncoder& operator=(const TextEncoder&) = delete;
  ~TextEncoder();

  // Appends the text in the code set to `out`; a character that is not in it becomes "?".
  void append(std::string_view utf8, std::string& out);

 private:
  void convert(std::string_view utf8, std::string& out);

  void* converter_ = nullptr;  // none: the code set is UTF-8
};

}  // namespace banddesk::host
