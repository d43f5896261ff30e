#include "host/formats/names.h"

#include <algorithm>
#include <set>

#include "plugin/base/text.h"

namespace banddesk::host::formats {
namespace {

bool isAsciiAlphanumeric(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isControl(std::string_view character) {
  const auto first = static_cast<unsigned char>(character.front());
  return first < 0x20 || first == 0x7F ||
         (first == 0xC2 && character.size() > 1 && static_cast<unsigned char>(character[1]) < 0xA0);
}

bool fits(std::string_view character, const NameRule& rule) {
  if (rule.isAnyText) return !isControl(character);
  return character.size() == 1 &&
         (isAsciiAlphanumeric(character[0]) || rule.marks.find(character[0]) != std::string_view::npos);
}

std::string cutTo(std::string_view text, std::size_t longest) {
  std::string cut;
  std::size_t count = 0;
  for (const std::string_view character : characters(text)) {
    if (count++ == longest) break;
    cut += character;
  }
  return cut;
}

std::string fitOne(std::string_view name, const NameRule& rule) {
  std::string fit;
  for (const std::string_view character : characters(trim(name)))
    fit += fits(character, rule) ? character : "_";
  if (fit.empty()) fit = "_";
  // Many programs take a number for the place of a sample.
  if (!rule.isAnyText && std::ranges::all_of(fit, [](char c) { return c >= '0' && c <= '9'; }))
    fit.insert(0, "_");
  return rule.longest > 0 ? cutTo(fit, rule.longest) : fit;
}

}  // namespace

std::vector<std::string> fitNames(const std::vector<std::string>& names, const NameRule& rule) {
  std::vector<std::string> fitted;
  std::set<std::string> taken;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string base = rule.isNumber ? std::to_string(i + 1) : fitOne(names[i], rule);
    std::string name = base;
    for (std::size_t number = 2; !taken.insert(foldCase(name)).second; ++number) {
      const std::string ending = "_" + std::to_string(number);
      const std::size_t room = rule.longest > ending.size() ? rule.longest - ending.size() : 0;
      name = (rule.longest > 0 ? cutTo(base, room) : base) + ending;
    }
    fitted.push_back(name);
  }
  return fitted;
}

}  // namespace banddesk::host::formats
