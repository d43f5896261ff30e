// What the program prints on standard output. A reader who has gone away (`| head`) is no failure: the work
// goes on.
#pragma once

#include <fmt/format.h>
#include <string_view>
#include <utility>

namespace banddesk::cli {

// Raises an Error when the output cannot be written for another reason.
void say(std::string_view text);

template <class... Args>
void say(fmt::format_string<Args...> format, Args&&... args) requires(sizeof...(Args) > 0) {
  say(std::string_view(fmt::format(format, std::forward<Args>(args)...)));
}

}  // namespace banddesk::cli
