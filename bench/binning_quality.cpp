// Compares rules of binning. Without arguments: the simulated grid at the width a user would choose, then the
// real tables if they are found (BANDDESK_SHARED, or ../shared beside the source tree).
//   banddesk_binning_quality [--widths FACTOR] [--seed-offset N] [--samples N] [--align] [--details]
//                   [--real-widths NT...] [--real-only | --simulated-only] [--realistic-only]
// FACTOR multiplies the chosen widths of the grid; --details prints every figure of every cell of the grid.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <vector>

#include "bench/binning_cases.h"
#include "bench/binning_scores.h"

namespace banddesk::bench {
namespace {

struct Score {
  double rand = 0, split = 0, merged = 0, perCell = 0, singles = 0, jaccard = 0, bins = 0;
};

Score scoreOf(const Case& one, const BinNumbers& bins) {
  const host::TableQuality table = tableQuality(one.pool, bins, one.samples, one.replicates);
  const LocusShares loci = locusShares(one.pool, bins);
  Score score{adjustedRandIndex(one.pool, bins),
              loci.split,
              loci.merged,
              table.fragmentsPerFilledCell.value_or(0),
              static_cast<double>(table.singleFragmentBins),
              -1,
              static_cast<double>(table.bins)};
  if (table.replicates) score.jaccard = table.replicates->overall.jaccardError().value_or(-1);
  return score;
}

void add(Score& sum, const Score& one) {
  const double share = 1.0 / static_cast<double>(std::size(kSeeds));
  for (double Score::*figure : {&Score::rand, &Score::split, &Score::merged, &Score::perCell, &Score::singles,
                                &Score::jaccard, &Score::bins})
    sum.*figure += share * (one.*figure);
}

struct GridOptions {
  double widthFactor = 1;
  std::uint64_t seedOffset = 0;
  std::size_t samples = kUsualSamples;
  bool details = false;
  bool align = false;
};

/// The means over the cases of the seeds, by rule.
std::vector<Score> scoresOfCell(const std::vector<Rule>& rules, const std::vector<Case>& cases,
                                double width) {
  std::vector<Score> scores(rules.size());
  for (const Case& one : cases) {
    for (std::size_t rule = 0; rule < rules.size(); ++rule)
      add(scores[rule], scoreOf(one, rules[rule].bins(one.pool, width)));
  }
  return scores;
}

void printScore(const Rule& rule, const Score& score) {
  fmt::print("  {:<17} {:7.4f} {:7.2f} {:7.2f} {:8.4f} {:7.1f} {:7.2f} {:6.1f}\n", rule.name, score.rand,
             100 * score.split, 100 * score.merged, score.perCell, score.singles, 100 * score.jaccard,
             score.bins);
}

/// What the host's rule, the last, has of a grid against the others.
class Verdict {
 public:
  static constexpr double kNearBest = 0.002;

  explicit Verdict(const std::vector<Rule>& rules) : rules_(rules), sums_(rules.size()) {}

  void judge(const std::vector<Score>& scores) {
    const auto [least, most] = std::ranges::minmax(scores, {}, &Score::rand);
    const double ours = scores.back().rand;
    ++cells_;
    best_ += ours >= most.rand - kNearBest ? 1 : 0;
    below_ += ours < most.rand - kFarBelow ? 1 : 0;
    worst_ += ours <= least.rand && least.rand < most.rand ? 1 : 0;
    largestLoss_ = std::max(largestLoss_, most.rand - ours);
    for (std::size_t rule = 0; rule < scores.size(); ++rule) sums_[rule] += scores[rule].rand;
  }

  void print() const {
    fmt::print("  mean          ");
    for (const double sum : sums_) fmt::print(" {:>15.4f} ", sum / static_cast<double>(cells_));
    fmt::print(
        "\n* best, or within {} of it. {}: {} of {} cells; more than {} below the best in {}, at most "
        "{:.4f}; "
        "worst in {}.\n\n",
        kNearBest, rules_.back().name, best_, cells_, kFarBelow, below_, largestLoss_, worst_);
  }

 private:
  static constexpr double kFarBelow = 0.01;

  const std::vector<Rule>& rules_;
  std::vector<double> sums_;
  std::size_t cells_ = 0, best_ = 0, below_ = 0, worst_ = 0;
  double largestLoss_ = 0;
};

void printCell(const std::vector<Rule>& rules, const std::vector<Score>& scores, bool details) {
  const double most = std::ranges::max(scores, {}, &Score::rand).rand;
  for (const Score& score : scores)
    fmt::print(" {:>15.4f}{}", score.rand, score.rand >= most - Verdict::kNearBest ? '*' : ' ');
  fmt::print("\n");
  if (!details) return;
  fmt::print("  {:<17}    Rand  split%  merge% per-cell singles Jaccard%  bins\n", "");
  for (std::size_t rule = 0; rule < rules.size(); ++rule) printScore(rules[rule], scores[rule]);
}

void printHeader(const std::vector<Rule>& rules, std::string_view columns) {
  fmt::print("{:<16}", columns);
  for (const Rule& rule : rules) fmt::print(" {:>16}", rule.name);
  fmt::print("\n");
}

void align(std::vector<Case>& cases) {
  for (Case& one : cases) {
    host::AlignmentFigures figures;
    one = alignedCase(one, figures);
    one.name += fmt::format(" (lanes aligned by {:.3f} nt in the mean, at most {:.2f})", figures.meanShift,
                            figures.largestShift);
  }
}

void printGrid(const std::vector<Rule>& rules, const GridOptions& options) {
  fmt::print("Simulated, normal noise and drift: adjusted Rand index, mean of {} seeds\n", std::size(kSeeds));
  printHeader(rules, "  loci noise width");
  Verdict verdict(rules);
  for (const std::size_t loci : kDensities) {
    for (const double noise : kNoises) {
      std::vector<Case> cases;
      for (const std::uint64_t seed : kSeeds)
        cases.push_back(simulatedCase(noise, loci, seed + options.seedOffset, options.samples));
      if (options.align) align(cases);
      const double width = usualWidth(noise) * options.widthFactor;
      const std::vector<Score> scores = scoresOfCell(rules, cases, width);
      fmt::print("  {:4} {:5.2f} {:5.2f}", loci, noise, width);
      printCell(rules, scores, options.details);
      verdict.judge(scores);
    }
  }
  verdict.print();
}

std::vector<Case> realisticCases(const RealConditions& conditions, const GridOptions& options) {
  std::vector<Case> cases;
  for (const std::uint64_t seed : kSeeds)
    cases.push_back(realisticCase(conditions, seed + options.seedOffset));
  if (options.align) align(cases);
  return cases;
}

/// Means over the cases.
void printRepeatability(const std::vector<Case>& cases) {
  Repeatability mean;
  for (const Case& one : cases) {
    const Repeatability found = repeatabilityOf(one.pool, one.replicates);
    const auto count = static_cast<double>(cases.size());
    mean.meanDifference += found.meanDifference / count;
    mean.largestDifference += found.largestDifference / count;
    mean.locusError += found.locusError / count;
  }
  fmt::print(
      "    replicates differ by {:.3f} nt, at most {:.2f}, in {:.1f} % of the loci's cells; {} peaks\n",
      mean.meanDifference, mean.largestDifference, 100 * mean.locusError, cases.front().pool.size());
}

void printRealisticGrid(const std::vector<Rule>& rules, const GridOptions& options) {
  fmt::print("Simulated as real runs are: adjusted Rand index, mean of {} seeds\n", std::size(kSeeds));
  printHeader(rules, "  loci diff. width");
  Verdict verdict(rules);
  for (const int decimals : kSizeDecimals) {
    fmt::print("  sizes with {} decimals\n", decimals);
    for (const std::size_t loci : kRealDensities) {
      for (const double difference : kDifferences) {
        const std::vector<Case> cases = realisticCases({difference, loci, decimals}, options);
        if (options.details) printRepeatability(cases);
        for (const double width : kRealWidths) {
          const std::vector<Score> scores = scoresOfCell(rules, cases, width);
          fmt::print("  {:4} {:5.2f} {:5.2f}", loci, difference, width);
          printCell(rules, scores, options.details);
          verdict.judge(scores);
        }
      }
    }
  }
  verdict.print();
}

std::string percent(double share) { return share < 0 ? "-" : fmt::format("{:.2f}", 100 * share); }

void printReal(const std::vector<Rule>& rules, const std::vector<Case>& cases,
               const std::vector<double>& widths) {
  fmt::print(
      "Real tables. Jaccard: mean over the pairs of replicates, sd between them. Joinable: neighbours that\n"
      "fit the width together and share no sample; parted: pairs of replicates with one in each of such "
      "two.\n");
  for (const Case& one : cases) {
    fmt::print("{}: {} peaks, {} pairs of replicates\n", one.name, one.pool.size(), one.replicates.size());
    fmt::print("  {:<17} width  bins single per-cell  width  Jaccard%     sd joinable parted\n", "");
    for (const double width : widths) {
      for (const Rule& rule : rules) {
        const BinNumbers bins = rule.bins(one.pool, width);
        const auto table = tableQuality(one.pool, bins, one.samples, one.replicates);
        const ReplicateError error = replicateErrorOf(table);
        const JoinableNeighbours joinable = joinableNeighbours(one.pool, bins, width, one.replicates);
        fmt::print("  {:<17} {:5.2f} {:5} {:6} {:8.4f} {:6.3f} {:>9} {:>6} {:8} {:6}\n", rule.name, width,
                   table.bins, table.singleFragmentBins, table.fragmentsPerFilledCell.value_or(0),
                   table.meanWidth.value_or(0), percent(error.mean), percent(error.deviation), joinable.pairs,
                   joinable.partedReplicates);
      }
    }
  }
}

std::filesystem::path sharedFolder() {
  const char* given = std::getenv("BANDDESK_SHARED");
  return given != nullptr ? given : std::filesystem::path(BANDDESK_SOURCE_DIR) / ".." / "shared";
}

}  // namespace
}  // namespace banddesk::bench

int main(int argc, char** argv) {
  CLI::App app("Compares rules of binning");
  banddesk::bench::GridOptions options;
  std::vector<double> realWidths{0.5, 0.75, 1, 1.5, 2};
  bool realOnly = false, simulatedOnly = false, realisticOnly = false;
  app.add_option("--widths", options.widthFactor, "Multiplies the widths of the simulated grid");
  app.add_option("--seed-offset", options.seedOffset, "Added to the seeds: cases that no rule was tuned on");
  app.add_option("--samples", options.samples, "Simulated samples, without replicates");
  app.add_flag("--align", options.align, "Bring the lanes into line first, for every rule");
  app.add_flag("--details", options.details, "Every figure of every cell of the grid");
  app.add_option("--real-widths", realWidths, "Maximum widths of a bin in nt for the real tables");
  app.add_flag("--real-only", realOnly);
  app.add_flag("--simulated-only", simulatedOnly);
  app.add_flag("--realistic-only", realisticOnly, "Of the simulated cases those that are like real runs");
  CLI11_PARSE(app, argc, argv);

  using namespace banddesk::bench;
  const std::vector<Rule> rules = allRules();
  if (!realOnly) {
    if (!realisticOnly) printGrid(rules, options);
    printRealisticGrid(rules, options);
  }
  if (simulatedOnly) return 0;
  std::vector<Case> cases = realCases(sharedFolder());
  if (options.align) align(cases);
  printReal(rules, cases, realWidths);
}
