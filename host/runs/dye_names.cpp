#include "host/runs/dye_names.h"

#include <algorithm>
#include <array>
#include <utility>

namespace banddesk::host::runs {
namespace {

constexpr std::array kLadderDyes{"LIZ",   "WEN",   "WEN6C", "CC5",   "CXR",   "ROX",        "BTO", "ORANGE",
                                 "GRODY", "DY632", "AF633", "SY650", "SY660", "XRHODAMINE", "XROX"};

constexpr std::array<std::pair<std::string_view, int>, 22> kWavelengths{{
    {"5FAM", 522}, {"6FAM", 522}, {"FAM", 522}, {"FL", 522},  {"R110", 535}, {"TET", 538},
    {"HEX", 553},  {"VIC", 554},  {"JOE", 554}, {"NED", 575}, {"TMR", 580},  {"TAMRA", 583},
    {"ET", 583},   {"TAZ", 595},  {"PET", 595}, {"ROX", 607}, {"CXR", 607},  {"TOM", 610},
    {"SID", 620},  {"LIZ", 655},  {"WEN", 655}, {"CC5", 655},
}};

}  // namespace

std::string plainDyeName(std::string_view name) {
  std::string plain;
  for (const char c : name) {
    if (c >= 'a' && c <= 'z')
      plain += static_cast<char>(c - 'a' + 'A');
    else if ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'))
      plain += c;
  }
  return plain;
}

bool isLadderDyeName(std::string_view name) {
  return std::ranges::find(kLadderDyes, plainDyeName(name)) != kLadderDyes.end();
}

std::optional<int> usualWavelength(std::string_view name) {
  const std::string plain = plainDyeName(name);
  const auto found =
      std::ranges::find(kWavelengths, std::string_view(plain), &std::pair<std::string_view, int>::first);
  if (found == kWavelengths.end()) return {};
  return found->second;
}

}  // namespace banddesk::host::runs
