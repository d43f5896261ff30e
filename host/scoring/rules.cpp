#include "host/scoring/rules.h"

#include <algorithm>
#include <optional>

namespace banddesk::host::scoring {
namespace {

void check(const RuleTable& table) {
  const std::size_t samples = table.samples.size();
  const std::size_t cells = table.bins.size() * samples;
  if (table.counts.size() != cells || table.heights.size() != cells) {
    throw std::invalid_argument("the cells of the table do not fit its bins and samples");
  }
  for (const ReplicatePair& pair : table.replicates) {
    if (pair.first >= samples || pair.second >= samples) {
      throw std::invalid_argument("a replicate pair names a sample beyond the table");
    }
  }
}

bool takes(const Rule& rule, std::optional<double> value) {
  return value && (rule.less ? *value < rule.limit : *value > rule.limit);
}

std::vector<double> fragmentsOfSamples(const RuleTable& table) {
  std::vector<double> sums(table.samples.size());
  for (std::size_t cell = 0; cell < table.counts.size(); ++cell)
    sums[cell % sums.size()] += table.counts[cell];
  return sums;
}

bool isSample(SampleState state) { return state == SampleState::Judged || state == SampleState::Kept; }

double medianOfSamples(const std::vector<double>& values, std::span<const SampleState> states) {
  std::vector<double> kept;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (isSample(states[i])) kept.push_back(values[i]);
  }
  if (kept.empty()) return 0;
  std::ranges::sort(kept);
  return (kept[(kept.size() - 1) / 2] + kept[kept.size() / 2]) / 2;
}

/// The figures of one bin over the samples that count.
class BinFigures {
 public:
  BinFigures(const RuleTable& table, const std::vector<bool>& counting, std::size_t bin)
      : table_(table), counting_(counting), bin_(bin), first_(bin * counting.size()) {}

  std::optional<double> operator()(Quantity quantity) const {
    const RuleBin& bin = table_.bins[bin_];
    switch (quantity) {
      case Quantity::Height:
        return meanHeight();
      case Quantity::Samples:
        return filledIn([&](std::size_t i) { return counting_[i]; });
      case Quantity::Width:
        return bin.xMax - bin.xMin;
      case Quantity::Size:
        return bin.size;
      case Quantity::Disagree:
        return disagreement();
      case Quantity::Blank:
        return filledIn([&](std::size_t i) { return table_.samples[i] == SampleState::Blank; });
      case Quantity::Fragments:
        break;
    }
    return {};
  }

 private:
  bool fills(std::size_t sample) const { return table_.counts[first_ + sample] != 0; }

  template <class Chosen>
  double filledIn(Chosen isChosen) const {
    double filled = 0;
    for (std::size_t i = 0; i < counting_.size(); ++i) filled += isChosen(i) && fills(i) ? 1 : 0;
    return filled;
  }

  std::optional<double> meanHeight() const {
    double height = 0;
    double fragments = 0;
    for (std::size_t i = 0; i < counting_.size(); ++i) {
      if (!counting_[i]) continue;
      height += table_.heights[first_ + i];
      fragments += table_.counts[first_ + i];
    }
    if (fragments == 0) return {};
    return height / fragments;
  }

  std::optional<double> disagreement() const {
    double pairs = 0;
    double differing = 0;
    for (const auto& [first, second] : table_.replicates) {
      if (!counting_[first] || !counting_[second]) continue;
      ++pairs;
      differing += fills(first) != fills(second) ? 1 : 0;
    }
    if (pairs == 0) return {};
    return 100 * differing / pairs;
  }

  const RuleTable& table_;
  const std::vector<bool>& counting_;
  std::size_t bin_;
  std::size_t first_;
};

std::vector<std::vector<std::size_t>> samplesTaken(std::span<const Rule> rules, const RuleTable& table) {
  const std::vector<double> fragments = fragmentsOfSamples(table);
  const double median = medianOfSamples(fragments, table.samples);
  std::vector<std::vector<std::size_t>> taken(fragments.size());
  for (std::size_t r = 0; r < rules.size(); ++r) {
    if (!judgesSamples(rules[r])) continue;
    for (std::size_t i = 0; i < fragments.size(); ++i) {
      std::optional<double> value = fragments[i];
      if (rules[r].percent) value = median > 0 ? std::optional(100 * fragments[i] / median) : std::nullopt;
      if (table.samples[i] == SampleState::Judged && takes(rules[r], value)) taken[i].push_back(r);
    }
  }
  return taken;
}

}  // namespace

std::size_t RuleOutcome::takenBy(std::size_t rule) const {
  const auto holds = [rule](const std::vector<std::size_t>& reasons) {
    return std::ranges::binary_search(reasons, rule);
  };
  return static_cast<std::size_t>(std::ranges::count_if(bins, holds) + std::ranges::count_if(samples, holds));
}

RuleOutcome applyRules(std::span<const Rule> rules, const RuleTable& table) {
  check(table);
  RuleOutcome outcome{.bins = {}, .samples = samplesTaken(rules, table)};
  outcome.bins.resize(table.bins.size());
  std::vector<bool> counting(table.samples.size());
  for (std::size_t i = 0; i < counting.size(); ++i)
    counting[i] = isSample(table.samples[i]) && outcome.samples[i].empty();
  for (std::size_t bin = 0; bin < table.bins.size(); ++bin) {
    const BinFigures figures(table, counting, bin);
    for (std::size_t r = 0; r < rules.size(); ++r) {
      if (takes(rules[r], figures(rules[r].quantity))) outcome.bins[bin].push_back(r);
    }
  }
  return outcome;
}

}  // namespace banddesk::host::scoring
