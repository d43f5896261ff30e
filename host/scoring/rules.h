// Rules that take bins or samples out of a table: their text, and which bins and samples each of them takes.
// Plain values: nothing here knows a page, a study or a file, and nothing is changed in the table judged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/quality/replicates.h"

namespace banddesk::host::scoring {

/// What a rule compares. Fragments judges samples, all others judge bins.
enum class Quantity {
  Height,     // mean height of the bin's fragments
  Samples,    // samples that fill the bin
  Width,      // nt, from the least to the largest size in the bin
  Size,       // nt, mean size of the bin
  Disagree,   // percent of the replicate pairs of which one sample fills the bin and the other does not
  Blank,      // blanks that fill the bin
  Fragments,  // fragments of the sample, or percent of the median over the samples
};

/// A quantity that is less or greater than the limit; the limit itself is not taken.
struct Rule {
  Quantity quantity = Quantity::Height;
  bool less = true;
  double limit = 0;
  bool percent = false;
  bool operator==(const Rule&) const = default;
};

/// what() is one line: the rule, the character (1-based) and what is wrong there.
struct RuleError : std::invalid_argument {
  RuleError(std::string_view rule, std::size_t at, const std::string& message);
  std::size_t character;
};

/// Reads "height<100", "fragments<50%", "disagree>10%"; blanks may stand between the parts. `disagree` needs
/// its percent sign, `fragments` may have one, the others have none. Throws RuleError.
Rule parseRule(std::string_view text);
/// A text that parseRule reads as the same rule.
std::string ruleText(const Rule& rule);
inline bool judgesSamples(const Rule& rule) { return rule.quantity == Quantity::Fragments; }

struct RuleBin {
  double xMin = 0;  // nt
  double xMax = 0;
  double size = 0;  // mean
};

/// How a sample stands to the rules: Judged by them, Kept whatever they say, LeftOut of every figure, or a
/// Blank, which is judged by no rule and counts for Quantity::Blank alone.
enum class SampleState { Judged, Kept, LeftOut, Blank };

/// A table in place. `counts` and `heights` hold one line of `samples.size()` entries for each bin: the
/// fragments of a cell and the sum of their heights.
struct RuleTable {
  std::span<const RuleBin> bins;
  std::span<const std::int32_t> counts;
  std::span<const double> heights;
  std::span<const SampleState> samples;
  std::span<const ReplicatePair> replicates;
};

/// Of each bin and sample the rules that take it, as indices in ascending order; none when it stays.
struct RuleOutcome {
  std::vector<std::vector<std::size_t>> bins;
  std::vector<std::vector<std::size_t>> samples;

  /// How many bins and samples the rule takes, also those that others take too.
  std::size_t takenBy(std::size_t rule) const;
};

/// Rules for samples act first: a sample that goes counts in no figure of a bin. A figure of nothing (a mean height without fragments, disagreement
/// without pairs) takes nothing. Throws std::invalid_argument when the table's parts do not fit each other.
RuleOutcome applyRules(std::span<const Rule> rules, const RuleTable& table);

}  // namespace banddesk::host::scoring
