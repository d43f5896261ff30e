#include "host/framework/code_set.h"

#include <array>
#include <cerrno>
#include <clocale>
#include <cstdint>
#include <iconv.h>
#include <langinfo.h>
#include <memory>

#include "plugin/base/text.h"

namespace banddesk::host {

std::string systemCodeSet() {
  const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
  if (locale == nullptr) return "UTF-8";
  const std::string name = nl_langinfo_l(CODESET, locale);
  freelocale(locale);
  return name.empty() || name == "ANSI_X3.4-1968" ? "UTF-8" : name;
}

TextEncoder::TextEncoder(const std::string& codeSet) {
  if (equalsIgnoringCase(codeSet, "UTF-8") || equalsIgnoringCase(codeSet, "UTF8")) return;
  const iconv_t converter = iconv_open(codeSet.c_str(), "UTF-8");
  if (reinterpret_cast<std::intptr_t>(converter) != -1) converter_ = converter;
}

TextEncoder::~TextEncoder() {
  if (converter_ != nullptr) iconv_close(converter_);
}

void TextEncoder::append(std::string_view utf8, std::string& out) {
  if (converter_ == nullptr) {
    out.append(utf8);
  } else {
    convert(utf8, out);
  }
}

void TextEncoder::convert(std::string_view utf8, std::string& out) {
  std::array<char, 4096> piece;
  std::string copy(utf8);  // iconv takes its input as writable
  char* in = copy.data();
  std::size_t inLeft = copy.size();
  const auto run = [&](char** from, std::size_t* fromLeft) {
    char* to = piece.data();
    std::size_t toLeft = piece.size();
    const std::size_t status = iconv(converter_, from, fromLeft, &to, &toLeft);
    const int cause = errno;
    out.append(piece.data(), static_cast<std::size_t>(to - piece.data()));
    return status == static_cast<std::size_t>(-1) ? cause : 0;
  };
  while (inLeft > 0) {
    const int cause = run(&in, &inLeft);
    if (cause == 0 || cause == E2BIG) continue;
    // No such character there, or no UTF-8 here: one "?" for it, in the code set's own form.
    std::string mark = "?";
    char* markIn = mark.data();
    std::size_t markLeft = mark.size();
    run(&markIn, &markLeft);
    const std::size_t length = characters({in, inLeft}).front().size();
    in += length;
    inLeft -= length;
  }
  run(nullptr, nullptr);  // back to the initial state, for code sets that have states
}

}  // namespace banddesk::host
