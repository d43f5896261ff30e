#include "host/simulation/traces.h"

#include <algorithm>
#include <cmath>

#include "host/simulation/random.h"

namespace banddesk::host::simulation {
namespace {

constexpr double kStrayNt = 2.5;
constexpr double kReach = 4;  // of a peak, in standard deviations
constexpr double kWidthToSigma = 2.3548;

class TraceMaker {
 public:
  explicit TraceMaker(const TraceSettings& settings)
      : settings_(settings),
        random_(settings.seed),
        bend_(random_.uniform(-settings.bend, settings.bend)),
        bendAgain_(random_.uniform(-settings.bend, settings.bend) / 2) {}

  SimulatedTraces make() {
    const double longest = longestSize() + 30;
    SimulatedTraces out;
    out.dyes.resize(settings_.dyes.size() + 1);
    values_.assign(out.dyes.size(), std::vector<double>(static_cast<std::size_t>(scanOf(longest)), 0.0));
    addLadder(out);
    addSample(out);
    for (std::size_t dye = 0; dye < values_.size(); ++dye)
      out.dyes[dye] = recorded(values_[dye], out.saturatedScans);
    std::ranges::sort(out.saturatedScans);
    return out;
  }

 private:
  double longestSize() const {
    double longest = settings_.ladderSizes.empty() ? 100 : settings_.ladderSizes.back();
    for (const auto& dye : settings_.dyes)
      for (const double size : dye) longest = std::max(longest, size);
    return longest;
  }

  double scanOf(double size) const {
    const double x = size / 500;
    return settings_.firstScan + settings_.scansPerNt * size * (1 + bend_ * x + bendAgain_ * x * x);
  }

  double heightAround(double median) {
    return median * portableExp(settings_.heightSigma * random_.normal());
  }

  void addPeak(std::size_t dye, double scan, double height) {
    const double sigma = settings_.widthNt * settings_.scansPerNt / kWidthToSigma;
    std::vector<double>& values = values_[dye];
    const double from = std::max(0.0, scan - kReach * sigma);
    for (auto i = static_cast<std::size_t>(from);
         i < values.size() && static_cast<double>(i) <= scan + kReach * sigma; ++i) {
      const double z = (static_cast<double>(i) - scan) / sigma;
      values[i] += height * portableExp(-z * z / 2);
    }
  }

  TrueFragment fragment(double size, double median) {
    const bool strays = std::ranges::find(settings_.strayingSizes, size) != settings_.strayingSizes.end();
    const double apparent = size - (strays ? kStrayNt : 0) + settings_.jitterNt * random_.normal();
    return {size, scanOf(apparent), heightAround(median)};
  }

  void addLadder(SimulatedTraces& out) {
    std::vector<double> sizes = settings_.ladderSizes;
    for (std::size_t i = 0; i < settings_.missing && !sizes.empty(); ++i)
      sizes.erase(sizes.begin() +
                  static_cast<std::ptrdiff_t>(random_.uniform() * static_cast<double>(sizes.size())));
    const std::size_t dye = settings_.dyes.size();
    for (const double size : sizes) {
      out.ladder.push_back(fragment(size, settings_.ladderHeight));
      addPeak(dye, out.ladder.back().scan, out.ladder.back().height);
    }
    const double last = static_cast<double>(values_[dye].size()) - 1;
    for (std::size_t i = 0; i < settings_.falsePeaks; ++i)
      addPeak(dye, random_.uniform(settings_.firstScan, last), heightAround(settings_.ladderHeight));
  }

  void addSample(SimulatedTraces& out) {
    for (std::size_t dye = 0; dye < settings_.dyes.size(); ++dye) {
      std::vector<double> sizes = settings_.dyes[dye];
      std::ranges::sort(sizes);
      out.fragments.emplace_back();
      for (const double size : sizes) {
        TrueFragment one = fragment(size, settings_.sampleHeight);
        if (!settings_.heights.empty()) one.height = settings_.heights[dye][out.fragments.back().size()];
        out.fragments.back().push_back(one);
        addPeak(dye, one.scan, one.height);
        if (settings_.pullUp > 0) addPeak(settings_.dyes.size(), one.scan, settings_.pullUp * one.height);
      }
    }
  }

  std::vector<std::int32_t> recorded(const std::vector<double>& values,
                                     std::vector<std::int32_t>& saturated) {
    std::vector<std::int32_t> trace(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      const double baseline =
          50 + settings_.drift * static_cast<double>(i) / static_cast<double>(values.size());
      double value = values[i] + baseline + settings_.noise * random_.normal();
      if (value >= settings_.saturation) {
        value = settings_.saturation;
        saturated.push_back(static_cast<std::int32_t>(i));
      }
      trace[i] = static_cast<std::int32_t>(std::lround(value));
    }
    return trace;
  }

  const TraceSettings& settings_;
  Random random_;
  double bend_, bendAgain_;
  std::vector<std::vector<double>> values_;
};

}  // namespace

SimulatedTraces simulateTraces(const TraceSettings& settings) { return TraceMaker(settings).make(); }

}  // namespace banddesk::host::simulation
