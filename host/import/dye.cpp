#include "host/import/dye.h"

#include <algorithm>
#include <charconv>

#include "host/import/text_scan.h"

namespace banddesk::host::import {
namespace {

constexpr std::array<std::string_view, dyeCount> words{"blue", "green", "yellow", "red", "orange", "purple"};

std::optional<Dye> dyeOfLetter(char letter) {
  for (const Dye dye : allDyes)
    if (lowerAscii(letter) == lowerAscii(letterOf(dye))) return dye;
  return std::nullopt;
}

bool isWord(std::string_view text, std::string_view word) {
  return std::ranges::equal(text, word, {}, [](char c) { return lowerAscii(c); });
}

}  // namespace

std::optional<Dye> dyeOf(std::string_view text) {
  if (text.size() == 1) return dyeOfLetter(text.front());
  for (const Dye dye : allDyes)
    if (isWord(text, words[indexOf(dye)])) return dye;
  return std::nullopt;
}

DyeCell readDyeCell(std::string_view cell) {
  const std::size_t comma = cell.find(',');
  DyeCell read;
  read.name = trimmed(cell.substr(0, comma));
  read.dye = dyeOf(read.name);
  if (comma == std::string_view::npos) return read;
  const std::string_view number = trimmed(cell.substr(comma + 1));
  std::from_chars(number.data(), number.data() + number.size(), read.number);
  return read;
}

}  // namespace banddesk::host::import
