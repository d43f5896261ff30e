#include "host/binning/lane_alignment.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace banddesk::host {
namespace {

constexpr double kCell = 0.01;            // nt, of the density
constexpr double kReach = 0.5;            // nt: fragments farther off say nothing about a fragment's place
constexpr double kKnotsApart = 40;        // nt
constexpr double kSmoothing = 60;         // nt: fragments no farther from a knot count for it, near ones more
constexpr double kPrior = 1;              // so many fragments at each knot say "no shift"
constexpr double kTrusted = 3;            // with so many others about it a fragment counts half
constexpr double kLargestShift = 0.5;     // nt
constexpr double kLargestRange = 10'000;  // nt
constexpr int kRounds = 8;
// Shifts are whole multiples of this, in nt, so that sums of them are the same in any order.
constexpr double kUnit = 1e-4;

struct Range {
  double least = std::numeric_limits<double>::infinity();
  double largest = -least;
  std::size_t lanes = 0;  // with sizes

  bool isUsable() const { return lanes >= 2 && largest - least <= kLargestRange; }
};

Range rangeOf(std::span<const std::vector<double>> lanes) {
  Range range;
  for (const std::vector<double>& lane : lanes) {
    if (!lane.empty()) ++range.lanes;
    for (const double size : lane) {
      range.least = std::min(range.least, size);
      range.largest = std::max(range.largest, size);
    }
  }
  return range;
}

/// 1 at a distance of 0, falling smoothly to 0 at `reach`.
double kernel(double distance, double reach) {
  const double away = distance / reach;
  const double left = std::max(0.0, 1 - away * away);
  return left * left;
}

/// Where the fragments of all lanes lie.
class Density {
 public:
  explicit Density(const Range& range)
      : first_(range.least - kLargestShift - kReach),
        counts_(
            static_cast<std::size_t>((range.largest - range.least + 2 * (kLargestShift + kReach)) / kCell) +
                2,
            0) {}

  void add(double size) { ++counts_[cellOf(size)]; }

  void finish() {
    const auto reach = static_cast<std::size_t>(kReach / kCell);
    weights_.assign(counts_.size(), 0);
    pulls_.assign(counts_.size(), 0);
    for (std::size_t cell = 0; cell < counts_.size(); ++cell) {
      if (counts_[cell] == 0) continue;
      const std::size_t begin = cell < reach ? 0 : cell - reach;
      const std::size_t end = std::min(counts_.size(), cell + reach + 1);
      for (std::size_t at = begin; at < end; ++at) {
        const double distance = (static_cast<double>(cell) - static_cast<double>(at)) * kCell;
        const double weight = counts_[cell] * kernel(distance, kReach);
        weights_[at] += weight;
        pulls_[at] += weight * distance;
      }
    }
  }

  struct Surroundings {
    double others = 0;  // fragments about one, beside itself, near ones counting more
    double pull = 0;    // nt, to where they lie
  };
  Surroundings about(double size) const {
    const std::size_t cell = cellOf(size);
    const double others = weights_[cell] - 1;
    // Less than this is what the rounding of the cells leaves of one alone, or somebody far off.
    return others > 0.5 ? Surroundings{others, pulls_[cell] / others} : Surroundings{};
  }

 private:
  std::size_t cellOf(double size) const {
    return std::min(static_cast<std::size_t>(std::max(0.0, (size - first_) / kCell + 0.5)),
                    counts_.size() - 1);
  }

  double first_;
  std::vector<double> counts_;   // by cell; whole numbers
  std::vector<double> weights_;  // about a cell
  std::vector<double> pulls_;    // times their distances
};

class Alignment {
 public:
  Alignment(std::span<const std::vector<double>> lanes, const Range& range)
      : range_(range), lanes_(lanes.begin(), lanes.end()) {
    for (std::vector<double>& lane : lanes_) std::ranges::sort(lane);
    knots_ = static_cast<std::size_t>((range.largest - range.least) / kKnotsApart) + 2;
    shifts_.assign(lanes_.size(), std::vector<double>(knots_, 0));
  }

  std::vector<ShiftCurve> curves() {
    for (int round = 0; round < kRounds; ++round) improve();
    std::vector<ShiftCurve> curves;
    curves.reserve(lanes_.size());
    for (std::size_t lane = 0; lane < lanes_.size(); ++lane)
      curves.push_back(lanes_[lane].empty() ? ShiftCurve() : curveOf(lane));
    return curves;
  }

 private:
  ShiftCurve curveOf(std::size_t lane) const { return {range_.least, kKnotsApart, shifts_[lane]}; }

  void improve() {
    Density density(range_);
    for (std::size_t lane = 0; lane < lanes_.size(); ++lane) {
      const ShiftCurve curve = curveOf(lane);
      for (const double size : lanes_[lane]) density.add(size + curve.at(size));
    }
    density.finish();
    for (std::size_t lane = 0; lane < lanes_.size(); ++lane) moveLane(lane, density);
    center();
  }

  /// Each knot by where the density would move the lane's fragments about it.
  void moveLane(std::size_t lane, const Density& density) {
    const ShiftCurve curve = curveOf(lane);
    std::vector<double> weights(knots_, kPrior), wanted(knots_, 0);
    for (const double size : lanes_[lane]) {
      const double shift = curve.at(size);
      const Density::Surroundings about = density.about(size + shift);
      const double trust = about.others / (about.others + kTrusted);
      const double place = (size - range_.least) / kKnotsApart;
      constexpr double reach = kSmoothing / kKnotsApart;
      const double first = std::ceil(std::max(0.0, place - reach));
      for (auto knot = static_cast<std::size_t>(first); knot < knots_ && knotPlace(knot) <= place + reach;
           ++knot) {
        const double weight = trust * kernel(knotPlace(knot) - place, reach);
        weights[knot] += weight;
        wanted[knot] += weight * (shift + about.pull);
      }
    }
    for (std::size_t knot = 0; knot < knots_; ++knot) {
      const double shift = std::clamp(wanted[knot] / weights[knot], -kLargestShift, kLargestShift);
      shifts_[lane][knot] = std::round(shift / kUnit) * kUnit;
    }
  }

  static double knotPlace(std::size_t knot) { return static_cast<double>(knot); }

  /// Lanes are compared with one another: what all have in common is no shift.
  void center() {
    for (std::size_t knot = 0; knot < knots_; ++knot) {
      std::int64_t sum = 0;
      for (std::size_t lane = 0; lane < lanes_.size(); ++lane)
        if (!lanes_[lane].empty()) sum += std::llround(shifts_[lane][knot] / kUnit);
      const double mean = std::round(static_cast<double>(sum) / static_cast<double>(range_.lanes)) * kUnit;
      for (std::vector<double>& shifts : shifts_)
        shifts[knot] = std::clamp(shifts[knot] - mean, -kLargestShift, kLargestShift);
    }
  }

  Range range_;
  std::size_t knots_ = 0;
  std::vector<std::vector<double>> lanes_;   // sorted
  std::vector<std::vector<double>> shifts_;  // by lane and knot, nt
};

}  // namespace

ShiftCurve::ShiftCurve(double first, double apart, std::vector<double> shifts)
    : first_(first), apart_(apart), shifts_(std::move(shifts)) {}

double ShiftCurve::at(double size) const {
  if (shifts_.empty()) return 0;
  if (shifts_.size() == 1) return shifts_.front();
  const auto last = static_cast<double>(shifts_.size() - 1);
  const double place = std::clamp((size - first_) / apart_, 0.0, last);
  const double left = std::min(std::floor(place), last - 1);
  const auto knot = static_cast<std::size_t>(left);
  return shifts_[knot] + (shifts_[knot + 1] - shifts_[knot]) * (place - left);
}

double ShiftCurve::moved(double size) const {
  return shifts_.empty() ? size : std::round((size + at(size)) * 100) / 100;
}

std::vector<ShiftCurve> alignLanes(std::span<const std::vector<double>> lanes) {
  const Range range = rangeOf(lanes);
  if (!range.isUsable()) return std::vector<ShiftCurve>(lanes.size());
  return Alignment(lanes, range).curves();
}

AlignmentFigures figuresOf(std::span<const std::vector<double>> lanes, std::span<const ShiftCurve> curves) {
  AlignmentFigures figures;
  double sum = 0, count = 0;
  for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
    for (const double size : lanes[lane]) {
      const double shift = std::abs(curves[lane].at(size));
      sum += shift;
      ++count;
      figures.largestShift = std::max(figures.largestShift, shift);
    }
  }
  if (count > 0) figures.meanShift = sum / count;
  return figures;
}

}  // namespace banddesk::host
