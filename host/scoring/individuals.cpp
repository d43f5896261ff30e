#include "host/scoring/individuals.h"

#include <algorithm>
#include <cmath>
#include <regex>
#include <unordered_map>

namespace banddesk::host::scoring {
namespace {

std::regex compiled(const std::string& pattern) {
  try {
    std::regex made(pattern);
    if (made.mark_count() > 0) return made;
  } catch (const std::regex_error& error) {
    throw std::invalid_argument("the pattern '" + pattern + "' does not parse: " + error.what());
  }
  throw std::invalid_argument("the pattern '" + pattern + "' has no group for the individual");
}

void checkCells(const TableView& table) {
  if (table.fragmentCounts.size() != table.bins.size() * table.sampleCount) {
    throw std::invalid_argument("the cells of the table do not fit its bins and samples");
  }
}

MeanOfPairs meanOf(std::span<const double> values) {
  if (values.empty()) return {};
  const auto count = static_cast<double>(values.size());
  double sum = 0;
  for (const double value : values) sum += value;
  MeanOfPairs result{.mean = sum / count, .deviation = {}};
  if (values.size() < 2) return result;
  double squares = 0;
  for (const double value : values) squares += (value - *result.mean) * (value - *result.mean);
  result.deviation = std::sqrt(squares / (count - 1));
  return result;
}

Call callOf(std::size_t present, std::size_t runs, ConsensusRule rule, std::size_t atLeast) {
  std::size_t needed = runs;
  if (rule == ConsensusRule::Most) needed = runs / 2 + 1;
  if (rule == ConsensusRule::AtLeast) needed = std::min(atLeast, runs);
  if (present >= needed) return Call::Present;
  return rule == ConsensusRule::MissingWhereTheyDisagree && present > 0 ? Call::Missing : Call::Absent;
}

}  // namespace

std::vector<Individual> individualsByPattern(std::span<const std::string> names, const std::string& pattern) {
  const std::regex expression = compiled(pattern);
  std::vector<Individual> individuals;
  std::unordered_map<std::string, std::pair<std::size_t, bool>> known;  // index, and whether by the pattern
  bool matchedAny = false;
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::smatch match;
    const bool matched = std::regex_match(names[i], match, expression);
    const std::string name = matched ? match.str(1) : names[i];
    if (name.empty()) throw std::invalid_argument("the pattern leaves nothing of sample '" + names[i] + "'");
    const auto [at, isNew] = known.try_emplace(name, individuals.size(), matched);
    if (isNew) individuals.push_back({name, {}});
    if (!isNew && !(matched && at->second.second)) {
      throw std::invalid_argument("the pattern joins sample '" + names[i] + "' with another individual '" +
                                  name + "'");
    }
    individuals[at->second.first].samples.push_back(i);
    matchedAny = matchedAny || matched;
  }
  if (!matchedAny) throw std::invalid_argument("the pattern '" + pattern + "' matches no sample");
  return individuals;
}

std::vector<ReplicatePair> pairsOf(std::span<const Individual> individuals) {
  std::vector<ReplicatePair> pairs;
  for (const Individual& individual : individuals) {
    for (std::size_t i = 0; i < individual.samples.size(); ++i) {
      for (std::size_t j = i + 1; j < individual.samples.size(); ++j) {
        pairs.push_back({individual.samples[i], individual.samples[j]});
      }
    }
  }
  return pairs;
}

std::vector<PairFigures> figuresOf(const TableView& table, std::span<const ReplicatePair> pairs,
                                   std::span<const std::size_t> bins) {
  checkCells(table);
  std::vector<PairFigures> figures;
  for (const ReplicatePair& pair : pairs) {
    if (std::max(pair.first, pair.second) >= table.sampleCount) {
      throw std::invalid_argument("a replicate pair names a sample beyond the table");
    }
    Agreement sum;
    for (const std::size_t bin : bins) {
      if (bin >= table.bins.size()) throw std::invalid_argument("a bin beyond the table was named");
      const auto line = table.fragmentCounts.subspan(bin * table.sampleCount, table.sampleCount);
      sum += agreementOf(line[pair.first], line[pair.second]);
    }
    figures.push_back(
        {pair, sum.jaccardError(), sum.mismatchError(), std::sqrt(static_cast<double>(sum.differing))});
  }
  return figures;
}

FigureMeans meansOf(std::span<const PairFigures> figures) {
  std::vector<double> jaccard;
  std::vector<double> matching;
  std::vector<double> euclidean;
  for (const PairFigures& pair : figures) {
    if (pair.jaccard) jaccard.push_back(*pair.jaccard);
    if (pair.simpleMatching) matching.push_back(*pair.simpleMatching);
    euclidean.push_back(pair.euclidean);
  }
  return {meanOf(jaccard), meanOf(matching), meanOf(euclidean)};
}

FigureMeans meansOfSample(std::span<const PairFigures> figures, std::size_t sample) {
  std::vector<PairFigures> own;
  for (const PairFigures& pair : figures) {
    if (pair.samples.first == sample || pair.samples.second == sample) own.push_back(pair);
  }
  return meansOf(own);
}

std::vector<std::vector<Call>> consensusOf(const TableView& table, std::span<const Individual> individuals,
                                           ConsensusRule rule, std::size_t atLeast) {
  checkCells(table);
  if (atLeast == 0) throw std::invalid_argument("a consensus needs at least one sample");
  std::vector<std::vector<Call>> calls(table.bins.size());
  for (std::size_t bin = 0; bin < calls.size(); ++bin) {
    for (const Individual& individual : individuals) {
      std::size_t present = 0;
      for (const std::size_t sample : individual.samples) {
        if (sample >= table.sampleCount)
          throw std::invalid_argument("an individual names a sample beyond the table");
        if (table.fragmentCounts[bin * table.sampleCount + sample] != 0) ++present;
      }
      calls[bin].push_back(callOf(present, individual.samples.size(), rule, atLeast));
    }
  }
  return calls;
}

}  // namespace banddesk::host::scoring
