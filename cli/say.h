// What the program prints on standard output. A reader who has gone away (`| head`) is no failure: the work
// goes on.
#pragma once

#include <fmt/format.h>
#include <string>
#include <string_view>
#include <utility>

namespace banddesk::cli {

// The text with a blank for each control character but those kept: what a file names its samples must not
// move a terminal's cursor or worse.
std::string withoutControls(std::string_view text, std::string_view kept = {});

// Raises an Error when the output cannot be written for another reason. A terminal gets no control
// characters.
void say(std::string_view text);

// One line on standard error, beside the work.
void warn(const std::string& line);

template <class... Args>
void say(fmt::format_string<Args...> format, Args&&... args) requires(sizeof...(Args) > 0) {
  say(std::string_view(fmt::format(format, std::forward<Args>(args)...)));
}

}  // namespace banddesk::cli
