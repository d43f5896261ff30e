// Samples that are runs of one individual: found by a pattern in their names, compared with each other, and
// made one line by consensus. Two, three or more runs of an individual alike. Plain values: no page, no file.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/quality/table_quality.h"

namespace banddesk::host::scoring {

struct Individual {
  std::string name;
  std::vector<std::size_t> samples;  // indices in the table, ascending
};

/// The individuals in the order of their first samples. `pattern` is an ECMAScript expression that a whole
/// name must match; its first group is the individual. A name that does not match is an individual of its
/// own. Throws std::invalid_argument, one line, for a pattern that does not parse, has no group, matches no
/// name, leaves the individual empty, or gives an individual the name of a sample that it does not match.
std::vector<Individual> individualsByPattern(std::span<const std::string> names, const std::string& pattern);

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

enum class ConsensusRule { All, Most, AtLeast, MissingWhereTheyDisagree };
enum class Call { Absent, Present, Missing };

/// One line for each bin with one call for each individual. Most is more than half. `atLeast` counts for
/// AtLeast alone, 1 or more; an individual with fewer samples than that needs all of its own.
std::vector<std::vector<Call>> consensusOf(const TableView& table, std::span<const Individual> individuals,
                                           ConsensusRule rule, std::size_t atLeast = 1);

}  // namespace banddesk::host::scoring
