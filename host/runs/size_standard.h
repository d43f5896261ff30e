// Size standards: the lists of fragment lengths that ladders are made of, those on the market and the user's
// own. Plain data; which peaks of a run they are is for ladder.h.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace banddesk::host::runs {

struct SizeStandard {
  std::string name;
  std::vector<std::string> dyes;   // that it is sold with; none: any
  std::vector<double> sizes;       // nt, ascending
  std::vector<double> unreliable;  // of them, those that run elsewhere than their length says (250, 340)

  bool isUnreliable(double size) const;
  bool fitsDye(std::string_view dyeName) const;
  friend bool operator==(const SizeStandard&, const SizeStandard&) = default;
};

/// The lists that are known without asking.
const std::vector<SizeStandard>& knownStandards();

/// By name, without regard to case and signs; "GS500" finds the longest list whose name begins so. Null when
/// there is none.
const SizeStandard* findStandard(std::span<const SizeStandard> standards, std::string_view name);

/// "35 50 75,100": ascending sizes in nt, at least five. Throws std::invalid_argument with the reason.
SizeStandard standardOfSizes(std::string name, std::string_view sizes);

/// How well the word that an operator gave a run's standard fits a list: 0 not at all, more for more. The
/// words are free text, so this decides only between lists that fit the trace equally well.
int hintMatch(std::string_view operatorsWord, const SizeStandard& standard);

}  // namespace banddesk::host::runs
