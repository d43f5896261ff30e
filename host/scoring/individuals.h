// Samples that are runs of one individual: told by their names, named outright, compared with each other, and
// made one line by consensus. Two, three or more runs of an individual alike. Plain values: no page, no file.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/quality/table_quality.h"
#include "host/statistics/band_matrix.h"

namespace banddesk::host::scoring {

struct Individual {
  std::string name;
  std::vector<std::size_t> samples;  // indices in the table, ascending
};

/// The individuals in the order of their first samples; a sample without replicates is one of its own.
struct Individuals {
  std::vector<Individual> all;
  std::vector<UnmadePair> unmade;
};

/// `pattern` tells replicates by their names:
/// - with a group, "(.*)_R[12]": an ECMAScript expression that a whole name must match; its first group is the
///   individual;
/// - with strokes, "_R1/_R2": endings, any of which goes to leave the individual;
/// - else "b": an ending that the second run has and the first has not.
/// For endings the well and the time stamp of a run do not belong to the name. Throws std::invalid_argument,
/// one line, for a pattern that does not parse, has no group, matches no name, leaves nothing of one, joins
/// two samples of one name, or gives an individual the name of a sample that it does not match. With one
/// ending, pairs that cannot be made are told instead.
Individuals individualsByPattern(std::span<const std::string> names, const std::string& pattern);

/// Samples that pairs of names connect are one individual, with the name of the first of them.
Individuals individualsByPairs(std::span<const std::string> names,
                               std::span<const std::pair<std::string, std::string>> pairs);

/// By the individual that each sample is said to be; one without a word for it is an individual of its own
/// name. Throws std::invalid_argument where that is the name of another individual.
Individuals individualsByWord(std::span<const std::string> names, std::span<const std::string> words);

/// All pairs within each individual.
std::vector<ReplicatePair> pairsOf(std::span<const Individual> individuals);

/// Distances of two samples by presence; no value where they are those of no cells.
struct PairFigures {
  ReplicatePair samples;
  std::optional<double> jaccard;         // differing of those that at least one fills
  std::optional<double> simpleMatching;  // differing of all
  double euclidean = 0;
};

struct FigureMeans {
  MeanOfPairs jaccard;
  MeanOfPairs simpleMatching;
  MeanOfPairs euclidean;
};

/// Over the lines of the table that `bins` names: all, those of a dye, of a primer pair, or a single one.
/// Throws std::invalid_argument for a line, a pair or cells that do not fit the table.
std::vector<PairFigures> figuresOf(const TableView& table, std::span<const ReplicatePair> pairs,
                                   std::span<const std::size_t> bins);
FigureMeans meansOf(std::span<const PairFigures> figures);
/// Of the pairs that the sample belongs to.
FigureMeans meansOfSample(std::span<const PairFigures> figures, std::size_t sample);

/// A band of an individual is present where so many of its runs have it; Most is more than half. `atLeast`
/// counts for AtLeast alone, and an individual with fewer runs needs it in all. MissingWhereTheyDisagree
/// leaves open what not all runs have or lack. A band that is missing in a run counts as no run.
struct Consensus {
  enum class Rule { All, Most, AtLeast, MissingWhereTheyDisagree };
  Rule rule = Rule::All;
  std::size_t atLeast = 1;
  friend bool operator==(const Consensus&, const Consensus&) = default;
};

/// "all", "most", "missing", or a number of runs, 1 or more. Throws std::invalid_argument for another text.
Consensus parseConsensus(const std::string& text);
std::string consensusText(const Consensus& consensus);

/// One line for each individual. Throws std::invalid_argument where two samples of an individual are in
/// different groups, or an individual names a sample beyond the table.
statistics::BandMatrix consensusOf(const statistics::BandMatrix& bands,
                                   std::span<const Individual> individuals, const Consensus& consensus);

}  // namespace banddesk::host::scoring
