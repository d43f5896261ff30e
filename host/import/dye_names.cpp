#include "host/import/dye_names.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <limits>
#include <set>
#include <span>
#include <stdexcept>

#include "host/import/text_scan.h"

namespace banddesk::host::import {
namespace {

struct Known {
  std::string_view spelling;  // capital letters and digits alone
  std::string_view name;      // one for all spellings of a dye
  Dye usual;
  int wavelength;  // nm at which it shines most; tells only the order
};

constexpr std::array known{
    Known{"FAM", "FAM", Dye::B, 520},  Known{"6FAM", "FAM", Dye::B, 520},
    Known{"5FAM", "FAM", Dye::B, 520}, Known{"TET", "TET", Dye::G, 538},
    Known{"VIC", "VIC", Dye::G, 552},  Known{"JOE", "JOE", Dye::G, 554},
    Known{"HEX", "HEX", Dye::G, 556},  Known{"NED", "NED", Dye::Y, 575},
    Known{"TMR", "TMR", Dye::Y, 578},  Known{"TAMRA", "TAMRA", Dye::Y, 580},
    Known{"PET", "PET", Dye::R, 594},  Known{"ROX", "ROX", Dye::R, 607},
    Known{"CXR", "CXR", Dye::R, 615},  Known{"BTO", "BTO", Dye::O, 650},
    Known{"LIZ", "LIZ", Dye::O, 655},
};

const Known* find(std::string_view spelling) {
  const auto found = std::ranges::find(known, spelling, &Known::spelling);
  return found == known.end() ? nullptr : found;
}

const Known& knownOf(const KitDye& dye) { return *std::ranges::find(known, dye.name, &Known::name); }

// "6-FAM", "VIC®": letters and digits of it, capital.
std::string plainSpelling(std::string_view text) {
  std::string plain;
  for (const char c : text) {
    if (isDigit(c)) plain.push_back(c);
    if (isLetter(c)) plain.push_back(static_cast<char>(lowerAscii(c) - 'a' + 'A'));
  }
  return plain;
}

std::string shown(const KitDye& dye) {
  return dye.mark ? fmt::format("{} ({})", dye.name, letterOf(*dye.mark)) : dye.name;
}

// The kits' names are of five colours; the sixth is known by its letter alone.
constexpr auto namedColours = std::span(allDyes).first<5>();

// The assignment of least displacement. There are a dozen dyes at most and five colours, so all are tried,
// with what is worse already cut off.
class Assignment {
 public:
  Assignment(std::vector<KitDye> dyes, const std::set<std::pair<KitDye, KitDye>>& together)
      : dyes_(std::move(dyes)), together_(together), tried_(dyes_.size()) {
    std::ranges::sort(dyes_, {}, [](const KitDye& dye) { return knownOf(dye).wavelength; });
    tryFrom(0, 0);
  }

  bool isPossible() const { return leastMoved_ != std::numeric_limits<int>::max(); }
  std::map<KitDye, Dye> colours() const {
    std::map<KitDye, Dye> colours;
    for (std::size_t i = 0; i < best_.size(); ++i) colours[dyes_[i]] = best_[i];
    return colours;
  }

 private:
  void tryFrom(std::size_t at, int moved) {
    if (moved >= leastMoved_) return;
    if (at == dyes_.size()) {
      best_ = tried_;
      leastMoved_ = moved;
      return;
    }
    const KitDye& dye = dyes_[at];
    const auto usual = static_cast<int>(dye.mark ? *dye.mark : knownOf(dye).usual);
    for (const Dye colour : namedColours) {
      const int by = std::abs(static_cast<int>(colour) - usual);
      if ((dye.mark && by != 0) || !isFree(at, colour)) continue;
      tried_[at] = colour;
      tryFrom(at + 1, moved + by);
    }
  }

  // Of two dyes in one sample that of the greater wavelength has the later colour, unless a mark says
  // otherwise.
  bool isFree(std::size_t at, Dye colour) const {
    for (std::size_t i = 0; i < at; ++i) {
      if (!together_.contains({dyes_[i], dyes_[at]})) continue;
      const bool isMarked = dyes_[i].mark || dyes_[at].mark;
      if (tried_[i] == colour || (tried_[i] > colour && !isMarked)) return false;
    }
    return true;
  }

  std::vector<KitDye> dyes_;
  const std::set<std::pair<KitDye, KitDye>>& together_;
  std::vector<Dye> tried_, best_;
  int leastMoved_ = std::numeric_limits<int>::max();
};

}  // namespace

std::optional<KitDye> kitDyeOf(std::string_view text) {
  KitDye dye;
  const std::size_t open = text.find('(');
  if (open != std::string_view::npos) {
    const std::size_t close = text.find(')', open);
    if (close == std::string_view::npos) return std::nullopt;
    dye.mark = dyeOf(trimmed(text.substr(open + 1, close - open - 1)));
  }
  const Known* const found = find(plainSpelling(text.substr(0, open)));
  if (found == nullptr) return std::nullopt;
  dye.name = found->name;
  return dye;
}

void DyeNames::note(const std::string& sample, const KitDye& dye) {
  auto& dyes = bySample_[sample];
  if (std::ranges::find(dyes, dye) == dyes.end()) dyes.push_back(dye);
}

void DyeNames::assign() {
  std::set<KitDye> all;
  std::set<std::pair<KitDye, KitDye>> together;
  for (const auto& [sample, dyes] : bySample_) {
    for (const KitDye& dye : dyes) {
      all.insert(dye);
      for (const KitDye& other : dyes) together.emplace(dye, other);
    }
  }
  const Assignment assignment({all.begin(), all.end()}, together);
  if (!assignment.isPossible()) {
    std::vector<std::string> names;
    names.reserve(all.size());
    for (const KitDye& dye : all) names.push_back(shown(dye));
    throw std::runtime_error(fmt::format(
        "the dyes {} do not go together: two of one sample would have the same of the five colours",
        fmt::join(names, ", ")));
  }
  colours_ = assignment.colours();
}

std::optional<Dye> DyeNames::dyeOf(std::string_view text) const {
  if (const auto dye = import::dyeOf(text)) return dye;
  const auto named = kitDyeOf(text);
  if (!named) return std::nullopt;
  const auto colour = colours_.find(*named);
  if (colour != colours_.end()) return colour->second;
  return named->mark ? *named->mark : knownOf(*named).usual;
}

std::string DyeNames::description() const {
  std::vector<std::string> parts;
  parts.reserve(colours_.size());
  for (const auto& [dye, colour] : colours_)
    parts.push_back(fmt::format("{} as {}", shown(dye), letterOf(colour)));
  return parts.empty() ? std::string() : fmt::format("dyes by name: {}", fmt::join(parts, ", "));
}

}  // namespace banddesk::host::import
