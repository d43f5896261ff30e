#include "host/scoring/individuals.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <numeric>
#include <regex>
#include <set>
#include <unordered_map>

namespace banddesk::host::scoring {
namespace {

using Names = std::span<const std::string>;
/// The individual of a name; nothing for a name that is no replicate's.
using NameOf = std::function<std::optional<std::string>(const std::string&)>;

NameOf byExpression(const std::string& pattern) {
  std::regex expression;
  try {
    expression = std::regex(pattern);
  } catch (const std::regex_error& error) {
    throw std::invalid_argument("the pattern '" + pattern + "' does not parse: " + error.what());
  }
  if (expression.mark_count() == 0)
    throw std::invalid_argument("the pattern '" + pattern + "' has no group for the individual");
  return [expression](const std::string& name) {
    std::smatch match;
    return std::regex_match(name, match, expression) ? std::optional(match.str(1)) : std::nullopt;
  };
}

NameOf byEndings(const std::string& pattern) {
  std::vector<std::string> endings;
  for (std::size_t begin = 0; begin <= pattern.size();) {
    const std::size_t end = std::min(pattern.find('/', begin), pattern.size());
    endings.push_back(pattern.substr(begin, end - begin));
    if (endings.back().empty())
      throw std::invalid_argument("the pattern '" + pattern + "' has an empty ending");
    begin = end + 1;
  }
  return [endings](const std::string& name) -> std::optional<std::string> {
    for (const std::string& ending : endings) {
      if (name.ends_with(ending)) return name.substr(0, name.size() - ending.size());
    }
    return std::nullopt;
  };
}

class Grouping {
 public:
  explicit Grouping(std::string pattern) : pattern_(std::move(pattern)) {}

  void add(const std::string& sample, std::size_t index, const std::optional<std::string>& individual) {
    const std::string name = individual.value_or(sample);
    if (name.empty())
      throw std::invalid_argument("the pattern '" + pattern_ + "' leaves nothing of sample '" + sample + "'");
    if (!seen_.insert(sample).second)
      throw std::invalid_argument("two samples are named '" + sample + "': their replicates cannot be told");
    const auto [at, isNew] = known_.try_emplace(name, found_.size(), individual.has_value());
    if (isNew) found_.push_back({name, {}});
    if (!isNew && !(individual && at->second.second))
      throw std::invalid_argument("the pattern '" + pattern_ + "' joins sample '" + sample +
                                  "' with another individual '" + name + "'");
    found_[at->second.first].samples.push_back(index);
    matchedAny_ = matchedAny_ || individual;
  }

  std::vector<Individual> take() {
    if (!matchedAny_) throw std::invalid_argument("the pattern '" + pattern_ + "' matches no sample");
    return std::move(found_);
  }

 private:
  std::string pattern_;
  std::vector<Individual> found_;
  std::unordered_map<std::string, std::pair<std::size_t, bool>> known_;  // index, and whether by the pattern
  std::set<std::string> seen_;
  bool matchedAny_ = false;
};

Individuals connected(Names names, Replicates replicates) {
  std::vector<std::size_t> first(names.size());  // of each sample's individual, once all is followed
  std::iota(first.begin(), first.end(), std::size_t{0});
  const auto firstOf = [&](std::size_t sample) {
    while (first[sample] != sample) sample = first[sample] = first[first[sample]];
    return sample;
  };
  for (const ReplicatePair& pair : replicates.pairs) {
    const auto [least, other] = std::minmax({firstOf(pair.first), firstOf(pair.second)});
    first[other] = least;
  }
  Individuals found{{}, std::move(replicates.unmade)};
  std::vector<std::size_t> places(names.size());
  for (std::size_t sample = 0; sample < names.size(); ++sample) {
    if (firstOf(sample) == sample) {
      places[sample] = found.all.size();
      found.all.push_back({names[sample], {}});
    }
    found.all[places[firstOf(sample)]].samples.push_back(sample);
  }
  return found;
}

void checkCells(const TableView& table) {
  if (table.fragmentCounts.size() != table.bins.size() * table.sampleCount) {
    throw std::invalid_argument("the cells of the table do not fit its bins and samples");
  }
}

using statistics::Band;
using statistics::BandMatrix;

Band callOf(std::size_t present, std::size_t runs, const Consensus& consensus) {
  using Rule = Consensus::Rule;
  if (runs == 0) return Band::Missing;
  std::size_t needed = runs;
  if (consensus.rule == Rule::Most) needed = runs / 2 + 1;
  if (consensus.rule == Rule::AtLeast) needed = std::min(consensus.atLeast, runs);
  if (present >= needed) return Band::Present;
  return consensus.rule == Rule::MissingWhereTheyDisagree && present > 0 ? Band::Missing : Band::Absent;
}

std::vector<Band> lineOf(const BandMatrix& bands, const Individual& individual, const Consensus& consensus) {
  std::vector<std::size_t> present(bands.loci.size()), runs(bands.loci.size());
  for (const std::size_t sample : individual.samples) {
    if (sample >= bands.samples.size())
      throw std::invalid_argument("an individual names a sample beyond the table");
    const auto line = bands.line(sample);
    for (std::size_t locus = 0; locus < line.size(); ++locus) {
      present[locus] += line[locus] == Band::Present;
      runs[locus] += line[locus] != Band::Missing;
    }
  }
  std::vector<Band> calls;
  for (std::size_t locus = 0; locus < runs.size(); ++locus)
    calls.push_back(callOf(present[locus], runs[locus], consensus));
  return calls;
}

std::size_t groupOf(const BandMatrix& bands, const Individual& individual) {
  const std::size_t group = bands.groupOf.at(individual.samples.front());
  for (const std::size_t sample : individual.samples) {
    if (bands.groupOf.at(sample) != group)
      throw std::invalid_argument("the samples of '" + individual.name + "' are in different groups");
  }
  return group;
}

}  // namespace

Individuals individualsByPattern(Names names, const std::string& pattern) {
  const bool isExpression = pattern.find('(') != std::string::npos;
  const std::vector<std::string> own = namesWithoutRuns(names);
  if (!isExpression && pattern.find('/') == std::string::npos) {
    Replicates replicates = replicatesBySuffix(own, pattern);
    if (replicates.pairs.empty())
      throw std::invalid_argument("no sample's name ends in '" + pattern + "' beside one without it");
    return connected(own, std::move(replicates));
  }
  const NameOf nameOf = isExpression ? byExpression(pattern) : byEndings(pattern);
  Grouping grouping(pattern);
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string& name = isExpression ? names[i] : own[i];
    grouping.add(name, i, nameOf(name));
  }
  return {grouping.take(), {}};
}

Individuals individualsByPairs(Names names, std::span<const std::pair<std::string, std::string>> pairs) {
  return connected(names, replicatesByName(names, pairs));
}

Individuals individualsByWord(Names names, Names words) {
  Individuals found;
  std::unordered_map<std::string, std::pair<std::size_t, bool>> known;  // index, and whether by a word
  for (std::size_t i = 0; i < names.size(); ++i) {
    const bool isSaid = !words[i].empty();
    const std::string& name = isSaid ? words[i] : names[i];
    const auto [at, isNew] = known.try_emplace(name, found.all.size(), isSaid);
    if (isNew) found.all.push_back({name, {}});
    if (!isNew && !(isSaid && at->second.second))
      throw std::invalid_argument("sample '" + names[i] + "' has the name of another individual, '" + name +
                                  "'");
    found.all[at->second.first].samples.push_back(i);
  }
  return found;
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

Consensus parseConsensus(const std::string& text) {
  using Rule = Consensus::Rule;
  if (text == "all") return {Rule::All};
  if (text == "most") return {Rule::Most};
  if (text == "missing") return {Rule::MissingWhereTheyDisagree};
  std::size_t runs = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), runs);
  if (error != std::errc() || end != text.data() + text.size() || runs == 0)
    throw std::invalid_argument("'" + text + "' is none of all, most, missing and a number of runs");
  return {Rule::AtLeast, runs};
}

std::string consensusText(const Consensus& consensus) {
  using Rule = Consensus::Rule;
  if (consensus.rule == Rule::AtLeast) return std::to_string(consensus.atLeast);
  if (consensus.rule == Rule::Most) return "most";
  return consensus.rule == Rule::All ? "all" : "missing";
}

BandMatrix consensusOf(const BandMatrix& bands, std::span<const Individual> individuals,
                       const Consensus& consensus) {
  BandMatrix made;
  made.loci = bands.loci;
  made.groups = bands.groups;
  for (const Individual& individual : individuals) {
    const std::vector<Band> line = lineOf(bands, individual, consensus);
    made.samples.push_back(individual.name);
    made.cells.insert(made.cells.end(), line.begin(), line.end());
    if (!bands.groups.empty()) made.groupOf.push_back(groupOf(bands, individual));
  }
  return made;
}

}  // namespace banddesk::host::scoring
