#include "host/simulation/simulator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <stdexcept>
#include <string_view>

#include "host/simulation/lane_shift.h"
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
  require(settings.populations >= 1 && settings.populations <= 16, "populations must be 1 to 16");
  require(settings.laneCurveKnots >= 2, "a curve needs two knots");
  require(settings.sizeDecimals >= 0 && settings.sizeDecimals <= 6, "sizes have 0 to 6 decimals");
  require(settings.splitRate == 0 || settings.splitNt >= settings.resolutionNt,
          "split peaks nearer than the resolution");
  require(settings.medianHeightRfu > 0, "the median height must be above 0");
  for (const double rate :
       {settings.homoplasyShare, settings.fixedShare, settings.lostRate, settings.spuriousRate,
        settings.splitRate, settings.stutterShare, settings.privateShare, settings.variantShare})
    require(rate >= 0 && rate <= 1, "shares and rates must be 0 to 1");
  for (const double sigma :
       {settings.homoplasyNt, settings.resolutionNt, settings.sigmaAt100Nt, settings.laneDriftNt,
        settings.locusHeightSigma, settings.peakHeightSigma, settings.runShiftNt, settings.runSlopeNt,
        settings.laneCurveNt, settings.detectionRfu, settings.laneHeightSigma})
    require(sigma >= 0, "widths and heights must not be negative");
}

double rounded(double value, int decimals) {
  double steps = 1;
  for (int i = 0; i < decimals; ++i) steps *= 10;
  return std::round(value * steps) / steps;
}

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
      const Genotype genotype = drawGenotype(result.loci, sample);
      result.runs.push_back(makeRun(result, genotype, sample, ""));
      if (sample < settings_.replicates) repeated.push_back(genotype);
    }
    for (std::size_t sample = 0; sample < repeated.size(); ++sample)
      result.runs.push_back(makeRun(result, repeated[sample], sample, "b"));
    return result;
  }

 private:
  using Genotype = std::vector<std::vector<bool>>;  // by dye, by locus

  struct Lane {
    LaneShift shift;
    double logHeight = 0;  // added to that of each peak
  };

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
    if (settings_.privateShare > 0 && random_.chance(settings_.privateShare))
      locus.populations = somePopulations();
    if (settings_.variantShare > 0 && !others.empty() && random_.chance(settings_.variantShare))
      makeVariant(locus,
                  others[static_cast<std::size_t>(random_.uniform() * static_cast<double>(others.size()))]);
    return locus;
  }

  /// Not all of them, and at least one where there are several.
  std::uint32_t somePopulations() {
    const std::uint32_t all = (std::uint32_t{1} << settings_.populations) - 1;
    return static_cast<std::uint32_t>(random_.uniform(1, std::max(1U, all)));
  }

  /// A nucleotide more or less between the same ends moves the fragment by about as much.
  void makeVariant(Locus& locus, const Locus& original) {
    if (original.populations == UINT32_MAX) return;  // all have it
    const double step = random_.chance(0.5) ? 1 : -1;
    const double off = step + 0.2 * random_.normal();
    locus.sizeNt = std::clamp(original.sizeNt + off, settings_.shortestNt, settings_.longestNt);
    locus.frequency = original.frequency;
    locus.populations = ~original.populations;
  }

  /// Stutter is a nucleotide short and a tenth as high, more or less.
  void addShadowLoci(std::vector<Locus>& loci) {
    if (settings_.stutterShare == 0) return;
    std::vector<std::pair<Locus, std::size_t>> numbered;  // with their numbers so far
    numbered.reserve(2 * loci.size());
    for (const Locus& locus : loci) numbered.emplace_back(locus, numbered.size());
    for (std::size_t i = 0; i < loci.size(); ++i) {
      if (!random_.chance(settings_.stutterShare)) continue;
      Locus shadow;
      shadow.sizeNt = loci[i].sizeNt - 1;
      shadow.logHeight = -2.3 + 0.5 * random_.normal();
      shadow.shadowOf = i;
      numbered.emplace_back(shadow, numbered.size());
    }
    std::ranges::stable_sort(numbered, {}, [](const auto& one) { return one.first.sizeNt; });
    std::vector<std::size_t> placeOf(numbered.size());
    for (std::size_t i = 0; i < numbered.size(); ++i) placeOf[numbered[i].second] = i;
    loci.clear();
    for (auto& [locus, number] : numbered) {
      if (locus.shadowOf) locus.shadowOf = placeOf[*locus.shadowOf];
      loci.push_back(locus);
    }
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
    addShadowLoci(loci);
    return loci;
  }

  Genotype drawGenotype(const std::vector<std::vector<Locus>>& loci, std::size_t sample) {
    const std::uint32_t population = std::uint32_t{1} << (sample % settings_.populations);
    Genotype genotype;
    for (const auto& ofDye : loci) {
      std::vector<bool> present;
      present.reserve(ofDye.size());
      for (const Locus& locus : ofDye)
        present.push_back((locus.populations & population) != 0 && random_.chance(locus.frequency));
      genotype.push_back(std::move(present));
    }
    return genotype;
  }

  /// What is not asked for draws nothing, so that it changes nothing of what is.
  Lane makeLane(std::size_t number) {
    const std::size_t run = settings_.lanesPerRun == 0 ? 0 : number / settings_.lanesPerRun;
    while (settings_.lanesPerRun != 0 && runShifts_.size() <= run)
      runShifts_.emplace_back().addLine(random_, settings_.runShiftNt, settings_.runSlopeNt);
    Lane lane;
    if (settings_.lanesPerRun != 0) lane.shift = runShifts_[run];
    lane.shift.addParabola(random_, settings_.laneDriftNt);
    if (settings_.laneCurveNt > 0)
      lane.shift.addCurve(random_, settings_.laneCurveNt, settings_.laneCurveKnots);
    if (settings_.laneHeightSigma > 0) lane.logHeight = settings_.laneHeightSigma * random_.normal();
    return lane;
  }

  SimulatedRun makeRun(const SimulatedRuns& all, const Genotype& genotype, std::size_t sample,
                       const char* mark) {
    SimulatedRun run;
    run.genotype = sample;
    run.name = nameOf(sample, mark, all.runs.size());
    const Lane lane = makeLane(all.runs.size());
    for (std::size_t dye = 0; dye < all.loci.size(); ++dye)
      run.dyes.push_back(makePeaks(all.loci[dye], genotype[dye], lane));
    if (settings_.ladderDye) run.ladder = makeLadder();
    return run;
  }

  std::vector<Peak> makePeaks(const std::vector<Locus>& loci, const std::vector<bool>& present,
                              const Lane& lane) {
    std::vector<Peak> peaks;
    std::vector<double> logHeights(loci.size(), 0);  // of the peaks that shadows follow
    for (std::size_t i = 0; i < loci.size(); ++i) {
      if (!present[i]) continue;
      // Every draw is a statement of its own: compilers order the arguments of a call as they like.
      if (!random_.chance(settings_.lostRate)) {
        const double size = measured(loci[i].sizeNt, lane);
        logHeights[i] = loci[i].logHeight + lane.logHeight + settings_.peakHeightSigma * random_.normal();
        addFragment(peaks, {size, portableExp(logHeights[i]), static_cast<std::int32_t>(i)});
      }
      if (random_.chance(settings_.spuriousRate)) {
        constexpr double weak = 1.5;  // false peaks are faint: e^-1.5 of the median
        const double size = drawSize();
        const double height = heightAround(portableLog(settings_.medianHeightRfu) - weak + lane.logHeight);
        addPeak(peaks, {size, height, spuriousLocus});
      }
    }
    addShadows(peaks, loci, logHeights, lane);
    std::ranges::stable_sort(peaks, {}, &Peak::size);
    mergeUnresolved(peaks);
    return peaks;
  }

  /// Of a present peak, the height at a shadow's place falls with its own.
  void addShadows(std::vector<Peak>& peaks, const std::vector<Locus>& loci,
                  const std::vector<double>& logHeights, const Lane& lane) {
    for (std::size_t i = 0; i < loci.size(); ++i) {
      if (!loci[i].shadowOf || logHeights[*loci[i].shadowOf] == 0) continue;
      const double size = measured(loci[i].sizeNt, lane);
      const double height = heightAround(logHeights[*loci[i].shadowOf] + loci[i].logHeight);
      addPeak(peaks, {size, height, static_cast<std::int32_t>(i)});
    }
  }

  /// One fragment shows as one peak, seldom as two of half its height.
  void addFragment(std::vector<Peak>& peaks, Peak peak) {
    if (settings_.splitRate > 0 && random_.chance(settings_.splitRate)) {
      const double apart = random_.uniform(settings_.resolutionNt, settings_.splitNt);
      peak.height /= 2;
      addPeak(peaks, {peak.size - apart / 2, peak.height, peak.locus});
      peak.size += apart / 2;
    }
    addPeak(peaks, peak);
  }

  void addPeak(std::vector<Peak>& peaks, Peak peak) const {
    if (settings_.roundSizes) peak.size = rounded(peak.size, settings_.sizeDecimals);
    if (settings_.roundHeights) peak.height = std::max(1.0, std::round(peak.height));
    peak.size = std::max(peak.size, 0.01);
    if (peak.height >= settings_.detectionRfu) peaks.push_back(peak);
  }

  double measured(double size, const Lane& lane) {
    const double middle = (settings_.shortestNt + settings_.longestNt) / 2;
    const double position = (size - middle) / (settings_.longestNt - middle);
    const double growth = 1 + settings_.sigmaGrowth * (size - 100) / 100;
    return size + lane.shift.at(position) + settings_.sigmaAt100Nt * std::max(growth, 0.1) * noise();
  }

  double noise() {
    const double normal = random_.normal();
    if (settings_.tailDegrees == 0) return normal;
    double squares = 0;
    for (std::size_t i = 0; i < settings_.tailDegrees; ++i) {
      const double one = random_.normal();
      squares += one * one;
    }
    return normal / std::sqrt(squares / static_cast<double>(settings_.tailDegrees));
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
      addPeak(ladder, {size, heightAround(portableLog(settings_.medianHeightRfu)), spuriousLocus});
    return ladder;
  }

  std::string nameOf(std::size_t sample, const char* mark, std::size_t run) const {
    std::string name = fmt::format("S{:05}{}", sample + 1, mark);
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
  std::vector<LaneShift> runShifts_;
};

}  // namespace

SimulatedRuns simulate(const Settings& settings) {
  check(settings);
  return Simulator(settings).simulate();
}

}  // namespace banddesk::host::simulation
