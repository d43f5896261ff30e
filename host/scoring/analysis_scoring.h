// What the host keeps of an analysis beside what its pages keep: how its calculators treat fragments, the
// rules that exclude bins and samples, and what the rules and the hand made of them. Plain values.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/binning/calculator_settings.h"
#include "host/scoring/rules.h"

namespace banddesk::host::scoring {

/// Bins are named by dye and mean size, "D1-100.25"; samples as their columns are, "-" and a result's number.
using ElementKey = std::string;

struct AnalysisScoring {
  CalculatorSettings calculator;
  std::vector<Rule> rules;
  /// By which samples are replicates, as individualsByPattern reads it; empty: as the study says.
  std::string replicates;
  /// The analysis is of the samples of this primer pair alone; empty: of all.
  std::string primerPair;
  /// Excluded by rules, and by which: "height<100, samples<2".
  std::map<ElementKey, std::string> marks;
  /// Which the hand has brought back: no rule takes them again.
  std::set<ElementKey> kept;
  friend bool operator==(const AnalysisScoring&, const AnalysisScoring&) = default;
};

}  // namespace banddesk::host::scoring
