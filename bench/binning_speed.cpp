// Times all of the binning of one dye (taking over the fragments, sorting, bins) against std::sort of the
// same (size, sample) pairs in the same run; the least of three times each.
//   binning_speed [--fragments N...] [--widths NT...] [--uniform] [--fractions]
// Without --uniform the sizes lie about 400 loci, as fragments do; with it, anywhere.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>
#include <limits>
#include <utility>
#include <vector>

#include "host/binning/default_calculator.h"
#include "host/simulation/random.h"

namespace banddesk::bench {
namespace {

constexpr std::size_t kPerSample = 200;
constexpr std::size_t kLoci = 400;

struct Workload {
  bool isUniform = false;
  bool isContinuous = false;
  bool hasWholeHeights = true;
};

class OneSample final : public FragmentTable {
 public:
  DyeFragments OfDye(std::int16_t) const override { return {sizes, heights}; }
  std::vector<double> sizes, heights;
};

std::vector<OneSample> makeSamples(std::size_t fragments, const Workload& workload) {
  host::simulation::Random random(7);
  std::vector<double> loci(kLoci);
  for (double& locus : loci) locus = random.uniform(50, 500);
  std::vector<OneSample> samples((fragments + kPerSample - 1) / kPerSample);
  for (std::size_t i = 0; i < fragments; ++i) {
    const double locus = loci[static_cast<std::size_t>(random.uniform() * kLoci)];
    const double size = workload.isUniform ? random.uniform(50, 500) : locus + 0.15 * random.normal();
    OneSample& sample = samples[i / kPerSample];
    sample.sizes.push_back(workload.isContinuous ? size : std::round(size * 100) / 100);
    const double height = random.uniform(50, 5000);
    sample.heights.push_back(workload.hasWholeHeights ? std::round(height) : height);
  }
  return samples;
}

template <class Work>
double leastSeconds(Work work) {
  double least = std::numeric_limits<double>::max();
  for (int run = 0; run < 3; ++run) least = std::min(least, work());
  return least;
}

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double sortSeconds(const std::vector<OneSample>& samples) {
  return leastSeconds([&] {
    std::vector<std::pair<double, std::int32_t>> pairs;
    for (std::size_t sample = 0; sample < samples.size(); ++sample) {
      for (const double size : samples[sample].sizes)
        pairs.emplace_back(size, static_cast<std::int32_t>(sample));
    }
    const auto start = std::chrono::steady_clock::now();
    std::sort(pairs.begin(), pairs.end());
    return secondsSince(start);
  });
}

struct BinningTimes {
  double all = 0;    // seconds
  double again = 0;  // with another width, all else at hand
  std::int32_t bins = 0;
};

BinningTimes binningTimes(const std::vector<OneSample>& samples, double width) {
  BinningTimes times;
  times.again = std::numeric_limits<double>::max();
  times.all = leastSeconds([&] {
    const auto calculator = host::makeBinCalculator();
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t sample = 0; sample < samples.size(); ++sample)
      calculator->AddFragments(static_cast<std::int32_t>(sample), 0, samples[sample], 0, 1, 1);
    calculator->SetMaxBinWidth(width);
    calculator->SetYThreshold(0);
    calculator->Calculate();
    const double all = secondsSince(start);
    times.bins = calculator->BinCount();
    const auto second = std::chrono::steady_clock::now();
    calculator->SetMaxBinWidth(width * 0.9);
    calculator->Calculate();
    times.again = std::min(times.again, secondsSince(second));
    return all;
  });
  return times;
}

void measure(std::size_t fragments, const Workload& workload, const std::vector<double>& widths) {
  const std::vector<OneSample> samples = makeSamples(fragments, workload);
  const double sorting = sortSeconds(samples);
  const double logarithm = std::log2(static_cast<double>(fragments));
  for (const double width : widths) {
    const BinningTimes times = binningTimes(samples, width);
    const double each = times.all / static_cast<double>(fragments) * 1e9;
    fmt::print("{:>10} {:>12} {:>5} {:>9.4f} {:>9.4f} {:>6.2f} {:>9.1f} {:>9.2f} {:>9.4f} {:>7}\n", fragments,
               workload.isContinuous ? "continuous" : "two decimals", width, sorting, times.all,
               times.all / sorting, each, each / logarithm, times.again, times.bins);
  }
}

}  // namespace
}  // namespace banddesk::bench

int main(int argc, char** argv) {
  CLI::App app("Times the binning of one dye");
  std::vector<std::size_t> sizes{100'000, 1'000'000, 10'000'000};
  std::vector<double> widths{1, 10};
  bool isUniform = false, hasFractions = false;
  app.add_option("--fragments", sizes);
  app.add_option("--widths", widths, "Maximum widths of a bin in nt");
  app.add_flag("--uniform", isUniform, "Sizes anywhere between 50 and 500 nt");
  app.add_flag("--fractions", hasFractions, "Heights that are not whole, as no instrument writes them");
  CLI11_PARSE(app, argc, argv);
  fmt::print(
      " fragments        sizes width std::sort   binning  ratio   ns/each ns/each/log2 again      bins\n");
  for (const bool isContinuous : {false, true}) {
    for (const std::size_t size : sizes)
      banddesk::bench::measure(size, {isUniform, isContinuous, !hasFractions}, widths);
  }
}
