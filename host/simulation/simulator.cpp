#include "host/simulation/simulator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <stdexcept>
#include <string_view>

#include "host/simulation/random.h"

namespace banddesk::host::simulation {
namespace {

constexpr std::array<double, 15> ladderSizes{50,  75,  100, 139, 150, 160, 200, 250,
                                             300, 340, 350, 400, 450, 490, 500};
constexpr double leastFrequency = 0.02;  // a locus that no sample has would not be seen at all

void require(bool holds, const char* what) {
  if (!holds) throw std::invalid_argument(fmt::format("simulation settings: {}", what));
}

void check(const Settings& settings) {
  require(settings.samples > 0, "there must be samples");
  require(settings.replicates <= settings.samples, "more replicates than samples");
  require(settings.dyes >= 1 && settings.dyes <= 4, "dyes must be 1 to 4");
  require(settings.shortestNt > 0 && settings.shortestNt < settings.longestNt, "the size range is empty");
  require(settings.sizeScaleNt > 0, "the size scale must be above 0");
  require(settings.frequencyAlpha > 0 && settings.frequencyBeta > 0, "the frequency shapes must be above 0");
  require(settings.medianHeightRfu > 0, "the median height must be above 0");
  for (const double rate :
       {settings.homoplasyShare, settings.fixedShare, settings.lostRate, settings.spuriousRate})
    require(rate >= 0 && rate <= 1, "shares and rates must be 0 to 1");
  for (const double sigma : {settings.homoplasyNt, settings.resolutionNt, settings.sigmaAt100Nt,
                             settings.laneDriftNt, settings.locusHeightSigma, settings.peakHeightSigma})
    require(sigma >= 0, "widths must not be negative");
}

double rounded(double value, double steps) { return std::round(value * steps) / steps; }

/// The smooth shift of one sample along its sizes.
struct Drift {
  double level = 0, slope = 0, bend = 0;

  double at(double position) const { return level + position * (slope + position * bend); }
};

class Simulator {
 public:
  explicit Simulator(const Settings& settings) : settings_(settings), random_(settings.seed) {}

  SimulatedRuns simulate() {
    SimulatedRuns result;
    result.ladderDye = settings_.ladderDye;
    for (const char dye : std::string_view("BGYRO"))
      if (dye != settings_.ladderDye && result.dyes.size() < settings_.dyes) result.dyes.push_back(dye);
    for (std::size_t dye = 0; dye < result.dyes.size(); ++dye) result.loci.push_back(makeLoci());
    std::vector<Genotype> repeated;
    result.runs.reserve(settings_.samples + settings_.replicates);
    for (std::size_t sample = 0; sample < settings_.samples; ++sample) {
      const Genotype genotype = drawGenotype(result.loci);
      result.runs.push_back(makeRun(result, genotype, sample, ""));
      if (sample < settings_.replicates) repeated.push_back(genotype);
    }
    for (std::size_t sample = 0; sample < repeated.size(); ++sample)
      result.runs.push_back(makeRun(result, repeated[sample], sample, "b"));
    return result;
  }

 private:
  using Genotype = std::vector<std::vector<bool>>;  // by dye, by locus

  /// Falls off exponentially from the shortest to the longest size.
  double drawSize() {
    const double scale = settings_.sizeScaleNt;
    const double cut = portableExp((settings_.shortestNt - settings_.longestNt) / scale);
    return settings_.shortestNt - scale * portableLog(1 - random_.uniform() * (1 - cut));
  }

  /// The Kumaraswamy distribution: shaped as a beta distribution is, but its quantiles have a closed form.
  double drawFrequency() {
    if (random_.chance(settings_.fixedShare)) return 1;
    const auto power = [](double base, double exponent) {
      return base <= 0 ? 0 : portableExp(exponent * portableLog(base));
    };
    const double inner = 1 - power(1 - random_.uniform(), 1 / settings_.frequencyBeta);
    return std::clamp(power(inner, 1 / settings_.frequencyAlpha), leastFrequency, 1.0);
  }

  Locus drawLocus(const std::vector<Locus>& others) {
    Locus locus;
    locus.sizeNt = drawSize();
    if (!others.empty() && random_.chance(settings_.homoplasyShare)) {
      const auto twin = static_cast<std::size_t>(random_.uniform() * static_cast<double>(others.size()));
      const double off = random_.uniform(-settings_.homoplasyNt, settings_.homoplasyNt);
      locus.sizeNt = std::clamp(others[twin].sizeNt + off, settings_.shortestNt, settings_.longestNt);
    }
    locus.frequency = drawFrequency();
    locus.logHeight = portableLog(settings_.medianHeightRfu) + settings_.locusHeightSigma * random_.normal();
    return locus;
  }

  std::vector<Locus> makeLoci() {
    std::vector<Locus> loci;
    double expectedPeaks = 0;
    const bool byPeaks = settings_.peaksPerSample != 0;
    const auto wantedPeaks = static_cast<double>(settings_.peaksPerSample);
    while (byPeaks ? expectedPeaks < wantedPeaks : loci.size() < settings_.lociPerDye) {
      loci.push_back(drawLocus(loci));
      expectedPeaks += loci.back().frequency;
    }
    std::ranges::stable_sort(loci, {}, &Locus::sizeNt);
    return loci;
  }

  Genotype drawGenotype(const std::vector<std::vector<Locus>>& loci) {
    Genotype genotype;
    for (const auto& ofDye : loci) {
      std::vector<bool> present;
      present.reserve(ofDye.size());
      for (const Locus& locus : ofDye) present.push_back(random_.chance(locus.frequency));
      genotype.push_back(std::move(present));
    }
    return genotype;
  }

  SimulatedRun makeRun(const SimulatedRuns& all, const Genotype& genotype, std::size_t sample,
                       const char* mark) {
    SimulatedRun run;
    run.genotype = sample;
    run.name = nameOf(sample, mark, all.runs.size());
    const double width = settings_.laneDriftNt;
    const Drift drift{width * random_.normal(), 0.5 * width * random_.normal(),
                      0.25 * width * random_.normal()};
    for (std::size_t dye = 0; dye < all.loci.size(); ++dye)
      run.dyes.push_back(makePeaks(all.loci[dye], genotype[dye], drift));
    if (settings_.ladderDye) run.ladder = makeLadder();
    return run;
  }

  std::vector<Peak> makePeaks(const std::vector<Locus>& loci, const std::vector<bool>& present,
                              const Drift& drift) {
    std::vector<Peak> peaks;
    for (std::size_t i = 0; i < loci.size(); ++i) {
      if (!present[i]) continue;
      // Every draw is a statement of its own: compilers order the arguments of a call as they like.
      if (!random_.chance(settings_.lostRate)) {
        const double size = measured(loci[i].sizeNt, drift);
        const double height = heightAround(loci[i].logHeight);
        addPeak(peaks, size, height, static_cast<std::int32_t>(i));
      }
      if (random_.chance(settings_.spuriousRate)) {
        constexpr double weak = 1.5;  // false peaks are faint: e^-1.5 of the median
        const double size = drawSize();
        const double height = heightAround(portableLog(settings_.medianHeightRfu) - weak);
        addPeak(peaks, size, height, spuriousLocus);
      }
    }
    std::ranges::stable_sort(peaks, {}, &Peak::size);
    mergeUnresolved(peaks);
    return peaks;
  }

  void addPeak(std::vector<Peak>& peaks, double size, double height, std::int32_t locus) const {
    if (settings_.roundSizes) size = rounded(size, 100);
    if (settings_.roundHeights) height = std::max(1.0, std::round(height));
    peaks.push_back({std::max(size, 0.01), height, locus});
  }

  double measured(double size, const Drift& drift) {
    const double middle = (settings_.shortestNt + settings_.longestNt) / 2;
    const double position = (size - middle) / (settings_.longestNt - middle);
    const double growth = 1 + settings_.sigmaGrowth * (size - 100) / 100;
    return size + drift.at(position) + settings_.sigmaAt100Nt * std::max(growth, 0.1) * random_.normal();
  }

  double heightAround(double logHeight) {
    return portableExp(logHeight + settings_.peakHeightSigma * random_.normal());
  }

  void mergeUnresolved(std::vector<Peak>& peaks) const {
    std::size_t kept = 0;
    for (const Peak& peak : peaks) {
      if (kept == 0 || peak.size - peaks[kept - 1].size >= settings_.resolutionNt) {
        peaks[kept++] = peak;
      } else if (peak.height > peaks[kept - 1].height) {
        peaks[kept - 1] = peak;
      }
    }
    peaks.resize(kept);
  }

  /// An instrument reports its standard at the sizes it is defined by; only heights vary.
  std::vector<Peak> makeLadder() {
    std::vector<Peak> ladder;
    for (const double size : ladderSizes)
      addPeak(ladder, size, heightAround(portableLog(settings_.medianHeightRfu)), spuriousLocus);
    return ladder;
  }

  std::string nameOf(std::size_t sample, const char* mark, std::size_t run) const {
    const std::string name = fmt::format("S{:05}{}", sample + 1, mark);
    if (!settings_.runSuffix) return name;
    constexpr std::size_t wells = 96, columns = 12;
    const std::size_t well = run % wells;
    const std::size_t plate = run / wells;
    return fmt::format("{}.{}{:02}_{:08}{}{}", name, static_cast<char>('A' + well / columns),
                       well % columns + 1, (20'240'000 + run) % 100'000'000,
                       static_cast<char>('A' + plate / 26 % 26), static_cast<char>('A' + plate % 26));
  }

  const Settings& settings_;
  Random random_;
};

}  // namespace

SimulatedRuns simulate(const Settings& settings) {
  check(settings);
  return Simulator(settings).simulate();
}

}  // namespace banddesk::host::simulation
